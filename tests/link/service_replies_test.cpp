// SPDX-License-Identifier: MIT
// How the link reads a reply: its framing and its limits. What comes of the faults that are in
// tests/faults/faults.json is in service_faults_test.cpp.
#include "link/scripted_service.h"
#include "link/service_link_fixture.h"
#include "link/text.h"

using namespace std::string_literals;

namespace {

constexpr std::size_t largest_header = 8'192;
constexpr std::size_t largest_body = 8'388'608;

const std::string ok = "HTTP/1.1 200 OK\r\n";
const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";

ServiceReply reply_of(std::vector<Moment> script, ScriptEnd end = ScriptEnd::hang_up) {
    const ScriptedService scripted{std::move(script), end};
    return service_request(HttpMethod::get, "/api/state", "");
}

/// What the link makes of a reply, byte for byte.
ServiceReply reply_to(std::string raw, ScriptEnd end = ScriptEnd::hang_up) {
    return reply_of({{.bytes = std::move(raw)}}, end);
}

ServiceReply reply_to_bytes_of(const std::string& raw) {
    std::vector<Moment> script;
    for (const char byte : raw)
        script.push_back({.bytes = {byte}});
    return reply_of(script);
}

/// A reply with its body in chunks of this size, the last one excepted.
std::string in_chunks(std::string_view body, std::size_t chunk_size) {
    std::string text = chunked;
    while (!body.empty()) {
        const std::string_view chunk = body.substr(0, chunk_size);
        text.append(format_text("%zx\r\n", chunk.size())).append(chunk).append("\r\n");
        body.remove_prefix(chunk.size());
    }
    return text + "0\r\n\r\n";
}

TEST(ServiceReplies, AreReadAsHttpFramesThemWholeAndByteByByte) {
    const struct {
        const char* when;
        std::string raw;
        std::string body;
    } cases[] = {
        {"the body ends with the stream", ok + "\r\n{\"a\":1}", "{\"a\":1}"},
        {"the body holds a zero byte", ok + "Content-Length: 3\r\n\r\na\0b"s, "a\0b"s},
        {"a second reply follows", ok + "Content-Length: 2\r\n\r\n{}" + ok + "\r\n[]", "{}"},
        {"several chunks", chunked + "1\r\n{\r\nA\r\n\"a\":12345}\r\n1\r\n\n\r\n0\r\n\r\n",
         "{\"a\":12345}\n"},
        {"no chunk", chunked + "0\r\n\r\n", ""},
        {"a trailer follows the chunks", chunked + "2\r\n{}\r\n0\r\nX-Sum: 7\r\n\r\n", "{}"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        for (const ServiceReply& reply : {reply_to(c.raw), reply_to_bytes_of(c.raw)}) {
            EXPECT_EQ(reply.status, 200);
            EXPECT_EQ(reply.body, c.body);
        }
    }
}

TEST(ServiceReplies, AreNoAnswerWhenTheyEndEarly) {
    const std::string body = "{\"a\":1}";
    for (const std::string& whole : {in_chunks(body, 4), reply_text(200, body)}) {
        for (std::size_t size = 0; size < whole.size(); ++size) {
            SCOPED_TRACE("'" + whole.substr(0, size) + "'");
            expect_no_answer(reply_to(whole.substr(0, size)));
        }
        EXPECT_EQ(reply_to(whole).body, body);
    }
}

TEST(ServiceReplies, HaveAReasonThatCountsAsHeader) {
    const std::string end = "\r\nContent-Length: 2\r\n\r\n";
    const auto reply_with_header_of = [&](std::size_t size) {
        const std::string start = "HTTP/1.1 200 ";
        return reply_to(start + std::string(size - start.size() - end.size(), 'x') + end + "{}");
    };
    EXPECT_EQ(reply_with_header_of(largest_header).body, "{}");
    expect_no_answer(reply_with_header_of(largest_header + 1));
}

TEST(ServiceReplies, HaveABodyOf8388608BytesAtMost) {
    const std::pair<const char*, std::string (*)(std::string_view body)> cases[] = {
        {"the end of the stream",
         [](std::string_view body) { return ok + "\r\n" + std::string{body}; }},
        {"one chunk", [](std::string_view body) { return in_chunks(body, body.size()); }},
        {"many chunks", [](std::string_view body) { return in_chunks(body, 5'000); }},
    };
    const std::string body(largest_body, 'x');
    for (const auto& [framing, in_frame] : cases) {
        SCOPED_TRACE(framing);
        EXPECT_TRUE(reply_to(in_frame(body)).body == body);
        expect_no_answer(reply_to(in_frame(body + 'x')));
    }
}

TEST(ServiceReplies, MayHave64KiBOfAChunkExtensionOrATrailer) {
    const auto extended = [](std::size_t size) {
        return chunked + "2;" + std::string(size, 'x') + "\r\n{}\r\n0\r\n\r\n";
    };
    const auto with_trailer = [](std::size_t size) {
        return chunked + "2\r\n{}\r\n0\r\nX: " + std::string(size, 'x') + "\r\n\r\n";
    };
    EXPECT_EQ(reply_to(extended(60'000)).body, "{}");
    expect_no_answer(reply_to(extended(70'000)));
    EXPECT_EQ(reply_to(with_trailer(60'000)).body, "{}");
    expect_no_answer(reply_to(with_trailer(70'000)));
}

TEST(ServiceReplies, AreWholeBeforeTheStreamEnds) {
    EXPECT_EQ(reply_to(reply_text(200, "{}"), ScriptEnd::silence).body, "{}");
    EXPECT_EQ(reply_to(in_chunks("{}", 1), ScriptEnd::silence).body, "{}");
    EXPECT_EQ(reply_to("HTTP/1.1 204 None\r\n\r\n", ScriptEnd::silence).status, 204);
}

} // namespace

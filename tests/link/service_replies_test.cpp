// SPDX-License-Identifier: MIT
// How the link reads a reply: its framing and its limits. What comes of the faults that are in
// tests/faults/faults.json is in service_faults_test.cpp.
#include "link/service_link_fixture.h"

using namespace std::string_literals;

namespace {

constexpr std::size_t largest_header = 8'192;
constexpr std::size_t largest_body = 8'388'608;

/// A status line and header of exactly `size` bytes, for a body of two.
std::string header_of(std::size_t size) {
    const std::string start = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nX-Padding: ";
    const std::string end = "\r\n\r\n";
    return start + std::string(size - start.size() - end.size(), 'x') + end;
}

std::string header_of_many_fields(std::size_t size) {
    std::string text = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n";
    const std::string field = "X-Padding: x\r\n";
    const std::size_t last = std::string{"X: \r\n\r\n"}.size();
    while (text.size() + field.size() + last <= size)
        text += field;
    return text + "X: " + std::string(size - text.size() - last, 'x') + "\r\n\r\n";
}

std::string header_of_a_long_reason(std::size_t size) {
    const std::string start = "HTTP/1.1 200 ";
    const std::string end = "\r\nContent-Length: 2\r\n\r\n";
    return start + std::string(size - start.size() - end.size(), 'x') + end;
}

TEST_F(ServiceLink, ReadsAReplyAsHttpFramesIt) {
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
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
        {"a trailer follows the chunks", chunked + "2\r\n{}\r\n0\r\nX-Sum: 7\r\n\r\n", "{}"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        const ServiceReply reply = reply_to(c.raw);
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(reply.body, c.body);
    }
}

TEST_F(ServiceLink, TakesAReplyThatEndsEarlyForNoAnswer) {
    const std::string body = "{\"a\":1}";
    for (const std::string& whole : {in_chunks(body, 4), reply_text(200, body)}) {
        for (std::size_t size = 0; size < whole.size(); ++size) {
            SCOPED_TRACE("'" + whole.substr(0, size) + "'");
            expect_no_answer(reply_to(whole.substr(0, size)));
        }
        EXPECT_EQ(reply_to(whole).body, body);
    }
}

TEST_F(ServiceLink, ReadsALastChunkThatComesAByteAtATime) {
    const std::pair<const char*, const char*> cases[] = {
        {"0\r\n\r\n", ""},
        {"0\r\nX: y\r\n\r\n", ""},
        {"2\r\n{}\r\n0\r\n\r\n", "{}"},
    };
    for (const auto& [chunks, body] : cases) {
        SCOPED_TRACE(chunks);
        service.next_connection({read_request(),
                                 send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"),
                                 send_bytewise(chunks)});
        const ServiceReply reply = get_state();
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(reply.body, body);
    }
}

TEST_F(ServiceLink, TakesAHeaderOf8192BytesAndNoneOf8193) {
    const std::pair<const char*, std::string (*)(std::size_t size)> cases[] = {
        {"one long field", header_of},
        {"many fields", header_of_many_fields},
        {"a long reason", header_of_a_long_reason},
    };
    for (const auto& [shape, header] : cases) {
        SCOPED_TRACE(shape);
        ASSERT_EQ(header(largest_header).size(), largest_header);
        EXPECT_EQ(reply_to(header(largest_header) + "{}").body, "{}");
        expect_no_answer(reply_to(header(largest_header + 1) + "{}"));
        expect_no_answer(reply_to(header(100'000) + "{}"));
    }
}

TEST_F(ServiceLink, CountsAHeaderThatComesByteByByte) {
    // The filler in the middle comes whole: thousands of bytes by themselves would take minutes
    // where the cores are busy.
    const auto reply_bytewise_to_header_of = [this](std::size_t size) {
        const std::string raw = header_of(size) + "{}";
        constexpr std::size_t end = 80;
        service.next_connection({read_request(), send_bytewise(raw.substr(0, end)),
                                 send(raw.substr(end, raw.size() - 2 * end)),
                                 send_bytewise(raw.substr(raw.size() - end))});
        return get_state();
    };
    EXPECT_EQ(reply_bytewise_to_header_of(largest_header).body, "{}");
    expect_no_answer(reply_bytewise_to_header_of(largest_header + 1));
}

TEST_F(ServiceLink, CountsNoByteOfTheBodyAsHeader) {
    const std::string body(200'000, 'x');
    const std::string start = "HTTP/1.1 200 OK\r\nContent-Length: 200000\r\nX: ";
    const std::string header =
        start + std::string(largest_header - start.size() - 4, 'x') + "\r\n\r\n";
    EXPECT_TRUE(reply_to(header + body).body == body);
}

TEST_F(ServiceLink, TakesABodyOf8388608BytesAndNoneOf8388609) {
    const std::pair<const char*, std::string (*)(std::string_view body)> cases[] = {
        {"a length", [](std::string_view body) { return reply_text(200, body); }},
        {"the end of the stream",
         [](std::string_view body) { return "HTTP/1.1 200 OK\r\n\r\n" + std::string{body}; }},
        {"one chunk", [](std::string_view body) { return in_chunks(body, body.size()); }},
        {"many chunks", [](std::string_view body) { return in_chunks(body, 5'000); }},
    };
    std::string body(largest_body + 1, 'x');
    for (std::size_t i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>('a' + i % 23);
    for (const auto& [framing, in_frame] : cases) {
        SCOPED_TRACE(framing);
        EXPECT_TRUE(reply_to(in_frame(std::string_view{body}.substr(1))).body ==
                    std::string_view{body}.substr(1));
        expect_no_answer(reply_to(in_frame(body)));
    }
}

TEST_F(ServiceLink, HoldsNoMoreThan64KiBOfAChunkExtensionOrATrailer) {
    const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    const auto extended = [&](std::size_t size) {
        return chunked + "2;" + std::string(size, 'x') + "\r\n{}\r\n0\r\n\r\n";
    };
    const auto with_trailer = [&](std::size_t size) {
        return chunked + "2\r\n{}\r\n0\r\nX: " + std::string(size, 'x') + "\r\n\r\n";
    };
    EXPECT_EQ(reply_to(extended(60'000)).body, "{}");
    expect_no_answer(reply_to(extended(70'000)));
    EXPECT_EQ(reply_to(with_trailer(60'000)).body, "{}");
    expect_no_answer(reply_to(with_trailer(70'000)));
}

TEST_F(ServiceLink, DoesNotWaitForTheEndOfTheStreamAfterAWholeReply) {
    service.next_connection({read_request(), send(reply_text(200, "{}")), stay_silent()});
    EXPECT_EQ(get_state().body, "{}");
    service.next_connection({read_request(), send(in_chunks("{}", 1)), stay_silent()});
    EXPECT_EQ(get_state().body, "{}");
    service.next_connection({read_request(), send("HTTP/1.1 204 None\r\n\r\n"), stay_silent()});
    EXPECT_EQ(get_state().status, 204);
}

} // namespace

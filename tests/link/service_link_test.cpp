// SPDX-License-Identifier: MIT
// The requests that the link sends, its descriptors, and the line that it writes into a trace.
#include "link/scripted_service.h"
#include "link/service_link_fixture.h"
#include "support/scarce_memory.h"

#include <glib.h>

#include <cerrno>
#include <filesystem>

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

std::size_t open_descriptors() {
    const std::filesystem::directory_iterator all{"/proc/self/fd"};
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

TEST_F(ServiceLink, SendsExactlyTheseFieldsInThisOrder) {
    const struct {
        HttpMethod method;
        const char* target;
        const char* body;
        const char* line;
        const char* length; ///< null: the field is missing
    } cases[] = {
        {HttpMethod::get, "/api/state", "", "GET /api/state HTTP/1.1", nullptr},
        {HttpMethod::get, "/api/devices", "", "GET /api/devices HTTP/1.1", nullptr},
        {HttpMethod::post, "/api/kick", "", "POST /api/kick HTTP/1.1", "0"},
        {HttpMethod::put, "/api/settings", "", "PUT /api/settings HTTP/1.1", "0"},
        {HttpMethod::post, "/api/kick", R"({"number":17})", "POST /api/kick HTTP/1.1", "13"},
        {HttpMethod::put, "/api/settings", R"({"name":"Hügel"})", "PUT /api/settings HTTP/1.1",
         "17"},
        {HttpMethod::get, "/api/state", "{}", "GET /api/state HTTP/1.1", "2"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.line << " with the body '" << c.body << "'");
        Fields fields = {
            {"Host", "tarnwave"}, {"X-Tarnwave", "1"}, {"Content-Type", "application/json"}};
        if (c.length)
            fields.emplace_back("Content-Length", c.length);
        EXPECT_EQ(service_request(c.method, c.target, c.body).status, 404);
        EXPECT_EQ(service.last_request().line(), c.line);
        EXPECT_EQ(service.last_request().fields, fields);
        EXPECT_EQ(service.last_request().body, c.body);
    }
    EXPECT_EQ(service.requests().size(), std::size(cases));
}

TEST_F(ServiceLink, SendsALargeBodyOfAnyBytesWhole) {
    std::string body(4'000'000, 'x');
    for (std::size_t i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>(i % 251);
    service.will_answer("PUT", "/api/settings", 200, "{}");
    EXPECT_EQ(service_request(HttpMethod::put, "/api/settings", body, 5).status, 200);
    EXPECT_TRUE(service.last_request().body == body);
}

TEST_F(ServiceLink, GivesNoAnswerWithoutADescriptor) {
    ScriptedService scripted{{{.bytes = reply_text(200, "{}")}}};
    scripted.socket_error = EMFILE;
    expect_no_answer(get_state());
    scripted.socket_error = 0;
    EXPECT_EQ(get_state().status, 200);
}

TEST_F(ServiceLink, GivesNoAnswerWhenMemoryRunsOut) {
    service.will_answer_state(std::string(100'000, 'x'));
    memory_is_scarce = true;
    const ServiceReply reply = get_state();
    memory_is_scarce = false;
    expect_no_answer(reply);
    EXPECT_EQ(get_state().status, 200);
}

TEST_F(ServiceLink, LeavesNoDescriptorBehind) {
    service.stop();
    expect_no_answer(get_state());
    const std::size_t before = open_descriptors();
    const std::string half = "HTTP/1.1 200 OK\r\nConte";
    for (const ScriptEnd end : {ScriptEnd::hang_up, ScriptEnd::silence})
        for (const std::string& reply : {reply_text(200, "{}"), half}) {
            const ScriptedService scripted{{{.bytes = reply}}, end};
            get_state();
        }
    expect_no_answer(get_state());
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(ServiceLink, HidesItsDescriptorFromCommandsItRuns) {
    const ScriptedService scripted{{{.bytes = reply_text(200, "{}")}}};
    EXPECT_EQ(get_state().status, 200);
    EXPECT_TRUE(scripted.closed_on_exec);
}

TEST_F(ServiceLink, WritesOneLineForEachExchangeIntoATraceAndNeverABody) {
    std::string trace;
    const auto note = +[](const char*, GLogLevelFlags, const char* line, gpointer text) {
        static_cast<std::string*>(text)->append(line).append("\n");
    };
    // GLib prints messages of this level only when G_MESSAGES_DEBUG asks for them.
    const guint handler = g_log_set_handler("tarnwave", G_LOG_LEVEL_DEBUG, note, &trace);
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"secret"})");
    service_request(HttpMethod::put, "/api/settings", R"({"key":"secret"})");
    service.stop();
    get_state();
    g_log_remove_handler("tarnwave", handler);
    EXPECT_TRUE(g_regex_match_simple(
        "^PUT /api/settings: status 409, 18 bytes, [0-9.]+ ms\n"
        "GET /api/state: status 0, 0 bytes, [0-9.]+ ms, No such file or directory\n$",
        trace.c_str(), GRegexCompileFlags{}, GRegexMatchFlags{}))
        << trace;
}

} // namespace

// SPDX-License-Identifier: MIT
// The requests that the link sends.
#include "link/service_link_fixture.h"

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <vector>

namespace {

int sends = 0;

} // namespace

/// Stands in for the C library's function, and counts its calls.
extern "C" ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
    ++sends;
    return syscall(SYS_sendmsg, descriptor, message, flags);
}

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;

TEST_F(ServiceLink, SendsExactlyTheseFieldsInThisOrder) {
    struct Case {
        HttpMethod method;
        std::string target;
        std::string body;
        std::string line;
        Fields fields;
    };
    const Fields common = {
        {"Host", "tarnwave"}, {"X-Tarnwave", "1"}, {"Content-Type", "application/json"}};
    const auto common_and_length = [&](const char* length) {
        Fields fields = common;
        fields.emplace_back("Content-Length", length);
        return fields;
    };
    const std::vector<Case> cases = {
        {HttpMethod::get, "/api/state", "", "GET /api/state HTTP/1.1", common},
        {HttpMethod::get, "/api/devices", "", "GET /api/devices HTTP/1.1", common},
        {HttpMethod::post, "/api/kick", "", "POST /api/kick HTTP/1.1", common_and_length("0")},
        {HttpMethod::put, "/api/settings", "", "PUT /api/settings HTTP/1.1",
         common_and_length("0")},
        {HttpMethod::post, "/api/kick", R"({"number":17})", "POST /api/kick HTTP/1.1",
         common_and_length("13")},
        {HttpMethod::put, "/api/settings", R"({"name":"Hügel"})", "PUT /api/settings HTTP/1.1",
         common_and_length("17")},
        {HttpMethod::get, "/api/state", "{}", "GET /api/state HTTP/1.1", common_and_length("2")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line + " with the body '" + c.body + "'");
        service.will_answer_once(c.line.substr(0, c.line.find(' ')), c.target, 200, "{}");
        const ServiceReply reply = service_request(c.method, c.target, c.body, 5);
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(service.last_request().line(), c.line);
        EXPECT_EQ(service.last_request().fields, c.fields);
        EXPECT_EQ(service.last_request().body, c.body);
    }
    EXPECT_EQ(service.requests().size(), cases.size());
}

TEST_F(ServiceLink, SendsARequestInOnePiece) {
    const std::string body(20'000, 'x');
    service.will_answer("PUT", "/api/settings", 200, "{}");
    sends = 0;
    EXPECT_EQ(service_request(HttpMethod::put, "/api/settings", body, 5).status, 200);
    EXPECT_EQ(sends, 1);
    EXPECT_EQ(service.last_request().pieces.front(), service.last_request().text.size());
    EXPECT_EQ(service.last_request().body, body);
}

TEST_F(ServiceLink, SendsALargeBodyOfAnyBytesWhole) {
    std::string body(4'000'000, 'x');
    for (std::size_t i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>(i % 251);
    service.will_answer("PUT", "/api/settings", 200, "{}");
    EXPECT_EQ(service_request(HttpMethod::put, "/api/settings", body, 5).status, 200);
    EXPECT_TRUE(service.last_request().body == body);
}

TEST_F(ServiceLink, OpensAConnectionForEachRequest) {
    service.will_answer_state("{}");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(get_state().status, 200);
    EXPECT_TRUE(service.wait_for_connections(3));
}

} // namespace

// SPDX-License-Identifier: MIT
// What a service may do in the place of a good answer, and what the link makes of it: the table in
// tests/faults/faults.json. Other tests meet one fault of each outcome.
#include "link/json_access.h"
#include "link/scripted_service.h"
#include "link/service_link_fixture.h"
#include "link/text.h"

#include <boost/json.hpp>

#include <chrono>
#include <fstream>
#include <iterator>

using namespace std::chrono_literals;

namespace {

/// Between the pauses of the table.
constexpr int time_limit_s = 3;

constexpr char good_body[] = R"({"settings":{},"status":{}})";

constexpr char refusal[] = R"({"error":"No."})";

json::array table_of_faults() {
    std::ifstream file{FAULTS_FILE};
    const std::string text{std::istreambuf_iterator<char>{file}, {}};
    return json::parse(text).as_array();
}

std::size_t size_in(const json::object& fault, const char* name) {
    return static_cast<std::size_t>(member_number(fault, name));
}

void replace_all(std::string& text, std::string_view place, std::string_view by) {
    for (std::size_t at = text.find(place); at != std::string::npos;
         at = text.find(place, at + by.size()))
        text.replace(at, place.size(), by);
}

/// The reply of a fault, where the good one would have this body.
std::string reply_of(const json::object& fault, const std::string& body) {
    std::string reply = member_string(fault, "send");
    replace_all(reply, "{size}", std::to_string(body.size()));
    replace_all(reply, "{hex}", format_text("%zx", body.size()));
    const std::size_t without_filler = reply.find("{body}") - std::string{"{filler}"}.size();
    if (const std::size_t size = size_in(fault, "header_size"))
        replace_all(reply, "{filler}", std::string(size - without_filler, 'x'));
    replace_all(reply, "{half}", body.substr(0, body.size() / 2));
    replace_all(reply, "{body}", body);
    return reply;
}

std::vector<Moment> script_of(const json::object& fault, const std::string& body) {
    const std::string reply = reply_of(fault, body);
    const std::chrono::seconds pause{clamped_int32(member_number(fault, "pause_s"))};
    if (pause == 0s)
        return {{.bytes = reply}};
    std::vector<Moment> script;
    for (const char byte : reply)
        script.push_back({.after = pause, .bytes = {byte}});
    return script;
}

class ServiceFaults : public ServiceLink {
protected:
    ServiceReply meet(const json::object& fault, const std::string& body) {
        const std::string connection = member_string(fault, "connection");
        if (connection == "absent")
            service.stop();
        if (connection == "refused")
            service.crash();
        if (!connection.empty())
            return get_state();
        const ScriptedService scripted{script_of(fault, body), fault.contains("silent")
                                                                   ? ScriptEnd::silence
                                                                   : ScriptEnd::hang_up};
        return get_state(time_limit_s);
    }
};

TEST_F(ServiceFaults, HaveTheOutcomesOfTheTable) {
    for (const json::value& row : table_of_faults()) {
        const json::object& fault = row.as_object();
        SCOPED_TRACE(member_string(fault, "fault"));
        const std::string outcome = member_string(fault, "outcome");
        std::string body = good_body;
        body.resize(std::max(body.size(), size_in(fault, "body_size")), ' ');

        const ServiceReply reply = meet(fault, body);
        EXPECT_EQ(reply.status, fault.at("status").to_number<int>());
        if (outcome == "no answer") {
            EXPECT_EQ(reply.status, 0);
            EXPECT_EQ(reply.body, "");
        } else if (outcome == "good answer") {
            EXPECT_EQ(reply.status, 200);
            EXPECT_TRUE(reply.body == body);
        } else if (outcome == "broken document") {
            EXPECT_EQ(reply.status, 200);
            EXPECT_THROW(json::parse(reply.body), std::exception);
        } else if (outcome == "refusal with a reason") {
            EXPECT_NE(reply.status, 200);
            EXPECT_EQ(reply.body, refusal);
        } else {
            EXPECT_EQ(outcome, "refusal without a reason");
            EXPECT_NE(reply.status, 200);
            EXPECT_EQ(reply.body, "");
        }
        service.start(); // ends what the fault has left
        service.will_answer_state(good_body);
        EXPECT_EQ(get_state().body, good_body) << "afterwards";
    }
}

} // namespace

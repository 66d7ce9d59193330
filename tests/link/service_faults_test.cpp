// SPDX-License-Identifier: MIT
// What a service may do in the place of a good answer, and what the link makes of it: the table in
// tests/faults/faults.json. Other tests meet one fault of each outcome.
#include "link/service_link_fixture.h"
#include "link/stopped_clock.h"
#include "link/text.h"
#include "support/waiting_thread.h"

#include <boost/json.hpp>

#include <chrono>
#include <fstream>
#include <iterator>
#include <thread>

using namespace std::chrono_literals;
namespace json = boost::json;

namespace {

/// A time limit between the pauses of the table.
constexpr auto time_limit = 3s;

constexpr char good_body[] = R"({"settings":{},"status":{}})";

constexpr char refusal[] = R"({"error":"No."})";

json::array table_of_faults() {
    std::ifstream file{FAULTS_FILE};
    const std::string text{std::istreambuf_iterator<char>{file}, {}};
    return json::parse(text).as_array();
}

std::string text_in(const json::object& fault, const char* key) {
    const json::value* found = fault.if_contains(key);
    return found ? std::string{found->as_string()} : "";
}

std::size_t number_in(const json::object& fault, const char* key) {
    const json::value* found = fault.if_contains(key);
    return found ? found->to_number<std::size_t>() : 0;
}

void replace_all(std::string& text, std::string_view place, std::string_view by) {
    for (std::size_t at = text.find(place); at != std::string::npos;
         at = text.find(place, at + by.size()))
        text.replace(at, place.size(), by);
}

/// The reply of a fault, where the good one would have this body.
std::string reply_of(const json::object& fault, const std::string& body) {
    std::string reply = text_in(fault, "send");
    replace_all(reply, "{size}", std::to_string(body.size()));
    replace_all(reply, "{hex}", format_text("%zx", body.size()));
    const std::size_t without_filler = reply.find("{body}") - std::string{"{filler}"}.size();
    if (const std::size_t size = number_in(fault, "header_size"))
        replace_all(reply, "{filler}", std::string(size - without_filler, 'x'));
    replace_all(reply, "{half}", body.substr(0, body.size() / 2));
    replace_all(reply, "{body}", body);
    return reply;
}

std::vector<ConnectionStep> steps_of(const json::object& fault, const std::string& body) {
    std::vector<ConnectionStep> steps{read_request()};
    const std::string reply = reply_of(fault, body);
    const std::size_t pause_s = number_in(fault, "pause_s");
    if (pause_s == 0)
        steps.push_back(send(reply));
    else
        for (const char byte : reply) {
            steps.push_back(let_time_pass(std::chrono::seconds{pause_s}));
            steps.push_back(send({byte}));
        }
    if (fault.contains("silent")) {
        steps.push_back(let_time_pass(time_limit));
        steps.push_back(stay_silent());
    }
    return steps;
}

class ServiceFaults : public ServiceLink {
protected:
    ServiceReply meet(const json::object& fault, const std::string& body) {
        const std::string connection = text_in(fault, "connection");
        if (connection == "absent")
            service.stop();
        else if (connection == "refused")
            service.crash();
        else if (connection.empty())
            service.next_connection(steps_of(fault, body));
        const std::jthread end = connection == "queued" ? end_once_queued() : std::jthread{};
        const StoppedClock clock;
        return get_state(time_limit.count());
    }

private:
    /// Fills the queue, and ends the service once the link waits in it.
    std::jthread end_once_queued() {
        service.accept_once([] { return false; });
        fill_backlog_of(service);
        return std::jthread{[this, client = gettid()] {
            while (!is_waiting_in_kernel(client))
                std::this_thread::yield();
            service.stop();
        }};
    }
};

TEST_F(ServiceFaults, HaveTheOutcomesOfTheTable) {
    for (const json::value& row : table_of_faults()) {
        const json::object& fault = row.as_object();
        SCOPED_TRACE(text_in(fault, "fault"));
        const std::string outcome = text_in(fault, "outcome");
        std::string body = good_body;
        body.resize(std::max(body.size(), number_in(fault, "body_size")), ' ');

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

// SPDX-License-Identifier: MIT
#include "support/faults.h"

#include <boost/json.hpp>

#include <array>
#include <chrono>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>

using namespace std::chrono_literals;
namespace json = boost::json;

namespace {

std::vector<Fault> read_faults() {
    std::ifstream file{FAULTS_FILE};
    const std::string text{std::istreambuf_iterator<char>{file}, {}};
    const json::value table = json::parse(text);
    std::vector<Fault> all;
    for (const json::value& row : table.as_array()) {
        Fault fault;
        for (const auto& [key, value] : row.as_object()) {
            if (key == "fault")
                fault.name = value.as_string();
            else if (key == "connection")
                fault.connection = value.as_string();
            else if (key == "send")
                fault.sent = value.as_string();
            else if (key == "silent")
                fault.silent = value.as_bool();
            else if (key == "gap_ms")
                fault.gap = std::chrono::milliseconds{value.as_int64()};
            else if (key == "limit_ms")
                fault.limit_ms = value.as_int64();
            else if (key == "header_size")
                fault.header_size = value.to_number<std::size_t>();
            else if (key == "body_size")
                fault.body_size = value.to_number<std::size_t>();
            else if (key == "status")
                fault.status = value.to_number<int>();
            else if (key == "body")
                fault.body = value.as_string();
            else if (key == "outcome")
                fault.outcome = value.as_string();
            else
                throw std::invalid_argument{"unknown in the table of faults: " + std::string{key}};
        }
        all.push_back(std::move(fault));
    }
    return all;
}

void replace_all(std::string& text, std::string_view place, std::string_view by) {
    for (std::size_t at = text.find(place); at != std::string::npos;
         at = text.find(place, at + by.size()))
        text.replace(at, place.size(), by);
}

std::string reply_of(const Fault& fault, std::string body) {
    if (fault.body_size > 0)
        body.resize(fault.body_size, ' ');
    std::ostringstream hexadecimal;
    hexadecimal << std::hex << body.size();
    std::string reply = fault.sent;
    replace_all(reply, "{size}", std::to_string(body.size()));
    replace_all(reply, "{hex}", hexadecimal.str());
    if (fault.header_size > 0) {
        std::string header = reply.substr(0, reply.find("{body}"));
        replace_all(header, "{filler}", "");
        replace_all(reply, "{filler}", std::string(fault.header_size - header.size(), 'x'));
    }
    replace_all(reply, "{half}", std::string_view{body}.substr(0, body.size() / 2));
    replace_all(reply, "{body}", body);
    return reply;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const Fault& fault) {
    return out << fault.name;
}

const std::vector<Fault>& faults() {
    static const std::vector<Fault> all = read_faults();
    return all;
}

std::vector<ConnectionStep> steps_of(const Fault& fault, std::string_view good_body) {
    const std::string reply = reply_of(fault, std::string{good_body});
    std::vector<ConnectionStep> steps{read_request()};
    if (fault.gap > 0ms) {
        // Single bytes at both ends, where they matter.
        const std::size_t last = reply.size() - 2;
        for (const auto& [begin, size] : std::array<std::pair<std::size_t, std::size_t>, 5>{
                 {{0, 1}, {1, 1}, {2, last - 2}, {last, 1}, {last + 1, 1}}}) {
            steps.push_back(send(reply.substr(begin, size)));
            if (begin <= last)
                steps.push_back(pause(fault.gap));
        }
    } else if (!reply.empty()) {
        steps.push_back(send(reply));
    }
    if (fault.silent)
        steps.push_back(stay_silent());
    return steps;
}

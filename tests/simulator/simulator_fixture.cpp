// SPDX-License-Identifier: MIT
#include "simulator_fixture.h"

#include "scenarios.h"
#include "state_document.h"

#include <stdexcept>

Station station_in(std::string_view scenario, std::uint64_t seed) {
    const Scenario* found = find_scenario(scenario);
    if (!found)
        throw std::invalid_argument{"no such scenario"};
    return make_station(*found, seed, birth);
}

ApiRequest request(std::string_view method, std::string_view target, std::string_view body) {
    return {.method = std::string{method},
            .target = std::string{target},
            .host = "tarnwave",
            .x_tarnwave = "1",
            .content_type = "application/json",
            .body = std::string{body}};
}

json::object status_of(const Station& station) {
    return state_document(station).at("status").as_object();
}

bool advance_until(Station& station, double limit_s, const std::function<bool()>& condition) {
    for (double passed = 0; passed < limit_s && !condition(); passed += 0.5)
        advance(station, 0.5);
    return condition();
}

json::object object_in(const ApiReply& reply) {
    return json::parse(reply.body).as_object();
}

std::string error_in(const ApiReply& reply) {
    const json::object body = object_in(reply);
    const json::string& text = body.at("error").as_string();
    return {text.data(), text.size()};
}

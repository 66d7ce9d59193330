// SPDX-License-Identifier: MIT
#include "listener_life.h"

#include "address_range.h"
#include "settings_paths.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

// One visitor in six listens from the owner's own network.
constexpr std::size_t one_at_home_of = 6;

std::string text_at(const json::array& array, std::size_t index) {
    const json::string& text = array.at(index).as_string();
    return {text.data(), text.size()};
}

/// Addresses reserved for examples (RFC 5737, RFC 3849), and a private one for the owner's own
/// network.
std::string visitor_address(Random& random, bool at_home) {
    if (at_home)
        return "192.168.1." + std::to_string(20 + random_index(random, 20));
    const std::size_t visitor = random_index(random, 500);
    if (visitor < 200)
        return "203.0.113." + std::to_string(20 + visitor);
    if (visitor < 400)
        return "198.51.100." + std::to_string(visitor - 190);
    return "2001:db8:77::" + std::to_string(visitor);
}

void tune(Station& station, Listener& listener, const std::vector<ReceiverOnAir>& on_air) {
    Random& random = station.random;
    listener.next_touch_s = station.clock_s + random_between(random, 8, 60);
    const json::array& modes = setting(station.settings, "content", "modes").as_array();
    if (modes.empty())
        return;
    const ReceiverOnAir& receiver = on_air[random_index(random, on_air.size())];
    // On a grid of 100 Hz, as people tune.
    listener.frequency = std::round(random_between(random, receiver.lo, receiver.hi) / 100) * 100;
    listener.mode = text_at(modes, random_index(random, modes.size()));
    listener.listening = random_index(random, 4) != 0;
    listener.tuned = true;
}

bool may_enter(const Station& station, const std::string& address) {
    if (is_banned(station, address))
        return false;
    const auto here = std::count_if(station.listeners.begin(), station.listeners.end(),
                                    [&](const Listener& l) { return l.address == address; });
    return static_cast<double>(here) < setting_value(station.settings, "listeners", "per_address");
}

/// A visitor who came `age_s` ago gets a place when one is free.
void arrive(Station& station, double age_s, const std::vector<ReceiverOnAir>& on_air) {
    Random& random = station.random;
    const bool relay_up = station.relay.state == "connected";
    const bool at_home = random_index(random, one_at_home_of) == 0;
    Listener listener;
    listener.address = visitor_address(random, at_home);
    listener.relayed = relay_up && !at_home;
    const double idle_s = setting_value(station.settings, "listeners", "idle_minutes") * 60;
    const double stay_s = random_index(random, 10) == 0 ? idle_s : random_between(random, 40, 900);
    if (!at_home && !relay_up && !station.directory.reachable)
        return;
    if (!may_enter(station, listener.address))
        return;
    listener.number = station.next_number++;
    listener.arrived_s = station.clock_s - age_s;
    listener.leaves_s = station.clock_s + stay_s;
    listener.next_touch_s = station.clock_s + random_between(random, 2, 6);
    // Most of those who have been here for a while have tuned.
    if (age_s > 0 && random_index(random, 5) != 0)
        tune(station, listener, on_air);
    station.listeners.push_back(std::move(listener));
}

bool session_is_over(const Station& station, const Listener& listener) {
    const double limit_s = setting_value(station.settings, "listeners", "session_minutes") * 60;
    return station.clock_s >= listener.leaves_s ||
           (limit_s > 0 && station.clock_s - listener.arrived_s >= limit_s) ||
           (listener.relayed && station.relay.state != "connected");
}

bool has_place(const Station& station) {
    return static_cast<double>(station.listeners.size()) <
           setting_value(station.settings, "listeners", "max");
}

} // namespace

bool is_banned(const Station& station, std::string_view address) {
    for (const json::value& range : setting(station.settings, "access", "banned").as_array()) {
        const json::string& text = range.as_string();
        if (range_holds({text.data(), text.size()}, address))
            return true;
    }
    return false;
}

void seat_first_listeners(Station& station) {
    const std::vector<ReceiverOnAir> on_air = receivers_on_air(station);
    const auto wanted = static_cast<std::size_t>(station.scenario.listeners_at_start);
    // A visitor may be refused, so there are more tries than places.
    for (std::size_t tries = wanted * 20; tries > 0 && !on_air.empty(); --tries) {
        if (station.listeners.size() >= wanted || !has_place(station))
            return;
        arrive(station, std::floor(random_between(station.random, 1, 2400)), on_air);
    }
}

void advance_listeners(Station& station) {
    const std::vector<ReceiverOnAir> on_air = receivers_on_air(station);
    std::erase_if(station.listeners, [&](const Listener& listener) {
        return on_air.empty() || session_is_over(station, listener);
    });
    if (on_air.empty())
        return;
    for (Listener& listener : station.listeners)
        if (station.clock_s >= listener.next_touch_s)
            tune(station, listener, on_air);
    if (station.clock_s < station.next_arrival_s)
        return;
    const int wanted = station.scenario.listeners_wanted;
    const bool below = std::ssize(station.listeners) < wanted;
    // The more listeners the scenario wants, the sooner the next one comes.
    station.next_arrival_s =
        station.clock_s + random_between(station.random, 0.2, below ? 60.0 / wanted : 60.0);
    if (has_place(station))
        arrive(station, 0, on_air);
}

bool end_session(Station& station, int number) {
    return std::erase_if(station.listeners,
                         [&](const Listener& listener) { return listener.number == number; }) > 0;
}

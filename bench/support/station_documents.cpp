// SPDX-License-Identifier: MIT
#include "support/station_documents.h"

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

namespace json = boost::json;

namespace {

std::string address(int number) {
    const std::string low = std::to_string(number % 250) + "." + std::to_string(number / 250 % 250);
    return number % 4 == 0 ? "2001:db8:85a3::" + std::to_string(number) : "198.51." + low;
}

json::array blocked_addresses(int count) {
    json::array addresses;
    for (int number = 0; number < count; ++number)
        addresses.emplace_back(address(number));
    return addresses;
}

json::array shared_receivers(int count) {
    json::array receivers;
    for (int number = 0; number < count; ++number)
        receivers.push_back({{"backend", number % 2 == 0 ? "sdrplay" : "rtl-sdr"},
                             {"serial", std::to_string(230'000 + number)},
                             {"model", "RSPdx"},
                             {"lo", 7'000'000},
                             {"hi", 7'300'000},
                             {"enabled", true}});
    return receivers;
}

json::array receivers_on_air(int count) {
    json::array receivers;
    for (int number = 0; number < count; ++number)
        receivers.push_back(
            {{"device", "RSPdx"}, {"attached", false}, {"lo", 7'000'000}, {"hi", 7'300'000}});
    return receivers;
}

} // namespace

json::object listener_record(int number, int seconds) {
    return {{"number", number},
            {"address", address(number)},
            {"seconds", seconds + number % 600},
            {"f", 7'000'000 + 100 * (number % 3'000)},
            {"mode", number % 3 == 0 ? "USB" : "LSB"},
            {"listening", number % 5 != 0},
            {"relayed", false}};
}

json::object station_settings(const StationSize& size) {
    return {{"station",
             {{"name", "Hilltop SDR"},
              {"callsign", "K1ABC"},
              {"operator", "Ann Operator"},
              {"location", "Asheville, North Carolina, USA"},
              {"grid", "EM95"},
              {"antenna", "80 m end-fed, 12 m up"},
              {"contact", "https://hilltop.example/"},
              {"description", "Two receivers on a quiet hill."},
              {"banner", ""}}},
            {"attach", true},
            {"receivers", shared_receivers(size.receivers)},
            {"listeners",
             {{"max", 2'000},
              {"per_address", 2},
              {"session_minutes", 60},
              {"cooldown_minutes", 5},
              {"idle_minutes", 15}}},
            {"content",
             {{"modes", {"USB", "LSB", "CW", "AM"}},
              {"block_fm_broadcast", true},
              {"block_am_broadcast", false}}},
            {"access", {{"banned", blocked_addresses(size.blocked_addresses)}}},
            {"relay", {{"enabled", false}, {"key", ""}}},
            {"network", {{"port", 8'073}}},
            {"directory",
             {{"listed", true},
              {"url", "https://stations.example/"},
              {"id", "4711"},
              {"email", "ann@hilltop.example"}}}};
}

json::object station_status(const StationSize& size, int seconds) {
    json::array listeners;
    for (int number = 1; number <= size.listeners; ++number)
        listeners.push_back(listener_record(number, seconds));
    return {{"broker", true},
            {"receivers", receivers_on_air(size.receivers)},
            {"started", json::array{}},
            {"listeners", std::move(listeners)},
            {"directory",
             {{"state", "checked in"},
              {"reachable", true},
              {"address", "192.0.2.7:8073"},
              {"error", ""}}},
            {"relay", {{"state", "off"}, {"url", ""}, {"listeners", 0}, {"error", ""}}},
            {"https",
             {{"state", "active"},
              {"name", "k1abc.example"},
              {"expires", 1'798'761'600},
              {"error", ""}}}};
}

std::string station_document(const StationSize& size, int seconds) {
    return json::serialize(json::object{{"settings", station_settings(size)},
                                        {"status", station_status(size, seconds)},
                                        {"restart", false}});
}

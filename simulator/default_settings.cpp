// SPDX-License-Identifier: MIT
#include "default_settings.h"

#include "devices.h"
#include "long_texts.h"

#include "link/build_constants.h"

#include <string>

namespace json = boost::json;

namespace {

json::object receiver(const Device& device, std::int64_t lo, std::int64_t hi) {
    return {{"backend", device.backend},
            {"serial", device.serial},
            {"model", device.model},
            {"lo", lo},
            {"hi", hi},
            {"enabled", true}};
}

json::object station_settings(const Scenario& scenario) {
    const bool described = scenario.described;
    return {
        {"name", scenario.long_texts ? long_station_name()
                 : described         ? "Hilltop SDR"
                                     : ""},
        {"callsign", described ? "K1ABC" : ""},
        {"operator", described ? "Alex Miller" : ""},
        {"location", described ? "Asheville, North Carolina, USA" : ""},
        {"grid", described ? "EM95" : ""},
        {"antenna", described ? "80 m end-fed, 12 m up" : ""},
        {"contact", described ? "https://k1abc.example/" : ""},
        {"description",
         described ? "Shortwave from a quiet hill.\nThe noise floor is low at night." : ""},
        {"banner", ""},
        {"timezone", "America/New_York"},
    };
}

json::array shared_receivers(const Scenario& scenario) {
    if (!scenario.shares_receivers)
        return {};
    return {receiver(sdrplay_device(scenario), 7'000'000, 7'300'000),
            receiver(dongle_device(scenario), 144'000'000, 146'000'000)};
}

} // namespace

json::object default_settings(const Scenario& scenario) {
    return {
        {"format", 3},
        {"station", station_settings(scenario)},
        {"attach", scenario.dialhouse_runs},
        {"receivers", shared_receivers(scenario)},
        {"listeners",
         {{"max", scenario.listeners_wanted > 20 ? scenario.listeners_wanted : 20},
          {"per_address", 3},
          {"session_minutes", 60},
          {"cooldown_minutes", 0},
          {"idle_minutes", 30},
          {"greeting", true}}},
        {"content",
         {{"modes", {"USB", "LSB", "CW", "AM", "FM"}},
          {"block_fm_broadcast", true},
          {"block_am_broadcast", false}}},
        {"access", {{"banned", {"192.0.2.66", "2001:db8:bad::/48"}}}},
        {"relay",
         {{"enabled", scenario.relay_wanted},
          {"key", scenario.relay_wanted ? "7QWD-K2PX-90LM-3FTR-ZB4H-V6NC" : ""}}},
        {"network", {{"port", 8073}, {"bind", "0.0.0.0"}}},
        {"directory",
         {{"listed", true},
          {"url", "https://" + std::string{directory_host} + "/"},
          {"id", scenario.registered ? "1042" : ""},
          {"email", scenario.registered ? "owner@k1abc.example" : ""}}},
    };
}

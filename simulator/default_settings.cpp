// SPDX-License-Identifier: MIT
#include "default_settings.h"

#include "devices.h"
#include "example_document.h"

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

json::array shared_receivers(const Scenario& scenario) {
    if (!scenario.shares_receivers)
        return {};
    return {receiver(sdrplay_device(scenario), 7'000'000, 7'300'000),
            receiver(dongle_device(scenario), 144'000'000, 146'000'000)};
}

json::object& group(json::object& settings, const char* name) {
    return settings.at(name).as_object();
}

} // namespace

json::object default_settings(const Scenario& scenario) {
    json::object settings = json::parse(example_document).at("settings").as_object();
    if (!scenario.described)
        for (json::key_value_pair& member : group(settings, "station"))
            member.value() = "";
    else
        group(settings, "station")["name"] = scenario.texts.station_name;
    settings["attach"] = scenario.dialhouse_runs;
    settings["receivers"] = shared_receivers(scenario);
    group(settings, "listeners")["max"] =
        scenario.listeners_wanted > 20 ? scenario.listeners_wanted : 20;
    if (scenario.relay_wanted)
        settings["relay"] = {{"enabled", true}, {"key", "7QWD-K2PX-90LM-3FTR-ZB4H-V6NC"}};
    settings["directory"] = {{"listed", true},
                             {"url", "https://" + std::string{directory_host} + "/"},
                             {"id", scenario.registered ? "1042" : ""},
                             {"email", scenario.registered ? "owner@k1abc.example" : ""}};
    // Members that no form shows; they come back as they were sent.
    settings["format"] = 3;
    group(settings, "station")["timezone"] = "America/New_York";
    group(settings, "listeners")["greeting"] = true;
    group(settings, "network")["bind"] = "0.0.0.0";
    return settings;
}

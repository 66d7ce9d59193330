// SPDX-License-Identifier: MIT
// The receivers that are plugged into the simulated computer, and when.
#pragma once

#include "scenarios.h"

#include <boost/json.hpp>

#include <limits>
#include <string>
#include <vector>

/// Times are in station seconds from the end of the scenario's warm-up.
struct Device {
    std::string backend{};
    std::string serial{};
    std::string model{};
    double appears_s = -std::numeric_limits<double>::infinity();
    double vanishes_s = std::numeric_limits<double>::infinity();
    double held_until_s = -std::numeric_limits<double>::infinity(); ///< by another program
};

Device sdrplay_device(const Scenario& scenario);
Device dongle_device(const Scenario& scenario);

/// All devices that are plugged in at some time.
std::vector<Device> scenario_devices(const Scenario& scenario);

bool is_attached(const Device& device, double time_s);
bool is_held(const Device& device, double time_s);

/// Reply to the search for devices: those that are attached now, the held ones as unavailable.
boost::json::array devices_document(const std::vector<Device>& devices, double time_s);

// SPDX-License-Identifier: MIT
#include "devices.h"

namespace {

// A search that is repeated after a while finds one more receiver.
constexpr double spectrum_receiver_appears_s = 30;
constexpr double spectrum_receiver_vanishes_s = 600;
constexpr double spare_receiver_held_until_s = 60;

} // namespace

Device sdrplay_device(const Scenario& scenario) {
    return {.backend = "sdrplay",
            .serial = "1905034F2A",
            .model = std::string{scenario.texts.sdrplay_model}};
}

Device dongle_device(const Scenario& scenario) {
    return {.backend = "rtl-sdr",
            .serial = std::string{scenario.texts.dongle_serial},
            .model = "RTL-SDR dongle <2832> & tuner"};
}

std::vector<Device> scenario_devices(const Scenario& scenario) {
    if (!scenario.devices_attached)
        return {};
    return {sdrplay_device(scenario), dongle_device(scenario),
            Device{.backend = "sdrplay",
                   .serial = "2204017C81",
                   .model = "SDRplay RSPduo",
                   .held_until_s = spare_receiver_held_until_s},
            Device{.backend = "rx888",
                   .serial = "0009072C00D6",
                   .model = "RX-888",
                   .appears_s = spectrum_receiver_appears_s,
                   .vanishes_s = spectrum_receiver_vanishes_s}};
}

bool is_attached(const Device& device, double time_s) {
    return time_s >= device.appears_s && time_s < device.vanishes_s;
}

bool is_held(const Device& device, double time_s) {
    return time_s < device.held_until_s;
}

boost::json::array devices_document(const std::vector<Device>& devices, double time_s) {
    boost::json::array document;
    for (const Device& device : devices) {
        if (!is_attached(device, time_s))
            continue;
        document.push_back(boost::json::object{{"backend", device.backend},
                                               {"serial", device.serial},
                                               {"model", device.model},
                                               {"available", !is_held(device, time_s)}});
    }
    return document;
}

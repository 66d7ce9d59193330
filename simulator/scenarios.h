// SPDX-License-Identifier: MIT
// The situations that the simulator can play, each a row of one table.
#pragma once

#include <span>
#include <string_view>

/// Texts that come from the station's owner or from other services.
struct OutsideTexts {
    std::string_view station_name = "Hilltop SDR";
    std::string_view sdrplay_model = "SDRplay RSP1";
    std::string_view dongle_serial = "00000001";
    std::string_view receiver_log = "usb: transfer failed <status 5> & 3 retries\n"
                                    "tuner: PLL not locked\nexit status 1";
    std::string_view check_in_error = "The connection timed out after 10 seconds.";
    std::string_view relay_refusal = "All places of this relay are taken.";
    std::string_view certificate_error =
        "The name has not spread through the domain name system yet.";
    std::string_view save_refusal{};         ///< empty: settings are saved
    std::string_view registration_refusal{}; ///< empty: registrations are accepted
};

/// The state of a station at the start, and what happens to it. Times are in station seconds.
struct Scenario {
    std::string_view name{};
    std::string_view description{};

    bool described = true;  ///< the station has a name, a grid square and so on
    bool registered = true; ///< with the station list
    bool shares_receivers = true;
    bool relay_wanted = false;
    bool devices_attached = true; ///< receivers are plugged in
    bool dialhouse_runs = false;  ///< Dialhouse runs one more receiver on this computer

    bool broker_waits = false; ///< the broker is down until the obstacle is removed
    bool owner_waits = false;  ///< every request is refused until the obstacle is removed
    bool port_waits = false;   ///< nobody reaches the port until the obstacle is removed

    bool receiver_fails = false; ///< the RTL-SDR dongle fails again and again
    OutsideTexts texts{};
    // How often something fails before it succeeds; below 0 it always fails.
    int failed_check_ins = 0;
    int relay_refusals = 0; ///< the relay refuses the station
    int relay_absences = 0; ///< the relay cannot be reached
    int failed_certificates = 0;

    int listeners_at_start = 0;
    int listeners_wanted = 6; ///< the number of listeners tends to this
    double warm_up_s = 0;     ///< time that passes before the first request
    bool frozen = false;      ///< nothing changes after the warm-up
    int delay_ms = 0;         ///< before every reply, in real time
};

/// All scenarios, in the order in which they are listed.
std::span<const Scenario> all_scenarios();

/// Null when there is no such scenario.
const Scenario* find_scenario(std::string_view name);

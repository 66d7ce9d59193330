// SPDX-License-Identifier: MIT
#include "scenarios.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

// Long enough for every part of a station to reach its final state.
constexpr double settled_s = 120;

// Long enough for the first failure of a check-in or a relay, and of a certificate.
constexpr double first_failure_s = 6;
constexpr double first_certificate_failure_s = 15;

std::string repeated(std::string_view piece, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}

constexpr std::string_view long_refusal =
    "The station cannot take this over now, since a longer explanation than usual is due: the "
    "people who run the list have asked every station owner to write to them first, and they "
    "answer on weekdays, in the morning, politely by hand.";

/// Texts so long that they test the window's layout.
OutsideTexts long_texts() {
    static const std::string word = repeated("Unbreakable", 18) + "Ab";
    static const std::string log =
        repeated("usb_transfer_status=5;retry=", 2340) + "last_retry_fails";
    // 25 characters at a time, the "é" of two bytes among them.
    static const std::string name = repeated("Café Hilltop Radio <SDR> ", 400);
    return {.station_name = name,
            .sdrplay_model = word,
            .dongle_serial = word,
            .receiver_log = log,
            .check_in_error = word,
            .relay_refusal = long_refusal,
            .certificate_error = word,
            .save_refusal = long_refusal,
            .registration_refusal = long_refusal};
}

const std::array scenarios = {
    Scenario{.name = "first-run",
             .description = "Nothing is set up: no name, no receiver, not registered.",
             .described = false,
             .registered = false,
             .shares_receivers = false},
    Scenario{.name = "on-air",
             .description = "A listed station with three receivers; listeners come and go.",
             .dialhouse_runs = true,
             .listeners_at_start = 4,
             .warm_up_s = settled_s},
    Scenario{.name = "off-air",
             .description = "A registered station that shares no receiver.",
             .shares_receivers = false,
             .warm_up_s = settled_s},
    Scenario{.name = "relay",
             .description = "Listeners come through the relay, which is connected.",
             .relay_wanted = true,
             .listeners_at_start = 4,
             .warm_up_s = settled_s},
    Scenario{.name = "relay-refused",
             .description = "The relay refuses the station; it connects after 45 seconds or so.",
             .relay_wanted = true,
             .relay_refusals = 2,
             .warm_up_s = first_failure_s},
    Scenario{.name = "relay-unreachable",
             .description = "The relay cannot be reached; it connects after 45 seconds or so.",
             .relay_wanted = true,
             .relay_absences = 2,
             .warm_up_s = first_failure_s},
    Scenario{.name = "unreachable",
             .description = "Checked in, but nobody reaches the port until SIGUSR1 forwards it.",
             .port_waits = true,
             .warm_up_s = settled_s},
    Scenario{.name = "check-in-failed",
             .description = "The station list cannot be reached for 45 seconds or so.",
             .failed_check_ins = 2,
             .warm_up_s = first_failure_s},
    Scenario{.name = "busy",
             .description = "All 200 places are taken; somebody leaves or arrives all the time.",
             .dialhouse_runs = true,
             .listeners_at_start = 200,
             .listeners_wanted = 200,
             .warm_up_s = settled_s},
    Scenario{.name = "certificate",
             .description = "Getting the certificate fails; it is active after 45 seconds or so.",
             .failed_certificates = 2,
             .warm_up_s = first_certificate_failure_s},
    Scenario{.name = "receiver-failed",
             .description = "The RTL-SDR dongle fails with a log, again and again.",
             .receiver_fails = true,
             .listeners_at_start = 2,
             .warm_up_s = settled_s},
    Scenario{.name = "not-owner",
             .description = "Refuses everything until handed over (--owner-file or SIGUSR1).",
             .owner_waits = true,
             .warm_up_s = settled_s},
    Scenario{.name = "broker-down",
             .description = "The broker is down until started (--broker-file or SIGUSR1).",
             .broker_waits = true},
    Scenario{.name = "slow",
             .description = "Like on-air, but every reply takes 1500 ms (--delay-ms changes it).",
             .dialhouse_runs = true,
             .listeners_at_start = 4,
             .warm_up_s = settled_s,
             .delay_ms = 1500},
    Scenario{.name = "no-devices",
             .description = "Nothing is set up and no receiver is plugged in.",
             .described = false,
             .registered = false,
             .shares_receivers = false,
             .devices_attached = false},
    Scenario{
        .name = "register-refused",
        .description = "Like first-run, but every registration is refused with a reason.",
        .described = false,
        .registered = false,
        .shares_receivers = false,
        .texts = {.registration_refusal = "The station list takes no new stations this week."}},
    Scenario{.name = "long-texts",
             .description = "Very long names, words, logs and refusals; saving is refused too.",
             .relay_wanted = true,
             .receiver_fails = true,
             .texts = long_texts(),
             .failed_check_ins = -1,
             .relay_refusals = -1,
             .failed_certificates = -1,
             .listeners_at_start = 3,
             .warm_up_s = settled_s},
    Scenario{.name = "quiet",
             .description = "On the air with a few listeners, and nothing ever changes.",
             .dialhouse_runs = true,
             .listeners_at_start = 3,
             .listeners_wanted = 3,
             .warm_up_s = settled_s,
             .frozen = true},
};

} // namespace

std::span<const Scenario> all_scenarios() {
    return scenarios;
}

const Scenario* find_scenario(std::string_view name) {
    const auto* found = std::find_if(scenarios.begin(), scenarios.end(),
                                     [&](const Scenario& s) { return s.name == name; });
    return found == scenarios.end() ? nullptr : found;
}

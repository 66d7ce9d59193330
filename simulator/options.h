// SPDX-License-Identifier: MIT
// The simulator's command line.
#pragma once

#include "scenarios.h"

#include <cstdint>
#include <span>
#include <string>

struct Options {
    bool help = false;
    bool version = false;
    bool list_scenarios = false;
    std::string socket{};
    const Scenario* scenario = find_scenario("on-air");
    std::string state_file{};    ///< empty: nothing is kept
    std::string owner_file{};    ///< empty: the hand-over waits for SIGUSR1 alone
    std::string broker_file{};   ///< empty: the start waits for SIGUSR1 alone
    std::string record_folder{}; ///< empty: bodies are not recorded
    double speed = 1;            ///< station seconds in a second; 0 stops the life
    double step_s = 0;           ///< station seconds that pass at each request
    int delay_ms = -1;           ///< below 0: the scenario's own
    std::string fault{};         ///< in words; empty when the line was understood
};

/// `arguments` do not hold the program's name.
Options parse_options(std::span<const char* const> arguments);

/// What `--help` prints.
std::string help_text();

/// What `--list-scenarios` prints: one line for each.
std::string scenario_list();

// SPDX-License-Identifier: MIT
// Files through which something outside removes what a scenario waits for.
#pragma once

#include "station.h"

#include <string>

struct HandOver {
    std::string owner_file{};
    std::string broker_file{};
    std::string user{};                ///< login name of whoever runs the simulator
    bool owner_file_was_there = false; ///< at the start
};

/// Either path may be empty: then nothing is watched.
HandOver make_hand_over(const std::string& owner_file, const std::string& broker_file);

/// Hands the station over when the owner file names this user on its first line, or has appeared
/// and names nobody; starts the broker when the broker file is there.
void watch_files(const HandOver& hand_over, Station& station);

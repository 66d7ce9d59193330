// SPDX-License-Identifier: MIT
// The simulator's files: the settings from run to run, the recorded bodies of requests, and the
// files through which a test or a script removes what a scenario waits for.
#pragma once

#include "service_api.h"
#include "station.h"

#include <boost/json.hpp>

#include <string>

/// Reads settings into `settings`, which stays as it is when there is no such file. They must be
/// of the shape of `pattern`. Returns a sentence that says what went wrong, "" when nothing did.
std::string read_settings_file(const std::string& path, const boost::json::object& pattern,
                               boost::json::object& settings);

/// Returns a sentence that says what went wrong, "" when nothing did.
std::string write_settings_file(const std::string& path, const boost::json::object& settings);

struct RequestRecord {
    std::string folder{}; ///< when empty, nothing is kept
    int count = 0;        ///< number of files written
};

/// Writes the request's body, as it came, to a file such as "0001-PUT-settings.json"; a request
/// without one leaves none. The folder is made when it is missing. Returns a sentence that
/// says what went wrong, "" when nothing did.
std::string record_body(RequestRecord& record, const ApiRequest& request);

struct HandOver {
    std::string owner_file{};
    std::string broker_file{};
    std::string user{};                ///< login name of whoever runs the simulator
    bool owner_file_was_there = false; ///< when the simulator started
};

/// A file whose path is empty is not watched.
HandOver make_hand_over(const std::string& owner_file, const std::string& broker_file);

/// Hands the station over when the owner file names this user on its first line, or has appeared
/// and names nobody; starts the broker when the broker file is there.
void watch_files(const HandOver& hand_over, Station& station);

// SPDX-License-Identifier: MIT
// State documents of any size for benchmarks.
#pragma once

#include <boost/json/fwd.hpp>

#include <string>

/// What a station document is to hold.
struct StationSize {
    int listeners = 1;
    int receivers = 2;
    int blocked_addresses = 2;
};

/// The text of a whole state document: a station on the air, checked in and reachable. Its
/// listeners have been there for `seconds` and more. Also answers a save: it says that nothing
/// restarts.
std::string station_document(const StationSize& size, int seconds = 60);

/// The `settings` and the `status` member of that document.
boost::json::object station_settings(const StationSize& size);
boost::json::object station_status(const StationSize& size, int seconds = 60);

/// A listener's record, like those in `station_status`.
boost::json::object listener_record(int number, int seconds);

// SPDX-License-Identifier: MIT
// The simulated station: its settings and everything that happens to it.
//
// A model without a clock or a socket. Time passes only in `advance`, in whole ticks, so that the
// same seed, times and requests always give the same result. Times are station seconds since the
// end of the scenario's warm-up; those of the warm-up are negative.
#pragma once

#include "devices.h"
#include "random.h"
#include "scenarios.h"

#include <boost/json.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A receiver that the broker was asked to start.
struct StartedReceiver {
    enum class Progress { starting, on_air, failed };

    std::string backend{};
    std::string serial{};
    std::string model{};
    double lo = 0; ///< bottom of its range
    double hi = 0;
    Progress progress = Progress::starting;
    double due_s = 0;  ///< when it comes up, fails or is tried again
    std::string log{}; ///< last output of the failed process
};

/// A receiver that listeners can use.
struct ReceiverOnAir {
    std::string device{};
    bool attached = false; ///< run by Dialhouse
    double lo = 0;
    double hi = 0;
};

struct Listener {
    int number = 0;
    std::string address{};
    double arrived_s = 0;
    double leaves_s = 0;
    double next_touch_s = 0; ///< when the listener tunes again
    bool tuned = false;      ///< frequency, mode and listening are meaningful
    double frequency = 0;
    std::string mode{};
    bool listening = false;
    bool relayed = false;
};

/// The standing with the station list. States are those of the state document.
struct DirectoryLife {
    std::string_view state = "not registered";
    double due_s = 0;
    bool reachable = false;
    double next_probe_s = 0; ///< when the list next tries the port from outside
    int failures_left = 0;   ///< below 0 every check-in fails
    std::string address{};
    std::string error{};
};

struct RelayLife {
    std::string_view state = "off";
    double due_s = 0;
    int refusals_left = 0;
    int absences_left = 0;
    std::string url{};
    std::string error{};
};

struct CertificateLife {
    std::string_view state = "none";
    double due_s = 0;
    int failures_left = 0;
    std::string name{}; ///< empty before the first request
    std::int64_t expires = 0;
    std::string error{};
};

struct Station {
    Scenario scenario{};
    Random random{};
    std::int64_t born_at = 0; ///< seconds since the Unix epoch; only the certificate's end needs it
    boost::json::object settings{};
    int port_in_use = 0;
    double clock_s = 0;
    double unspent_s = 0; ///< time since the last tick
    bool owner_accepted = true;
    bool broker = true;
    bool port_forwarded = true;
    std::vector<Device> devices{};
    std::vector<StartedReceiver> started{};
    std::vector<Listener> listeners{};
    int next_number = 1;
    double next_arrival_s = 0;
    DirectoryLife directory{};
    RelayLife relay{};
    CertificateLife certificate{};
};

/// A station after the warm-up of a scenario. `settings` are those of an earlier run; when empty,
/// the scenario's own.
Station make_station(const Scenario& scenario, std::uint64_t seed, std::int64_t born_at,
                     boost::json::object settings = {});

/// Lets station time pass. A frozen scenario stays as it is.
void advance(Station& station, double seconds);

/// Replaces the settings by checked ones and applies them. Returns whether the port changed.
bool replace_settings(Station& station, boost::json::object settings);

/// Ends the sessions of addresses that may not listen and keeps the others.
void end_banned_sessions(Station& station);

/// Removes what the scenario waits for: hands the station over, starts the broker and forwards the
/// port.
void remove_obstacle(Station& station);

/// The receivers on the air now, Dialhouse's first.
std::vector<ReceiverOnAir> receivers_on_air(const Station& station);

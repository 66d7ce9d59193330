// SPDX-License-Identifier: MIT
// The values that several sentences need, derived from the service's state document once for each
// `render_state`.
#pragma once

#include <boost/json/fwd.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

struct StationState {
    bool identified = false;      ///< has a name or a callsign, and a grid square
    bool registered = false;      ///< the station list knows the station
    bool checked_in = false;      ///< its last check-in with the list succeeded
    bool listed_wanted = true;    ///< the owner wants the station on the list
    bool relay_wanted = false;    ///< listeners come through the relay, not a forwarded port
    bool relay_connected = false; ///< the relay connection is up
    bool reachable = false;       ///< by the relay when it is wanted, else by the forwarded port
    std::size_t receiver_count = 0;
    std::size_t listener_count = 0;
    std::int32_t listeners_allowed = 0; ///< most listeners at once
    std::int32_t port = 0;              ///< TCP port of the station's web server
    std::string directory_state{};      ///< as the service words it
    std::string directory_address{};    ///< as the station list tried it, no scheme or path
    std::string directory_error{};
    std::string relay_state{}; ///< "off" when the service sends none
    std::string relay_error{};
    std::int32_t relay_listeners = 0; ///< how many listeners the relay carries at once
    std::string secure_address{};     ///< "https://name:port/", empty without a name
    std::string station_link{};       ///< where listeners go; empty when there is no way in yet
};

/// Derives the values from the settings and the status member of a state document. Throws the
/// JSON library's error when `status` lacks `directory` (an object with `state`), `receivers` or
/// `listeners` (arrays), or when `directory.reachable` or `settings.directory.listed` is there and
/// no boolean. `relay` and `https` of another kind count as empty objects.
StationState derive_station_state(const boost::json::object& settings,
                                  const boost::json::object& status);

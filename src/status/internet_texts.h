// SPDX-License-Identifier: MIT
// The sentences of the Internet page's status lines.
#pragma once

#include "status/station_state.h"
#include "status/status_line.h"

#include <boost/json/fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What to set on the router, as markup. `lan_address` is this computer's private IPv4 address in
/// dotted decimal; empty leaves it out.
std::string port_instructions_markup(std::int32_t port, std::string_view lan_address);

/// How listeners reach the station: the port check, or the relay when it is wanted.
StatusLine reach_line(const StationState& state);

/// The station's certificate. `https` is the status member of that name, an empty object when the
/// service sends none. The expiry date is in local time and the user's language.
StatusLine certificate_line(const boost::json::object& https, const StationState& state);

/// The station's standing on the public station list.
StatusLine listing_line(const StationState& state);

/// A date such as "5 March 2027", in local time with the user's month names. Empty when the time
/// has no calendar date or its text does not fit 31 bytes.
std::string expiry_date(std::int64_t seconds_since_epoch);

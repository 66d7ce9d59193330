// SPDX-License-Identifier: MIT
// The sentences of the Internet page's status lines, and the address that one of them names.
#pragma once

#include "status/station_state.h"
#include "status/status_line.h"

#include <boost/json/fwd.hpp>

#include <cstdint>
#include <string>
#include <string_view>

struct ifaddrs;

/// First private IPv4 address (RFC 1918, section 3) of an interface list as getifaddrs gives it, in
/// dotted decimal; "" when there is none. Null is the empty list.
std::string first_private_ipv4(const ifaddrs* interfaces);

/// `first_private_ipv4` of this host's interfaces as they are now; "" when they cannot be read.
std::string lan_address();

/// What to set on the router, as markup. An empty address is left out.
std::string port_instructions_markup(std::int32_t port, std::string_view lan_address);

/// How listeners reach the station: the port check, or the relay when it is wanted.
StatusLine reach_line(const StationState& state);

/// The station's certificate. `https` is the status member of that name, or an empty object.
StatusLine certificate_line(const boost::json::object& https, const StationState& state);

/// The station's standing on the public station list.
StatusLine listing_line(const StationState& state);

/// A date such as "5 March 2027", in local time with the user's month names. Empty when the time
/// has no calendar date or its text does not fit 31 bytes.
std::string expiry_date(std::int64_t seconds_since_epoch);

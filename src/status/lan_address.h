// SPDX-License-Identifier: MIT
// This computer's address in the home network, for the port forward on the router.
#pragma once

#include <string>

struct ifaddrs;

/// First private IPv4 address (10.0.0.0/8, 172.16.0.0/12 or 192.168.0.0/16: RFC 1918, section 3)
/// of an interface list as getifaddrs gives it, in its order and in dotted decimal; empty when
/// there is none. Null is the empty list; interfaces without an address are passed over.
std::string first_private_ipv4(const ifaddrs* interfaces);

/// `first_private_ipv4` of this host's interfaces as they are now; empty when they cannot be read.
std::string lan_address();

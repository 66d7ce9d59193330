// SPDX-License-Identifier: MIT
// Network addresses and ranges of them, as the list of blocked addresses holds them.
#pragma once

#include <string>
#include <string_view>

/// An IPv4 address in dotted decimal or an IPv6 address, nothing around it.
bool is_address(std::string_view text);

/// An address, or one with "/" and the number of leading bits that count (RFC 4632, RFC 4291).
bool is_address_or_range(std::string_view text);

/// Whether the range (or single address) holds the address. False when either is malformed or
/// they are of different families.
bool range_holds(std::string_view range, std::string_view address);

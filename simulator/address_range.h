// SPDX-License-Identifier: MIT
// Network addresses and ranges of addresses, as in the list of blocked addresses.
#pragma once

#include <string>
#include <string_view>

/// Whether the text is an IPv4 address in dotted decimal or an IPv6 address, and nothing else.
bool is_address(std::string_view text);

/// Whether the text is an address, or an address with "/" and the number of leading bits that count
/// (RFC 4632, RFC 4291).
bool is_address_or_range(std::string_view text);

/// Whether the address lies in the range (or is the single address). False when either is malformed
/// or they are of different families.
bool range_holds(std::string_view range, std::string_view address);

// SPDX-License-Identifier: MIT
#include "address_range.h"

#include <arpa/inet.h>

#include <array>
#include <charconv>
#include <optional>

namespace {

struct Address {
    std::array<unsigned char, 16> bytes{};
    int bits = 0; ///< 32 for IPv4, 128 for IPv6
};

struct Range {
    Address start{};
    int counting_bits = 0;
};

std::optional<Address> parse_address(std::string_view text) {
    const std::string terminated{text};
    // inet_pton reads up to the first zero byte and would ignore what follows it.
    if (terminated.find('\0') != std::string::npos)
        return std::nullopt;
    Address address;
    if (inet_pton(AF_INET, terminated.c_str(), address.bytes.data()) == 1)
        address.bits = 32;
    else if (inet_pton(AF_INET6, terminated.c_str(), address.bytes.data()) == 1)
        address.bits = 128;
    else
        return std::nullopt;
    return address;
}

std::optional<Range> parse_range(std::string_view text) {
    const std::size_t slash = text.find('/');
    const std::optional<Address> start = parse_address(text.substr(0, slash));
    if (!start)
        return std::nullopt;
    Range range{*start, start->bits};
    if (slash == std::string_view::npos)
        return range;
    const std::string_view length = text.substr(slash + 1);
    if (length.empty() || length.front() == '-')
        return std::nullopt;
    const char* end = length.data() + length.size();
    const auto parsed = std::from_chars(length.data(), end, range.counting_bits);
    if (parsed.ec != std::errc{} || parsed.ptr != end || range.counting_bits > start->bits)
        return std::nullopt;
    return range;
}

} // namespace

bool is_address(std::string_view text) {
    return parse_address(text).has_value();
}

bool is_address_or_range(std::string_view text) {
    return parse_range(text).has_value();
}

bool range_holds(std::string_view range_text, std::string_view address_text) {
    const std::optional<Range> range = parse_range(range_text);
    const std::optional<Address> address = parse_address(address_text);
    if (!range || !address || range->start.bits != address->bits)
        return false;
    for (int bit = 0; bit < range->counting_bits; ++bit) {
        const auto byte = static_cast<std::size_t>(bit / 8);
        const int mask = 0x80 >> (bit % 8);
        if ((range->start.bytes[byte] & mask) != (address->bytes[byte] & mask))
            return false;
    }
    return true;
}

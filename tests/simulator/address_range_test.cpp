// SPDX-License-Identifier: MIT
#include "address_range.h"

#include <gtest/gtest.h>

#include <string_view>

using namespace std::string_view_literals;

TEST(AddressRange, KnowsAddressesAndRangesOfBothFamilies) {
    struct Case {
        std::string_view text;
        bool address;
        bool address_or_range;
    };
    for (const Case& c : {
             Case{"198.51.100.7", true, true},
             {"2001:db8::1", true, true},
             {"::", true, true},
             {"198.51.100.0/24", false, true},
             {"198.51.100.0/0", false, true},
             {"198.51.100.0/32", false, true},
             {"198.51.100.0/33", false, false},
             {"2001:db8::/128", false, true},
             {"2001:db8::/129", false, false},
             {"198.51.100.0/", false, false},
             {"198.51.100.0/-1", false, false},
             {"198.51.100.0/24/8", false, false},
             {"198.51.100.0/2x", false, false},
             {"198.51.100", false, false},
             {"198.51.100.256", false, false},
             {" 198.51.100.7", false, false},
             {"198.51.100.7\0x"sv, false, false},
             {"hilltop.example", false, false},
             {"", false, false},
         }) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(is_address(c.text), c.address);
        EXPECT_EQ(is_address_or_range(c.text), c.address_or_range);
    }
}

TEST(AddressRange, HoldsTheAddressesWhoseLeadingBitsAreItsOwn) {
    struct Case {
        std::string_view range;
        std::string_view address;
        bool held;
    };
    for (const Case& c : {
             Case{"198.51.100.7", "198.51.100.7", true},
             {"198.51.100.7", "198.51.100.8", false},
             {"198.51.100.0/24", "198.51.100.255", true},
             {"198.51.100.0/24", "198.51.101.0", false},
             {"198.51.100.128/25", "198.51.100.127", false},
             {"0.0.0.0/0", "203.0.113.1", true},
             {"0.0.0.0/0", "2001:db8::1", false},
             {"2001:db8:bad::/48", "2001:db8:bad:1::1", true},
             {"2001:db8:bad::/48", "2001:db8:bae::1", false},
             {"2001:DB8::1", "2001:db8:0::1", true},
             {"nonsense", "203.0.113.1", false},
         }) {
        SCOPED_TRACE(c.range);
        SCOPED_TRACE(c.address);
        EXPECT_EQ(range_holds(c.range, c.address), c.held);
    }
}

// SPDX-License-Identifier: MIT
#include "status/internet_texts.h"

#include "link/build_constants.h"
#include "support/status_line_printer.h"
#include "support/user_locale.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

namespace json = boost::json;

const std::string host{directory_host};

StationState in_directory_state(const char* directory_state, bool reachable) {
    StationState state;
    state.directory_state = directory_state;
    state.registered = state.directory_state != "not registered";
    state.checked_in = state.directory_state == "checked in";
    state.reachable = reachable;
    state.directory_address = "203.0.113.7:8073";
    return state;
}

/// A station that wants the relay.
StationState in_relay_state(const char* directory_state, const char* relay_state) {
    StationState state = in_directory_state(directory_state, false);
    state.relay_wanted = true;
    state.relay_state = relay_state;
    state.relay_connected = state.relay_state == "connected";
    state.reachable = state.relay_connected;
    state.relay_error = "unknown key.";
    state.relay_listeners = 8;
    state.station_link = state.relay_connected ? "https://relay.example/k1abc/" : "";
    return state;
}

StationState unlisted(StationState state) {
    state.listed_wanted = false;
    return state;
}

StationState with_error(StationState state, const char* error) {
    state.directory_error = error;
    return state;
}

StatusLine certificate(std::string_view https, const char* secure_address = "") {
    StationState state;
    state.secure_address = secure_address;
    return certificate_line(json::parse(https).as_object(), state);
}

} // namespace

TEST(PortInstructions, NameThePortAndThisComputer) {
    EXPECT_EQ(port_instructions_markup(8073, "192.168.1.20"),
              "On your router, forward TCP port <b>8073</b> to this computer "
              "(<b>192.168.1.20</b>). Router menus call this port forwarding or a virtual server.");
}

TEST(PortInstructions, LeaveOutAnAddressThatIsNotKnown) {
    EXPECT_EQ(port_instructions_markup(8073, ""),
              "On your router, forward TCP port <b>8073</b> to this computer. Router menus call "
              "this port forwarding or a virtual server.");
}

TEST(ReachLine, FollowsThePortCheck) {
    const struct {
        const char* when;
        StationState state;
        StatusLine expected;
    } cases[] = {
        {"not registered",
         in_directory_state("not registered", false),
         {"Once the station is registered, Tarnwave checks the port for you.", StatusClass::none}},
        {"the check-in under way",
         in_directory_state("checking in", false),
         {"Checking…", StatusClass::none}},
        {"the check-in failed",
         in_directory_state("check-in failed", true),
         {"Checking…", StatusClass::none}},
        {"checked in and reached",
         in_directory_state("checked in", true),
         {"✓ " + host + " reached the station at 203.0.113.7:8073.", StatusClass::good}},
        {"checked in, not reached",
         in_directory_state("checked in", false),
         {"✗ " + host + " could not reach the station at 203.0.113.7:8073. Check the port forward.",
          StatusClass::error}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        EXPECT_EQ(reach_line(c.state), c.expected);
    }
}

TEST(ReachLine, FollowsTheRelayWhereItIsWanted) {
    const struct {
        const char* relay_state;
        StatusLine expected;
    } cases[] = {
        {"no key", {"Enter the relay key Corvane gave you, then press Save.", StatusClass::none}},
        {"connecting", {"Connecting to the " + host + " relay…", StatusClass::none}},
        {"connected",
         {"✓ Connected. Listeners reach your station at https://relay.example/k1abc/ (8 at once "
          "through the relay).",
          StatusClass::good}},
        {"refused", {"✗ The relay refused: unknown key. Trying again.", StatusClass::error}},
        {"unreachable",
         {"✗ Cannot reach the relay: unknown key. Trying again.", StatusClass::error}},
        {"off", {"Press Save to connect.", StatusClass::none}},
        {"asleep", {"Press Save to connect.", StatusClass::none}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.relay_state);
        EXPECT_EQ(reach_line(in_relay_state("checking in", c.relay_state)), c.expected);
        // The colour stays the relay's.
        EXPECT_EQ(reach_line(in_relay_state("not registered", c.relay_state)),
                  (StatusLine{"Register the station below: the relay knows stations by their "
                              "registration.",
                              c.expected.status_class}));
    }
}

TEST(CertificateLine, FollowsItsTable) {
    const UserLocale english{"C.UTF-8"};
    const TimeZone utc{"UTC0"};
    const struct {
        const char* when;
        const char* https;
        const char* secure_address;
        StatusLine expected;
    } cases[] = {
        {"active",
         R"({"state": "active", "name": "hilltop.example", "expires": 1804204800})",
         "https://hilltop.example:8073/",
         {"✓ Secure address: https://hilltop.example:8073/ (certificate renews itself; good until "
          "5 March 2027).",
          StatusClass::good}},
        {"active without a date",
         R"({"state": "active", "name": "hilltop.example"})",
         "https://hilltop.example:8073/",
         {"✓ Secure address: https://hilltop.example:8073/ (certificate renews itself; good until "
          ").",
          StatusClass::good}},
        {"active with a date of another kind",
         R"({"state": "active", "expires": "soon"})",
         "",
         {"✓ Secure address:  (certificate renews itself; good until 1 January 1970).",
          StatusClass::good}},
        {"active with a fraction of a second",
         R"({"state": "active", "expires": 1804291199.9})",
         "",
         {"✓ Secure address:  (certificate renews itself; good until 5 March 2027).",
          StatusClass::good}},
        {"active until far beyond the calendar",
         R"({"state": "active", "expires": 1e999})",
         "",
         {"✓ Secure address:  (certificate renews itself; good until ).", StatusClass::good}},
        {"requesting",
         R"({"state": "requesting", "name": "hilltop.example"})",
         "https://hilltop.example:8073/",
         {"Getting a certificate for hilltop.example…", StatusClass::none}},
        {"requesting without a name",
         R"({"state": "requesting"})",
         "",
         {"Getting a certificate for the station…", StatusClass::none}},
        {"failed, an older one in use",
         R"({"state": "failed", "name": "hilltop.example", "error": "no answer."})",
         "https://hilltop.example:8073/",
         {"✗ No certificate yet: no answer. The current one stays in use. Trying again later.",
          StatusClass::warning}},
        {"failed without a name",
         R"({"state": "failed", "error": "no answer."})",
         "",
         {"✗ No certificate yet: no answer. Trying again later.", StatusClass::warning}},
        {"nothing known",
         "{}",
         "",
         {"A secure https address comes automatically once " + host + " can reach the station.",
          StatusClass::none}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        EXPECT_EQ(certificate(c.https, c.secure_address), c.expected);
    }
}

TEST(ListingLine, FollowsItsTable) {
    const struct {
        const char* when;
        StationState state;
        StatusLine expected;
    } cases[] = {
        {"listing is switched off",
         unlisted(in_directory_state("checked in", true)),
         {"Not listed: switch on “List this station” to appear.", StatusClass::none}},
        {"listing is switched off and nothing else is there either",
         unlisted(in_directory_state("not registered", false)),
         {"Not listed: switch on “List this station” to appear.", StatusClass::none}},
        {"not registered",
         in_directory_state("not registered", false),
         {"Not registered yet: register below.", StatusClass::none}},
        {"not registered, though reachable",
         in_directory_state("not registered", true),
         {"Not registered yet: register below.", StatusClass::none}},
        {"the check-in failed",
         with_error(in_directory_state("check-in failed", true), "no route to host"),
         {"Cannot reach " + host + ": no route to host", StatusClass::warning}},
        {"reachable and checked in",
         in_directory_state("checked in", true),
         {"✓ Listed at " + host + "/websdr.html.", StatusClass::good}},
        {"the relay is up, the check-in under way",
         in_relay_state("checking in", "connected"),
         {"Checking in…", StatusClass::warning}},
        {"checked in, the relay not connected",
         in_relay_state("checked in", "connecting"),
         {"Checked in. Listed as soon as the relay connection is up.", StatusClass::warning}},
        {"checked in, the port not reached",
         in_directory_state("checked in", false),
         {"Checked in. Listed as soon as " + host + " can reach the station.",
          StatusClass::warning}},
        {"neither reachable nor checked in",
         in_directory_state("checking in", false),
         {"Checking in…", StatusClass::warning}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        EXPECT_EQ(listing_line(c.state), c.expected);
    }
}

TEST(ExpiryDate, HasNoBlankBeforeTheDay) {
    const UserLocale english{"C.UTF-8"};
    const TimeZone utc{"UTC0"};
    EXPECT_EQ(expiry_date(1803859200), "1 March 2027");
    EXPECT_EQ(expiry_date(1804550400), "9 March 2027");
    EXPECT_EQ(expiry_date(1804636800), "10 March 2027");
    EXPECT_EQ(expiry_date(1803772800), "28 February 2027");
    EXPECT_EQ(expiry_date(0), "1 January 1970");
    EXPECT_EQ(expiry_date(-1), "31 December 1969");
}

TEST(ExpiryDate, IsInLocalTime) {
    const UserLocale english{"C.UTF-8"};
    const std::int64_t last_second_of_4_march = 1804204799;
    {
        const TimeZone utc{"UTC0"};
        EXPECT_EQ(expiry_date(last_second_of_4_march), "4 March 2027");
        EXPECT_EQ(expiry_date(last_second_of_4_march + 1), "5 March 2027");
    }
    {
        const TimeZone east{"CET-1"};
        EXPECT_EQ(expiry_date(last_second_of_4_march), "5 March 2027");
    }
    {
        const TimeZone west{"EST5"};
        EXPECT_EQ(expiry_date(last_second_of_4_march + 1), "4 March 2027");
    }
}

TEST(ExpiryDate, NamesTheMonthInTheUsersLanguage) {
    const UserLocale german{"de_DE.UTF-8"};
    const TimeZone utc{"UTC0"};
    EXPECT_EQ(expiry_date(1804204800), "5 März 2027");
    EXPECT_EQ(expiry_date(1803772800), "28 Februar 2027");
}

TEST(ExpiryDate, IsEmptyBeyondTheCalendar) {
    const UserLocale english{"C.UTF-8"};
    const TimeZone utc{"UTC0"};
    EXPECT_EQ(expiry_date(253'402'300'799), "31 December 9999");
    EXPECT_EQ(expiry_date(253'402'300'800), "1 January 10000");
    // The last second whose year, counted from 1900, is an int. The C library writes such a year
    // as it likes.
    EXPECT_NE(expiry_date(67'768'036'191'676'799), "");
    EXPECT_EQ(expiry_date(67'768'036'191'676'800), "");
    EXPECT_EQ(expiry_date(std::numeric_limits<std::int64_t>::max()), "");
    EXPECT_EQ(expiry_date(std::numeric_limits<std::int64_t>::min()), "");
}

TEST(ExpiryDate, IsEmptyWhenItsTextDoesNotFit) {
    const UserLocale georgian{"ka_GE.UTF-8"};
    const TimeZone utc{"UTC0"};
    EXPECT_EQ(expiry_date(1804204800), "5 მარტი 2027");
    // September has ten letters of three bytes.
    EXPECT_EQ(expiry_date(1820448000), "");
}

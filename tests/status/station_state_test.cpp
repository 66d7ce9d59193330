// SPDX-License-Identifier: MIT
#include "status/station_state.h"

#include "link/json_access.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <limits>
#include <string>

namespace {

namespace json = boost::json;

StationState derive(std::string_view settings, std::string_view status) {
    return derive_station_state(json::parse(settings).as_object(), json::parse(status).as_object());
}

/// A status with the given members over the least that a status may be.
std::string status_with(std::string_view members) {
    json::object status =
        json::parse(R"({"directory": {"state": "checked in"}, "receivers": [], "listeners": []})")
            .as_object();
    const json::value given = json::parse(members);
    for (const auto& member : given.as_object())
        status[member.key()] = member.value();
    return json::serialize(status);
}

StationState with_directory(std::string_view directory) {
    return derive("{}", status_with(R"({"directory": )" + std::string{directory} + "}"));
}

StationState with_settings(std::string_view settings) {
    return derive(settings, status_with("{}"));
}

} // namespace

TEST(StationState, HasDefaultsForTheLeastDocument) {
    const StationState state = derive("{}", status_with("{}"));
    EXPECT_FALSE(state.identified);
    EXPECT_TRUE(state.listed_wanted);
    EXPECT_FALSE(state.relay_wanted);
    EXPECT_FALSE(state.relay_connected);
    EXPECT_FALSE(state.reachable);
    EXPECT_EQ(state.receiver_count, 0u);
    EXPECT_EQ(state.listener_count, 0u);
    EXPECT_EQ(state.listeners_allowed, 0);
    EXPECT_EQ(state.port, 0);
    EXPECT_EQ(state.directory_address, "");
    EXPECT_EQ(state.directory_error, "");
    EXPECT_EQ(state.relay_state, "off");
    EXPECT_EQ(state.relay_error, "");
    EXPECT_EQ(state.relay_listeners, 0);
    EXPECT_EQ(state.secure_address, "");
    EXPECT_EQ(state.station_link, "");
}

TEST(StationState, IsIdentifiedByANameOrACallsignAndAGrid) {
    const struct {
        const char* station;
        bool identified;
    } cases[] = {
        {R"({"name": "", "callsign": "", "grid": ""})", false},
        {R"({"name": "Hilltop"})", false},
        {R"({"callsign": "K1ABC"})", false},
        {R"({"name": "Hilltop", "callsign": "K1ABC", "grid": ""})", false},
        {R"({"grid": "EM95"})", false},
        {R"({"name": "Hilltop", "grid": "EM95"})", true},
        {R"({"callsign": "K1ABC", "grid": "EM95"})", true},
        {R"({"name": "Hilltop", "callsign": "K1ABC", "grid": "EM95"})", true},
        {R"({"name": "Hilltop", "grid": "no grid"})", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.station);
        const std::string settings = R"({"station": )" + std::string{c.station} + "}";
        EXPECT_EQ(with_settings(settings).identified, c.identified);
    }
}

TEST(StationState, TellsTheDirectorysStatesApart) {
    const struct {
        const char* directory;
        bool registered;
        bool checked_in;
    } cases[] = {
        {R"({"state": "not registered"})", false, false},
        {R"({"state": "checked in"})", true, true},
        {R"({"state": "check-in failed"})", true, false},
        {R"({"state": "checking in"})", true, false},
        {R"({"state": 5})", true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.directory);
        const StationState state = with_directory(c.directory);
        EXPECT_EQ(state.registered, c.registered);
        EXPECT_EQ(state.checked_in, c.checked_in);
    }
}

TEST(StationState, KeepsTheDirectorysWords) {
    const StationState state = with_directory(
        R"({"state": "check-in failed", "address": "203.0.113.7:8073", "error": "no answer"})");
    EXPECT_EQ(state.directory_state, "check-in failed");
    EXPECT_EQ(state.directory_address, "203.0.113.7:8073");
    EXPECT_EQ(state.directory_error, "no answer");
}

TEST(StationState, IsListedUnlessTheOwnerSaysNo) {
    EXPECT_TRUE(with_settings("{}").listed_wanted);
    EXPECT_TRUE(with_settings(R"({"directory": {}})").listed_wanted);
    EXPECT_TRUE(with_settings(R"({"directory": 5})").listed_wanted);
    EXPECT_TRUE(with_settings(R"({"directory": {"listed": true}})").listed_wanted);
    EXPECT_FALSE(with_settings(R"({"directory": {"listed": false}})").listed_wanted);
}

TEST(StationState, WantsTheRelayForABooleanTrueAlone) {
    EXPECT_TRUE(with_settings(R"({"relay": {"enabled": true}})").relay_wanted);
    EXPECT_FALSE(with_settings(R"({"relay": {"enabled": false}})").relay_wanted);
    EXPECT_FALSE(with_settings(R"({"relay": {"enabled": "true"}})").relay_wanted);
    EXPECT_FALSE(with_settings(R"({"relay": true})").relay_wanted);
}

TEST(StationState, TellsTheRelaysStatesApart) {
    const struct {
        const char* relay;
        const char* state;
        bool connected;
    } cases[] = {
        {R"({"state": "off"})", "off", false},
        {R"({"state": "connected"})", "connected", true},
        {R"({"state": "asleep"})", "asleep", false},
        {R"({})", "off", false},
        {R"({"state": 5})", "", false},
        {R"("connected")", "off", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.relay);
        const StationState state =
            derive("{}", status_with(R"({"relay": )" + std::string{c.relay} + "}"));
        EXPECT_EQ(state.relay_state, c.state);
        EXPECT_EQ(state.relay_connected, c.connected);
    }
}

TEST(StationState, KeepsTheRelaysWordsAndNumber) {
    const StationState state = derive(
        "{}", status_with(
                  R"({"relay": {"state": "refused", "error": "unknown key", "listeners": 12.9}})"));
    EXPECT_EQ(state.relay_error, "unknown key");
    EXPECT_EQ(state.relay_listeners, 12);
}

TEST(StationState, IsReachableByTheWayThatIsWanted) {
    const char* port = "{}";
    const char* relay = R"({"relay": {"enabled": true}})";
    const struct {
        const char* when;
        const char* settings;
        const char* reachable;
        const char* relay;
        bool expected;
    } cases[] = {
        {"port wanted, reached", port, "true", "off", true},
        {"port wanted, not reached", port, "false", "off", false},
        {"port wanted, only the relay is up", port, "false", "connected", false},
        {"relay wanted, connected", relay, "false", "connected", true},
        {"relay wanted, only the port is reached", relay, "true", "connecting", false},
        {"relay wanted, both", relay, "true", "connected", true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        const std::string status = status_with(
            R"({"directory": {"state": "checked in", "reachable": )" + std::string{c.reachable} +
            R"(}, "relay": {"state": ")" + c.relay + R"("}})");
        EXPECT_EQ(derive(c.settings, status).reachable, c.expected);
    }
}

TEST(StationState, CountsReceiversAndListenersWithoutReadingThem) {
    const StationState state =
        derive(R"({"listeners": {"max": 20}})",
               status_with(R"({"receivers": [1, "two"], "listeners": [null, {}, []]})"));
    EXPECT_EQ(state.receiver_count, 2u);
    EXPECT_EQ(state.listener_count, 3u);
    EXPECT_EQ(state.listeners_allowed, 20);
}

TEST(StationState, ThrowsWhenARequiredMemberIsMissingOrOfAnotherKind) {
    for (const std::string& status : {
             std::string{R"({"directory": {"state": "checked in"}, "listeners": []})"},
             std::string{R"({"directory": {"state": "checked in"}, "receivers": []})"},
             status_with(R"({"directory": {}})"),
             status_with(R"({"directory": "checked in"})"),
             status_with(R"({"receivers": {}})"),
             status_with(R"({"listeners": {}})"),
         }) {
        SCOPED_TRACE(status);
        EXPECT_THROW(derive("{}", status), std::exception);
    }
}

TEST(StationState, TruncatesAndClampsNumbers) {
    const struct {
        const char* number;
        std::int32_t expected;
    } cases[] = {
        {"20.9", 20},
        {"-20.9", -20},
        {"2147483648", 2147483647},
        {"-1e999", std::numeric_limits<std::int32_t>::min()},
        {"\"20\"", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.number);
        const std::string number{c.number};
        const StationState state = derive(
            R"({"listeners": {"max": )" + number + R"(}, "network": {"port": )" + number + "}}",
            R"({"directory": {"state": "checked in"}, "receivers": [], "listeners": [],
                   "relay": {"listeners": )" +
                number + "}}");
        EXPECT_EQ(state.listeners_allowed, c.expected);
        EXPECT_EQ(state.port, c.expected);
        EXPECT_EQ(state.relay_listeners, c.expected);
    }
}

TEST(StationState, MakesTheSecureAddressFromNameAndPort) {
    const struct {
        const char* when;
        const char* https;
        const char* expected;
    } cases[] = {
        {"a name", R"({"name": "hilltop.tarnwave.example"})",
         "https://hilltop.tarnwave.example:8073/"},
        {"a name, whatever the state", R"({"name": "hilltop.example", "state": "failed"})",
         "https://hilltop.example:8073/"},
        {"no name", R"({"state": "active"})", ""},
        {"a name of another kind reads as empty", R"({"name": 5})", "https://:8073/"},
        {"no object", R"("hilltop.example")", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        const StationState state =
            derive(R"({"network": {"port": 8073}})",
                   status_with(R"({"https": )" + std::string{c.https} + "}"));
        EXPECT_EQ(state.secure_address, c.expected);
    }
}

TEST(StationState, LinksToTheWayThatListenersTake) {
    const struct {
        const char* when;
        bool relay_wanted;
        const char* status;
        const char* expected;
    } cases[] = {
        {"relay wanted and connected", true,
         R"({"relay": {"state": "connected", "url": "https://relay.example/k1abc/"}})",
         "https://relay.example/k1abc/"},
        {"relay wanted and connected, no url", true, R"({"relay": {"state": "connected"}})", ""},
        {"relay wanted and connected, the url no string", true,
         R"({"relay": {"state": "connected", "url": 5}})", ""},
        {"relay wanted, not connected", true,
         R"({"relay": {"state": "connecting", "url": "https://relay.example/k1abc/"}})", ""},
        {"relay wanted, not connected, though other ways are open", true,
         R"({"https": {"name": "hilltop.example"},
             "directory": {"state": "checked in", "address": "203.0.113.7:8073"}})",
         ""},
        {"relay up but not wanted", false,
         R"({"relay": {"state": "connected", "url": "https://relay.example/k1abc/"}})", ""},
        {"secure address before plain address", false,
         R"({"https": {"name": "hilltop.example"},
             "directory": {"state": "checked in", "address": "203.0.113.7:8073"}})",
         "https://hilltop.example:8073/"},
        {"plain address", false,
         R"({"directory": {"state": "checked in", "address": "203.0.113.7:8073"}})",
         "http://203.0.113.7:8073/"},
        {"plain address of a station that is not reached", false,
         R"({"directory": {"state": "not registered", "reachable": false,
                           "address": "203.0.113.7:8073"}})",
         "http://203.0.113.7:8073/"},
        {"no way in", false, "{}", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        const char* settings = c.relay_wanted
                                   ? R"({"network": {"port": 8073}, "relay": {"enabled": true}})"
                                   : R"({"network": {"port": 8073}})";
        EXPECT_EQ(derive(settings, status_with(c.status)).station_link, c.expected);
    }
}

TEST(StationStateContract, NamesTheWishToBeListedWhenItIsNoBoolean) {
    const ReadingStep step{"loading the form"};
    EXPECT_THROW(derive(R"({"directory": {"listed": "yes"}})", status_with("{}")), std::exception);
    EXPECT_NE(contract_error_message("").find("cannot read directory.listed ("), std::string::npos);
}

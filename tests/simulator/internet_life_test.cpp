// SPDX-License-Identifier: MIT
#include "simulator_fixture.h"

#include "scenarios.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

/// The states that a part of the status goes through, repeats left out.
std::vector<std::string> states(Station& station, const char* part, double seconds) {
    std::vector<std::string> seen;
    advance_until(station, seconds, [&] {
        const std::string state{status_of(station).at(part).at("state").as_string().c_str()};
        if (seen.empty() || seen.back() != state)
            seen.push_back(state);
        return false;
    });
    return seen;
}

using States = std::vector<std::string>;

void set_relay(Station& station, bool enabled, const char* key) {
    json::object settings = station.settings;
    settings["relay"] = json::object{{"enabled", enabled}, {"key", key}};
    replace_settings(station, settings);
}

constexpr const char* good_key = "ABCD-EFGH-IJKL-MNOP-QRST-0123";

} // namespace

TEST(DirectoryLife, ARegistrationIsFollowedByACheckInAndAReachedPort) {
    Station station = station_in("first-run");
    EXPECT_EQ(states(station, "directory", 10), States{"not registered"});
    ASSERT_EQ(
        answer(station, request("POST", "/api/register", R"({"email":"a@b.example"})")).status,
        200);
    EXPECT_EQ(states(station, "directory", 30), (States{"checking in", "checked in"}));
    EXPECT_EQ(status_of(station).at("directory"),
              json::parse(R"({"state":"checked in","reachable":true,
                              "address":"203.0.113.17:8073","error":""})"));
}

TEST(DirectoryLife, AFailedCheckInIsTriedAgain) {
    Station station = station_in("check-in-failed");
    ASSERT_TRUE(advance_until(station, 10, [&] {
        return status_of(station).at("directory").at("state") == "check-in failed";
    }));
    EXPECT_EQ(status_of(station).at("directory").at("error"),
              "The connection timed out after 10 seconds.");
    EXPECT_EQ(
        states(station, "directory", 120),
        (States{"check-in failed", "checking in", "check-in failed", "checking in", "checked in"}));
    EXPECT_EQ(status_of(station).at("directory").at("error"), "");
}

TEST(DirectoryLife, AnUnreachablePortIsReachedOnceItIsForwarded) {
    Station station = station_in("unreachable");
    advance(station, 300);
    EXPECT_EQ(status_of(station).at("directory").at("state"), "checked in");
    EXPECT_EQ(status_of(station).at("directory").at("reachable"), false);
    remove_obstacle(station);
    EXPECT_TRUE(advance_until(
        station, 10, [&] { return status_of(station).at("directory").at("reachable") == true; }));
}

TEST(DirectoryLife, ListingTheStationAgainChecksIn) {
    Station station = station_in("on-air");
    for (const bool listed : {false, true}) {
        json::object settings = station.settings;
        settings.at("directory").as_object()["listed"] = listed;
        replace_settings(station, settings);
        EXPECT_EQ(status_of(station).at("directory").at("state"),
                  listed ? "checking in" : "checked in");
    }
}

TEST(RelayLife, CarriesListeners) {
    Station station = station_in("relay");
    EXPECT_EQ(states(station, "relay", 20), States{"connected"});
    const json::object relay = status_of(station).at("relay").as_object();
    EXPECT_EQ(relay.at("listeners"), 20);
    EXPECT_TRUE(relay.at("url").as_string().ends_with("/r/1042/"));
    EXPECT_EQ(status_of(station).at("directory").at("reachable"), false);
    EXPECT_TRUE(advance_until(station, 120, [&] {
        const json::object status = status_of(station);
        for (const json::value& listener : status.at("listeners").as_array())
            if (listener.at("relayed") == true)
                return true;
        return false;
    }));
}

TEST(RelayLife, RefusesOrIsAwayAndComesBack) {
    struct Case {
        const char* scenario;
        const char* state;
        const char* error;
    };
    for (const Case& c : {
             Case{"relay-refused", "refused", "All places of this relay are taken."},
             {"relay-unreachable", "unreachable", "No route to host."},
         }) {
        SCOPED_TRACE(c.scenario);
        Station station = station_in(c.scenario);
        ASSERT_TRUE(advance_until(
            station, 10, [&] { return status_of(station).at("relay").at("state") == c.state; }));
        EXPECT_EQ(status_of(station).at("relay").at("error"), c.error);
        EXPECT_EQ(states(station, "relay", 120),
                  (States{c.state, "connecting", c.state, "connecting", "connected"}));
        EXPECT_EQ(status_of(station).at("relay").at("error"), "");
    }
}

TEST(RelayLife, FollowsItsSwitchAndKey) {
    Station station = station_in("on-air");
    set_relay(station, true, "");
    EXPECT_EQ(states(station, "relay", 10), States{"no key"});
    set_relay(station, true, "guess");
    EXPECT_EQ(states(station, "relay", 10), (States{"connecting", "refused"}));
    EXPECT_EQ(status_of(station).at("relay").at("error"), "This relay key is not known.");
    set_relay(station, true, good_key);
    EXPECT_EQ(states(station, "relay", 10), (States{"connecting", "connected"}));
    set_relay(station, false, good_key);
    EXPECT_EQ(states(station, "relay", 10), States{"off"});
    EXPECT_FALSE(status_of(station).at("relay").as_object().contains("url"));
    EXPECT_EQ(status_of(station).at("directory").at("reachable"), true);
}

TEST(RelayLife, WaitsForTheRegistration) {
    Station station = station_in("first-run");
    set_relay(station, true, good_key);
    EXPECT_EQ(states(station, "relay", 10), States{"off"});
    answer(station, request("POST", "/api/register", R"({"email":"a@b.example"})"));
    EXPECT_EQ(states(station, "relay", 10), (States{"connecting", "connected"}));
}

TEST(CertificateLife, FailsAndBecomesActive) {
    Station station = station_in("certificate");
    ASSERT_TRUE(advance_until(
        station, 60, [&] { return status_of(station).at("https").at("state") == "failed"; }));
    EXPECT_EQ(status_of(station).at("https").at("error"),
              "The name has not spread through the domain name system yet.");
    EXPECT_EQ(states(station, "https", 120),
              (States{"failed", "requesting", "failed", "requesting", "active"}));
    const json::object https = status_of(station).at("https").as_object();
    EXPECT_EQ(https.at("expires"), birth + 90 * 86400);
    EXPECT_TRUE(https.at("name").as_string().starts_with("1042.stations."));
    EXPECT_EQ(https.at("error"), "");
}

TEST(CertificateLife, IsRequestedOnceThePortIsReached) {
    Station station = station_in("check-in-failed");
    EXPECT_EQ(states(station, "https", 120), (States{"none", "requesting", "active"}));
    EXPECT_EQ(status_of(station).at("directory").at("reachable"), true);
}

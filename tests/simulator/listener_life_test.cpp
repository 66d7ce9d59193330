// SPDX-License-Identifier: MIT
#include "simulator_fixture.h"

#include "listener_life.h"
#include "settings_paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

namespace {

/// Replaces one setting and keeps all others.
void set(Station& station, const char* group, const char* member, const json::value& value) {
    json::object settings = station.settings;
    settings.at(group).as_object()[member] = value;
    replace_settings(station, settings);
}

} // namespace

TEST(ListenerLife, PeopleArriveTuneWatchAndLeave) {
    Station station = station_in("on-air");
    std::set<int> numbers;
    bool untuned = false, listening = false, watching = false, left = false;
    for (int second = 0; second < 600; ++second) {
        advance(station, 1);
        std::set<int> now;
        for (const Listener& listener : station.listeners) {
            EXPECT_TRUE(now.insert(listener.number).second);
            untuned = untuned || !listener.tuned;
            listening = listening || (listener.tuned && listener.listening);
            watching = watching || (listener.tuned && !listener.listening);
        }
        left = left || !std::includes(now.begin(), now.end(), numbers.begin(), numbers.end());
        numbers = now;
    }
    EXPECT_TRUE(untuned);
    EXPECT_TRUE(listening);
    EXPECT_TRUE(watching);
    EXPECT_TRUE(left);
    EXPECT_GT(station.next_number, 10);
}

TEST(ListenerLife, ABusyStationKeepsItsPlacesTaken) {
    Station station = station_in("busy");
    EXPECT_EQ(station.listeners.size(), 200U);
    advance(station, 300);
    EXPECT_GT(station.listeners.size(), 180U);
    EXPECT_LE(station.listeners.size(), 200U);
}

TEST(ListenerLife, StaysWithinTheLimitsOfTheSettings) {
    Station station = station_in("busy");
    set(station, "listeners", "max", 50);
    set(station, "listeners", "per_address", 1);
    set(station, "listeners", "session_minutes", 2);
    advance(station, 130);
    for (int second = 0; second < 300; ++second) {
        advance(station, 1);
        ASSERT_LE(station.listeners.size(), 50U);
        std::map<std::string, int> sessions;
        for (const Listener& listener : station.listeners) {
            ASSERT_EQ(++sessions[listener.address], 1) << listener.address;
            ASSERT_LT(station.clock_s - listener.arrived_s, 121);
        }
    }
    EXPECT_FALSE(station.listeners.empty());
}

TEST(ListenerLife, ABlockedAddressLeavesAndCannotReturn) {
    Station station = station_in("busy");
    set(station, "access", "banned", {"203.0.113.0/24", "2001:db8::/32"});
    for (int second = 0; second < 600; ++second) {
        for (const Listener& listener : station.listeners)
            ASSERT_FALSE(is_banned(station, listener.address)) << listener.address;
        advance(station, 1);
    }
    EXPECT_FALSE(station.listeners.empty());
}

TEST(ListenerLife, UsesOnlyTheModesThatAreAllowed) {
    Station station = station_in("busy");
    set(station, "content", "modes", json::array{"CW"});
    advance(station, 120);
    for (const Listener& listener : station.listeners)
        if (listener.tuned) {
            EXPECT_EQ(listener.mode, "CW");
        }
    EXPECT_FALSE(station.listeners.empty());
}

TEST(ListenerLife, EverybodyLeavesAStationThatGoesOffTheAir) {
    Station station = station_in("on-air");
    ASSERT_FALSE(station.listeners.empty());
    json::object settings = station.settings;
    settings["receivers"] = json::array{};
    settings["attach"] = false;
    replace_settings(station, settings);
    advance(station, 1);
    EXPECT_TRUE(station.listeners.empty());
}

TEST(ListenerLife, TheSameSeedGivesTheSameLifeHoweverTimeIsCut) {
    Station station = station_in("on-air", 7);
    Station same = station_in("on-air", 7);
    Station other = station_in("on-air", 8);
    for (int i = 0; i < 300; ++i)
        advance(station, 1);
    for (int i = 0; i < 2400; ++i)
        advance(same, 0.125);
    advance(other, 300);
    EXPECT_EQ(status_of(station), status_of(same));
    EXPECT_NE(status_of(station), status_of(other));
}

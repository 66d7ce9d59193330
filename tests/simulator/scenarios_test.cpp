// SPDX-License-Identifier: MIT
#include "simulator_fixture.h"

#include "options.h"
#include "scenarios.h"
#include "settings_check.h"
#include "state_document.h"

#include <gtest/gtest.h>

#include <string>

TEST(Scenarios, EachBeginsWithSettingsThatCanBeSaved) {
    for (const Scenario& scenario : all_scenarios()) {
        const Station station = make_station(scenario, 1, birth);
        EXPECT_EQ(settings_fault(station.settings, station.settings), "") << scenario.name;
    }
}

TEST(Scenarios, QuietSendsTheSameBytesForever) {
    Station station = station_in("quiet");
    const std::string first = json::serialize(state_document(station));
    advance(station, 3600);
    EXPECT_EQ(json::serialize(state_document(station)), first);
    EXPECT_FALSE(station.listeners.empty());
}

TEST(Scenarios, LongTextsReachEveryPlaceThatShowsOne) {
    Station station = station_in("long-texts");
    ASSERT_TRUE(advance_until(station, 120, [&] {
        const json::object status = status_of(station);
        return status.at("relay").at("state") == "refused" &&
               status.at("directory").at("state") == "check-in failed" &&
               status.at("started").at(1).at("running") == false;
    }));
    const json::object status = status_of(station);
    const OutsideTexts& texts = station.scenario.texts;
    EXPECT_EQ(status.at("relay").at("error"), json::value(texts.relay_refusal));
    EXPECT_EQ(status.at("directory").at("error"), json::value(texts.check_in_error));
    EXPECT_EQ(status.at("https").at("error"), json::value(texts.certificate_error));
    EXPECT_EQ(status.at("started").at(1).at("log"), json::value(texts.receiver_log));
    EXPECT_EQ(status.at("started").at(1).at("serial"), json::value(texts.dongle_serial));
    EXPECT_EQ(status.at("receivers").at(0).at("device"), json::value(texts.sdrplay_model));
    EXPECT_EQ(station.settings.at("station").at("name"), json::value(texts.station_name));
    const ApiReply reply =
        answer(station, request("PUT", "/api/settings", json::serialize(station.settings)));
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(error_in(reply), texts.save_refusal);
}

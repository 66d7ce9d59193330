// SPDX-License-Identifier: MIT
#include "simulator_fixture.h"

#include "receiver_life.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// Puts one receiver in the place of all that the settings share.
void share(Station& station, const char* backend, const char* serial, double lo, double hi) {
    json::object settings = station.settings;
    settings["receivers"] = json::array{json::object{{"backend", backend},
                                                     {"serial", serial},
                                                     {"model", "Receiver"},
                                                     {"lo", lo},
                                                     {"hi", hi},
                                                     {"enabled", true}}};
    replace_settings(station, settings);
}

/// Lets one receiver come up or fail; returns its log, "" when it is on the air.
std::string outcome(Station& station) {
    const bool settled = advance_until(station, 10, [&] {
        return station.started.at(0).progress != StartedReceiver::Progress::starting;
    });
    EXPECT_TRUE(settled);
    return station.started.at(0).log;
}

} // namespace

TEST(ReceiverLife, ASharedReceiverComesUpAfterAMoment) {
    Station station = station_in("first-run");
    share(station, "rtl-sdr", "00000001", 144e6, 146e6);
    EXPECT_EQ(status_of(station).at("receivers"), json::array{});
    EXPECT_EQ(status_of(station).at("started"),
              json::parse(R"([{"running":true,"serial":"00000001","log":""}])"));
    EXPECT_EQ(outcome(station), "");
    EXPECT_EQ(
        status_of(station).at("receivers"),
        json::parse(R"([{"device":"Receiver","attached":false,"lo":144000000,"hi":146000000}])"));
}

TEST(ReceiverLife, AReceiverThatCannotRunFailsWithALog) {
    struct Case {
        const char* when;
        const char* backend;
        const char* serial;
        double span;
        const char* log;
    };
    for (const Case& c : {
             Case{"it is not plugged in", "sdrplay", "unknown", 1e6,
                  "open: no device with serial unknown is plugged in\nexit status 1"},
             {"another backend has this serial", "rtl-sdr", "1905034F2A", 1e6,
              "open: no device with serial 1905034F2A is plugged in\nexit status 1"},
             {"another program holds it", "sdrplay", "2204017C81", 1e6,
              "open: device 2204017C81 is claimed by another program (EBUSY)\nexit status 1"},
             {"the range is just right for a dongle", "rtl-sdr", "00000001", 2e6, ""},
             {"the range is too wide for a dongle", "rtl-sdr", "00000001", 2'000'001,
              "range: wider than the receiver takes at once\nexit status 2"},
             {"the range is just right", "sdrplay", "1905034F2A", 8e6, ""},
             {"the range is too wide", "sdrplay", "1905034F2A", 8'000'001,
              "range: wider than the receiver takes at once\nexit status 2"},
         }) {
        SCOPED_TRACE(c.when);
        Station station = station_in("first-run");
        share(station, c.backend, c.serial, 7e6, 7e6 + c.span);
        EXPECT_EQ(outcome(station), c.log);
    }
}

TEST(ReceiverLife, AnRx888CoversAllOfHfWhileItIsPluggedIn) {
    Station station = station_in("first-run");
    advance(station, 30);
    share(station, "rx888", "0009072C00D6", 0, 30e6);
    EXPECT_EQ(outcome(station), "");
    ASSERT_TRUE(advance_until(station, 600, [&] {
        return station.started.at(0).progress == StartedReceiver::Progress::failed;
    }));
    EXPECT_EQ(station.started.at(0).log,
              "open: no device with serial 0009072C00D6 is plugged in\nexit status 1");
}

TEST(ReceiverLife, AReceiverComesUpOnceTheOtherProgramLetsGo) {
    Station station = station_in("first-run");
    share(station, "sdrplay", "2204017C81", 7e6, 8e6);
    EXPECT_NE(outcome(station), "");
    EXPECT_TRUE(advance_until(station, 100, [&] { return !receivers_on_air(station).empty(); }));
}

TEST(ReceiverLife, TheFailingDongleFailsAgainAndTheOtherReceiverRunsOn) {
    Station station = station_in("receiver-failed");
    for (int failure = 0; failure < 2; ++failure) {
        EXPECT_TRUE(advance_until(station, 60, [&] {
            return station.started.at(1).progress == StartedReceiver::Progress::starting;
        }));
        EXPECT_TRUE(advance_until(station, 60, [&] {
            return station.started.at(1).progress == StartedReceiver::Progress::failed;
        }));
    }
    const json::object status = status_of(station);
    EXPECT_EQ(status.at("started"), json::parse(R"([{"running":true,"serial":"1905034F2A","log":""},
                              {"running":false,"serial":"00000001",
                               "log":"usb: transfer failed <status 5> & 3 retries\ntuner: PLL not locked\nexit status 1"}])"));
    EXPECT_EQ(status.at("receivers").as_array().size(), 1U);
}

TEST(ReceiverLife, AReceiverWhoseRangeIsUnchangedStaysOnTheAirThroughASave) {
    Station station = station_in("on-air");
    ASSERT_EQ(receivers_on_air(station).size(), 3U);
    json::object settings = station.settings;
    settings.at("receivers").at(0).as_object()["hi"] = 7'200'000;
    replace_settings(station, settings);
    ASSERT_EQ(station.started.size(), 2U);
    EXPECT_EQ(station.started[0].progress, StartedReceiver::Progress::starting);
    EXPECT_EQ(station.started[1].progress, StartedReceiver::Progress::on_air);
}

TEST(ReceiverLife, NothingIsStartedUntilTheBrokerRuns) {
    Station station = station_in("broker-down");
    advance(station, 100);
    EXPECT_EQ(status_of(station).at("broker"), false);
    EXPECT_EQ(status_of(station).at("started"), json::array{});
    remove_obstacle(station);
    EXPECT_EQ(status_of(station).at("broker"), true);
    EXPECT_TRUE(advance_until(station, 10, [&] { return receivers_on_air(station).size() == 2; }));
}

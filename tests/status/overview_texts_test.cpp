// SPDX-License-Identifier: MIT
#include "status/overview_texts.h"

#include "link/json_access.h"
#include "link/text.h"
#include "support/status_line_printer.h"

#include "link/build_constants.h"
#include "support/user_locale.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

const std::string host{directory_host};
constexpr bool broker_running = true;

/// On the air, listed, reached and checked in, with nobody listening.
StationState listed_station() {
    StationState state;
    state.identified = true;
    state.registered = true;
    state.checked_in = true;
    state.reachable = true;
    state.directory_state = "checked in";
    state.receiver_count = 2;
    state.listener_count = 1;
    state.listeners_allowed = 20;
    state.port = 8073;
    return state;
}

StationState unidentified(StationState state) {
    state.identified = false;
    return state;
}

StationState unregistered(StationState state) {
    state.registered = false;
    state.checked_in = false;
    state.directory_state = "not registered";
    return state;
}

StationState in_directory_state(StationState state, const char* directory_state) {
    state.registered = true;
    state.checked_in = false;
    state.directory_state = directory_state;
    return state;
}

StationState unreachable(StationState state) {
    state.reachable = false;
    return state;
}

StationState unlisted(StationState state) {
    state.listed_wanted = false;
    return state;
}

StationState with_relay_wanted(StationState state) {
    state.relay_wanted = true;
    state.relay_connected = state.reachable;
    return state;
}

StationState with_receivers(StationState state, std::size_t count) {
    state.receiver_count = count;
    return state;
}

TEST(FailedReceiver, ShowsTheEndOfALogThatIsTooLongToRead) {
    const std::string whole(longest_shown_text - 3, 'x');
    EXPECT_EQ(failed_receiver_markup("S", whole), "<b>S</b> is not running. Its log: " + whole);
    EXPECT_EQ(failed_receiver_markup("S", "start" + whole),
              "<b>S</b> is not running. Its log: …" + whole);
}

TEST(FailedReceiver, ShowsNoMoreRowsOfALogThanALongLineFills) {
    std::string rows;
    for (int i = 0; i < 90; ++i)
        rows += "\nx";
    EXPECT_EQ(end_of_log("a" + rows), "a" + rows);
    EXPECT_EQ(end_of_log("first\na" + rows), "…a" + rows);
    std::string folded; // each line as long as two rows
    for (int i = 0; i < 45; ++i)
        folded += "\n" + std::string(100, 'x');
    EXPECT_EQ(end_of_log("a" + folded), "a" + folded);
    EXPECT_EQ(end_of_log("first\na" + folded), "…a" + folded);
}

TEST(FailedReceiver, CountsTheRowsOfAProgressDisplay) {
    std::string progress; // each step begins at the start of the row again
    std::string windows;
    for (int i = 0; i < 90; ++i) {
        progress += "\rx";
        windows += "\r\nx";
    }
    EXPECT_EQ(end_of_log("first\ra" + progress), "…a" + progress);
    EXPECT_EQ(end_of_log("first\r\na" + windows), "…a" + windows);
}

} // namespace

TEST(HeaderLine, FollowsItsTable) {
    const StationState listed = listed_station();
    const std::string on_air = "On the air · 2 receivers · 1 of 20 listening";
    const struct {
        const char* when;
        StationState state;
        StatusLine expected;
    } cases[] = {
        {"no receiver runs",
         with_receivers(listed, 0),
         {"Off the air: no receiver is running", StatusClass::error}},
        {"no receiver runs, and the owner does not want the list",
         with_receivers(unlisted(listed), 0),
         {"Off the air: no receiver is running", StatusClass::error}},
        {"the owner does not want the list",
         unlisted(listed),
         {on_air + " · not on the station list", StatusClass::good}},
        {"the owner does not want the list, not registered",
         unlisted(unregistered(listed)),
         {on_air + " · not on the station list", StatusClass::good}},
        {"the owner does not want the list, the check-in failed",
         unlisted(in_directory_state(listed, "check-in failed")),
         {on_air + " · not on the station list", StatusClass::good}},
        {"not registered",
         unregistered(listed),
         {on_air + " · not registered for the station list", StatusClass::warning}},
        {"the check-in failed",
         in_directory_state(listed, "check-in failed"),
         {on_air + " · cannot reach " + host, StatusClass::warning}},
        {"the check-in failed, the port not reached",
         in_directory_state(unreachable(listed), "check-in failed"),
         {on_air + " · cannot reach " + host, StatusClass::warning}},
        {"reachable and checked in", listed, {on_air + " · listed on " + host, StatusClass::good}},
        {"reachable, the check-in under way",
         in_directory_state(listed, "checking in"),
         {on_air, StatusClass::good}},
        {"checked in, the relay not connected",
         with_relay_wanted(unreachable(listed)),
         {on_air + " · not connected to the " + host + " relay", StatusClass::warning}},
        {"checked in, the port not reached",
         unreachable(listed),
         {on_air + " · not reachable from the internet", StatusClass::warning}},
        {"not reachable, the check-in under way",
         in_directory_state(unreachable(listed), "checking in"),
         {on_air, StatusClass::good}},
        {"exactly one receiver",
         with_receivers(unlisted(listed), 1),
         {"On the air · 1 receiver · 1 of 20 listening · not on the station list",
          StatusClass::good}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        EXPECT_EQ(header_line(c.state, broker_running), c.expected);
        EXPECT_EQ(header_line(c.state, false),
                  (StatusLine{"Off the air: your receiver broker is not running (systemctl --user "
                              "start tarnwave-broker)",
                              StatusClass::error}));
    }
}

TEST(HeaderLine, WritesPlainDecimalsInEveryLocale) {
    const UserLocale german{"de_DE.UTF-8"};
    StationState state = unlisted(listed_station());
    state.listener_count = 2000;
    state.listeners_allowed = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(header_line(state, broker_running).text,
              "On the air · 2 receivers · 2000 of 2147483647 listening · not on the station list");
    state.listeners_allowed = -1;
    EXPECT_EQ(header_line(state, broker_running).text,
              "On the air · 2 receivers · 2000 of -1 listening · not on the station list");
}

TEST(Checklist, AsksForFourThingsInOrder) {
    const StationState state =
        unidentified(unreachable(unregistered(with_receivers(listed_station(), 0))));
    const auto items = checklist_items(state);
    EXPECT_EQ(items[0].text, "Name your station and enter its grid square");
    EXPECT_STREQ(items[0].page, "station");
    EXPECT_EQ(items[1].text, "Share at least one receiver");
    EXPECT_STREQ(items[1].page, "receivers");
    EXPECT_EQ(items[2].text, "Register the station for the list on " + host);
    EXPECT_STREQ(items[2].page, "internet");
    EXPECT_EQ(items[3].text, "Forward port 8073 on your router to this computer");
    EXPECT_STREQ(items[3].page, "internet");
    for (const ChecklistItem& item : items)
        EXPECT_FALSE(item.done) << item.text;
}

TEST(Checklist, AsksForTheRelayWhereTheRelayIsWanted) {
    const auto items = checklist_items(with_relay_wanted(unreachable(listed_station())));
    EXPECT_EQ(items[3].text, "Connect to the " + host + " relay with your relay key");
    EXPECT_STREQ(items[3].page, "internet");
    EXPECT_FALSE(items[3].done);
}

TEST(Checklist, TicksWhatIsDone) {
    EXPECT_FALSE(checklist_items(unidentified(listed_station()))[0].done);
    EXPECT_TRUE(checklist_items(listed_station())[0].done);

    EXPECT_FALSE(checklist_items(with_receivers(listed_station(), 0))[1].done);
    EXPECT_TRUE(checklist_items(with_receivers(listed_station(), 1))[1].done);

    EXPECT_FALSE(checklist_items(unregistered(listed_station()))[2].done);
    EXPECT_TRUE(checklist_items(in_directory_state(listed_station(), "check-in failed"))[2].done);

    EXPECT_TRUE(checklist_items(listed_station())[3].done);
    EXPECT_FALSE(checklist_items(unreachable(listed_station()))[3].done);
    EXPECT_FALSE(checklist_items(in_directory_state(listed_station(), "checking in"))[3].done);
}

TEST(Checklist, IsDoneWhenAllFiveConditionsAreMet) {
    EXPECT_TRUE(checklist_is_done(listed_station()));
    EXPECT_TRUE(checklist_is_done(with_relay_wanted(listed_station())));
    EXPECT_TRUE(checklist_is_done(unlisted(listed_station())));
    EXPECT_FALSE(checklist_is_done(unidentified(listed_station())));
    EXPECT_FALSE(checklist_is_done(with_receivers(listed_station(), 0)));
    EXPECT_TRUE(checklist_is_done(with_receivers(listed_station(), 1)));
    EXPECT_FALSE(checklist_is_done(in_directory_state(listed_station(), "checking in")));
    EXPECT_FALSE(checklist_is_done(unreachable(listed_station())));
    StationState only_unregistered = listed_station();
    only_unregistered.registered = false;
    EXPECT_FALSE(checklist_is_done(only_unregistered));
}

TEST(Checklist, StaysWithFourTicksUntilTheRelaysStationHasCheckedIn) {
    const StationState state =
        with_relay_wanted(in_directory_state(listed_station(), "checking in"));
    for (const ChecklistItem& item : checklist_items(state))
        EXPECT_TRUE(item.done) << item.text;
    EXPECT_FALSE(checklist_is_done(state));
}

TEST(ChecklistMarkup, EscapesTheText) {
    EXPECT_EQ(checklist_item_markup({"<a> & b", false, "station"}), "&lt;a&gt; &amp; b");
    EXPECT_EQ(checklist_item_markup({"<a> & b", true, "station"}),
              "<span foreground=\"#7590A8\">&lt;a&gt; &amp; b</span>");
}

TEST(Frequency, IsWrittenInMegahertz) {
    const struct {
        double hz;
        const char* expected;
    } cases[] = {
        {7'074'000, "7.074"},
        {144'000'000, "144"},
        {10'489'750'000, "10489.8"},
        {0, "0"},
        {499, "0"},
        {500, "0.001"},
        {7'074'499, "7.074"},
        {7'074'500, "7.075"},
        {-500, "-0.001"},
        {999'999'500, "1000"},
        {9'007'199'254'740'992, "9.0072e+09"},
        {std::numeric_limits<double>::infinity(), "inf"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.hz);
        EXPECT_EQ(frequency_text(c.hz), c.expected);
    }
}

TEST(ReceiverOnTheAir, ShowsItsNameInBoldAndItsRange) {
    EXPECT_EQ(receiver_markup("RSPdx", 7'000'000, 7'300'000), "<b>RSPdx</b>   7 – 7.3 MHz");
    EXPECT_EQ(receiver_markup("", 0, 30'000'000), "<b>Receiver</b>   0 – 30 MHz");
    EXPECT_EQ(receiver_markup("R&D <2>", 0, 30'000'000), "<b>R&amp;D &lt;2&gt;</b>   0 – 30 MHz");
}

TEST(ReceiverOnTheAir, SaysWhoRunsIt) {
    EXPECT_STREQ(receiver_origin(true), "shared from Dialhouse");
    EXPECT_STREQ(receiver_origin(false), "started by Tarnwave");
}

TEST(FailedReceiver, ShowsItsLogLiterally) {
    EXPECT_EQ(failed_receiver_markup("2201<A>", "open failed: <usb> & busy"),
              "<b>2201&lt;A&gt;</b> is not running. Its log: open failed: &lt;usb&gt; &amp; busy");
    EXPECT_EQ(failed_receiver_markup("", ""), "<b></b> is not running. Its log: ");
}

TEST(FailedReceiver, StaysValidMarkupWithAZeroCharacterInItsName) {
    using namespace std::string_literals;
    EXPECT_EQ(failed_receiver_markup("22\0ab"s, "log"), "<b>22</b> is not running. Its log: log");
}

TEST(ListeningTitle, CountsListenersAgainstTheMost) {
    StationState state;
    EXPECT_EQ(listening_title(state), "Listening now · 0 of 0");
    state.listener_count = 3;
    state.listeners_allowed = 20;
    EXPECT_EQ(listening_title(state), "Listening now · 3 of 20");
}

TEST(SessionTime, IsMinutesAndSeconds) {
    const struct {
        std::int32_t seconds;
        const char* expected;
    } cases[] = {
        {0, "0:00"},
        {9, "0:09"},
        {60, "1:00"},
        {75, "1:15"},
        {3725, "62:05"},
        {-1, "0:-1"},
        {-75, "-1:-15"},
        {std::numeric_limits<std::int32_t>::max(), "35791394:07"},
        {std::numeric_limits<std::int32_t>::min(), "-35791394:-8"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.seconds);
        EXPECT_EQ(session_time_text(c.seconds), c.expected);
        EXPECT_LE(session_time_text(c.seconds).size(), 15u);
    }
}

TEST(TunedTo, FollowsTheListener) {
    const struct {
        const char* when;
        const char* listener;
        std::string expected;
    } cases[] = {
        {"listening", R"({"f": 7074000, "mode": "USB", "listening": true, "relayed": false})",
         "7.074 MHz USB"},
        {"watching the waterfall", R"({"f": 7074000, "mode": "USB", "listening": false})",
         "7.074 MHz USB (waterfall only)"},
        {"not tuned", "{}", ""},
        {"listening through the relay",
         R"({"f": 144.3e6, "mode": "FM", "listening": true, "relayed": true})",
         "via " + host + " · 144.3 MHz FM"},
        {"watching through the relay",
         R"({"f": 144.3e6, "mode": "FM", "listening": false, "relayed": true})",
         "via " + host + " · 144.3 MHz FM (waterfall only)"},
        {"not tuned, through the relay", R"({"relayed": true})", "via " + host + " · "},
        {"any word for the mode, as it stands",
         R"({"f": "high", "mode": "<b>&", "listening": true})", "0 MHz <b>&"},
        {"no word for the mode", R"({"f": 7000000, "mode": 5, "listening": true})", "7 MHz "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        EXPECT_EQ(tuned_to_text(json::parse(c.listener).as_object()), c.expected);
    }
}

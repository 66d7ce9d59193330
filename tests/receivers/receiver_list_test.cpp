// SPDX-License-Identifier: MIT
#include "receivers/receiver_list.h"

#include "link/json_access.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <exception>
#include <limits>
#include <string>
#include <vector>

namespace {

namespace json = boost::json;

Receiver from_settings(std::string_view element) {
    return receiver_from_settings(json::parse(element));
}

std::size_t merge(std::vector<Receiver>& list, std::string_view devices) {
    return merge_devices(list, json::parse(devices).as_array());
}

std::string device(const char* backend, const char* serial, const char* model = "RSPdx",
                   const char* available = "true") {
    return std::string{R"({"backend": ")"} + backend + R"(", "serial": ")" + serial +
           R"(", "model": ")" + model + R"(", "available": )" + available + "}";
}

/// A receiver that the owner shares, with a range of the owner's own.
Receiver shared_receiver(const char* backend, const char* serial) {
    Receiver receiver;
    receiver.backend = backend;
    receiver.serial = serial;
    receiver.model = "old model";
    receiver.enabled = true;
    receiver.lo = 3'500'000;
    receiver.hi = 4'000'000;
    return receiver;
}

} // namespace

TEST(LoadedReceiver, HasWhatTheSettingsSay) {
    const Receiver receiver = from_settings(
        R"({"backend": "sdrplay", "serial": "2201", "model": "RSPdx", "lo": 7000000,
            "hi": 7.3e6, "enabled": false})");
    EXPECT_EQ(receiver.backend, "sdrplay");
    EXPECT_EQ(receiver.serial, "2201");
    EXPECT_EQ(receiver.model, "RSPdx");
    EXPECT_FALSE(receiver.enabled);
    EXPECT_EQ(receiver.lo, 7'000'000);
    EXPECT_EQ(receiver.hi, 7'300'000);
    EXPECT_TRUE(receiver.available);
    EXPECT_EQ(receiver.share_switch, nullptr);
    EXPECT_EQ(receiver.low_spin, nullptr);
    EXPECT_EQ(receiver.high_spin, nullptr);
    EXPECT_EQ(receiver.coverage_label, nullptr);
    EXPECT_EQ(receiver.details_box, nullptr);
}

TEST(LoadedReceiver, IsSharedAndCalledAfterItsBackendUnlessTheSettingsSayOtherwise) {
    const Receiver bare = from_settings(
        R"({"backend": "rx888", "serial": "1", "lo": 0, "hi": 1, "available": false})");
    EXPECT_EQ(bare.model, "rx888");
    EXPECT_TRUE(bare.enabled);
    EXPECT_TRUE(bare.available);
    EXPECT_EQ(
        from_settings(R"({"backend": "a", "serial": "", "lo": 0, "hi": 1, "model": ""})").model,
        "");
}

TEST(MergeDevices, AppendsNewReceiversSwitchedOff) {
    std::vector<Receiver> list{shared_receiver("sdrplay", "2201")};
    const std::size_t added = merge(list, "[" + device("rtl-sdr", "1", "Blog V4") + "," +
                                              device("rx888", "2", "RX-888 II", "false") + "," +
                                              device("other", "3") + "]");
    EXPECT_EQ(added, 3u);
    ASSERT_EQ(list.size(), 4u);
    EXPECT_EQ(list[0].serial, "2201");
    const struct {
        const char* backend;
        const char* serial;
        const char* model;
        bool available;
        double lo;
        double hi;
    } cases[] = {
        {"rtl-sdr", "1", "Blog V4", true, 144'000'000, 146'000'000},
        {"rx888", "2", "RX-888 II", false, 0, 30'000'000},
        {"other", "3", "RSPdx", true, 7'000'000, 7'300'000},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(cases[i].backend);
        const Receiver& receiver = list[i + 1];
        EXPECT_EQ(receiver.backend, cases[i].backend);
        EXPECT_EQ(receiver.serial, cases[i].serial);
        EXPECT_EQ(receiver.model, cases[i].model);
        EXPECT_EQ(receiver.available, cases[i].available);
        EXPECT_FALSE(receiver.enabled);
        EXPECT_EQ(receiver.lo, cases[i].lo);
        EXPECT_EQ(receiver.hi, cases[i].hi);
        EXPECT_EQ(receiver.share_switch, nullptr);
    }
}

TEST(MergeDevices, RefreshesModelAndAvailabilityAndNothingElse) {
    std::vector<Receiver> list{shared_receiver("sdrplay", "2201")};
    const std::size_t added =
        merge(list, "[" + device("sdrplay", "2201", "RSPdx R2", "false") + "]");
    EXPECT_EQ(added, 0u);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].model, "RSPdx R2");
    EXPECT_FALSE(list[0].available);
    EXPECT_TRUE(list[0].enabled);
    EXPECT_EQ(list[0].lo, 3'500'000);
    EXPECT_EQ(list[0].hi, 4'000'000);

    merge(list, "[" + device("sdrplay", "2201", "", "true") + "]");
    EXPECT_EQ(list[0].model, "");
    EXPECT_TRUE(list[0].available);
}

TEST(MergeDevices, KeepsReceiversThatTheReplyDoesNotMention) {
    std::vector<Receiver> list{shared_receiver("sdrplay", "2201"), shared_receiver("rx888", "7")};
    list[1].available = false;
    EXPECT_EQ(merge(list, "[]"), 0u);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0].model, "old model");
    EXPECT_FALSE(list[1].available);
}

TEST(MergeDevices, TellsBackendsAndSerialsApart) {
    std::vector<Receiver> list{shared_receiver("sdrplay", "1")};
    const std::size_t added =
        merge(list, "[" + device("rtl-sdr", "1") + "," + device("sdrplay", "10") + "]");
    EXPECT_EQ(added, 2u);
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].model, "old model");
}

TEST(MergeDevices, AddsADeviceThatIsListedTwiceOnce) {
    std::vector<Receiver> list;
    const std::size_t added = merge(list, "[" + device("sdrplay", "1", "first") + "," +
                                              device("sdrplay", "1", "second") + "]");
    EXPECT_EQ(added, 1u);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0].model, "second");
}

TEST(MergeDevices, RefreshesTheFirstOfTwoEqualEntries) {
    std::vector<Receiver> list{shared_receiver("sdrplay", "1"), shared_receiver("sdrplay", "1")};
    merge(list, "[" + device("sdrplay", "1", "new") + "]");
    EXPECT_EQ(list[0].model, "new");
    EXPECT_EQ(list[1].model, "old model");
}

TEST(MergeDevices, KeepsTheDevicesBeforeABrokenOne) {
    std::vector<Receiver> list;
    EXPECT_THROW(merge(list, "[" + device("sdrplay", "1") + ", null]"), std::exception);
    EXPECT_EQ(list.size(), 1u);
}

TEST(DiscoveryText, CountsWhatWasFoundAndWhatIsNew) {
    const struct {
        std::size_t found;
        std::size_t added;
        const char* expected;
    } cases[] = {
        {0, 0,
         "No receivers found. Is the device plugged in, and for SDRplay, is SDRplay's API "
         "installed?"},
        {1, 0, "1 found."},
        {2, 0, "2 found."},
        {1, 1, "1 found, 1 new: switch on the ones to share."},
        {3, 1, "3 found, 1 new: switch on the ones to share."},
        {64, 64, "64 found, 64 new: switch on the ones to share."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(discovery_text(c.found, c.added), c.expected);
    }
}

TEST(SpokenName, HasTheSerialWhereTwoAreOfOneModel) {
    const std::vector<Receiver> list{{.serial = "1", .model = "RSPdx"},
                                     {.serial = "2", .model = "RTL-SDR"},
                                     {.serial = "3", .model = "RTL-SDR"}};
    EXPECT_EQ(spoken_name(list, list[0]), "RSPdx");
    EXPECT_EQ(spoken_name(list, list[1]), "RTL-SDR (serial 2)");
    EXPECT_EQ(spoken_name(list, list[2]), "RTL-SDR (serial 3)");
}

TEST(SavedReceivers, AreTheSharedOnesInOrder) {
    std::vector<Receiver> list{shared_receiver("sdrplay", "1"), shared_receiver("rx888", "2"),
                               shared_receiver("rtl-sdr", "3")};
    list[1].enabled = false;
    list[2].available = false;
    EXPECT_EQ(json::serialize(receivers_to_save(list)),
              R"([{"backend":"sdrplay","serial":"1","model":"old model",)"
              R"("lo":3.5E6,"hi":4E6,"enabled":true},)"
              R"({"backend":"rtl-sdr","serial":"3","model":"old model",)"
              R"("lo":3.5E6,"hi":4E6,"enabled":true}])");
}

TEST(SavedReceivers, AreAnEmptyArrayWhenAllAreOff) {
    std::vector<Receiver> list{shared_receiver("sdrplay", "1")};
    list[0].enabled = false;
    EXPECT_TRUE(receivers_to_save(list).empty());
    EXPECT_TRUE(receivers_to_save({}).empty());
}

TEST(SavedReceivers, HaveWholeHertz) {
    const std::pair<double, double> cases[] = {
        {7.3 * 1'000'000, 7'300'000},
        {16.001 * 1'000'000, 16'001'000},
        {0.5, 1},
        {0.4999, 0},
        {-2.5, -3},
        {6'000'000'000, 6'000'000'000},
    };
    for (const auto& [hz, expected] : cases) {
        SCOPED_TRACE(hz);
        Receiver receiver = shared_receiver("sdrplay", "1");
        receiver.lo = receiver.hi = hz;
        const json::array saved = receivers_to_save({receiver});
        EXPECT_EQ(saved.at(0).at("lo"), json::value(expected));
        EXPECT_EQ(saved.at(0).at("hi"), json::value(expected));
    }
}

TEST(ReceiverRecords, AreNamedWhenTheyAreNoObjects) {
    const ReadingStep step{"loading the form"};
    EXPECT_THROW(receiver_from_settings(json::value(1)), std::exception);
    EXPECT_NE(contract_error_message("").find("cannot read an element of receivers ("),
              std::string::npos);
    std::vector<Receiver> list;
    EXPECT_THROW(merge_devices(list, json::array{1}), std::exception);
    EXPECT_NE(contract_error_message("").find("cannot read a device ("), std::string::npos);
}

// SPDX-License-Identifier: MIT
#include "settings_check.h"

#include "default_settings.h"
#include "scenarios.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace json = boost::json;

namespace {

json::object stored() {
    return default_settings(*find_scenario("on-air"));
}

/// The settings with the member at a JSON pointer replaced.
json::object with(std::string_view pointer, const json::value& value) {
    json::value document = stored();
    document.at_pointer(pointer) = value;
    return document.as_object();
}

json::object with_receiver(std::string_view member, const json::value& value) {
    json::object settings = stored();
    settings.at("receivers").at(0).as_object()[member] = value;
    return settings;
}

std::string fault_of(const json::object& proposed) {
    return settings_fault(stored(), proposed);
}

} // namespace

TEST(SettingsCheck, NamesTheLimitsOfANumber) {
    // The limits themselves are compared with the description of the service.
    for (const json::value& port : {json::value(1023), json::value(65536), json::value(8073.5),
                                    json::parse("1e999"), json::value("8073"), json::value()})
        EXPECT_EQ(fault_of(with("/network/port", port)),
                  "The public port must be a whole number from 1024 to 65535 (network.port).");
}

TEST(SettingsCheck, HoldsEachMemberToItsKind) {
    struct Case {
        std::string_view pointer;
        json::value value;
        std::string_view fault;
    };
    const std::vector<Case> cases = {
        {"/station/name", 5, "The setting station.name must be a text."},
        {"/attach", 1, "The sharing of Dialhouse's receivers must be on or off (attach)."},
        {"/relay/enabled", "yes", "The relay switch must be on or off (relay.enabled)."},
        {"/content/modes", "USB", "The list of modes must be a list (content.modes)."},
        {"/access/banned", json::object{},
         "The list of blocked addresses must be a list (access.banned)."},
        {"/receivers", nullptr, "The list of receivers must be a list (receivers)."},
        {"/station", "Hilltop", "The setting station must be a group of settings."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.pointer);
        EXPECT_EQ(fault_of(with(c.pointer, c.value)), c.fault);
    }
}

TEST(SettingsCheck, HoldsASettingWithoutARuleOfItsOwnToItsKind) {
    json::object with_height = stored();
    with_height["height_m"] = 12;
    json::object proposed = with_height;
    proposed["height_m"] = 20.5;
    EXPECT_EQ(settings_fault(with_height, proposed), "");
    proposed["height_m"] = "high";
    EXPECT_EQ(settings_fault(with_height, proposed), "The setting height_m must be a number.");
}

TEST(SettingsCheck, NamesAMemberThatIsMissing) {
    json::object settings = stored();
    settings.at("network").as_object().erase("port");
    EXPECT_EQ(fault_of(settings), "The setting network.port is missing.");
    settings.erase("network");
    EXPECT_EQ(fault_of(settings), "The setting network is missing.");
}

TEST(SettingsCheck, WantsMembersThatNoFormEditsBackUnchanged) {
    EXPECT_EQ(fault_of(with("/station/timezone", "UTC")),
              "The setting station.timezone must come back as it was read. Load it again.");
}

TEST(SettingsCheck, RefusesMembersThatItNeverSent) {
    json::object settings = stored();
    settings["colour"] = "blue";
    EXPECT_EQ(fault_of(settings), "There is no setting colour.");
    settings = stored();
    settings.at("network").as_object()["colour"] = "blue";
    EXPECT_EQ(fault_of(settings), "There is no setting network.colour.");
}

TEST(SettingsCheck, KnowsFiveModes) {
    EXPECT_EQ(fault_of(with("/content/modes", {"USB", "usb"})),
              "The mode “usb” is unknown: choose from USB, LSB, CW, AM and FM.");
    EXPECT_EQ(fault_of(with("/content/modes", json::array{5})),
              "The mode 5 is unknown: choose from USB, LSB, CW, AM and FM.");
    EXPECT_EQ(fault_of(with("/content/modes", {"USB", "USB"})), "The mode “USB” is listed twice.");
}

TEST(SettingsCheck, WantsAddressesOrRangesInTheBlockedList) {
    EXPECT_EQ(fault_of(with("/access/banned", json::array{"203.0.113.400"})),
              "“203.0.113.400” is neither an address nor a range of addresses such as "
              "198.51.100.0/24.");
    EXPECT_EQ(fault_of(with("/access/banned", json::array{7})),
              "7 is neither an address nor a range of addresses such as 198.51.100.0/24.");
}

TEST(SettingsCheck, HoldsReceiversToTheirShape) {
    struct Case {
        std::string_view member;
        json::value value;
        std::string_view fault;
    };
    const std::vector<Case> cases = {
        {"backend", 5, "Receiver 1 needs a backend."},
        {"serial", "", "Receiver 1 needs a backend and a serial number."},
        {"model", false, "Receiver 1 needs a model."},
        {"lo", "low", "Receiver 1 needs lo, a whole number of hertz from 0 to 6,000,000,000."},
        {"hi", 6'000'000'001,
         "Receiver 1 needs hi, a whole number of hertz from 0 to 6,000,000,000."},
        {"hi", 7'000'000, "The range of receiver “1905034F2A” ends where it begins or below."},
        {"hi", 7'000'001, ""},
        {"enabled", 1, "Receiver 1 must say whether it is enabled."},
        {"colour", "blue", "Receiver 1 has a member that no receiver has."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.member);
        SCOPED_TRACE(json::serialize(c.value));
        EXPECT_EQ(fault_of(with_receiver(c.member, c.value)), c.fault);
    }
    EXPECT_EQ(fault_of(with("/receivers/0", "SDRplay")), "Receiver 1 must be a group of settings.");
    EXPECT_EQ(fault_of(with("/receivers/1", stored().at("receivers").at(0))),
              "The receiver “1905034F2A” is listed twice.");
    EXPECT_EQ(fault_of(with("/receivers", json::array{})), "");
}

TEST(SettingsCheck, WantsAWebAddressForTheList) {
    EXPECT_EQ(fault_of(with("/directory/url", "list.example")),
              "The station list address must begin with https:// or http://.");
}

TEST(SettingsCheck, SettlesNumbersAsIntegers) {
    json::object settings = with("/network/port", 9e3);
    settings.at("listeners").as_object()["max"] = 2E1;
    settings.at("receivers").at(0).as_object()["hi"] = 7.2e6;
    settle_numbers(settings);
    json::object expected = with("/network/port", 9000);
    expected.at("receivers").at(0).as_object()["hi"] = 7'200'000;
    EXPECT_EQ(json::serialize(settings), json::serialize(expected));
}

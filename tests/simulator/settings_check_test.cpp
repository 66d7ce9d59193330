// SPDX-License-Identifier: MIT
#include "settings_check.h"

#include "default_settings.h"
#include "scenarios.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace json = boost::json;

namespace {

json::object stored() {
    return default_settings(*find_scenario("on-air"));
}

/// The settings with another value at a JSON pointer.
json::object with(std::string_view pointer, const json::value& value) {
    json::value document = stored();
    const std::size_t last_step = pointer.rfind('/');
    if (json::object* group = document.at_pointer(pointer.substr(0, last_step)).if_object())
        (*group)[pointer.substr(last_step + 1)] = value;
    else
        document.at_pointer(pointer) = value;
    return document.as_object();
}

} // namespace

// Which values are refused is compared with the description of the service.
TEST(SettingsCheck, SaysWhatIsWrongWithAMember) {
    struct Case {
        std::string_view pointer;
        json::value value;
        std::string_view fault;
    };
    for (const Case& c : std::vector<Case>{
             {"/station/name", 5, "The setting station.name must be a text."},
             {"/attach", 1, "The sharing of Dialhouse's receivers must be on or off (attach)."},
             {"/content/modes", "USB", "The list of modes must be a list (content.modes)."},
             {"/network/port", json::parse("1e999"),
              "The public port must be a whole number from 1024 to 65535 (network.port)."},
             {"/station", "Hilltop", "The setting station must be a group of settings."},
             {"/station/timezone", "UTC",
              "The setting station.timezone must come back as it was read. Load it again."},
             {"/colour", "blue", "There is no setting colour."},
             {"/network/colour", "blue", "There is no setting network.colour."},
             {"/content/modes",
              {"USB", "usb"},
              "The mode “usb” is unknown: choose from USB, LSB, CW, AM and FM."},
             {"/content/modes", json::array{5},
              "The mode 5 is unknown: choose from USB, LSB, CW, AM and FM."},
             {"/content/modes", {"USB", "USB"}, "The mode “USB” is listed twice."},
             {"/access/banned", json::array{"203.0.113.400"},
              "“203.0.113.400” is neither an address nor a range of addresses such as "
              "198.51.100.0/24."},
             {"/access/banned", json::array{7},
              "7 is neither an address nor a range of addresses such as 198.51.100.0/24."},
             {"/receivers/0", "SDRplay", "Receiver 1 must be a group of settings."},
             {"/receivers/0/backend", 5, "Receiver 1 needs a backend."},
             {"/receivers/0/serial", "", "Receiver 1 needs a backend and a serial number."},
             {"/receivers/0/lo", "low",
              "Receiver 1 needs lo, a whole number of hertz from 0 to 6,000,000,000."},
             {"/receivers/0/hi", 7'000'000,
              "The range of receiver “1905034F2A” ends where it begins or below."},
             {"/receivers/0/hi", 7'000'001, ""},
             {"/receivers/0/enabled", 1, "Receiver 1 must say whether it is enabled."},
             {"/receivers/0/colour", "blue", "Receiver 1 has a member that no receiver has."},
             {"/receivers/1", stored().at("receivers").at(0),
              "The receiver “1905034F2A” is listed twice."},
             {"/receivers", json::array{}, ""},
             {"/directory/url", "list.example",
              "The station list address must begin with https:// or http://."},
         }) {
        SCOPED_TRACE(c.pointer);
        EXPECT_EQ(settings_fault(stored(), with(c.pointer, c.value)), c.fault);
    }
}

TEST(SettingsCheck, NamesAMemberThatIsMissing) {
    json::object settings = stored();
    settings.at("network").as_object().erase("port");
    EXPECT_EQ(settings_fault(stored(), settings), "The setting network.port is missing.");
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

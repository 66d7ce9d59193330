// SPDX-License-Identifier: MIT
#include "devices.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// The serial numbers of the devices that a search finds, with "!" behind those that are held.
std::string found(const char* scenario, double time_s) {
    std::string text;
    for (const boost::json::value& device :
         devices_document(scenario_devices(*find_scenario(scenario)), time_s)) {
        text += text.empty() ? "" : " ";
        text += device.at("serial").as_string().c_str();
        if (!device.at("available").as_bool())
            text += "!";
    }
    return text;
}

} // namespace

TEST(Devices, AppearVanishAndAreHeldByAnotherProgram) {
    EXPECT_EQ(found("on-air", 0), "1905034F2A 00000001 2204017C81!");
    EXPECT_EQ(found("on-air", 30), "1905034F2A 00000001 2204017C81! 0009072C00D6");
    EXPECT_EQ(found("on-air", 60), "1905034F2A 00000001 2204017C81 0009072C00D6");
    EXPECT_EQ(found("on-air", 600), "1905034F2A 00000001 2204017C81");
}

TEST(Devices, AreNoneWhenNothingIsPluggedIn) {
    EXPECT_EQ(found("no-devices", 100), "");
}

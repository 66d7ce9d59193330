// SPDX-License-Identifier: MIT
#include "options.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

Options parse(const std::vector<const char*>& arguments) {
    return parse_options(arguments);
}

} // namespace

TEST(SimulatorOptions, AreReadInBothSpellings) {
    for (const std::vector<const char*>& arguments :
         {std::vector<const char*>{"--socket=/tmp/s", "--scenario=relay", "--state=/tmp/f",
                                   "--speed=2.5", "--step=0.5", "--delay-ms=40", "--owner-file=/o",
                                   "--broker-file=/b", "--record=/r"},
          {"--socket", "/tmp/s", "--scenario", "relay", "--state", "/tmp/f", "--speed", "2.5",
           "--step", "0.5", "--delay-ms", "40", "--owner-file", "/o", "--broker-file", "/b",
           "--record", "/r"}}) {
        const Options options = parse(arguments);
        EXPECT_EQ(options.fault, "");
        EXPECT_EQ(options.socket, "/tmp/s");
        EXPECT_EQ(options.scenario->name, "relay");
        EXPECT_EQ(options.state_file, "/tmp/f");
        EXPECT_EQ(options.speed, 2.5);
        EXPECT_EQ(options.step_s, 0.5);
        EXPECT_EQ(options.delay_ms, 40);
        EXPECT_EQ(options.owner_file, "/o");
        EXPECT_EQ(options.broker_file, "/b");
        EXPECT_EQ(options.record_folder, "/r");
    }
}

TEST(SimulatorOptions, SayWhatIsWrong) {
    struct Case {
        std::vector<const char*> arguments;
        std::string_view fault;
    };
    const std::vector<Case> cases = {
        {{}, "--socket PATH is needed: see --help."},
        {{"--socket"}, "--socket needs a value."},
        {{"--socket="}, "--socket needs a path."},
        {{"overview"}, "The option “overview” is unknown: see --help."},
        {{"--help=yes"}, "The option “--help=yes” is unknown: see --help."},
        {{"--scenario", "nowhere"}, "There is no scenario “nowhere”: see --list-scenarios."},
        {{"--speed", "fast"}, "--speed needs a number from 0 to 10000."},
        {{"--speed", "10001"}, "--speed needs a number from 0 to 10000."},
        {{"--step", "3601"}, "--step needs a number from 0 to 3600."},
        {{"--delay-ms", "600001"}, "--delay-ms needs a whole number from 0 to 600000."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        EXPECT_EQ(parse(c.arguments).fault, c.fault);
    }
}

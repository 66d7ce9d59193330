// SPDX-License-Identifier: MIT
#include "simulator_fixture.h"

#include "station_files.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

/// A folder of its own for each test.
class SimulatorFiles : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "simulator-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string path(const char* name) const { return (folder_ / name).string(); }

    void write(const char* name, const std::string& text) const {
        std::ofstream{path(name), std::ios::binary} << text;
    }

    std::string read(const char* name) const {
        std::ifstream file{path(name), std::ios::binary};
        return {std::istreambuf_iterator<char>{file}, {}};
    }

private:
    fs::path folder_{};
};

using SettingsFile = SimulatorFiles;
using RequestRecordFiles = SimulatorFiles;
using HandOverFiles = SimulatorFiles;

} // namespace

TEST_F(SettingsFile, BringsTheSettingsBack) {
    Station station = station_in("first-run");
    answer(station, request("POST", "/api/register", R"({"email":"a@b.example"})"));
    answer(station, request("POST", "/api/ban", R"({"address":"203.0.113.9"})"));
    ASSERT_EQ(write_settings_file(path("state"), station.settings), "");
    json::object settings;
    EXPECT_EQ(read_settings_file(path("state"), station_in("first-run").settings, settings), "");
    EXPECT_EQ(settings, station.settings);
}

TEST_F(SettingsFile, IsRefusedWhenItHoldsSomethingElse) {
    json::object settings;
    write("state", "[]");
    EXPECT_EQ(read_settings_file(path("state"), station_in("on-air").settings, settings),
              path("state") + " does not hold one JSON object.");
    json::object wrong = station_in("on-air").settings;
    wrong.at("network").as_object()["port"] = 80;
    write("state", json::serialize(wrong));
    EXPECT_EQ(read_settings_file(path("state"), station_in("on-air").settings, settings),
              path("state") +
                  ": The public port must be a whole number from 1024 to 65535 (network.port).");
    EXPECT_TRUE(settings.empty());
}

TEST_F(SettingsFile, SaysWhenItCannotBeWritten) {
    EXPECT_EQ(write_settings_file(path("missing/state"), {}),
              path("missing/state") + ": No such file or directory");
}

TEST_F(RequestRecordFiles, HoldEachBodyAsItCame) {
    RequestRecord record{path("bodies")};
    EXPECT_EQ(record_body(record, request("GET", "/api/state")), "");
    EXPECT_EQ(record_body(record, request("PUT", "/api/settings", "{ }")), "");
    EXPECT_EQ(record_body(record, request("POST", "/api/../../kick", "5")), "");
    EXPECT_EQ(read("bodies/0001-PUT-settings.json"), "{ }");
    EXPECT_EQ(read("bodies/0002-POST-kick.json"), "5");
    EXPECT_EQ(std::distance(fs::directory_iterator{path("bodies")}, {}), 2);
}

TEST_F(HandOverFiles, HandTheStationToTheUserTheyName) {
    struct Case {
        const char* when;
        const char* at_start; ///< null: no file
        const char* later;
        bool accepted;
    };
    for (const Case& c : {
             Case{"the file stays away", nullptr, nullptr, false},
             {"an empty file appears", nullptr, "", true},
             {"a file appears that names somebody else", nullptr, "somebody-else\n", false},
             {"a file appears that names this user", nullptr, "USER\n", true},
             {"the file stays empty", "", "", false},
             {"the file goes from another user to this one", "somebody-else\n", "USER\nmore\n",
              true},
             {"this user is on the second line only", "somebody-else\n", "somebody-else\nUSER\n",
              false},
         }) {
        SCOPED_TRACE(c.when);
        fs::remove(path("owner"));
        if (c.at_start)
            write("owner", c.at_start);
        const HandOver hand_over = make_hand_over(path("owner"), "");
        Station station = station_in("not-owner");
        watch_files(hand_over, station);
        EXPECT_FALSE(station.owner_accepted);
        if (c.later) {
            std::string text = c.later;
            if (const std::size_t user = text.find("USER"); user != std::string::npos)
                text.replace(user, 4, hand_over.user);
            write("owner", text);
        }
        watch_files(hand_over, station);
        EXPECT_EQ(station.owner_accepted, c.accepted);
    }
}

TEST_F(HandOverFiles, StartTheBroker) {
    const HandOver hand_over = make_hand_over("", path("broker"));
    Station station = station_in("broker-down");
    watch_files(hand_over, station);
    EXPECT_FALSE(station.broker);
    write("broker", "");
    watch_files(hand_over, station);
    EXPECT_TRUE(station.broker);
    EXPECT_EQ(station.started.size(), 2U);
}

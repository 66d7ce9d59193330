// SPDX-License-Identifier: MIT
#include "support/state_document.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace json = boost::json;

namespace {

TEST(StateDocument, IsWhole) {
    const json::value document = state_document();
    EXPECT_EQ(document.at("settings").as_object().size(), 9U);
    EXPECT_EQ(document.at("status").as_object().size(), 7U);
    EXPECT_EQ(document.at("status").at("listeners").as_array().size(), 2U);
}

TEST(StateDocument, CanHaveOneThingReplaced) {
    const json::value bent = with(state_document(), "status.listeners.1.address", "192.0.2.1");
    EXPECT_EQ(bent.at("status").at("listeners").at(1).at("address"), "192.0.2.1");
    EXPECT_EQ(with(bent, "status.listeners.1.address", "2001:db8::17"), state_document());
    EXPECT_EQ(with(state_document(), "settings.content.modes.0", 5).at("settings").at("content"),
              json::parse(R"({"modes":[5,"LSB","CW","AM"],"block_fm_broadcast":true,
                              "block_am_broadcast":false})"));
}

TEST(StateDocument, CanHaveOneThingAdded) {
    EXPECT_EQ(with(state_document(), "settings.new", true).at("settings").at("new"), true);
    EXPECT_EQ(with(state_document(), "settings.access.banned.2", "x")
                  .at("settings")
                  .at("access")
                  .at("banned")
                  .as_array()
                  .size(),
              3U);
}

TEST(StateDocument, CanHaveOneThingTakenAway) {
    const json::value bent = without(state_document(), "status.relay");
    EXPECT_EQ(bent.at("status").as_object().size(), 6U);
    EXPECT_FALSE(bent.at("status").as_object().contains("relay"));
    EXPECT_EQ(json::serialize(without(json::parse(R"({"a":1,"b":2,"c":3})"), "a")),
              R"({"b":2,"c":3})");
    EXPECT_EQ(without(state_document(), "settings.access.banned.0").at("settings").at("access"),
              json::parse(R"({"banned":["2001:db8::66"]})"));
}

TEST(StateDocument, RefusesAPathThatIsNotThere) {
    EXPECT_THROW(with(state_document(), "status.nothing.at", 1), std::invalid_argument);
    EXPECT_THROW(with(state_document(), "status.listeners.3", 1), std::invalid_argument);
    EXPECT_THROW(with(state_document(), "status.listeners.x", 1), std::invalid_argument);
    EXPECT_THROW(with(state_document(), "status.broker.x", 1), std::invalid_argument);
    EXPECT_THROW(without(state_document(), "status.nothing"), std::invalid_argument);
    EXPECT_THROW(without(state_document(), "status.listeners.2"), std::invalid_argument);
    EXPECT_THROW(without(state_document(), "status.listeners.0.x.y"), std::invalid_argument);
}

} // namespace

// SPDX-License-Identifier: MIT
#include "ui/settings_body.h"

#include "link/json_access.h"
#include "support/user_locale.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <exception>
#include <string>
#include <vector>

namespace {

const char* const loaded_text = R"({
    "version": 3,
    "station": {"name": "Hilltop", "callsign": "K1ABC", "grid": "EM95", "description": "old",
                "founded": 1987},
    "attach": false,
    "receivers": [{"backend": "rx888", "serial": "7", "lo": 0, "hi": 30000000}],
    "listeners": {"max": 20, "per_address": 2},
    "content": {"modes": ["USB"], "block_am_broadcast": true},
    "access": {"banned": ["203.0.113.7"], "note": null},
    "extension": {"kept": [1, 2.5, "three"]}})";

json::object loaded() {
    return json::parse(loaded_text).as_object();
}

/// The values that a form shows which was just loaded, receivers aside.
FormValues loaded_form() {
    FormValues form;
    form.fields = {
        {"station.name", "Hilltop"},
        {"station.callsign", "K1ABC"},
        {"station.grid", "EM95"},
        {"attach", false},
        {"listeners.max", 20.0},
        {"listeners.per_address", 2.0},
        {"content.block_am_broadcast", true},
    };
    form.description = "old";
    form.modes = {"USB"};
    form.blocked_text = "203.0.113.7\n";
    return form;
}

json::object body_with(const FieldValue& field) {
    FormValues form = loaded_form();
    form.fields = {field};
    return settings_body(loaded(), form, {});
}

std::vector<std::string> member_names(const json::object& object) {
    std::vector<std::string> names;
    for (const auto& member : object)
        names.emplace_back(member.key());
    return names;
}

const json::value& at(const json::object& root, std::string_view key) {
    const json::value* found = find_path(root, key);
    EXPECT_NE(found, nullptr) << key;
    static const json::value nothing;
    return found ? *found : nothing;
}

} // namespace

TEST(SettingsBody, IsTheLoadedSettingsWhenNothingWasEdited) {
    Receiver receiver;
    receiver.backend = "rx888";
    receiver.serial = "7";
    receiver.model = "rx888";
    receiver.enabled = true;
    receiver.hi = 30'000'000;
    json::object expected = loaded();
    expected["receivers"] = json::parse(R"([{"backend": "rx888", "serial": "7", "model": "rx888",
        "lo": 0.0, "hi": 30000000.0, "enabled": true}])");
    find_path(expected, "listeners.max")->emplace_double() = 20;
    find_path(expected, "listeners.per_address")->emplace_double() = 2;
    EXPECT_EQ(settings_body(loaded(), loaded_form(), {receiver}), expected);
}

TEST(SettingsBody, KeepsTheServicesOrder) {
    const json::object body = settings_body(loaded(), loaded_form(), {});
    EXPECT_EQ(member_names(body),
              (std::vector<std::string>{"version", "station", "attach", "receivers", "listeners",
                                        "content", "access", "extension"}));
    EXPECT_EQ(member_names(at(body, "station").as_object()),
              (std::vector<std::string>{"name", "callsign", "grid", "description", "founded"}));
}

TEST(SettingsBody, LeavesTheLoadedSettingsAlone) {
    const json::object before = loaded();
    FormValues form = loaded_form();
    form.fields = {{"station.name", "New"}, {"station.callsign", "n0w"}};
    form.description = "new";
    form.modes = {};
    form.blocked_text = "";
    settings_body(before, form, {});
    EXPECT_EQ(before, loaded());
}

TEST(SettingsBody, OutlivesTheReplyThatItCameFrom) {
    json::object body;
    {
        json::object settings;
        settings = std::move(parse_reply(loaded_text).as_object());
        json::object made = settings_body(settings, loaded_form(), {});
        EXPECT_EQ(*made.storage(), *json::storage_ptr{});
        body = std::move(made);
    }
    EXPECT_EQ(at(body, "station.name"), json::value("Hilltop"));
}

TEST(SettingsBody, WritesOverAValueOfAnyKind) {
    EXPECT_EQ(at(body_with({"station.founded", true}), "station.founded"), json::value(true));
    EXPECT_EQ(at(body_with({"access.note", "text"}), "access.note"), json::value("text"));
    EXPECT_EQ(at(body_with({"extension", 1.5}), "extension"), json::value(1.5));
}

TEST(SettingsBody, NeverAddsAKeyThatTheServiceDidNotSend) {
    const json::object body = body_with({"station.antenna", "80 m end-fed"});
    EXPECT_EQ(find_path(body, "station.antenna"), nullptr);
    EXPECT_EQ(find_path(body_with({"relay.enabled", true}), "relay"), nullptr);
    EXPECT_EQ(at(body_with({"attach.below", true}), "attach"), json::value(false));
}

TEST(SettingsBody, SendsTheCallsignInUpperCase) {
    EXPECT_EQ(at(body_with({"station.callsign", "k1abc/p"}), "station.callsign"),
              json::value("K1ABC/P"));
    // Letters beyond ASCII stay as they are.
    EXPECT_EQ(at(body_with({"station.callsign", "dl1äß"}), "station.callsign"),
              json::value("DL1äß"));
}

TEST(SettingsBody, UpperCasesTheSameInEveryLocale) {
    const UserLocale turkish{"tr_TR.UTF-8"};
    EXPECT_EQ(at(body_with({"station.callsign", "i1iii"}), "station.callsign"),
              json::value("I1III"));
}

TEST(SettingsBody, ReadsTheCallsignBackFromWhatItWrote) {
    json::object settings = loaded();
    *find_path(settings, "station.callsign") = 5;
    FormValues form = loaded_form();
    form.fields = {};
    EXPECT_EQ(at(settings_body(settings, form, {}), "station.callsign"), json::value(""));
    *find_path(settings, "station.callsign") = "k1abc";
    EXPECT_EQ(at(settings_body(settings, form, {}), "station.callsign"), json::value("K1ABC"));
}

TEST(SettingsBody, SendsTheModesInTheirOrder) {
    FormValues form = loaded_form();
    form.modes = {"USB", "LSB", "CW", "AM", "FM"};
    EXPECT_EQ(at(settings_body(loaded(), form, {}), "content.modes"),
              json::parse(R"(["USB", "LSB", "CW", "AM", "FM"])"));
    form.modes = {};
    EXPECT_EQ(at(settings_body(loaded(), form, {}), "content.modes"), json::parse("[]"));
}

TEST(SettingsBody, SendsOneBlockedAddressForEachWord) {
    FormValues form = loaded_form();
    form.blocked_text = "\n\n  203.0.113.7 198.51.100.0/24\n\n\t2001:db8::1\n";
    EXPECT_EQ(at(settings_body(loaded(), form, {}), "access.banned"),
              json::parse(R"(["203.0.113.7", "198.51.100.0/24", "2001:db8::1"])"));
    form.blocked_text = " \n";
    EXPECT_EQ(at(settings_body(loaded(), form, {}), "access.banned"), json::parse("[]"));
}

TEST(SettingsBody, SendsSharedReceiversInPlace) {
    Receiver shared;
    shared.backend = "sdrplay";
    shared.serial = "2201";
    shared.model = "RSPdx";
    shared.enabled = true;
    shared.lo = 7.0 * 1'000'000;
    shared.hi = 7.3 * 1'000'000;
    Receiver off = shared;
    off.serial = "2202";
    off.enabled = false;
    EXPECT_EQ(at(settings_body(loaded(), loaded_form(), {off, shared}), "receivers"),
              json::parse(R"([{"backend": "sdrplay", "serial": "2201", "model": "RSPdx",
                               "lo": 7000000.0, "hi": 7300000.0, "enabled": true}])"));
    EXPECT_EQ(at(settings_body(loaded(), loaded_form(), {off}), "receivers"), json::parse("[]"));
}

TEST(SettingsBody, AddsTheReceiversAtTheEndWhenTheyWereMissing) {
    // Made anew: taking a member out of an object moves the last one into its place.
    json::object settings;
    for (const auto& member : loaded())
        if (member.key() != "receivers")
            settings[member.key()] = member.value();
    const json::object body = settings_body(settings, loaded_form(), {});
    EXPECT_EQ(member_names(body).back(), "receivers");
    EXPECT_EQ(at(body, "receivers"), json::parse("[]"));
}

TEST(SettingsBody, ThrowsWithoutTheMembersThatItWritesInPlace) {
    const std::vector<std::pair<const char*, const char*>> places = {
        {"station", "description"},
        {"station", "callsign"},
        {"content", "modes"},
        {"access", "banned"},
    };
    const ReadingStep step{"saving the settings"};
    for (const auto& [outer, inner] : places) {
        SCOPED_TRACE(std::string{outer} + "." + inner);
        json::object without_member = loaded();
        without_member.at(outer).as_object().erase(inner);
        EXPECT_THROW(settings_body(without_member, loaded_form(), {}), std::exception);
        EXPECT_NE(contract_error_message("").find(std::string{"cannot read "} + inner),
                  std::string::npos);

        json::object without_object = loaded();
        without_object.erase(outer);
        EXPECT_THROW(settings_body(without_object, loaded_form(), {}), std::exception);
        EXPECT_NE(contract_error_message("").find(std::string{"cannot read "} + outer),
                  std::string::npos);
    }
}

TEST(SettingsBody, IsJsonEvenWithNumbersBeyondEveryRange) {
    json::object settings = loaded();
    find_path(settings, "extension.kept")->as_array().push_back(json::parse("1e999"));
    settings["lowest"] = json::parse("-1e999");
    Receiver receiver;
    receiver.enabled = true;
    receiver.hi = json::parse("1e999").as_double();
    const json::object sent =
        json::parse(json::serialize(settings_body(settings, loaded_form(), {receiver})))
            .as_object();
    EXPECT_EQ(at(sent, "extension.kept"),
              json::parse(R"([1, 2.5, "three", 1.7976931348623157e308])"));
    EXPECT_EQ(at(sent, "lowest"), json::parse("-1.7976931348623157e308"));
    EXPECT_EQ(at(sent, "receivers").at(0).at("hi"), json::parse("1.7976931348623157e308"));
}

// SPDX-License-Identifier: MIT
#include "link/json_access.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <exception>
#include <limits>
#include <string>
#include <vector>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

json::object object_of(std::string_view text) {
    return json::parse(text).as_object();
}

/// The settings object for the length of a test.
class Settings {
public:
    explicit Settings(std::string_view text) { settings_object = object_of(text); }
    ~Settings() { settings_object.clear(); }
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;
};

std::string nested_arrays(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

} // namespace

TEST(FindPath, WalksOneObjectLevelForEachSegment) {
    struct PathCase {
        const char* when;
        const char* key;
        const char* expected; ///< as JSON; null for nothing
    };
    const json::object root = object_of(R"({
        "network": {"port": 8073, "": 1, "nothing": null},
        "": {"port": 2},
        "a.b": 3,
        "list": [5],
        "Network": 4})");
    const std::vector<PathCase> cases = {
        {"a member of a member", "network.port", "8073"},
        {"no segment at all", "", nullptr},
        {"a level below a number", "network.port.number", nullptr},
        {"a missing member", "network.host", nullptr},
        {"a missing object on the way", "station.name", nullptr},
        {"a full stop at the end opens no segment", "network.port.", "8073"},
        {"two full stops at the end: an empty segment after the first", "network.port..", nullptr},
        {"two full stops after an object: its member without a name", "network..", "1"},
        {"a full stop at the start: the member without a name", ".port", "2"},
        {"a lone full stop: the member without a name", ".", R"({"port": 2})"},
        {"two adjacent full stops", "network..port", nullptr},
        {"a JSON null is something", "network.nothing", "null"},
        {"a member's name that holds a full stop is never met", "a.b", nullptr},
        {"names differ by case", "Network", "4"},
        {"arrays have no members", "list.0", nullptr},
        {"no blanks are dropped", "network. port", nullptr},
    };
    for (const PathCase& c : cases) {
        SCOPED_TRACE(c.when);
        const json::value* found = find_path(root, c.key);
        ASSERT_EQ(found != nullptr, c.expected != nullptr);
        if (found) {
            EXPECT_EQ(*found, json::parse(c.expected));
        }
    }
}

TEST(FindPath, GivesThePlaceToWriteTo) {
    json::object root = object_of(R"({"network": {"port": 8073}})");
    json::value* found = find_path(root, "network.port");
    ASSERT_NE(found, nullptr);
    *found = 8080;
    EXPECT_EQ(root, object_of(R"({"network": {"port": 8080}})"));
}

TEST(StringOrEmpty, ConvertsNothingToText) {
    for (const char* other : {"true", "5", "5.5", "null", "[\"a\"]", "{\"a\": \"b\"}"}) {
        SCOPED_TRACE(other);
        EXPECT_EQ(string_or_empty(json::parse(other)), "");
    }
    EXPECT_EQ(string_or_empty(json::parse(R"("Hilltop")")), "Hilltop");
}

TEST(StringOrEmpty, KeepsZeroCharacters) {
    using namespace std::string_literals;
    EXPECT_EQ(string_or_empty(json::parse(R"("a\u0000b")")), "a\0b"s);
}

TEST(NumberOrZero, ReadsTheThreeKindsOfNumber) {
    EXPECT_EQ(number_or_zero(json::parse("-7")), -7);
    EXPECT_EQ(number_or_zero(json::parse("18446744073709551615")), 1.8446744073709552e19);
    EXPECT_EQ(number_or_zero(json::parse("0.25")), 0.25);
    EXPECT_EQ(number_or_zero(json::parse("1e999")), infinity);
}

TEST(NumberOrZero, ReadsEveryOtherKindAsZero) {
    for (const char* other : {"\"20\"", "true", "null", "[20]", "{\"max\": 20}"}) {
        SCOPED_TRACE(other);
        EXPECT_EQ(number_or_zero(json::parse(other)), 0);
    }
}

TEST(SettingString, ReadsTheSettingsObject) {
    EXPECT_EQ(setting_string("station.name"), "");
    const Settings settings{R"({"station": {"name": "Hilltop", "grid": 5}})"};
    EXPECT_EQ(setting_string("station.name"), "Hilltop");
    EXPECT_EQ(setting_string("station.grid"), "");
}

TEST(SettingNumber, ReadsTheSettingsObject) {
    EXPECT_EQ(setting_number("listeners.max"), 0);
    const Settings settings{R"({"network": {"port": 8073},
        "listeners": {"max": "20", "huge": 18446744073709551615}})"};
    EXPECT_EQ(setting_number("network.port"), 8073);
    EXPECT_EQ(setting_number("listeners.max"), 0);
    EXPECT_EQ(setting_number("listeners.huge"), 1.8446744073709552e19);
}

TEST(ClampedInt32, TruncatesTowardZero) {
    EXPECT_EQ(clamped_int32(19.999), 19);
    EXPECT_EQ(clamped_int32(-19.999), -19);
    EXPECT_EQ(clamped_int32(-0.5), 0);
}

TEST(ClampedInt32, EndsAtTheEndsOfTheType) {
    EXPECT_EQ(clamped_int32(2147483646.9), 2147483646);
    EXPECT_EQ(clamped_int32(2147483647.0), 2147483647);
    EXPECT_EQ(clamped_int32(2147483648.0), 2147483647);
    EXPECT_EQ(clamped_int32(-2147483647.9), -2147483647);
    EXPECT_EQ(clamped_int32(-2147483648.0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(clamped_int32(-2147483649.0), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(clamped_int32(9007199254740992.0), 2147483647);
    EXPECT_EQ(clamped_int32(infinity), 2147483647);
    EXPECT_EQ(clamped_int32(-infinity), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(clamped_int32(std::nan("")), 0);
}

TEST(ClampedInt64, EndsAtTheEndsOfTheType) {
    EXPECT_EQ(clamped_int64(1804201199.9), 1804201199);
    EXPECT_EQ(clamped_int64(9007199254740992.0), 9007199254740992);
    EXPECT_EQ(clamped_int64(9223372036854774784.0), 9223372036854774784);
    EXPECT_EQ(clamped_int64(9223372036854775808.0), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(clamped_int64(-9223372036854775808.0), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(clamped_int64(infinity), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(clamped_int64(-infinity), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(clamped_int64(std::nan("")), 0);
}

TEST(ParseReply, ReadsAnyDocument) {
    EXPECT_EQ(parse_reply("{}"), json::value(json::object{}));
    EXPECT_EQ(parse_reply(" [1, \"a\"]\n"), json::parse(R"([1,"a"])"));
    EXPECT_EQ(parse_reply(nested_arrays(32)), json::parse(nested_arrays(32)));
}

TEST(ParseReply, ThrowsOnEverythingElse) {
    const std::vector<std::string> broken = {
        "",
        "{",
        "{} {}",
        R"({"a": 1,})",
        "{} // comment",
        "/* comment */ {}",
        "\"\xff\"",
        "\"\xc0\xaf\"",
        "\"\xed\xa0\x80\"",
        R"("\ud800")",
        "\"line\nbreak\"",
        nested_arrays(33),
    };
    for (const std::string& text : broken) {
        SCOPED_TRACE(text);
        EXPECT_THROW(parse_reply(text), std::exception);
    }
}

TEST(StrictAccess, GivesWhatIsThere) {
    const json::object object =
        object_of(R"({"object": {"a": 1}, "array": [1, 2], "bool": true, "off": false})");
    EXPECT_EQ(required_member(object, "array"), json::parse("[1, 2]"));
    EXPECT_EQ(required_object(object, "object"), object_of(R"({"a": 1})"));
    EXPECT_EQ(required_array(object, "array").size(), 2u);
    EXPECT_TRUE(required_bool(object, "bool"));
    EXPECT_FALSE(required_bool(object, "off"));
    EXPECT_TRUE(optional_bool(object, "bool", false));
    EXPECT_FALSE(optional_bool(object, "off", true));
    EXPECT_TRUE(optional_bool(object, "missing", true));
    EXPECT_FALSE(optional_bool(object, "missing", false));
    EXPECT_EQ(&as_object(object.at("object"), "a"), &object.at("object").get_object());
    EXPECT_EQ(&as_array(object.at("array"), "an array"), &object.at("array").get_array());
}

TEST(StrictAccess, ThrowsForAMissingMember) {
    const json::object object = object_of(R"({"nothing": null})");
    EXPECT_NO_THROW(required_member(object, "nothing"));
    EXPECT_THROW(required_member(object, "z"), std::exception);
    EXPECT_THROW(required_object(object, "z"), std::exception);
    EXPECT_THROW(required_array(object, "z"), std::exception);
    EXPECT_THROW(required_bool(object, "z"), std::exception);
}

TEST(StrictAccess, ThrowsForEveryOtherKind) {
    for (const char* text : {"null", "1", "1.5", "\"true\"", "true", "[]", "{}"}) {
        SCOPED_TRACE(text);
        json::object object;
        const json::value& value = object["m"] = json::value(json::parse(text));
        if (!value.is_object()) {
            EXPECT_THROW(required_object(object, "m"), std::exception);
            EXPECT_THROW(as_object(value, "m"), std::exception);
        }
        if (!value.is_array()) {
            EXPECT_THROW(required_array(object, "m"), std::exception);
            EXPECT_THROW(as_array(value, "m"), std::exception);
        }
        if (!value.is_bool()) {
            EXPECT_THROW(required_bool(object, "m"), std::exception);
            EXPECT_THROW(optional_bool(object, "m", true), std::exception);
        }
    }
}

TEST(TakeObject, MovesAnObjectOutOfTheRoot) {
    json::value document = json::parse(R"({"status": {"broker": true}, "settings": []})");
    EXPECT_EQ(take_object(document, "status"), object_of(R"({"broker": true})"));
    EXPECT_THROW(take_object(document, "settings"), std::exception);
    EXPECT_THROW(take_object(document, "other"), std::exception);
    json::value array = json::array{};
    EXPECT_THROW(take_object(array, "status"), std::exception);
}

TEST(ContractErrorMessage, NamesTheInnermostStepThatIsAlive) {
    const ReadingStep outer{"loading the form"};
    {
        const ReadingStep inner{"drawing the listeners"};
        EXPECT_THROW(required_bool(json::object{}, "relayed"), std::exception);
        EXPECT_EQ(contract_error_message("why"),
                  "the Tarnwave service sent a reply that this program cannot use, while drawing "
                  "the listeners: cannot read relayed (why).");
    }
    EXPECT_THROW(as_array(json::value{}, "the devices"), std::exception);
    EXPECT_EQ(contract_error_message("why"),
              "the Tarnwave service sent a reply that this program cannot use, while loading the "
              "form: cannot read the devices (why).");
}

TEST(ContractErrorMessage, SaysWhenTheTextIsNoJson) {
    const ReadingStep step{"loading the form"};
    EXPECT_THROW(parse_reply("<html>"), std::exception);
    EXPECT_EQ(contract_error_message("syntax error"),
              "the Tarnwave service sent a reply that this program cannot use, while loading the "
              "form: cannot read the text as JSON (syntax error).");
}

TEST(ContractErrorMessage, BlamesNoMemberThatWasReadWell) {
    const ReadingStep step{"loading the form"};
    EXPECT_TRUE(required_bool(object_of(R"({"broker": true})"), "broker"));
    EXPECT_EQ(contract_error_message("bad alloc"), "stopped by an unexpected error (bad alloc).");
}

TEST(ContractErrorMessage, DoesNotBlameTheServiceOutsideEveryStep) {
    EXPECT_THROW(parse_reply(""), std::exception);
    EXPECT_EQ(contract_error_message("bad alloc"), "stopped by an unexpected error (bad alloc).");
}

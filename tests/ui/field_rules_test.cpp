// SPDX-License-Identifier: MIT
#include "ui/field_rules.h"

#include "support/user_locale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <regex>
#include <string>
#include <vector>

namespace {

const std::string neutral_hint = "Places the station on the list's map, e.g. EM95 or EM95ab.";
const std::string refusal =
    "Not a grid square: two letters A–R, two digits, and optionally two letters a–x.";

/// Calls `check` with every text over the alphabet of at most `longest` characters.
template <class Check>
void for_all_texts(std::string_view alphabet, std::size_t longest, const Check& check,
                   const std::string& start = "") {
    check(start);
    if (start.size() == longest)
        return;
    for (const char letter : alphabet)
        for_all_texts(alphabet, longest, check, start + letter);
}

/// Calls `check` with `text` and each byte value in each place of it.
template <class Check> void for_all_bytes(const std::string& text, const Check& check) {
    for (std::size_t place = 0; place < text.size(); ++place)
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = text;
            changed[place] = static_cast<char>(byte);
            check(changed);
        }
}

} // namespace

TEST(GridHint, ShowsAnExampleForNoText) {
    EXPECT_EQ(grid_hint(""), (StatusLine{neutral_hint}));
}

TEST(GridHint, PlacesASquareOnTheMap) {
    const struct {
        const char* grid;
        const char* expected;
    } cases[] = {
        {"EM95", "On the map at about 35.5° N, 81.0° W."},
        {"em95", "On the map at about 35.5° N, 81.0° W."},
        {"EM95ab", "On the map at about 35.1° N, 82.0° W."},
        {"JJ00", "On the map at about 0.5° N, 1.0° E."},
        {"JJ00aa", "On the map at about 0.0° N, 0.0° E."},
        {"II99xx", "On the map at about 0.0° S, 0.0° W."},
        {"JI00aa", "On the map at about 10.0° S, 0.0° E."},
        {"AA00aa", "On the map at about 90.0° S, 180.0° W."},
        {"RR99xx", "On the map at about 90.0° N, 180.0° E."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.grid);
        EXPECT_EQ(grid_hint(c.grid), (StatusLine{c.expected}));
    }
}

TEST(GridHint, RefusesEverythingElse) {
    for (const char* grid : {"EM9", "EM95a", "EM95ab00", " EM95", "EM95 ", "EM95\n", "EM٩٥"}) {
        SCOPED_TRACE(grid);
        EXPECT_EQ(grid_hint(grid), (StatusLine{refusal, StatusClass::error}));
    }
}

TEST(GridHint, JudgesAsThePatternDoes) {
    const std::regex pattern{"[A-Ra-r]{2}[0-9]{2}([A-Xa-x]{2})?"};
    const auto check = [&](const std::string& text) {
        ASSERT_EQ(grid_hint(text).status_class == StatusClass::none,
                  text.empty() || std::regex_match(text, pattern))
            << text;
    };
    for_all_bytes("EM95", check);
    for_all_bytes("EM95ab", check);
    for_all_texts("Rr9x", 6, check);
}

TEST(GridHint, JudgesTheSameInEveryLocale) {
    const UserLocale turkish{"tr_TR.UTF-8"};
    EXPECT_EQ(grid_hint("ii99ix").text, "On the map at about 0.0° S, 1.3° W.");
}

TEST(UploadEstimate, ChangesItsUnitAtAThousandKilobits) {
    const struct {
        double listeners;
        const char* expected;
    } cases[] = {
        {1, "Uses about 60 kbit/s of your upload when every place is taken."},
        {16, "Uses about 960 kbit/s of your upload when every place is taken."},
        {16.666666666666664, "Uses about 1000 kbit/s of your upload when every place is taken."},
        {16.666666666666668, "Uses about 1.0 Mbit/s of your upload when every place is taken."},
        {17, "Uses about 1.0 Mbit/s of your upload when every place is taken."},
        {200, "Uses about 12.0 Mbit/s of your upload when every place is taken."},
        {5000, "Uses about 300.0 Mbit/s of your upload when every place is taken."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.listeners);
        EXPECT_EQ(upload_estimate(c.listeners), c.expected);
    }
}

TEST(UploadEstimate, IsNeverLongerThan120Bytes) {
    EXPECT_EQ(upload_estimate(1e300).size(), 120u);
}

TEST(UploadEstimate, HasADotInEveryLocale) {
    const UserLocale german{"de_DE.UTF-8"};
    EXPECT_EQ(upload_estimate(200),
              "Uses about 12.0 Mbit/s of your upload when every place is taken.");
}

TEST(HeaderTitle, JoinsCallsignAndName) {
    const struct {
        const char* name;
        const char* callsign;
        const char* expected;
    } cases[] = {
        {"", "", "Your station"},
        {"Hilltop SDR", "", "Hilltop SDR"},
        {"K1ABC Hilltop", "K1ABC", "K1ABC Hilltop"},
        {"The K1ABC/P station", "K1ABC", "The K1ABC/P station"},
        {"k1abc Hilltop", "K1ABC", "K1ABC · k1abc Hilltop"},
        {"Hilltop SDR", "K1ABC", "K1ABC · Hilltop SDR"},
        {"", "K1ABC", "K1ABC"},
        {"<Hilltop> & co", "K1ABC", "K1ABC · <Hilltop> & co"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(header_title(c.name, c.callsign), c.expected);
    }
}

TEST(RegisteredText, NamesTheAddressWhenThereIsOne) {
    EXPECT_EQ(registered_text("4711", "owner@hilltop.example"),
              "Registered as station 4711 with owner@hilltop.example.");
    EXPECT_EQ(registered_text("4711", ""), "Registered as station 4711.");
    EXPECT_EQ(registered_text("", ""), "Registered as station .");
}

TEST(EmailAddress, IsNameAtDomainStopEnding) {
    const struct {
        const char* text;
        bool accepted;
    } cases[] = {
        {"owner@hilltop.example", true},
        {"a@b.c", true},
        {"müller@hügel.example", true},
        {"<a>&@b.c", true},
        {"", false},
        {"owner", false},
        {"owner@hilltop", false},
        {"@hilltop.example", false},
        {"ow ner@hilltop.example", false},
        {" owner@hilltop.example", false},
        {"owner@hilltop.example ", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(is_email_address(c.text), c.accepted);
    }
}

TEST(EmailAddress, IsJudgedAsThePatternDoes) {
    const std::regex pattern{R"([^@\s]+@[^@\s]+\.[^@\s]+)"};
    const auto check = [&](const std::string& text) {
        ASSERT_EQ(is_email_address(text), std::regex_match(text, pattern)) << text;
    };
    for_all_texts("a@. \xc3", 6, check);
    for_all_bytes("a@b.c", check);
    for_all_bytes("ab@c.d.ef", check);
}

TEST(EmailAddress, MayBeAsLongAsAnEntryHolds) {
    const std::size_t longest = 65'535;
    const std::string ending = "@hilltop.example";
    const std::string name(longest - ending.size(), 'a');
    EXPECT_TRUE(is_email_address(name + ending));
    EXPECT_TRUE(is_email_address("a@" + std::string(longest - 4, 'b') + ".c"));
    EXPECT_TRUE(is_email_address("a@" + std::string(longest - 2, '.')));
    EXPECT_FALSE(is_email_address(std::string(longest, 'a')));
    EXPECT_FALSE(is_email_address(std::string(longest, '@')));
    EXPECT_FALSE(is_email_address(std::string(longest, '.')));
    EXPECT_FALSE(is_email_address("a@" + std::string(longest - 2, 'b')));
    EXPECT_FALSE(is_email_address(name + "@hilltop.exampl "));
}

TEST(Words, AreWhatStandsBetweenWhiteSpace) {
    using Words = std::vector<std::string>;
    EXPECT_EQ(words_of(""), Words{});
    EXPECT_EQ(words_of(" \t\n\v\f\r"), Words{});
    EXPECT_EQ(words_of("\n\n  a b\t\tc\r\nd\ve\ff "), (Words{"a", "b", "c", "d", "e", "f"}));
}

TEST(Words, KeepEveryOtherByte) {
    using namespace std::string_literals;
    // A no-break space is no white space to a scan of bytes.
    EXPECT_EQ(words_of("a\u00a0b ü,;"), (std::vector<std::string>{"a\u00a0b", "ü,;"}));
    EXPECT_EQ(words_of("a\0b c"s), (std::vector<std::string>{"a\0b"s, "c"}));
}

TEST(TypedNumber, TakesADotOrACommaForTheDecimalPoint) {
    const struct {
        const char* text;
        double number;
    } cases[] = {
        {"7", 7},      {"7.3", 7.3},      {"7,3", 7.3},    {" 7.3 ", 7.3},    {"\t7,3\n", 7.3},
        {"+7.3", 7.3}, {"-7.3", -7.3},    {".5", 0.5},     {",5", 0.5},       {"5.", 5},
        {"007", 7},    {"7.30000", 7.3},  {"0", 0},        {"-0.25", -0.25},  {"6000", 6000},
        {"0.0004", 0}, {"0.0006", 0.001}, {"7.3004", 7.3}, {"7.3006", 7.301},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const std::optional<double> number = typed_number(c.text, 3);
        ASSERT_TRUE(number);
        EXPECT_DOUBLE_EQ(*number, c.number);
    }
}

TEST(TypedNumber, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(typed_number("12.5", 0), 13);
    EXPECT_EQ(typed_number("12.4999", 0), 12);
    EXPECT_EQ(typed_number("-12.5", 0), -13);
    EXPECT_EQ(typed_number("0.25", 1), 0.3);
}

TEST(TypedNumber, HasNoNegativeZero) {
    EXPECT_FALSE(std::signbit(typed_number("-0", 3).value()));
    EXPECT_FALSE(std::signbit(typed_number("-0.0004", 3).value()));
    EXPECT_TRUE(std::signbit(typed_number("-0.25", 3).value()));
}

TEST(TypedNumber, IsNothingForAnyOtherText) {
    for (const char* text : {"~",     "7~3",   "",        " ",   "nonsense", "7.3 MHz", "7 3",
                             "7.3.1", "7,3,1", "1,000.5", "1e3", "0x10",     "inf",     "nan",
                             "-",     "+",     ".",       ",",   "--7",      "7-",      "٧"}) {
        EXPECT_EQ(typed_number(text, 3), std::nullopt) << text;
    }
}

TEST(TypedNumber, TakesNumbersOfAnyLengthAsFarAsTheyAreFinite) {
    EXPECT_EQ(typed_number(std::string(300, '9'), 3), 1e300);
    EXPECT_EQ(typed_number(std::string(400, '9'), 3), std::nullopt);
    EXPECT_EQ(typed_number("0." + std::string(10'000, '0') + "1", 3), 0);
}

TEST(TypedNumber, MeansTheSameInEveryLocale) {
    for (const char* name : {"C.UTF-8", "de_DE.UTF-8", "ar_EG.UTF-8"}) {
        const UserLocale locale{name};
        EXPECT_EQ(typed_number("7,3", 3), 7.3) << name;
        EXPECT_EQ(typed_number("7.3", 3), 7.3) << name;
    }
}

TEST(DecimalText, HasThatManyDecimalsAndADot) {
    for (const char* name : {"C.UTF-8", "de_DE.UTF-8", "ar_EG.UTF-8"}) {
        const UserLocale locale{name};
        EXPECT_EQ(decimal_text(7.3, 3), "7.300") << name;
        EXPECT_EQ(decimal_text(7.3, 0), "7") << name;
        EXPECT_EQ(decimal_text(14.0005, 2), "14.00") << name;
        EXPECT_EQ(decimal_text(-1, 1), "-1.0") << name;
        EXPECT_EQ(decimal_text(6000, 3), "6000.000") << name;
    }
}

// SPDX-License-Identifier: MIT
#include "link/text.h"

#include "support/user_locale.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

TEST(FormatText, TakesTextOfAnyLength) {
    const std::string log(100'000, 'x');
    EXPECT_EQ(format_text("<%s>", log.c_str()), "<" + log + ">");
}

TEST(FormatText, WritesADotForAUserWithADecimalComma) {
    const UserLocale german{"de_DE.UTF-8"};
    EXPECT_EQ(format_text("%.3f", 7.3), "7.300");
}

TEST(ValidUtf8, HasNoZeroCharacters) {
    const struct {
        const char* what;
        std::string text;
        std::string expected;
    } cases[] = {
        {"nothing", "", ""},
        {"plain", "plain", "plain"},
        {"letters of several bytes", "Ä–…", "Ä–…"},
        {"a lone byte", "a\xFFz", "a\uFFFDz"},
        {"a letter cut short", "a\xC3", "a\uFFFD"},
        {"a null", std::string{"a\0z", 3}, "a\uFFFDz"},
        {"nulls alone", std::string{"\0\0", 2}, "\uFFFD\uFFFD"},
        {"a null and a lone byte", std::string{"\0\xFE", 2}, "\uFFFD\uFFFD"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(valid_utf8(c.text), c.expected);
    }
}

TEST(EscapedMarkup, EscapesWhatMarkupWouldRead) {
    EXPECT_EQ(escaped_markup("<b>\"Tom\" & 'Ann'</b>"),
              "&lt;b&gt;&quot;Tom&quot; &amp; &apos;Ann&apos;&lt;/b&gt;");
}

TEST(EscapedMarkup, EscapesControlCharacters) {
    EXPECT_EQ(escaped_markup("a\x01\x1b[0m"), "a&#x1;&#x1b;[0m");
    EXPECT_EQ(escaped_markup("line\nline\ttab"), "line\nline\ttab");
}

TEST(EscapedMarkup, EndsAtAZeroCharacter) {
    using namespace std::string_literals;
    EXPECT_EQ(escaped_markup("before\0after"s), "before");
    EXPECT_EQ(escaped_markup("\0"s), "");
}

TEST(EscapedMarkup, ReadsNoFurtherThanItsText) {
    const std::string text = "name & rest";
    EXPECT_EQ(escaped_markup(std::string_view{text}.substr(0, 6)), "name &amp;");
}

TEST(EscapedMarkup, ShortensWhatNobodyCouldRead) {
    const std::string whole(longest_shown_text, 'x');
    EXPECT_EQ(escaped_markup(whole), whole);
    EXPECT_EQ(escaped_markup(whole + "y"), whole + "…");
}

TEST(Shortened, CutsBetweenTwoCharacters) {
    EXPECT_EQ(shortened("äöü", 6), "äöü");
    EXPECT_EQ(shortened("äöü", 5), "äö…");
    EXPECT_EQ(shortened("äöü", 4), "äö…");
    EXPECT_EQ(shortened("äöü", 0), "…");
    EXPECT_EQ(shortened("", 0), "");
}

TEST(Isolated, EnclosesATextWithRightToLeftLettersAlone) {
    for (const char* text : {"", "SDRplay RSP1", "Dresden – Süd", "7.3 MHz", "广播电台", "📻 αβγ ж"})
        EXPECT_EQ(isolated(text), text);
    for (const std::string text : {"מקלט", "راديو", "SDR راديو 1", "ﷺ", "\u07CA", "\U0001E900"})
        EXPECT_EQ(isolated(text), "\u200E\u2068" + text + "\u2069");
}

TEST(Isolated, EnclosesFromTheFirstToTheLastLetterOfEachRightToLeftBlock) {
    constexpr std::pair<gunichar, gunichar> blocks[] = {{0x0590, 0x08FF},
                                                        {0xFB1D, 0xFDFF},
                                                        {0xFE70, 0xFEFC},
                                                        {0x10800, 0x10FFF},
                                                        {0x1E800, 0x1EFFF}};
    const auto is_isolated = [](gunichar letter) {
        char text[7] = {};
        g_unichar_to_utf8(letter, text);
        return isolated(text) != text;
    };
    for (const auto& [first, last] : blocks) {
        SCOPED_TRACE(first);
        EXPECT_FALSE(is_isolated(first - 1));
        EXPECT_TRUE(is_isolated(first));
        EXPECT_TRUE(is_isolated(last));
        EXPECT_FALSE(is_isolated(last + 1));
    }
}

TEST(Shortened, InFrontKeepsTheEnd) {
    EXPECT_EQ(shortened_in_front("äöü", 6), "äöü");
    EXPECT_EQ(shortened_in_front("äöü", 5), "…öü");
    EXPECT_EQ(shortened_in_front("äöü", 4), "…öü");
    EXPECT_EQ(shortened_in_front("äöü", 0), "…");
}

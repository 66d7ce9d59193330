// SPDX-License-Identifier: MIT
// Functions that format, convert, shorten and escape text.
#pragma once

#include <glib.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct GlibFree {
    void operator()(char* text) const { g_free(text); }
};

/// A text that GLib has allocated.
using GlibText = std::unique_ptr<char, GlibFree>;

/// Formats like printf. Numbers follow LC_NUMERIC, which start-up sets to "C". Text from outside
/// is an argument, never the format.
[[gnu::format(printf, 1, 2)]] std::string format_text(const char* format, ...);

/// A text from outside as GTK can show it: valid UTF-8, and U+FFFD in the place of U+0000.
std::string valid_utf8(std::string_view text);

/// True for the second and later bytes of a UTF-8 character.
constexpr bool is_continuation_byte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Longest text from outside that a label shows, in bytes. The layout of a longer text takes over a
/// tenth of a second.
inline constexpr std::size_t longest_shown_text = 8192;

/// Cuts a longer text after at most `most_bytes`, between two characters, and appends an ellipsis.
/// `text` is valid UTF-8.
std::string shortened(std::string_view text, std::size_t most_bytes = longest_shown_text);

/// The same, but keeps the end of the text.
std::string shortened_in_front(std::string_view text, std::size_t most_bytes = longest_shown_text);

/// Encloses a text that has right-to-left letters in U+2068 and U+2069, so that it does not reorder
/// the numbers beside it. A left-to-right mark comes first: Pango would otherwise take the line's
/// direction from the text. `text` is valid UTF-8.
std::string isolated(std::string_view text);

/// Shortens text and escapes it for Pango markup, control characters included. `text` is valid
/// UTF-8, as all JSON is. It is cut at a U+0000, which would cut off the closing tags around it.
std::string escaped_markup(std::string_view text);

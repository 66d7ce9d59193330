// SPDX-License-Identifier: MIT
// Text made from a format, with the compiler's check of the arguments, and text made fit for
// markup.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Formats like printf. Numbers follow LC_NUMERIC, which start-up sets to "C". Text from outside
/// is an argument, never the format.
[[gnu::format(printf, 1, 2)]] std::string format_text(const char* format, ...);

/// Turns a text of the user's locale, such as a month's name, into UTF-8; "" where it cannot be.
std::string utf8_of_locale(std::string_view text);

/// Longest text from outside that a label shows, in bytes. Ours: nobody reads more, and laying out
/// a megabyte takes seconds.
inline constexpr std::size_t longest_shown_text = 131'072;

/// Cuts text after at most `most_bytes`, between two characters, and ends it in an ellipsis then.
/// `text` is valid UTF-8.
std::string shortened(std::string_view text, std::size_t most_bytes = longest_shown_text);

/// The same for texts whose end counts most: cuts them in front.
std::string shortened_in_front(std::string_view text, std::size_t most_bytes = longest_shown_text);

/// Escapes text for Pango markup, control characters included, and shortens it. `text` is valid
/// UTF-8, as all JSON is. A U+0000 ends the text here as it does in GTK's labels: inside markup it
/// would cut off the closing tags.
std::string escaped_markup(std::string_view text);

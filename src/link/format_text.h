// SPDX-License-Identifier: MIT
// Text made from a format, with the compiler's check of the arguments, and text made fit for
// markup.
#pragma once

#include <string>
#include <string_view>

/// Formats like printf. Numbers follow LC_NUMERIC, which start-up sets to "C". Text from outside
/// is an argument, never the format.
[[gnu::format(printf, 1, 2)]] std::string format_text(const char* format, ...);

/// Escapes text for Pango markup, control characters included. `text` is valid UTF-8, as all JSON
/// is. A U+0000 ends the text here as it does in GTK's labels: inside markup it would cut off the
/// closing tags.
std::string escaped_markup(std::string_view text);

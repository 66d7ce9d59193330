// SPDX-License-Identifier: MIT
// Formatted text with the compiler's check of the arguments.
#pragma once

#include <string>

/// Formats like printf. Numbers follow LC_NUMERIC, which start-up sets to "C". Text from outside
/// is an argument, never the format.
[[gnu::format(printf, 1, 2)]] std::string format_text(const char* format, ...);

// SPDX-License-Identifier: MIT
// Texts of the length at which a window's layout is put to the test.
#pragma once

#include <string>

/// A sentence of 230 characters, many words.
std::string long_refusal();

/// 200 characters without a space.
std::string long_word();

/// 65,536 bytes without a space.
std::string long_log();

/// 10,000 characters, some of them of two bytes.
std::string long_station_name();

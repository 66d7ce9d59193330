// SPDX-License-Identifier: MIT
// The form's hints and checks, and the lines that name the station.
#pragma once

#include "status/status_line.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The hint below "Grid square". An error for a text that is no Maidenhead square of four or six
/// characters.
StatusLine grid_hint(std::string_view grid);

/// The upload that `listeners` at once need, in words.
std::string upload_estimate(double listeners);

/// The station's name as the header shows it: callsign and name, or the one that is not empty.
std::string header_title(std::string_view name, std::string_view callsign);

/// The line shown in place of the registration's widgets. `email` may be empty.
std::string registered_text(std::string_view id, std::string_view email);

/// True for one at sign with text before it, and after it a full stop with text on both sides. No
/// white space anywhere. Takes texts of any length.
bool is_email_address(std::string_view text);

/// Reads a number that is typed into a spin button, with a dot or a comma as the decimal point in
/// every locale, and rounds it to `decimals`. Blanks around it are ignored. Returns nothing for any
/// other text.
std::optional<double> typed_number(std::string_view text, unsigned decimals);

/// Writes a number as a spin button shows it, with a dot.
std::string decimal_text(double number, unsigned decimals);

/// Splits at the white space of the "C" locale; pieces are never empty.
std::vector<std::string> words_of(std::string_view text);

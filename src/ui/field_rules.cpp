// SPDX-License-Identifier: MIT
#include "ui/field_rules.h"

#include "link/text.h"

#include <glib.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <sstream>

namespace {

/// Estimate of the upload that one listener needs, in kbit/s.
constexpr double listener_kbit = 60;

/// Longest text of the estimate, in bytes.
constexpr std::size_t longest_estimate = 120;

/// Whether a pattern matches the whole text, byte by byte. Not std::regex, which recurses once for
/// each character and overflows the stack at some 30,000 of them.
bool matches(std::string_view text, const char* pattern) {
    GRegex* regex = g_regex_new(pattern, G_REGEX_RAW, G_REGEX_MATCH_ANCHORED, nullptr);
    const gboolean matched =
        g_regex_match_full(regex, text.data(), static_cast<gssize>(text.size()), 0,
                           GRegexMatchFlags{}, nullptr, nullptr);
    g_regex_unref(regex);
    return matched;
}

int steps(char letter, char first) {
    return g_ascii_toupper(letter) - first;
}

std::string map_position(double latitude, double longitude) {
    return format_text("On the map at about %.1f° %s, %.1f° %s.", std::abs(latitude),
                       latitude >= 0 ? "N" : "S", std::abs(longitude), longitude >= 0 ? "E" : "W");
}

} // namespace

StatusLine grid_hint(std::string_view grid) {
    if (grid.empty())
        return {"Places the station on the list's map, e.g. EM95 or EM95ab."};
    if (!matches(grid, R"([A-Ra-r]{2}[0-9]{2}([A-Xa-x]{2})?\z)"))
        return {"Not a grid square: two letters A–R, two digits, and optionally two letters a–x.",
                StatusClass::error};

    // The Maidenhead locator: fields of 20° by 10°, squares of 2° by 1°, subsquares of 5' by 2.5',
    // counted from the south-west corner of the map.
    const double west = steps(grid[0], 'A') * 20 + steps(grid[2], '0') * 2 - 180;
    const double south = steps(grid[1], 'A') * 10 + steps(grid[3], '0') - 90;
    if (grid.size() == 4)
        return {map_position(south + 0.5, west + 1)};
    return {map_position(south + steps(grid[5], 'A') / 24.0 + 1 / 48.0,
                         west + steps(grid[4], 'A') / 12.0 + 1 / 24.0)};
}

std::string upload_estimate(double listeners) {
    const double kbit = listeners * listener_kbit;
    const std::string text =
        kbit >= 1000
            ? format_text("Uses about %.1f Mbit/s of your upload when every place is taken.",
                          kbit / 1000)
            : format_text("Uses about %.0f kbit/s of your upload when every place is taken.", kbit);
    return text.substr(0, longest_estimate);
}

std::string header_title(std::string_view name, std::string_view callsign) {
    if (callsign.empty())
        return std::string{name.empty() ? "Your station" : name};
    if (name.find(callsign) != std::string_view::npos)
        return std::string{name};
    if (!name.empty())
        return std::string{callsign}.append(" · ").append(name);
    return std::string{callsign};
}

std::string registered_text(std::string_view id, std::string_view email) {
    std::string text = "Registered as station ";
    text.append(id);
    if (!email.empty())
        text.append(" with ").append(email);
    return text.append(".");
}

bool is_email_address(std::string_view text) {
    // "\s" would also match some bytes above 127, which are parts of letters.
    return matches(text, R"([^@\x09-\x0D\x20]+@[^@\x09-\x0D\x20]+\.[^@\x09-\x0D\x20]+\z)");
}

std::optional<double> typed_number(std::string_view text, unsigned decimals) {
    const std::vector<std::string> words = words_of(text);
    // The library's conversion also accepts hexadecimal numbers and "inf".
    if (words.size() != 1 || words[0].find_first_not_of("+-0123456789.,") != std::string::npos)
        return std::nullopt;
    std::string digits = words[0];
    std::replace(digits.begin(), digits.end(), ',', '.');
    char* end = nullptr;
    const double number = g_ascii_strtod(digits.c_str(), &end);
    if (end == digits.c_str() || *end || !std::isfinite(number))
        return std::nullopt;
    const double scale = std::pow(10.0, decimals);
    const double rounded = std::round(number * scale) / scale;
    // Adding 0 turns -0 into 0.
    return (std::isfinite(rounded) ? rounded : number) + 0.0;
}

std::string decimal_text(double number, unsigned decimals) {
    return format_text("%.*f", static_cast<int>(decimals), number);
}

std::vector<std::string> words_of(std::string_view text) {
    std::istringstream stream{std::string{text}};
    return {std::istream_iterator<std::string>{stream}, {}};
}

// SPDX-License-Identifier: MIT
// A sentence about the station's condition and its colour, and colours of the style sheet for Pango
// markup, which has no style classes.
#pragma once

#include <string>
#include <string_view>

/// The style class of a status label: green, amber, red, or the label's own colour.
enum class StatusClass { none, good, warning, error };

struct StatusLine {
    std::string text{};
    StatusClass status_class = StatusClass::none;

    bool operator==(const StatusLine&) const = default;
};

inline constexpr std::string_view muted_colour = "#B0C6DA";
inline constexpr std::string_view small_colour = "#7590A8";
inline constexpr std::string_view warning_colour = "#FFB020";

inline std::string coloured_markup(std::string_view colour, std::string_view markup) {
    return "<span foreground=\"" + std::string{colour} + "\">" + std::string{markup} + "</span>";
}

// SPDX-License-Identifier: MIT
// A sentence about the station's condition, and its colour.
#pragma once

#include <string>

/// The style class of a status label: green, amber, red, or the label's own colour.
enum class StatusClass { none, good, warning, error };

struct StatusLine {
    std::string text{};
    StatusClass status_class = StatusClass::none;

    bool operator==(const StatusLine&) const = default;
};

// SPDX-License-Identifier: MIT
// Keeping the keyboard focus while the receivers' cards are made anew.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

/// A control of a receiver's card. Backend and serial number identify the receiver.
struct FocusedRowControl {
    std::string backend{};
    std::string serial{};
    std::size_t place = 0; ///< among the card's controls, in reading order
};

/// The control that has the focus; nothing when the focus is elsewhere.
std::optional<FocusedRowControl> focused_row_control();

/// Moves the focus to the same control of the same receiver, if it still exists.
void give_row_focus_to(const FocusedRowControl& focused);

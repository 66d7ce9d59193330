// SPDX-License-Identifier: MIT
// The keyboard focus among the receivers' cards, kept while the cards are made anew.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

/// A control of a receiver's card, named so that the next card of that receiver is found.
struct FocusedRowControl {
    std::string backend{};
    std::string serial{};
    std::size_t place = 0; ///< among the card's controls, in reading order
};

/// The control that has the focus; nothing when it is elsewhere.
std::optional<FocusedRowControl> focused_row_control();

/// Gives the focus to the same control of the same receiver, where there is one.
void give_row_focus_to(const FocusedRowControl& focused);

// SPDX-License-Identifier: MIT
// The title "Listening now" and the table of listeners below it. Rows are matched by session number
// and overwritten in place, so that the selection, the scroll position and the cursor stay.
#pragma once

#include "status/station_state.h"

#include <cstdint>
#include <gtk/gtk.h>
#include <optional>
#include <string>

/// Makes the table and returns the scrolled window around it.
GtkWidget* make_listeners_table();

/// Draws title and table. Throws the JSON library's error at a broken record: the rows before it
/// are drawn, a record without an address leaves a row with an empty one, and nothing follows.
void draw_listeners(const StationState& state);

/// The listener that is selected in the table.
struct SelectedListener {
    std::int32_t number = 0; ///< session number, by which the service knows the listener
    std::string address{};
};
std::optional<SelectedListener> selected_listener();

/// Makes the table's buttons sensitive while a row is selected. The handler of the selection's
/// "changed".
void update_listener_buttons();

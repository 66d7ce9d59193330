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

/// Draws title and table. Throws the JSON library's error at a broken record: only the rows before
/// it are drawn, and its own with an empty address when nothing but the address is missing.
void draw_listeners(const StationState& state);

/// What a row of the table shows.
struct ListenerRow {
    std::int32_t number = 0; ///< session number, by which the service knows the listener
    std::string address{};
    std::string tuned_to{};
    std::string time{};

    bool operator==(const ListenerRow&) const = default;
};
std::optional<ListenerRow> selected_listener();

/// The handler of the selection's "changed": buttons are sensitive while a row is selected.
void update_listener_buttons();

// SPDX-License-Identifier: MIT
// Draws the window's header: the station's name and the line about its state.
#pragma once

#include "status/station_state.h"
#include "status/status_line.h"

/// Shows the station's name as of the last load, with a tooltip where it is cut.
void show_header_title();

/// Shows a sentence in the header line; its class goes on the dot beside it.
void show_header_line(const StatusLine& line);

/// Shows the sentence that follows from the state. Throws the JSON library's error when the status
/// object's `broker` is no boolean.
void draw_header_line(const StationState& state);

// SPDX-License-Identifier: MIT
// Draws the Overview page, except for the listeners table. Each function draws one section from the
// status object, and throws the JSON library's error where a record is broken.
#pragma once

#include "status/station_state.h"

void draw_checklist(const StationState& state);
void draw_station_link(const StationState& state);
void draw_receivers_on_air(const StationState& state);

// SPDX-License-Identifier: MIT
// Draws the four status lines of the Internet page.
#pragma once

#include "status/station_state.h"

/// Draws port instructions, reach line, certificate line and listing line, in this order.
void draw_internet_status(const StationState& state);

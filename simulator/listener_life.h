// SPDX-License-Identifier: MIT
// The people who listen: they arrive, tune, watch the waterfall and leave.
#pragma once

#include "station.h"

#include <string_view>

/// Whether the blocked addresses hold this one.
bool is_banned(const Station& station, std::string_view address);

/// Fills the places that the scenario says are taken at the start, with sessions of various ages.
void seat_first_listeners(Station& station);

/// Lets the audience follow the clock, the settings and the receivers on the air.
void advance_listeners(Station& station);

/// Ends one session. Returns whether there was one of this number.
bool end_session(Station& station, int number);

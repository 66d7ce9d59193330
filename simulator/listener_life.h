// SPDX-License-Identifier: MIT
// The people who listen: they arrive, tune, watch the waterfall and leave.
#pragma once

#include "station.h"

#include <string_view>

/// Whether the address lies in one of the blocked ranges.
bool is_banned(const Station& station, std::string_view address);

/// Fills the places that are taken at the start of the scenario, with sessions of various ages.
void seat_first_listeners(Station& station);

/// Brings the listeners to the time of the station's clock: some come, tune and leave.
void advance_listeners(Station& station);

/// Ends the session of this number. Returns whether there was one.
bool end_session(Station& station, int number);

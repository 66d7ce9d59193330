// SPDX-License-Identifier: MIT
// How the broker starts the shared receivers, and how they come up and fail.
#pragma once

#include "station.h"

/// Makes the started receivers those of the settings. One whose range is unchanged goes on as it
/// is; a new or changed one is started. Nothing is started while the broker is down.
void start_receivers(Station& station);

/// Lets the receivers follow the clock.
void advance_receivers(Station& station);

// SPDX-License-Identifier: MIT
// How the broker starts the shared receivers, and how they come up and fail.
#pragma once

#include "station.h"

/// Starts the receivers of the settings and stops all others. A receiver whose range is unchanged
/// keeps running. Nothing is started while the broker is down.
void start_receivers(Station& station);

/// Brings the receivers to the time of the station's clock.
void advance_receivers(Station& station);

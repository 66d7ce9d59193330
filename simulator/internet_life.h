// SPDX-License-Identifier: MIT
// How listeners reach the station from the internet: station list, relay and certificate.
#pragma once

#include "station.h"

/// Starts or stops the check-ins and the relay connection as the settings ask for.
void follow_internet_settings(Station& station);

/// Drops the relay connection; `follow_internet_settings` then makes a new one when the settings
/// ask for it.
void reconnect_relay(Station& station);

/// Checks in with the station list once more, when registered.
void check_in_again(Station& station);

/// Brings station list, relay and certificate to the time of the station's clock.
void advance_internet(Station& station);

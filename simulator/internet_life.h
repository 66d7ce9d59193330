// SPDX-License-Identifier: MIT
// The way in from the internet: the station list, the relay and the certificate.
#pragma once

#include "station.h"

/// Begins and ends what the settings ask for: registration known or not, relay wanted or not.
void follow_internet_settings(Station& station);

/// Drops the relay connection; `follow_internet_settings` then makes a new one when wanted.
void reconnect_relay(Station& station);

/// Checks in with the station list once more, when registered.
void check_in_again(Station& station);

/// Lets the list, the relay and the certificate follow the clock.
void advance_internet(Station& station);

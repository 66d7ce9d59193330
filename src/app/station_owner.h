// SPDX-License-Identifier: MIT
// The station owner: the one user who may change the station's settings.
#pragma once

#include <string>

/// The file whose first line is the owner's login name.
extern std::string owner_file_path;

/// Returns "The station owner is NAME." in valid UTF-8, or "This station has no owner yet." when
/// the owner file cannot be read or its first line is empty.
std::string owner_sentence();

/// Offers to make the current user the owner. Returns whether the service has answered afterwards.
/// Blocks the main loop while the change runs and while the service is asked, up to fifty times.
bool check_owner();

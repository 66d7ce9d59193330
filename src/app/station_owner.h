// SPDX-License-Identifier: MIT
// The station owner: the one user who may change the station's settings.
#pragma once

#include <string>

/// The file whose first line is the owner's login name.
extern std::string owner_file_path;

/// "The station owner is NAME." for the first line of the owner file, or that there is none: also
/// for a file that cannot be read and for an empty first line. Valid UTF-8.
std::string owner_sentence();

/// Says who the owner is and offers to make the current user the owner, with an administrator's
/// password. Returns true when the service has answered afterwards; false when the user declined,
/// the change failed, or the service still refuses. Blocks while the change runs and then up to
/// fifty tries, without drawing.
bool check_owner();

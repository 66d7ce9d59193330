// SPDX-License-Identifier: MIT
// Whether the user's receivers keep running after logout. The setting is the login manager's, which
// calls it lingering: the switch always shows what the system reports.
#pragma once

/// Asks the system. False also when the command fails.
bool query_linger();

/// Sets the switch to the system's setting, without changing the setting.
void show_linger();

/// Changes the system's setting to that of the switch and reports in the footer what came of it.
void set_linger();

/// The handler of the switch's "notify::active": calls `set_linger` for each press of the user.
void on_linger_switch_toggled();

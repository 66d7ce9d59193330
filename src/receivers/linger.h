// SPDX-License-Identifier: MIT
// Whether the user's receivers keep running after logout (the login manager calls it lingering).
//
// The setting is the system's: the switch always shows what the system reports.
#pragma once

/// Asks the system whether the current user's processes outlive the login. False also when the
/// command fails. Waits for the command.
bool query_linger();

/// Sets the switch to the system's setting, without changing the setting.
void show_linger();

/// Changes the system's setting to that of the switch, then shows the system's answer in the switch
/// and reports in the footer. Waits for the commands.
void set_linger();

/// The handler of the switch's "notify::active": calls `set_linger` for each press of the user.
void on_linger_switch_toggled();

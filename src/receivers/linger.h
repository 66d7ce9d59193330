// SPDX-License-Identifier: MIT
// Whether the user's receivers keep running after logout (the login manager calls it lingering).
//
// The system owns the setting: the switch always shows what the system says.
#pragma once

/// Asks the system whether the current user's processes outlive the login. False also when the
/// question cannot be asked. Waits for the command.
bool query_linger();

/// Shows the system's answer in the switch, without changing anything.
void show_linger();

/// Changes the setting to what the switch asks for, shows what the system made of it, and reports
/// in the footer. Waits for the commands.
void set_linger();

/// Serves the switch's "notify::active": one `set_linger` for each press of the user.
void on_linger_switch_toggled();

// SPDX-License-Identifier: MIT
// Changing whether the user's receivers keep running after logout.
#pragma once

#include <gtk/gtk.h>

/// Changes the setting to what the switch asks for, shows what the system made of it, and reports
/// in the footer. Waits for the commands.
void set_linger();

/// Serves the switch's "notify::active": one `set_linger` for each press of the user.
void on_linger_switch_toggled(GtkSwitch* linger, GParamSpec* active, gpointer data);

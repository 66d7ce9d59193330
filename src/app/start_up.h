// SPDX-License-Identifier: MIT
// From the command line to the main loop, and the poll that runs in it.
#pragma once

#include <glib.h>

/// Time from one poll to the next, in seconds.
inline constexpr guint poll_interval_s = 3;

/// The timer's callback: runs `refresh_status` while there is a window.
gboolean poll_state(gpointer);

/// Runs the program and returns its exit status: 0 after the window was closed, 1 when the service
/// is not running or the owner check failed. A first argument "--help" or "--version" is answered
/// before a display is needed.
int start_up(int argc, char** argv);

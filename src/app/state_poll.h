// SPDX-License-Identifier: MIT
// Following the station's state while the window is open.
#pragma once

#include <glib.h>

/// Time from one poll to the next, in seconds.
inline constexpr guint poll_interval_s = 3;

/// Runs `refresh_status` while there is a window. For `g_timeout_add_seconds`; the argument is
/// ignored.
gboolean poll_state(gpointer);

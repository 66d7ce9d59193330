// SPDX-License-Identifier: MIT
// Following the station's state while the window is open.
#pragma once

#include <glib.h>

/// Time from one poll to the next, in seconds. Short enough to follow listeners as they come and
/// go.
inline constexpr guint poll_interval_s = 3;

/// Runs `refresh_status` while there is a window. A GLib timeout callback that keeps its timeout;
/// the argument is ignored.
gboolean poll_state(gpointer);

// SPDX-License-Identifier: MIT
// Following the station's state while the window is open.
#pragma once

#include <glib.h>

/// Fetches the state document once and redraws the status pages from it; when the service does not
/// answer, the header says so and everything else stays. The form is never touched. A GLib timeout
/// callback that keeps its timeout; the argument is ignored. Throws the JSON library's error when
/// the document breaks the contract.
gboolean poll_state(gpointer);

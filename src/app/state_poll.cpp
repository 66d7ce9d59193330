// SPDX-License-Identifier: MIT
#include "app/state_poll.h"

#include "status/refresh_status.h"
#include "ui/widgets/widget_record.h"

gboolean poll_state(gpointer) {
    // A timer that was due when the window was closed still fires once.
    if (widgets.window)
        refresh_status();
    return G_SOURCE_CONTINUE;
}

// SPDX-License-Identifier: MIT
#include "receivers/set_linger.h"

#include "receivers/linger.h"
#include "ui/widgets/busy.h"
#include "ui/widgets/setters.h"

namespace {

gboolean on_idle(gpointer) {
    if (widgets.window)
        set_linger();
    return G_SOURCE_REMOVE;
}

} // namespace

void set_linger() {
    const BusyWith busy{widgets.linger_switch};
    const bool wanted = gtk_switch_get_active(GTK_SWITCH(widgets.linger_switch));
    // Whether it worked is read back from the system, not from the command.
    g_spawn_command_line_sync(wanted ? "loginctl enable-linger" : "loginctl disable-linger",
                              nullptr, nullptr, nullptr, nullptr);
    show_linger();
    if (query_linger() != wanted)
        show_footer_error("The system did not allow that change.");
    else if (wanted)
        show_footer({"Your receivers now stay shared when you log out and after a restart.",
                     StatusClass::good});
    else
        show_footer({"Your receivers are shared only while you are logged in.", StatusClass::good});
}

void on_linger_switch_toggled(GtkSwitch*, GParamSpec*, gpointer) {
    if (widgets.linger_guard)
        return;
    // "notify" does not recurse: if the switch moved back in here, this handler would run again
    // after it has returned, with the guard off, and undo the change. Idle with high priority runs
    // before the next event, which may be a second press.
    g_idle_add_full(G_PRIORITY_HIGH, on_idle, nullptr, nullptr);
}

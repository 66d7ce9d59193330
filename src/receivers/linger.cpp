// SPDX-License-Identifier: MIT
#include "receivers/linger.h"

#include "ui/widgets/busy.h"
#include "ui/widgets/setters.h"
#include "ui/widgets/signals.h"

bool query_linger() {
    const std::string command =
        std::string{"loginctl show-user "} + g_get_user_name() + " -p Linger --value";
    char* output = nullptr;
    const gboolean ran =
        g_spawn_command_line_sync(command.c_str(), &output, nullptr, nullptr, nullptr);
    const bool lingers = ran && output && g_str_has_prefix(output, "yes");
    g_free(output);
    return lingers;
}

void show_linger() {
    widgets.linger_guard = true;
    gtk_switch_set_active(GTK_SWITCH(widgets.linger_switch), query_linger());
    widgets.linger_guard = false;
}

void set_linger() {
    const BusyWith busy{widgets.linger_switch};
    const bool wanted = gtk_switch_get_active(GTK_SWITCH(widgets.linger_switch));
    // The command's exit status is ignored: the system is asked afterwards.
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

void on_linger_switch_toggled() {
    // "notify" does not recurse: if the switch were set back in here, this handler would run again
    // after it has returned, when the guard is off, and undo the change. An idle callback of high
    // priority runs before the next event, which may be a second press.
    if (!widgets.linger_guard)
        call_when_idle(G_PRIORITY_HIGH, set_linger);
}

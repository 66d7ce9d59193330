// SPDX-License-Identifier: MIT
#include "receivers/linger.h"

#include "ui/widgets/widget_record.h"

#include <string>

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

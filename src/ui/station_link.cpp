// SPDX-License-Identifier: MIT
#include "ui/station_link.h"

#include "link/json_access.h"
#include "ui/widgets/setters.h"

void open_station_page() {
    const std::int32_t port = clamped_int32(setting_number("network.port"));
    const std::string address = "http://127.0.0.1:" + std::to_string(port) + "/";
    gtk_show_uri_on_window(GTK_WINDOW(widgets.window), address.c_str(), GDK_CURRENT_TIME, nullptr);
}

void copy_station_link() {
    gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD),
                           gtk_link_button_get_uri(GTK_LINK_BUTTON(widgets.station_link)), -1);
    show_footer({"Station link copied.", StatusClass::good});
}

// SPDX-License-Identifier: MIT
#pragma once

#include <gtk/gtk.h>

#include <vector>

/// Every window that the toolkit knows in this process, dialogs and tooltips among them; the newest
/// first. Owns none.
inline std::vector<GtkWidget*> toplevels() {
    std::vector<GtkWidget*> all;
    GList* windows = gtk_window_list_toplevels();
    for (GList* item = windows; item; item = item->next)
        all.push_back(GTK_WIDGET(item->data));
    g_list_free(windows);
    return all;
}

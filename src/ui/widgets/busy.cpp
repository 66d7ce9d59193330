// SPDX-License-Identifier: MIT
#include "ui/widgets/busy.h"

#include "ui/widgets/widget_record.h"

namespace {

/// One action may contain another: registering saves first.
int actions_running = 0;

void show_pointer(const char* name) {
    GdkWindow* window = widgets.window ? gtk_widget_get_window(widgets.window) : nullptr;
    if (!window)
        return;
    GdkDisplay* display = gdk_window_get_display(window);
    GdkCursor* cursor = name ? gdk_cursor_new_from_name(display, name) : nullptr;
    gdk_window_set_cursor(window, cursor);
    if (cursor)
        g_object_unref(cursor);
    // A blocking call follows, which sends nothing to the display.
    gdk_display_flush(display);
}

} // namespace

struct BusyWith::Restore {
    GtkWidget* button;
    bool focus_was_there; ///< somewhere in the window
    bool focus_was_here;  ///< on the button
    bool (*sensitive_again)();

    void apply() const {
        gtk_widget_set_sensitive(button, !sensitive_again || sensitive_again());
        if (!focus_was_there || gtk_window_get_focus(GTK_WINDOW(widgets.window)))
            return;
        // The action may have hidden the button or left it insensitive.
        if (focus_was_here && gtk_widget_is_sensitive(button) && gtk_widget_get_mapped(button))
            gtk_widget_grab_focus(button);
        else
            // A field of the page would scroll into sight and take the next key as an edit.
            gtk_widget_child_focus(widgets.page_list, GTK_DIR_TAB_FORWARD);
    }

    static gboolean on_idle(gpointer data) {
        const Restore* restore = static_cast<Restore*>(data);
        // The window may be gone by now, and its record with it.
        if (widgets.window)
            restore->apply();
        g_object_unref(restore->button);
        delete restore;
        return G_SOURCE_REMOVE;
    }
};

BusyWith::BusyWith(GtkWidget* button, bool (*sensitive_again)()) {
    ++actions_running;
    show_pointer("wait");
    const bool focus_was_there = gtk_window_get_focus(GTK_WINDOW(widgets.window)) != nullptr;
    const bool focus_was_here = gtk_widget_is_focus(button) == TRUE;
    restore_ = new Restore{button, focus_was_there, focus_was_here, sensitive_again};
    g_object_ref(button);
    gtk_widget_set_sensitive(button, FALSE);
}

BusyWith::~BusyWith() {
    if (--actions_running == 0)
        show_pointer(nullptr);
    // Queued clicks are handled before idle callbacks and find the button insensitive.
    g_idle_add(Restore::on_idle, restore_);
}

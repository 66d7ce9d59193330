// SPDX-License-Identifier: MIT
#include "ui/widgets/busy.h"

#include "ui/widgets/pending_events.h"
#include "ui/widgets/signals.h"
#include "ui/widgets/widget_record.h"

#include <set>

namespace {

/// The buttons of the running actions. One action may contain another: registering saves first.
std::set<GtkWidget*> busy_buttons;

void show_pointer(const char* name) {
    GdkWindow* window = widgets.window ? gtk_widget_get_window(widgets.window) : nullptr;
    if (!window)
        return;
    GdkDisplay* display = gdk_window_get_display(window);
    GdkCursor* cursor = name ? gdk_cursor_new_from_name(display, name) : nullptr;
    gdk_window_set_cursor(window, cursor);
    if (cursor)
        g_object_unref(cursor);
    // The blocking request that follows would leave the change in the output buffer.
    gdk_display_flush(display);
}

/// Does nothing when a widget has the focus. `button` is null when it did not have the focus.
void give_focus_back(GtkWidget* button) {
    if (gtk_window_get_focus(GTK_WINDOW(widgets.window)))
        return;
    // The action may have hidden the button or left it insensitive.
    if (button && gtk_widget_is_sensitive(button) && gtk_widget_get_mapped(button))
        gtk_widget_grab_focus(button);
    else
        // Not a field of the page: the page would scroll to it, and the next key would edit it.
        gtk_widget_child_focus(widgets.page_list, GTK_DIR_TAB_FORWARD);
}

} // namespace

BusyWith::BusyWith(GtkWidget* button, bool (*sensitive_again)())
    : button_{button},
      sensitive_again_{sensitive_again}, first_{busy_buttons.insert(button).second},
      focus_was_there_{gtk_window_get_focus(GTK_WINDOW(widgets.window)) != nullptr},
      focus_was_here_{gtk_widget_is_focus(button) == TRUE} {
    show_pointer("wait");
    gtk_widget_set_sensitive(button, FALSE);
}

BusyWith::~BusyWith() {
    if (!first_)
        return;
    busy_buttons.erase(button_);
    if (busy_buttons.empty())
        show_pointer(nullptr);
    // Queued clicks are handled before idle callbacks and find the button insensitive.
    call_when_idle(G_PRIORITY_DEFAULT_IDLE,
                   [button = button_, sensitive_again = sensitive_again_,
                    focus_was_there = focus_was_there_, focus_was_here = focus_was_here_] {
                       gtk_widget_set_sensitive(button, !sensitive_again || sensitive_again());
                       if (focus_was_there)
                           give_focus_back(focus_was_here ? button : nullptr);
                   });
}

bool BusyWith::draw_progress() const {
    if (first_)
        draw_now();
    return first_ && widgets.window;
}

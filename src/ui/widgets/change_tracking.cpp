// SPDX-License-Identifier: MIT
#include "ui/widgets/change_tracking.h"

#include "ui/widgets/signals.h"
#include "ui/widgets/widget_record.h"
#include "ui/widgets/widget_tree.h"

void track_changes(GtkWidget* widget) {
    if (GTK_IS_SWITCH(widget))
        call_at_signal(widget, "notify::active", mark_dirty);
    if (GTK_IS_SPIN_BUTTON(widget))
        call_at_signal(widget, "value-changed", mark_dirty);
    // Typed text in a spin button becomes its value later, but it is an edit at once.
    if (GTK_IS_ENTRY(widget))
        call_at_signal(widget, "changed", mark_dirty);
    if (GTK_IS_TOGGLE_BUTTON(widget))
        call_at_signal(widget, "toggled", mark_dirty);
    if (GTK_IS_TEXT_VIEW(widget))
        call_at_signal(gtk_text_view_get_buffer(GTK_TEXT_VIEW(widget)), "changed", mark_dirty);
}

void mark_dirty() {
    if (widgets.loading || widgets.dirty)
        return;
    widgets.dirty = true;
    gtk_widget_set_sensitive(widgets.save_button, TRUE);
    gtk_widget_show(widgets.unsaved_label);
}

void mark_clean() {
    widgets.dirty = false;
    gtk_widget_set_sensitive(widgets.save_button, FALSE);
    gtk_widget_hide(widgets.unsaved_label);
}

void commit_typed_values() {
    for (GtkWidget* widget : descendants_of(widgets.stack))
        if (GTK_IS_SPIN_BUTTON(widget))
            gtk_spin_button_update(GTK_SPIN_BUTTON(widget));
}

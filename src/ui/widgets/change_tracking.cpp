// SPDX-License-Identifier: MIT
#include "ui/widgets/change_tracking.h"

#include "ui/widgets/widget_record.h"

namespace {

void on_widget_changed(GtkWidget*, gpointer) {
    mark_dirty();
}

void on_widget_notified(GObject*, GParamSpec*, gpointer) {
    mark_dirty();
}

void on_buffer_changed(GtkTextBuffer*, gpointer) {
    mark_dirty();
}

void commit(GtkWidget* spin) {
    if (spin)
        gtk_spin_button_update(GTK_SPIN_BUTTON(spin));
}

} // namespace

void track_changes(GtkWidget* widget) {
    if (GTK_IS_SWITCH(widget)) {
        g_signal_connect(widget, "notify::active", G_CALLBACK(on_widget_notified), nullptr);
    } else if (GTK_IS_SPIN_BUTTON(widget)) {
        g_signal_connect(widget, "value-changed", G_CALLBACK(on_widget_changed), nullptr);
        // Typed text becomes the value later, but it is an edit.
        g_signal_connect(widget, "changed", G_CALLBACK(on_widget_changed), nullptr);
    } else if (GTK_IS_ENTRY(widget)) {
        g_signal_connect(widget, "changed", G_CALLBACK(on_widget_changed), nullptr);
    } else if (GTK_IS_TOGGLE_BUTTON(widget)) {
        g_signal_connect(widget, "toggled", G_CALLBACK(on_widget_changed), nullptr);
    } else if (GTK_IS_TEXT_VIEW(widget)) {
        g_signal_connect(gtk_text_view_get_buffer(GTK_TEXT_VIEW(widget)), "changed",
                         G_CALLBACK(on_buffer_changed), nullptr);
    }
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
    for (const FieldBinding& field : widgets.field_registry)
        if (GTK_IS_SPIN_BUTTON(field.widget))
            commit(field.widget);
    for (const Receiver& receiver : widgets.receiver_list) {
        commit(receiver.low_spin);
        commit(receiver.high_spin);
    }
}

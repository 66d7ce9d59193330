// SPDX-License-Identifier: MIT
#include "ui/widgets/accessibility.h"

#include "ui/widgets/signals.h"

namespace {

void relate(GtkWidget* from, AtkRelationType type, GtkWidget* to) {
    atk_object_add_relationship(gtk_widget_get_accessible(from), type,
                                gtk_widget_get_accessible(to));
}

} // namespace

void name_by_label(GtkWidget* widget, GtkWidget* label) {
    relate(widget, ATK_RELATION_LABELLED_BY, label);
    relate(label, ATK_RELATION_LABEL_FOR, widget);
}

void describe_by_label(GtkWidget* widget, GtkWidget* label) {
    relate(widget, ATK_RELATION_DESCRIBED_BY, label);
    relate(label, ATK_RELATION_DESCRIPTION_FOR, widget);
}

void set_accessible_name(GtkWidget* widget, const char* name) {
    atk_object_set_name(gtk_widget_get_accessible(widget), name);
}

void announce_changes(GtkWidget* label) {
    call_at_signal(label, "notify::label", [label] { announce(label); });
}

void announce(GtkWidget* label) {
    const char* text = gtk_label_get_text(GTK_LABEL(label));
    if (*text)
        g_signal_emit_by_name(gtk_widget_get_accessible(label), "announcement", text);
}

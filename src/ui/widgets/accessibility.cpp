// SPDX-License-Identifier: MIT
#include "ui/widgets/accessibility.h"

#include <vector>

namespace {

struct Relation {
    GtkWidget* from;
    AtkRelationType type;
    GtkWidget* to;
};

bool relations_wait = true;
std::vector<Relation> waiting_relations;

void make_relation(const Relation& relation) {
    atk_object_add_relationship(gtk_widget_get_accessible(relation.from), relation.type,
                                gtk_widget_get_accessible(relation.to));
}

void relate(GtkWidget* from, AtkRelationType type, GtkWidget* to) {
    const Relation relation{from, type, to};
    if (!relations_wait) {
        make_relation(relation);
        return;
    }
    // Referenced, not sunk: the widgets' own floating references are for their containers.
    g_object_ref(from);
    g_object_ref(to);
    waiting_relations.push_back(relation);
}

gboolean make_waiting_relations(gpointer) {
    relations_wait = false;
    for (const Relation& relation : waiting_relations) {
        make_relation(relation);
        g_object_unref(relation.from);
        g_object_unref(relation.to);
    }
    waiting_relations.clear();
    return G_SOURCE_REMOVE;
}

void on_label_changed(GtkLabel* label, GParamSpec*, gpointer) {
    announce(GTK_WIDGET(label));
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

void make_accessible_relations_when_idle() {
    g_idle_add_full(G_PRIORITY_LOW, make_waiting_relations, nullptr, nullptr);
}

void announce_changes(GtkWidget* label) {
    g_signal_connect(label, "notify::label", G_CALLBACK(on_label_changed), nullptr);
}

void announce(GtkWidget* label) {
    const char* text = gtk_label_get_text(GTK_LABEL(label));
    if (*text)
        g_signal_emit_by_name(gtk_widget_get_accessible(label), "announcement", text);
}

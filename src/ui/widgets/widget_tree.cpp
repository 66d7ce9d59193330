// SPDX-License-Identifier: MIT
#include "ui/widgets/widget_tree.h"

#include "ui/widgets/widget_record.h"

namespace {

/// Key of the object data that holds the name of a widget.
constexpr char focus_name_key[] = "focus-name";

/// The name of a widget; "" when it has none.
std::string focus_name(GtkWidget* widget) {
    gpointer name = g_object_get_data(G_OBJECT(widget), focus_name_key);
    return name ? static_cast<const char*>(name) : "";
}

void append_with_descendants(GtkWidget* widget, gpointer list) {
    static_cast<std::vector<GtkWidget*>*>(list)->push_back(widget);
    if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(GTK_CONTAINER(widget), append_with_descendants, list);
}

} // namespace

std::vector<GtkWidget*> descendants_of(GtkWidget* container) {
    std::vector<GtkWidget*> list;
    gtk_container_forall(GTK_CONTAINER(container), append_with_descendants, &list);
    return list;
}

void set_focus_name(GtkWidget* widget, const std::string& name) {
    g_object_set_data_full(G_OBJECT(widget), focus_name_key, g_strdup(name.c_str()), g_free);
}

KeepFocus::KeepFocus(GtkWidget* box) : box_{box} {
    GtkWidget* widget = gtk_window_get_focus(GTK_WINDOW(widgets.window));
    if (!widget || !gtk_widget_is_ancestor(widget, box))
        return;
    // The focus may be on a part of the named widget, such as the button of a combo box.
    for (; widget != box && name_.empty(); widget = gtk_widget_get_parent(widget))
        name_ = focus_name(widget);
}

KeepFocus::~KeepFocus() {
    if (name_.empty() || gtk_container_get_focus_child(GTK_CONTAINER(box_)))
        return;
    GtkWidget* scroll = gtk_widget_get_ancestor(box_, GTK_TYPE_SCROLLED_WINDOW);
    GtkAdjustment* position = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroll));
    const double value = gtk_adjustment_get_value(position);
    GtkWidget* found = nullptr;
    for (GtkWidget* widget : descendants_of(box_))
        if (focus_name(widget) == name_)
            found = widget;
    if (found)
        gtk_widget_child_focus(found, GTK_DIR_TAB_FORWARD);
    gtk_adjustment_set_value(position, value);
}

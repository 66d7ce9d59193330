// SPDX-License-Identifier: MIT
#include "ui/widgets/keep_focus.h"

#include "ui/widgets/widget_record.h"

namespace {

/// Key of the object data that holds the name of a widget.
constexpr char focus_name_key[] = "focus-name";

const char* focus_name(GtkWidget* widget) {
    return static_cast<const char*>(g_object_get_data(G_OBJECT(widget), focus_name_key));
}

struct Search {
    const std::string& name;
    GtkWidget* found = nullptr;
};

void find_by_name(GtkWidget* widget, gpointer data) {
    Search& search = *static_cast<Search*>(data);
    const char* name = focus_name(widget);
    if (name && name == search.name)
        search.found = widget;
    else if (GTK_IS_CONTAINER(widget))
        gtk_container_foreach(GTK_CONTAINER(widget), find_by_name, data);
}

} // namespace

void set_focus_name(GtkWidget* widget, const std::string& name) {
    g_object_set_data_full(G_OBJECT(widget), focus_name_key, g_strdup(name.c_str()), g_free);
}

KeepFocus::KeepFocus(GtkWidget* box) : box_{box} {
    GtkWidget* widget = gtk_window_get_focus(GTK_WINDOW(widgets.window));
    if (!widget || !gtk_widget_is_ancestor(widget, box))
        return;
    // The focus may be on a part of the named widget, such as the button of a combo box.
    for (; widget != box && name_.empty(); widget = gtk_widget_get_parent(widget))
        if (const char* name = focus_name(widget))
            name_ = name;
}

KeepFocus::~KeepFocus() {
    if (name_.empty() || gtk_container_get_focus_child(GTK_CONTAINER(box_)))
        return;
    Search search{name_};
    find_by_name(box_, &search);
    if (!search.found)
        return;
    GtkWidget* scroll = gtk_widget_get_ancestor(box_, GTK_TYPE_SCROLLED_WINDOW);
    GtkAdjustment* position = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroll));
    const double value = gtk_adjustment_get_value(position);
    gtk_widget_child_focus(search.found, GTK_DIR_TAB_FORWARD);
    gtk_adjustment_set_value(position, value);
}

// SPDX-License-Identifier: MIT
#include "ui/widgets/page_stack.h"

#include "link/text.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/signals.h"
#include "ui/widgets/widget_tree.h"

#include <algorithm>

namespace {

GtkStack* stack() {
    return GTK_STACK(widgets.stack);
}

/// Needed before any other page is shown: GTK computes the least height at the least width, so a
/// narrow page would make a small window taller than its screen.
void make_stack_homogeneous() {
    gtk_stack_set_homogeneous(stack(), TRUE);
}

/// Tab moves the focus into the list at the row of the page shown, and out of it at the next press.
/// By default GTK would move the focus through all rows and show each page.
gboolean on_page_list_focus(GtkWidget* list, GtkDirectionType direction, gpointer) {
    if (direction != GTK_DIR_TAB_FORWARD && direction != GTK_DIR_TAB_BACKWARD)
        return FALSE;
    g_signal_stop_emission_by_name(list, "focus");
    if (gtk_container_get_focus_child(GTK_CONTAINER(list)))
        return FALSE;
    GtkListBoxRow* row = gtk_list_box_get_selected_row(GTK_LIST_BOX(list));
    if (!row)
        return FALSE;
    gtk_widget_grab_focus(GTK_WIDGET(row));
    return TRUE;
}

} // namespace

GtkWidget* make_page_stack() {
    widgets.stack = gtk_stack_new();
    gtk_stack_set_transition_type(stack(), GTK_STACK_TRANSITION_TYPE_CROSSFADE);
    gtk_stack_set_homogeneous(stack(), FALSE);
    return widgets.stack;
}

GtkWidget* make_page_list() {
    GtkWidget* sidebar = gtk_stack_sidebar_new();
    gtk_widget_set_size_request(sidebar, 190, -1);
    gtk_stack_sidebar_set_stack(GTK_STACK_SIDEBAR(sidebar), stack());
    for (GtkWidget* widget : descendants_of(sidebar)) {
        // The scrolled window around the list must not take the focus.
        if (GTK_IS_SCROLLED_WINDOW(widget))
            gtk_widget_set_can_focus(widget, FALSE);
        else if (GTK_IS_LIST_BOX(widget))
            widgets.page_list = widget;
        // GTK gives the rows of the list a label each, but no accessible name.
        else if (GTK_IS_LIST_BOX_ROW(widget))
            name_by_label(widget, gtk_bin_get_child(GTK_BIN(widget)));
    }
    g_signal_connect(widgets.page_list, "focus", G_CALLBACK(on_page_list_focus), nullptr);
    return sidebar;
}

GtkWidget* add_page(const char* name, const char* title, const char* subtitle) {
    GtkWidget* page = make_box(GTK_ORIENTATION_VERTICAL, 14);
    gtk_widget_set_margin_start(page, 26);
    gtk_widget_set_margin_end(page, 26);
    set_vertical_margins(page, 20, 26);
    GtkWidget* heading = make_label(escaped_markup(title).c_str(), "page-title");
    pack(page, heading);
    if (subtitle)
        pack(page, make_label(escaped_markup(subtitle).c_str(), "muted"));

    GtkWidget* scroll = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroll), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_container_add(GTK_CONTAINER(scroll), page);
    name_by_label(scroll, heading);
    gtk_stack_add_titled(stack(), scroll, name, title);
    widgets.pages.push_back(scroll);
    return page;
}

void show_page(const char* name) {
    // GTK warns of an unknown name.
    GtkWidget* page = gtk_stack_get_child_by_name(stack(), name);
    if (!page)
        return;
    make_stack_homogeneous();
    gtk_stack_set_visible_child(stack(), page);
}

void show_page_at(std::size_t index) {
    if (index < widgets.pages.size())
        gtk_stack_set_visible_child(stack(), widgets.pages[index]);
}

void turn_pages(int distance) {
    const auto current =
        std::find(widgets.pages.begin(), widgets.pages.end(), gtk_stack_get_visible_child(stack()));
    // An index below 0 becomes a huge one, which no page has.
    show_page_at(static_cast<std::size_t>(current - widgets.pages.begin() + distance));
}

void make_stack_homogeneous_when_idle() {
    call_when_idle(G_PRIORITY_LOW, make_stack_homogeneous);
}

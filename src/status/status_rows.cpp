// SPDX-License-Identifier: MIT
#include "status/status_rows.h"

#include "link/text.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/page_stack.h"

namespace {

/// Key of the object data that holds a row's content.
constexpr char content_key[] = "content";

const RowContent& content_of(gpointer row) {
    return *static_cast<RowContent*>(g_object_get_data(G_OBJECT(row), content_key));
}

void delete_content(gpointer content) {
    delete static_cast<RowContent*>(content);
}

GtkWidget* make_row(const RowContent& content) {
    GtkWidget* row = make_box(GTK_ORIENTATION_HORIZONTAL, 10, "row");
    g_object_set_data_full(G_OBJECT(row), content_key, new RowContent{content}, delete_content);
    if (!content.mark.empty())
        pack(row, make_label(content.mark.c_str(), content.mark_class.c_str(), false));
    GtkWidget* text = make_label(content.markup.c_str(), nullptr);
    pack(row, text, true);
    if (!content.origin.empty())
        pack(row, make_label(escaped_markup(content.origin).c_str(), "small", false));
    if (!content.button.empty()) {
        const auto show = [page = content.page] { show_page(page.c_str()); };
        GtkWidget* button = make_button(content.button.c_str(), show, "link");
        describe_by_label(button, text);
        pack(row, button);
    }
    gtk_widget_show_all(row);
    return row;
}

/// Gives the focus to the button of a row without scrolling the page to it.
void focus_button_of(GtkWidget* row) {
    GtkWidget* scroll = gtk_widget_get_ancestor(row, GTK_TYPE_SCROLLED_WINDOW);
    GtkAdjustment* position = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroll));
    const double value = gtk_adjustment_get_value(position);
    gtk_widget_child_focus(row, GTK_DIR_TAB_FORWARD);
    gtk_adjustment_set_value(position, value);
}

} // namespace

void show_rows(GtkWidget* box, const std::vector<RowContent>& contents) {
    GtkWidget* focused_row = gtk_container_get_focus_child(GTK_CONTAINER(box));
    const std::string focused_page = focused_row ? content_of(focused_row).page : "";

    GList* const old_rows = gtk_container_get_children(GTK_CONTAINER(box));
    GList* old_row = old_rows;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        gpointer kept = old_row ? old_row->data : nullptr;
        old_row = old_row ? old_row->next : nullptr;
        if (kept && content_of(kept) == contents[i])
            continue;
        if (kept)
            gtk_widget_destroy(GTK_WIDGET(kept));
        GtkWidget* row = make_row(contents[i]);
        pack(box, row);
        gtk_box_reorder_child(GTK_BOX(box), row, static_cast<gint>(i));
    }
    for (; old_row; old_row = old_row->next)
        gtk_widget_destroy(GTK_WIDGET(old_row->data));
    g_list_free(old_rows);

    if (focused_page.empty() || gtk_container_get_focus_child(GTK_CONTAINER(box)))
        return;
    GList* const rows = gtk_container_get_children(GTK_CONTAINER(box));
    for (GList* row = rows; row; row = row->next)
        if (content_of(row->data).page == focused_page) {
            focus_button_of(GTK_WIDGET(row->data));
            break;
        }
    g_list_free(rows);
}

// SPDX-License-Identifier: MIT
#include "status/status_rows.h"

#include "link/text.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/keep_focus.h"
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
        set_focus_name(button, content.page);
        pack(row, button);
    }
    gtk_widget_show_all(row);
    return row;
}

} // namespace

void show_rows(GtkWidget* box, const std::vector<RowContent>& contents) {
    const KeepFocus keep_focus{box};
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
}

// SPDX-License-Identifier: MIT
#include "status/overview_page.h"

#include "link/json_access.h"
#include "link/text.h"
#include "status/overview_texts.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/page_stack.h"
#include "ui/widgets/setters.h"
#include "ui/widgets/widget_tree.h"

#include <boost/json/value.hpp>
#include <boost/scope_exit.hpp>

#include <string>
#include <vector>

namespace {

/// What a row shows, in this order. An empty member has no widget.
struct RowContent {
    std::string mark{}; ///< a single character
    std::string mark_class{};
    std::string markup{};
    std::string origin{}; ///< small and plain
    std::string button{}; ///< label of the link button
    std::string page{};   ///< page that the button shows

    bool operator==(const RowContent&) const = default;
};

/// Key of the object data that holds a row's content.
constexpr char content_key[] = "content";

const RowContent& content_of(gpointer row) {
    return *static_cast<RowContent*>(g_object_get_data(G_OBJECT(row), content_key));
}

GtkWidget* make_row(const RowContent& content) {
    GtkWidget* row = make_box(GTK_ORIENTATION_HORIZONTAL, 10, "row");
    g_object_set_data_full(G_OBJECT(row), content_key, new RowContent{content},
                           [](gpointer kept) { delete static_cast<RowContent*>(kept); });
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

/// Shows these rows in a box, and no others. A row with the same content is kept, so that the focus
/// and a pressed button stay; any other is made anew. When the button that has the focus is
/// destroyed, the focus moves to the button for the same page.
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

RowContent checklist_row(const ChecklistItem& item) {
    if (item.done)
        return {.mark = "✓", .mark_class = "good", .markup = checklist_item_markup(item)};
    return {.mark = "○",
            .mark_class = "muted",
            .markup = checklist_item_markup(item),
            .button = "Go there →",
            .page = item.page};
}

RowContent receiver_on_air_row(const json::object& receiver) {
    const std::string device = member_string(receiver, "device");
    const bool attached = required_bool(receiver, "attached");
    const double lo_hz = number_or_zero(required_member(receiver, "lo"));
    const double hi_hz = number_or_zero(required_member(receiver, "hi"));
    return {.mark = "●",
            .mark_class = "good",
            .markup = receiver_markup(device, lo_hz, hi_hz),
            .origin = receiver_origin(attached)};
}

RowContent failed_receiver_row(const json::object& receiver) {
    const std::string serial = string_or_empty(required_member(receiver, "serial"));
    const std::string log = string_or_empty(required_member(receiver, "log"));
    return {.mark = "●", .mark_class = "error", .markup = failed_receiver_markup(serial, log)};
}

} // namespace

void draw_checklist(const StationState& state) {
    std::vector<RowContent> rows;
    for (const ChecklistItem& item : checklist_items(state))
        rows.push_back(checklist_row(item));
    show_rows(widgets.getting_started_box, rows);
    gtk_widget_set_visible(widgets.getting_started_card, !checklist_is_done(state));
}

void draw_station_link(const StationState& state) {
    const std::string link = valid_utf8(state.station_link);
    const std::string shown = shortened(link);
    GtkButton* button = GTK_BUTTON(widgets.station_link);
    if (gtk_button_get_label(button) != shown) {
        gtk_button_set_label(button, shown.c_str());
        // gtk_button_set_label makes a new label widget.
        ellipsise(gtk_bin_get_child(GTK_BIN(button)));
        gtk_link_button_set_uri(GTK_LINK_BUTTON(widgets.station_link),
                                link.empty() ? "about:blank" : link.c_str());
    }
    gtk_widget_set_visible(widgets.station_link_row, !link.empty());
}

void draw_receivers_on_air(const StationState& state) {
    std::vector<RowContent> rows;
    // At an error too: the rows before a broken record are shown.
    BOOST_SCOPE_EXIT_ALL(&rows) {
        show_rows(widgets.on_air_box, rows);
    };
    for (const json::value& element : required_array(status_object, "receivers"))
        rows.push_back(receiver_on_air_row(as_object(element, "an element of receivers")));
    const json::array& started = required_array(status_object, "started");
    for (const json::value& element : started) {
        const json::object& receiver = as_object(element, "an element of started");
        if (!required_bool(receiver, "running"))
            rows.push_back(failed_receiver_row(receiver));
    }
    if (state.receiver_count == 0 && started.empty())
        rows.push_back({.markup = coloured_markup(muted_colour, "No receiver is on the air yet."),
                        .button = "Choose receivers →",
                        .page = "receivers"});
}

// SPDX-License-Identifier: MIT
#include "status/listeners_table.h"

#include "link/json_access.h"
#include "link/text.h"
#include "status/overview_texts.h"
#include "ui/widgets/setters.h"
#include "ui/widgets/signals.h"

#include <boost/json/value.hpp>
#include <boost/scope_exit.hpp>

#include <algorithm>
#include <array>
#include <unordered_set>
#include <vector>

namespace {

enum Column : gint { number_column, address_column, tuned_column, time_column, column_count };

constexpr std::array<const char*, column_count> column_titles = {"#", "Address", "Tuned to",
                                                                 "Time"};

/// Height of the scrolled window around the table, in pixels.
constexpr int table_height = 150;

/// Least width of each column, in digits.
std::array<std::size_t, column_count> widths{};

/// Padding on both sides of a cell's text, together, in pixels.
constexpr int cell_padding = 20;

GtkTreeView* view() {
    return GTK_TREE_VIEW(widgets.listeners_view);
}

GtkTreeModel* model() {
    return GTK_TREE_MODEL(widgets.listeners_store);
}

GtkTreeSelection* selection() {
    return gtk_tree_view_get_selection(view());
}

std::int32_t number_at(GtkTreeIter* iter) {
    gint number = 0;
    gtk_tree_model_get(model(), iter, number_column, &number, -1);
    return number;
}

ListenerRow row_at(GtkTreeModel* rows, GtkTreeIter* iter) {
    gint number = 0;
    char* address = nullptr;
    char* tuned_to = nullptr;
    char* time = nullptr;
    gtk_tree_model_get(rows, iter, number_column, &number, address_column, &address, tuned_column,
                       &tuned_to, time_column, &time, -1);
    const GlibText owned[] = {GlibText{address}, GlibText{tuned_to}, GlibText{time}};
    const auto text = [](const char* stored) { return std::string{stored ? stored : ""}; };
    return {number, text(address), text(tuned_to), text(time)};
}

void read_record(const json::value& record, std::vector<ListenerRow>& rows) {
    const json::object& listener = as_object(record, "an element of listeners");
    ListenerRow row;
    row.time =
        session_time_text(clamped_int32(number_or_zero(required_member(listener, "seconds"))));
    row.tuned_to = valid_utf8(tuned_to_text(listener));
    row.number = clamped_int32(number_or_zero(required_member(listener, "number")));
    row.address = valid_utf8(member_string(listener, "address"));
    rows.push_back(std::move(row));
    // After the row was added: a record without an address leaves a row with an empty one.
    required_member(listener, "address");
}

/// Overwrites the rows of listeners who stay, in place, and removes those of the others. A row that
/// would have to move up is made anew at its new place. Returns the last row whose session number
/// is `wanted`.
std::optional<GtkTreeIter> show_listeners(const std::vector<ListenerRow>& rows,
                                          std::int32_t wanted) {
    std::unordered_set<std::int32_t> numbers;
    for (const ListenerRow& row : rows)
        numbers.insert(row.number);

    std::optional<GtkTreeIter> wanted_row;
    GtkTreeIter old;
    bool old_is_left = gtk_tree_model_get_iter_first(model(), &old);
    for (const ListenerRow& row : rows) {
        while (old_is_left && !numbers.contains(number_at(&old)))
            old_is_left = gtk_list_store_remove(widgets.listeners_store, &old);
        GtkTreeIter shown = old;
        if (old_is_left && number_at(&old) == row.number)
            old_is_left = gtk_tree_model_iter_next(model(), &old);
        else
            gtk_list_store_insert_before(widgets.listeners_store, &shown,
                                         old_is_left ? &old : nullptr);
        if (row_at(model(), &shown) != row)
            gtk_list_store_set(widgets.listeners_store, &shown, number_column, row.number,
                               address_column, row.address.c_str(), tuned_column,
                               row.tuned_to.c_str(), time_column, row.time.c_str(), -1);
        if (row.number == wanted)
            wanted_row = shown;
    }
    while (old_is_left)
        old_is_left = gtk_list_store_remove(widgets.listeners_store, &old);
    return wanted_row;
}

/// The handler of "style-updated": the width of a digit follows the scale of texts.
void set_column_widths(GtkWidget* table) {
    PangoLayout* layout = gtk_widget_create_pango_layout(table, "0");
    int digit_width = 0;
    pango_layout_get_pixel_size(layout, &digit_width, nullptr);
    g_object_unref(layout);
    gint column = 0;
    for (const std::size_t digits : widths)
        gtk_tree_view_column_set_min_width(gtk_tree_view_get_column(GTK_TREE_VIEW(table), column++),
                                           static_cast<gint>(digits) * digit_width + cell_padding);
}

/// Columns only grow, so that they stay in place. An IPv6 address has 39 characters.
void widen_columns(const std::vector<ListenerRow>& rows) {
    const auto before = widths;
    for (const ListenerRow& row : rows) {
        std::size_t& number = widths[number_column];
        number = std::max(number, std::to_string(row.number).size());
        std::size_t& address = widths[address_column];
        address = std::max(address, std::min<std::size_t>(row.address.size(), 40));
    }
    if (widths != before)
        set_column_widths(widgets.listeners_view);
}

/// Shows the whole address and tuning of a row, whose cells may end in an ellipsis.
gboolean on_query_tooltip(GtkWidget* table, gint x, gint y, gboolean by_keyboard,
                          GtkTooltip* tooltip, gpointer) {
    GtkTreeModel* rows = nullptr;
    GtkTreePath* path = nullptr;
    GtkTreeIter iter;
    if (!gtk_tree_view_get_tooltip_context(GTK_TREE_VIEW(table), &x, &y, by_keyboard, &rows, &path,
                                           &iter))
        return FALSE;
    const ListenerRow row = row_at(rows, &iter);
    const std::string text = row.address + "\n" + row.tuned_to;
    gtk_tooltip_set_text(tooltip, shortened(text, longest_tooltip).c_str());
    gtk_tree_view_set_tooltip_row(GTK_TREE_VIEW(table), tooltip, path);
    gtk_tree_path_free(path);
    return TRUE;
}

void add_column(gint column) {
    GtkCellRenderer* cell = gtk_cell_renderer_text_new();
    // In fixed height mode all rows are as high as the first, so a line feed must not begin a line.
    g_object_set(cell, "ellipsize", PANGO_ELLIPSIZE_END, "single-paragraph-mode", TRUE, nullptr);
    GtkTreeViewColumn* view_column = gtk_tree_view_column_new_with_attributes(
        column_titles[static_cast<std::size_t>(column)], cell, "text", column, nullptr);
    gtk_tree_view_column_set_expand(view_column, column == tuned_column);
    gtk_tree_view_column_set_sizing(view_column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_append_column(view(), view_column);
}

} // namespace

GtkWidget* make_listeners_table() {
    widgets.listeners_store =
        gtk_list_store_new(column_count, G_TYPE_INT, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING);
    GtkWidget* table = gtk_tree_view_new_with_model(model());
    widgets.listeners_view = table;
    g_object_unref(widgets.listeners_store); // the view owns it now
    for (gint column = 0; column < column_count; ++column)
        add_column(column);
    widths = {2, 7, 14, 7}; // "Tuned to" expands, the first two columns grow with their texts
    gtk_tree_view_set_fixed_height_mode(view(), TRUE);
    gtk_tree_view_set_search_column(view(), address_column);
    call_at_signal(table, "style-updated", [table] { set_column_widths(table); });
    call_at_signal(selection(), "changed", update_listener_buttons);
    gtk_widget_set_has_tooltip(table, TRUE);
    g_signal_connect(table, "query-tooltip", G_CALLBACK(on_query_tooltip), nullptr);

    widgets.listeners_scroll = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_widget_set_size_request(widgets.listeners_scroll, -1, table_height);
    gtk_container_add(GTK_CONTAINER(widgets.listeners_scroll), table);
    return widgets.listeners_scroll;
}

void draw_listeners(const StationState& state) {
    set_label_text(widgets.listeners_title, listening_title(state));

    const std::optional<ListenerRow> selected = selected_listener();
    std::optional<GtkTreeIter> row;
    {
        std::vector<ListenerRow> rows;
        // At an error too: the rows before a broken record are shown.
        BOOST_SCOPE_EXIT_ALL(&rows, &row, &selected) {
            row = show_listeners(rows, selected ? selected->number : -1);
            widen_columns(rows);
        };
        for (const json::value& record : required_array(status_object, "listeners"))
            read_record(record, rows);
    }
    // After all rows were drawn: when the row under the cursor is removed, GTK selects the row that
    // takes its place.
    if (!row)
        gtk_tree_selection_unselect_all(selection());
    else if (!gtk_tree_selection_iter_is_selected(selection(), &*row))
        gtk_tree_selection_select_iter(selection(), &*row);
    gtk_widget_set_visible(widgets.listeners_scroll, state.listener_count > 0);
    gtk_widget_set_visible(widgets.listeners_empty, state.listener_count == 0);
}

std::optional<ListenerRow> selected_listener() {
    GtkTreeIter iter;
    if (!gtk_tree_selection_get_selected(selection(), nullptr, &iter))
        return std::nullopt;
    return row_at(model(), &iter);
}

void update_listener_buttons() {
    const gboolean any = gtk_tree_selection_count_selected_rows(selection()) > 0;
    gtk_widget_set_sensitive(widgets.end_session_button, any);
    gtk_widget_set_sensitive(widgets.block_button, any);
}

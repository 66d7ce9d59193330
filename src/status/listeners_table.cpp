// SPDX-License-Identifier: MIT
#include "status/listeners_table.h"

#include "link/json_access.h"
#include "link/text.h"
#include "status/column_widths.h"
#include "status/overview_texts.h"
#include "ui/widgets/setters.h"

#include <boost/json/value.hpp>

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

struct ListenerRow {
    std::int32_t number = 0;
    std::string address{};
    std::string tuned_to{};
    std::string time{};
};

struct ShownListener {
    GtkTreeIter iter{}; ///< stays valid while the row exists: the store's iterators persist
    ListenerRow row{};
};

/// What a table shows. It is remembered with the table's store, and gone with it.
struct ShownTable {
    std::vector<ShownListener> listeners{};
    ColumnWidths column_widths{};
};

constexpr char shown_table_key[] = "shown-table";

/// That of `widgets.listeners_store`, looked up once for each pass.
ShownTable* shown_table = nullptr;

void forget_table(gpointer table) {
    delete static_cast<ShownTable*>(table);
}

void look_up_shown_table() {
    shown_table = static_cast<ShownTable*>(
        g_object_get_data(G_OBJECT(widgets.listeners_store), shown_table_key));
}

void store_row(const GtkTreeIter& iter, const ListenerRow& row) {
    GtkTreeIter at = iter;
    gtk_list_store_set(widgets.listeners_store, &at, number_column, row.number, address_column,
                       row.address.c_str(), tuned_column, row.tuned_to.c_str(), time_column,
                       row.time.c_str(), -1);
}

void take_in_width(gint column, const std::string& text) {
    shown_table->column_widths.take_in(GTK_TREE_VIEW(widgets.listeners_view), column, text);
}

void take_in_widths(const ListenerRow& row) {
    take_in_width(number_column, std::to_string(row.number));
    take_in_width(address_column, row.address);
    take_in_width(tuned_column, row.tuned_to);
    take_in_width(time_column, row.time);
}

void store_text(const GtkTreeIter& iter, gint column, const std::string& text) {
    GtkTreeIter at = iter;
    gtk_list_store_set(widgets.listeners_store, &at, column, text.c_str(), -1);
    take_in_width(column, text);
}

/// Brings the table in line with the rows given one after the other. Rows that were not given are
/// gone when the object goes, also when an error ends the pass in the middle.
class TableWriter {
public:
    explicit TableWriter(const json::array& records) : records_{records} {
        written_.reserve(records.size());
    }

    ~TableWriter() {
        for (; next_old_ < shown_table->listeners.size(); ++next_old_)
            remove_old();
        shown_table->listeners = std::move(written_);
    }

    TableWriter(const TableWriter&) = delete;
    TableWriter& operator=(const TableWriter&) = delete;

    void write(ListenerRow row) {
        for (; old_is_left() && old().row.number != row.number && has_left(old().row.number);
             ++next_old_)
            remove_old();
        if (old_is_left() && old().row.number == row.number) {
            overwrite(old(), std::move(row));
            written_.push_back(std::move(old()));
            ++next_old_;
            return;
        }
        ShownListener added;
        GtkTreeIter* before = old_is_left() ? &old().iter : nullptr;
        gtk_list_store_insert_before(widgets.listeners_store, &added.iter, before);
        store_row(added.iter, row);
        take_in_widths(row);
        added.row = std::move(row);
        written_.push_back(std::move(added));
    }

    /// The last row written with this session number.
    std::optional<GtkTreeIter> find(std::int32_t number) const {
        for (auto at = written_.rbegin(); at != written_.rend(); ++at)
            if (at->row.number == number)
                return at->iter;
        return std::nullopt;
    }

private:
    bool old_is_left() const { return next_old_ < shown_table->listeners.size(); }

    ShownListener& old() { return shown_table->listeners[next_old_]; }

    void remove_old() { gtk_list_store_remove(widgets.listeners_store, &old().iter); }

    /// True when no record bears the number. The numbers are gathered when first asked for: as a
    /// rule nobody has left.
    bool has_left(std::int32_t number) {
        if (!numbers_gathered_) {
            numbers_gathered_ = true;
            for (const json::value& record : records_)
                if (const json::object* listener = record.if_object())
                    numbers_.insert(clamped_int32(member_number(*listener, "number")));
        }
        return !numbers_.contains(number);
    }

    static void overwrite(ShownListener& shown, ListenerRow&& row) {
        if (shown.row.time != row.time)
            store_text(shown.iter, time_column, row.time);
        if (shown.row.tuned_to != row.tuned_to)
            store_text(shown.iter, tuned_column, row.tuned_to);
        if (shown.row.address != row.address)
            store_text(shown.iter, address_column, row.address);
        shown.row = std::move(row);
    }

    const json::array& records_;
    std::vector<ShownListener> written_{};
    std::size_t next_old_ = 0;
    bool numbers_gathered_ = false;
    std::unordered_set<std::int32_t> numbers_{};
};

std::optional<Tuning> tuning_of(const json::object& listener) {
    const json::value* frequency = listener.if_contains("f");
    if (!frequency)
        return std::nullopt;
    const json::value& mode = required_member(listener, "mode");
    const json::string* mode_text = mode.if_string();
    return Tuning{number_or_zero(*frequency),
                  mode_text ? std::string_view{mode_text->data(), mode_text->size()}
                            : std::string_view{},
                  required_bool(listener, "listening")};
}

void write_record(TableWriter& table, const json::value& record) {
    const json::object& listener = as_object(record, "an element of listeners");
    ListenerRow row;
    row.time =
        session_time_text(clamped_int32(number_or_zero(required_member(listener, "seconds"))));
    const std::optional<Tuning> tuning = tuning_of(listener);
    row.tuned_to = valid_utf8(tuned_to_text(tuning, optional_bool(listener, "relayed", false)));
    row.number = clamped_int32(number_or_zero(required_member(listener, "number")));
    row.address = valid_utf8(member_string(listener, "address"));
    table.write(std::move(row));
    // The row is there before a missing address stops the pass.
    required_member(listener, "address");
}

/// Shows a row's address and tuning whole: their cells may end in an ellipsis.
gboolean on_query_tooltip(GtkWidget* view, gint x, gint y, gboolean by_keyboard,
                          GtkTooltip* tooltip, gpointer) {
    GtkTreeModel* model = nullptr;
    GtkTreePath* path = nullptr;
    GtkTreeIter iter;
    if (!gtk_tree_view_get_tooltip_context(GTK_TREE_VIEW(view), &x, &y, by_keyboard, &model, &path,
                                           &iter))
        return FALSE;
    char* address = nullptr;
    char* tuned_to = nullptr;
    gtk_tree_model_get(model, &iter, address_column, &address, tuned_column, &tuned_to, -1);
    const std::string text =
        std::string{address ? address : ""} + "\n" + (tuned_to ? tuned_to : "");
    gtk_tooltip_set_text(tooltip, shortened(text, longest_tooltip).c_str());
    gtk_tree_view_set_tooltip_row(GTK_TREE_VIEW(view), tooltip, path);
    gtk_tree_path_free(path);
    g_free(address);
    g_free(tuned_to);
    return TRUE;
}

void on_selection_changed(GtkTreeSelection*, gpointer) {
    update_listener_buttons();
}

GtkTreeSelection* selection() {
    return gtk_tree_view_get_selection(GTK_TREE_VIEW(widgets.listeners_view));
}

void add_column(gint column) {
    GtkCellRenderer* cell = gtk_cell_renderer_text_new();
    // All rows are as high as the first: a line feed in it begins no line.
    g_object_set(cell, "ellipsize", PANGO_ELLIPSIZE_END, "single-paragraph-mode", TRUE, nullptr);
    GtkTreeViewColumn* view_column = gtk_tree_view_column_new_with_attributes(
        column_titles[static_cast<std::size_t>(column)], cell, "text", column, nullptr);
    gtk_tree_view_column_set_expand(view_column, column == tuned_column);
    gtk_tree_view_column_set_sizing(view_column, GTK_TREE_VIEW_COLUMN_FIXED);
    const int width = ColumnWidths::least[static_cast<std::size_t>(column)];
    gtk_tree_view_column_set_min_width(view_column, width);
    gtk_tree_view_column_set_fixed_width(view_column, width);
    gtk_tree_view_append_column(GTK_TREE_VIEW(widgets.listeners_view), view_column);
}

} // namespace

GtkWidget* make_listeners_table() {
    widgets.listeners_store =
        gtk_list_store_new(column_count, G_TYPE_INT, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING);
    g_object_set_data_full(G_OBJECT(widgets.listeners_store), shown_table_key, new ShownTable,
                           forget_table);
    widgets.listeners_view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(widgets.listeners_store));
    g_object_unref(widgets.listeners_store); // the view holds it now
    for (gint column = 0; column < column_count; ++column)
        add_column(column);
    gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(widgets.listeners_view), TRUE);
    gtk_tree_view_set_search_column(GTK_TREE_VIEW(widgets.listeners_view), address_column);
    g_signal_connect(selection(), "changed", G_CALLBACK(on_selection_changed), nullptr);
    gtk_widget_set_has_tooltip(widgets.listeners_view, TRUE);
    g_signal_connect(widgets.listeners_view, "query-tooltip", G_CALLBACK(on_query_tooltip),
                     nullptr);

    widgets.listeners_scroll = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_widget_set_size_request(widgets.listeners_scroll, -1, table_height);
    gtk_container_add(GTK_CONTAINER(widgets.listeners_scroll), widgets.listeners_view);
    return widgets.listeners_scroll;
}

void draw_listeners(const StationState& state) {
    look_up_shown_table();
    set_label_text(widgets.listeners_title, listening_title(state));

    const std::optional<SelectedListener> selected = selected_listener();
    const std::int32_t remembered = selected ? selected->number : -1;
    std::optional<GtkTreeIter> still_there;
    {
        const json::array& records = required_array(status_object, "listeners");
        TableWriter table{records};
        for (const json::value& record : records)
            write_record(table, record);
        still_there = table.find(remembered);
    }
    // Only now: when the row under the cursor goes, GTK selects the one that takes its place.
    if (!still_there)
        gtk_tree_selection_unselect_all(selection());
    else if (!gtk_tree_selection_iter_is_selected(selection(), &*still_there))
        gtk_tree_selection_select_iter(selection(), &*still_there);
    gtk_widget_set_visible(widgets.listeners_scroll, state.listener_count > 0);
    gtk_widget_set_visible(widgets.listeners_empty, state.listener_count == 0);
}

std::optional<SelectedListener> selected_listener() {
    GtkTreeModel* model = nullptr;
    GtkTreeIter iter;
    if (!gtk_tree_selection_get_selected(selection(), &model, &iter))
        return std::nullopt;
    gint number = 0;
    char* address = nullptr;
    gtk_tree_model_get(model, &iter, number_column, &number, address_column, &address, -1);
    SelectedListener listener{number, address ? address : ""};
    g_free(address);
    return listener;
}

void update_listener_buttons() {
    const gboolean any = gtk_tree_selection_count_selected_rows(selection()) > 0;
    gtk_widget_set_sensitive(widgets.end_session_button, any);
    gtk_widget_set_sensitive(widgets.block_button, any);
}

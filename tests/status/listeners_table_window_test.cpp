// SPDX-License-Identifier: MIT
#include "status/listeners_table.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "status/overview_texts.h"
#include "support/window_fixture.h"

namespace {

const std::string host{directory_host};

using ListenersTable = WindowTest;
using NewListenersTable = FreshWindowTest;

struct TableRow {
    int number = 0;
    std::string address{};
    std::string tuned_to{};
    std::string time{};

    bool operator==(const TableRow&) const = default;

    friend std::ostream& operator<<(std::ostream& stream, const TableRow& row) {
        return stream << row.number << " | " << row.address << " | " << row.tuned_to << " | "
                      << row.time;
    }
};

GtkTreeModel* model() {
    return GTK_TREE_MODEL(widgets.listeners_store);
}

GtkTreeView* view() {
    return GTK_TREE_VIEW(widgets.listeners_view);
}

GtkTreeSelection* selection() {
    return gtk_tree_view_get_selection(view());
}

std::string cell(GtkTreeIter* iter, int column) {
    char* text = nullptr;
    gtk_tree_model_get(model(), iter, column, &text, -1);
    const std::string copy{text ? text : "(null)"};
    g_free(text);
    return copy;
}

std::vector<TableRow> rows() {
    std::vector<TableRow> all;
    GtkTreeIter iter;
    for (gboolean valid = gtk_tree_model_get_iter_first(model(), &iter); valid;
         valid = gtk_tree_model_iter_next(model(), &iter)) {
        int number = 0;
        gtk_tree_model_get(model(), &iter, 0, &number, -1);
        all.push_back({number, cell(&iter, 1), cell(&iter, 2), cell(&iter, 3)});
    }
    return all;
}

void put_cursor_on(int index) {
    GtkTreePath* path = gtk_tree_path_new_from_indices(index, -1);
    gtk_tree_view_set_cursor(view(), path, nullptr, FALSE);
    gtk_tree_path_free(path);
}

/// The place of a row by its path, which is freed; -1 when there is none.
int index_of(GtkTreePath* path) {
    const int index = path ? gtk_tree_path_get_indices(path)[0] : -1;
    gtk_tree_path_free(path);
    return index;
}

int selected_index() {
    GtkTreeIter iter;
    const gboolean any = gtk_tree_selection_get_selected(selection(), nullptr, &iter);
    return index_of(any ? gtk_tree_model_get_path(model(), &iter) : nullptr);
}

int cursor_index() {
    GtkTreePath* path = nullptr;
    gtk_tree_view_get_cursor(view(), &path, nullptr);
    return index_of(path);
}

json::object listener(int number, int seconds = 0) {
    return {{"number", number},
            {"address", "198.51.100." + std::to_string(number)},
            {"seconds", seconds}};
}

json::value listeners(const std::vector<int>& numbers, int seconds = 0) {
    json::array records;
    for (const int number : numbers)
        records.push_back(listener(number, seconds));
    return with(state_document(), "status.listeners", std::move(records));
}

TEST_F(ListenersTable, ShowsEachListenerInTheOrderOfTheDocument) {
    const std::string relay = "via " + host + " · ";
    const std::pair<const char*, TableRow> cases[] = {
        {R"({"number": 1, "address": "a", "seconds": 75, "f": 7074000, "mode": "USB",
             "listening": true, "relayed": false})",
         {1, "a", "7.074 MHz USB", "1:15"}},
        {R"({"number": 2, "address": "b", "seconds": 3725.9, "f": 10489750000, "mode": "FM",
             "listening": false, "relayed": true})",
         {2, "b", relay + "10489.8 MHz FM (waterfall only)", "62:05"}},
        {R"({"number": 4, "address": "<b>&amp;", "seconds": 60, "relayed": true})",
         {4, "<b>&amp;", relay, "1:00"}},
        {R"({"number": "one", "address": 9, "seconds": "long", "f": "high", "mode": 5,
             "listening": true})",
         {0, "", "0 MHz ", "0:00"}},
        {R"({"number": 4e9, "address": "a\u0000b", "seconds": 59})",
         {2147483647, "a\uFFFDb", "", "0:59"}},
    };
    load(state_document());
    json::array records;
    std::vector<TableRow> expected;
    for (const auto& [record, row] : cases) {
        records.push_back(json::parse(record));
        expected.push_back(row);
    }
    const json::value document = with(state_document(), "status.listeners", records);
    poll(document);
    EXPECT_EQ(rows(), expected);
    expected[0].tuned_to = "7.1 MHz USB";
    poll(with(document, "status.listeners.0.f", 7100000));
    EXPECT_EQ(rows(), expected);
}

TEST_F(ListenersTable, GivesWayToAWordWhenNobodyListens) {
    load(state_document());
    EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 2 of 8");
    EXPECT_TRUE(gtk_widget_get_visible(widgets.listeners_scroll));
    EXPECT_FALSE(gtk_widget_get_visible(widgets.listeners_empty));
    poll(listeners({}));
    EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 0 of 8");
    EXPECT_FALSE(gtk_widget_get_visible(widgets.listeners_scroll));
    EXPECT_TRUE(gtk_widget_get_visible(widgets.listeners_empty));
    EXPECT_EQ(text_of(widgets.listeners_empty), "Nobody is listening right now.");
    poll(listeners({4}));
    EXPECT_TRUE(gtk_widget_get_visible(widgets.listeners_scroll));
    EXPECT_FALSE(gtk_widget_get_visible(widgets.listeners_empty));
}

TEST_F(ListenersTable, FollowsListenersAsTheyComeGoAndChangePlaces) {
    load(listeners({1, 2, 3}));
    const std::vector<std::vector<int>> lists = {
        {1, 2, 3, 4}, {2, 3, 4}, {2, 4}, {9, 2, 4}, {4, 2, 9}, {4, 5, 2, 6, 9}, {9, 6, 2, 5, 4},
        {},           {7},       {7, 7}, {7, 7, 7}, {7, 8, 7}, {8, 7},          {0, -1, 0, -1},
        {1, 2, 3}};
    int seconds = 0;
    for (const std::vector<int>& list : lists) {
        SCOPED_TRACE(testing::PrintToString(list));
        std::vector<TableRow> expected;
        ++seconds;
        for (const int number : list)
            expected.push_back(
                {number, "198.51.100." + std::to_string(number), "", session_time_text(seconds)});
        poll(listeners(list, seconds));
        EXPECT_EQ(rows(), expected);
    }
}

TEST_F(ListenersTable, KeepsTheSelectionWithItsListener) {
    const struct {
        const char* when;
        std::vector<int> list;
        int selected;
    } cases[] = {
        {"all stay", {1, 2, 3}, 1},
        {"another comes", {1, 2, 3, 4}, 1},
        {"one before leaves", {2, 3}, 0},
        {"one before comes", {9, 1, 2, 3}, 2},
        {"it moves to the end", {1, 3, 2}, 2},
        {"it moves to the front", {2, 1, 3}, 0},
        {"all but it leave", {2}, 0},
        {"all others are new", {7, 8, 2}, 2},
        {"it leaves", {1, 3}, -1},
        {"all leave", {}, -1},
        {"it is there twice", {1, 2, 2, 3}, 2},
    };
    // A click puts the cursor on the row too; GTK selects what comes under the cursor when its row
    // goes. The cursor may also have been moved away from the selected row.
    for (const int cursor : {-1, 0, 1, 2}) {
        SCOPED_TRACE(testing::Message() << "cursor on row " << cursor);
        for (const auto& c : cases) {
            SCOPED_TRACE(c.when);
            load(listeners({1, 2, 3}));
            if (cursor >= 0)
                put_cursor_on(cursor);
            select_listener(1);
            poll(listeners(c.list, 5));
            EXPECT_EQ(selected_index(), c.selected);
            const bool any = c.selected >= 0;
            EXPECT_EQ(gtk_widget_get_sensitive(widgets.end_session_button), any);
            EXPECT_EQ(gtk_widget_get_sensitive(widgets.block_button), any);
        }
    }
}

TEST_F(ListenersTable, SelectsNobodyByItself) {
    load(listeners({}));
    poll(listeners({1, 2, 3}));
    EXPECT_EQ(selected_index(), -1);
}

TEST_F(ListenersTable, TellsOfNoSelectionThatStaysTheSame) {
    load(listeners({1, 2, 3}));
    select_listener(1);
    int changes = 0;
    const auto count = +[](GtkTreeSelection*, int* seen) { ++*seen; };
    const gulong handler = g_signal_connect(selection(), "changed", G_CALLBACK(count), &changes);
    poll(listeners({1, 2, 3}, 8));
    poll(listeners({1, 2, 3, 4}, 8));
    g_signal_handler_disconnect(selection(), handler);
    EXPECT_EQ(changes, 0);
}

TEST_F(ListenersTable, KeepsTheCursorAndItsPlaceOverAPoll) {
    json::array many;
    for (int i = 1; i <= 60; ++i)
        many.push_back(listener(i));
    json::value document = with(state_document(), "status.listeners", many);
    load(document);
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    put_cursor_on(30);
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    GtkAdjustment* place =
        gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(widgets.listeners_scroll));
    const double before = gtk_adjustment_get_value(place);
    ASSERT_GT(before, 0);
    for (int i = 0; i < 60; ++i)
        document = with(document, "status.listeners." + std::to_string(i) + ".seconds", 100 + i);
    document = with(document, "status.listeners.60", listener(61));
    poll(document);
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    EXPECT_EQ(gtk_adjustment_get_value(place), before);
    EXPECT_EQ(cursor_index(), 30);
    EXPECT_EQ(selected_index(), 30);
    EXPECT_EQ(rows()[30].time, "2:10");
    // A row above is removed: the cursor stays on its listener.
    poll(without(document, "status.listeners.2"));
    EXPECT_EQ(cursor_index(), 29);
    EXPECT_EQ(rows()[29].number, 31);
}

TEST_F(ListenersTable, LosesNoClickThatAPollCameInto) {
    load(listeners({1, 2, 3}));
    select_listener(1);
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    service.will_answer("POST", "/api/kick", 200, "{}");
    press_mouse(widgets.end_session_button);
    poll(listeners({5, 3, 2}, 7));
    release_mouse(widgets.end_session_button);
    drain_events();
    const std::vector<RecordedRequest> kicks = service.requests("POST", "/api/kick");
    ASSERT_EQ(kicks.size(), 1U);
    EXPECT_EQ(json::parse(kicks[0].body), (json::value{{"number", 2}}));
}

TEST_F(ListenersTable, StopsAtABrokenRecordAndLeavesWhatWasDrawn) {
    const json::value whole = listeners({11, 12, 13}, 5);
    const std::string at = "status.listeners.1";
    const TableRow first{11, "198.51.100.11", "", "0:05"};
    const std::pair<json::value, std::vector<TableRow>> cases[] = {
        {with(whole, at, "listener"), {first}},
        {without(whole, at + ".number"), {first}},
        {without(whole, at + ".seconds"), {first}},
        {without(whole, at + ".address"), {first, {12, "", "", "0:05"}}},
        {with(whole, at + ".f", 7e6), {first}}, // neither mode nor listening
        {with(whole, at + ".relayed", nullptr), {first}},
    };
    for (const auto& [document, expected] : cases) {
        SCOPED_TRACE(document.at("status").at("listeners").at(1));
        load(listeners({1, 2}));
        EXPECT_THROW(poll(document), std::exception);
        EXPECT_EQ(rows(), expected);
        EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 3 of 8");
        // And the next whole document is drawn as if nothing had been.
        poll(listeners({12, 2}, 6));
        EXPECT_EQ(rows(), (std::vector<TableRow>{{12, "198.51.100.12", "", "0:06"},
                                                 {2, "198.51.100.2", "", "0:06"}}));
    }
}

TEST_F(ListenersTable, KeepsItsSelectionAndItsPlaceWhenABrokenRecordStopsThePass) {
    load(listeners({1, 2, 3}));
    select_listener(0);
    EXPECT_THROW(poll(with(listeners({1, 2, 3}, 9), "status.listeners.1", 0)), std::exception);
    EXPECT_EQ(rows().size(), 1U);
    EXPECT_EQ(selected_index(), 0);
    load(listeners({}));
    EXPECT_THROW(poll(with(listeners({1}), "status.listeners.0", 0)), std::exception);
    EXPECT_FALSE(gtk_widget_get_visible(widgets.listeners_scroll));
    EXPECT_TRUE(gtk_widget_get_visible(widgets.listeners_empty));
}

TEST_F(NewListenersTable, WidensAColumnForItsLongestTextAndKeepsItWide) {
    const auto width_with = [this](int column, std::string_view key, const json::value& value) {
        poll(with(listeners({1, 2}), "status.listeners.1." + std::string{key}, value));
        return gtk_tree_view_column_get_min_width(gtk_tree_view_get_column(view(), column));
    };
    load(listeners({1, 2}));
    const int narrow = width_with(1, "address", "203.0.113.7");
    const int wide = width_with(1, "address", "2001:db8:85a3::8a2e:7334");
    EXPECT_GT(wide, narrow);
    const int widest = width_with(1, "address", "2001:0db8:85a3:0000:0000:8a2e:0370:7334+");
    EXPECT_GT(widest, wide);
    EXPECT_EQ(width_with(1, "address", json::string{std::string(99, '1')}), widest);
    EXPECT_EQ(width_with(1, "address", "203.0.113.7"), widest);
    const int short_number = width_with(0, "number", 2);
    EXPECT_GT(width_with(0, "number", 12345678), short_number);
}

TEST_F(NewListenersTable, WidensItsColumnsWithTheScaleOfTexts) {
    const auto time_width = [] {
        return gtk_tree_view_column_get_min_width(gtk_tree_view_get_column(view(), 3));
    };
    load(state_document());
    const int width = time_width();
    EXPECT_GT(width, 0);
    g_object_set(gtk_settings_get_default(), "gtk-xft-dpi", 2 * 96 * 1024, nullptr);
    drain_events();
    const int width_at_twice_the_scale = time_width();
    g_object_set(gtk_settings_get_default(), "gtk-xft-dpi", 96 * 1024, nullptr);
    EXPECT_GT(width_at_twice_the_scale, 1.5 * width);
}

TEST_F(NewListenersTable, KeepsTheTimeInSightWhateverIsTunedTo) {
    json::object watcher = listener(1);
    watcher["relayed"] = true;
    watcher["f"] = 10'489'750'000;
    watcher["mode"] = "USB";
    watcher["listening"] = false;
    load(with(state_document(), "status.listeners", json::array{watcher}));
    int width = 0;
    gtk_widget_get_preferred_width(widgets.listeners_view, &width, nullptr);
    constexpr int width_in_a_window_of_800_pixels = 520;
    EXPECT_LE(width, width_in_a_window_of_800_pixels);
}

TEST_F(ListenersTable, KeepsARowOneLineHighWhateverTheAddressHolds) {
    GList* cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(gtk_tree_view_get_column(view(), 1)));
    GtkCellRenderer* address = GTK_CELL_RENDERER(cells->data);
    g_list_free(cells);
    const auto height_with = [&](const char* text) {
        g_object_set(address, "text", text, nullptr);
        gint height = 0;
        gtk_cell_renderer_get_preferred_height(address, widgets.listeners_view, nullptr, &height);
        return height;
    };
    EXPECT_EQ(height_with("203.0.113.7\nand\nmore"), height_with("203.0.113.7"));
}

} // namespace

// SPDX-License-Identifier: MIT
// One pass over the window's status pages, beside the same number of cells and labels written
// plainly into a bare list.
//
// What is measured ends where the widgets are written: layout and drawing are the toolkit's, and
// happen between the passes.
#include "app/state_poll.h"
#include "link/json_access.h"
#include "link/service_link.h"
#include "status/render_state.h"
#include "support/replying_process.h"
#include "support/station_documents.h"
#include "ui/widgets/pending_events.h"
#include "ui/widgets/widget_record.h"

#include <benchmark/benchmark.h>
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <boost/json/value.hpp>

#include <string>
#include <utility>

namespace {

constexpr int poll_interval_s = 3;

int listeners_of(const benchmark::State& state) {
    return static_cast<int>(state.range(0));
}

void report_time_per_listener(benchmark::State& state) {
    state.counters["per_listener"] = benchmark::Counter(
        static_cast<double>(state.range(0)),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

/// Lets the toolkit lay out and draw what is pending, unmeasured.
void let_draw(benchmark::State& state) {
    state.PauseTiming();
    run_pending_events();
    state.ResumeTiming();
}

/// A window with a list of rows of one height, a title and a header line.
class BareWindow {
public:
    explicit BareWindow(int rows) {
        window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
        header_ = gtk_label_new("");
        title_ = gtk_label_new("");
        store_ = gtk_list_store_new(4, G_TYPE_INT, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING);
        GtkWidget* view = gtk_tree_view_new_with_model(GTK_TREE_MODEL(store_));
        g_object_unref(store_);
        for (int column = 0; column < 4; ++column) {
            GtkTreeViewColumn* view_column = gtk_tree_view_column_new_with_attributes(
                "", gtk_cell_renderer_text_new(), "text", column, nullptr);
            gtk_tree_view_column_set_sizing(view_column, GTK_TREE_VIEW_COLUMN_FIXED);
            gtk_tree_view_column_set_fixed_width(view_column, 120);
            gtk_tree_view_append_column(GTK_TREE_VIEW(view), view_column);
        }
        gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(view), TRUE);
        for (int row = 0; row < rows; ++row)
            gtk_list_store_insert_with_values(store_, nullptr, -1, 0, row, 1, "198.51.100.4", 2,
                                              "7.074 MHz USB", 3, "1:00", -1);
        GtkWidget* scroll = gtk_scrolled_window_new(nullptr, nullptr);
        gtk_widget_set_size_request(scroll, 600, 150);
        gtk_container_add(GTK_CONTAINER(scroll), view);
        for (GtkWidget* child : {header_, title_, scroll})
            gtk_box_pack_start(GTK_BOX(box), child, FALSE, TRUE, 0);
        gtk_container_add(GTK_CONTAINER(window_), box);
        gtk_widget_show_all(window_);
        run_pending_events();
    }
    ~BareWindow() {
        gtk_widget_destroy(window_);
        run_pending_events();
    }
    BareWindow(const BareWindow&) = delete;
    BareWindow& operator=(const BareWindow&) = delete;

    void write(const char* text) {
        GtkTreeModel* model = GTK_TREE_MODEL(store_);
        GtkTreeIter row;
        for (gboolean more = gtk_tree_model_get_iter_first(model, &row); more;
             more = gtk_tree_model_iter_next(model, &row))
            gtk_list_store_set(store_, &row, 3, text, -1);
        gtk_label_set_text(GTK_LABEL(header_), text);
        gtk_label_set_text(GTK_LABEL(title_), text);
    }

private:
    GtkWidget* window_;
    GtkWidget* header_;
    GtkWidget* title_;
    GtkListStore* store_;
};

void FloorPass(benchmark::State& state) {
    BareWindow window{listeners_of(state)};
    bool odd = false;
    for (auto _ : state) {
        window.write(odd ? "1:00" : "1:03");
        odd = !odd;
        let_draw(state);
    }
    report_time_per_listener(state);
}

/// Draws two stations by turns, the first one shown before the measurement.
void draw_by_turns(benchmark::State& state, json::object shown, json::object next) {
    settings_object = station_settings({});
    status_object = std::move(shown);
    render_state();
    run_pending_events();
    for (auto _ : state) {
        std::swap(status_object, next);
        render_state();
        let_draw(state);
    }
    report_time_per_listener(state);
}

void Pass(benchmark::State& state) {
    const StationSize size{.listeners = listeners_of(state)};
    draw_by_turns(state, station_status(size, 60), station_status(size, 60 + poll_interval_s));
}

/// Every tenth listener has gone, and as many have come.
void PassOneInTenReplaced(benchmark::State& state) {
    const int count = listeners_of(state);
    json::object after = station_status({.listeners = count}, 60 + poll_interval_s);
    json::array listeners;
    for (int number = 1; number <= count; ++number)
        if (number % 10 != 0)
            listeners.push_back(listener_record(number, 60 + poll_interval_s));
    for (int number = 10; number <= count; number += 10)
        listeners.push_back(listener_record(count + number, 0));
    after["listeners"] = std::move(listeners);
    draw_by_turns(state, station_status({.listeners = count}, 60), std::move(after));
}

void PassOrderReversed(benchmark::State& state) {
    const int count = listeners_of(state);
    json::object after = station_status({.listeners = count}, 60);
    json::array listeners;
    for (int number = count; number > 0; --number)
        listeners.push_back(listener_record(number, 60));
    after["listeners"] = std::move(listeners);
    draw_by_turns(state, station_status({.listeners = count}, 60), std::move(after));
}

/// A poll whose reply says the same again, with its exchange.
void PollNothingNew(benchmark::State& state) {
    const ReplyingProcess service{station_document({.listeners = listeners_of(state)})};
    settings_socket_path = service.path();
    settings_object = station_settings({});
    poll_state(nullptr);
    run_pending_events();
    for (auto _ : state)
        poll_state(nullptr);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1)->Arg(20)->Arg(200)->Arg(2'000)->Unit(benchmark::kMicrosecond);
}

void large_sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(200)->Arg(2'000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(FloorPass)->Apply(sizes);
BENCHMARK(Pass)->Apply(sizes);
BENCHMARK(PassOneInTenReplaced)->Apply(large_sizes);
BENCHMARK(PassOrderReversed)->Apply(large_sizes);
BENCHMARK(PollNothingNew)->Apply(sizes);

} // namespace

// SPDX-License-Identifier: MIT
// Loading and saving the form, and the rows of the receivers.
//
// `loginctl`, which every load asks once, is not there; starting it is measured all the same.
#include "link/service_link.h"
#include "receivers/coverage.h"
#include "receivers/receiver_rows.h"
#include "support/replying_process.h"
#include "support/station_documents.h"
#include "ui/load_form.h"
#include "ui/save_settings.h"
#include "ui/widgets/pending_events.h"
#include "ui/widgets/widget_record.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int many_addresses = 10'000;

void let_draw(benchmark::State& state) {
    state.PauseTiming();
    run_pending_events();
    state.ResumeTiming();
}

StationSize blocked_addresses(const benchmark::State& state) {
    return {.blocked_addresses = static_cast<int>(state.range(0))};
}

void LoadForm(benchmark::State& state) {
    const ReplyingProcess service{station_document(blocked_addresses(state))};
    settings_socket_path = service.path();
    for (auto _ : state) {
        load_form();
        let_draw(state);
    }
}

/// With the load that follows each save.
void SaveForm(benchmark::State& state) {
    const ReplyingProcess service{station_document(blocked_addresses(state))};
    settings_socket_path = service.path();
    load_form();
    for (auto _ : state) {
        if (!save_settings())
            state.SkipWithError("not saved");
        let_draw(state);
    }
}

BENCHMARK(LoadForm)->Arg(2)->Arg(many_addresses)->Unit(benchmark::kMicrosecond);
BENCHMARK(SaveForm)->Arg(2)->Arg(many_addresses)->Unit(benchmark::kMicrosecond);

void destroy_child(GtkWidget* child, gpointer) {
    gtk_widget_destroy(child);
}

/// A receiver's widgets without handlers, names, rules or values.
void add_bare_row(GtkWidget* box) {
    GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
    for (const char* text : {"model", "serial", "Frequencies", "to", "MHz", "coverage"})
        gtk_container_add(GTK_CONTAINER(row), gtk_label_new(text));
    gtk_container_add(GTK_CONTAINER(row), gtk_switch_new());
    for (int spin = 0; spin < 2; ++spin)
        gtk_container_add(GTK_CONTAINER(row), gtk_spin_button_new_with_range(0, 6'000, 0.001));
    GtkWidget* menu = gtk_combo_box_text_new();
    for (const BandPreset& preset : band_presets())
        gtk_combo_box_text_append(GTK_COMBO_BOX_TEXT(menu), preset.id, preset.text);
    gtk_container_add(GTK_CONTAINER(row), menu);
    gtk_container_add(GTK_CONTAINER(box), row);
}

void FloorReceiverRows(benchmark::State& state) {
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
    g_object_ref_sink(box);
    for (auto _ : state) {
        gtk_container_foreach(GTK_CONTAINER(box), destroy_child, nullptr);
        for (int row = 0; row < state.range(0); ++row)
            add_bare_row(box);
        gtk_widget_show_all(box);
    }
    gtk_widget_destroy(box);
    g_object_unref(box);
}

void ReceiverRows(benchmark::State& state) {
    widgets.receiver_list.assign(static_cast<std::size_t>(state.range(0)),
                                 Receiver{.backend = "sdrplay",
                                          .serial = "2305012345",
                                          .model = "RSPdx",
                                          .enabled = true,
                                          .lo = 7e6,
                                          .hi = 7.3e6});
    for (auto _ : state) {
        rebuild_receiver_rows();
        let_draw(state);
    }
    widgets.receiver_list.clear();
    rebuild_receiver_rows();
}

void receiver_counts(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1)->Arg(8)->Arg(64)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(FloorReceiverRows)->Apply(receiver_counts);
BENCHMARK(ReceiverRows)->Apply(receiver_counts);

} // namespace

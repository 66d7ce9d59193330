// SPDX-License-Identifier: MIT
// What needs no display: reading the document, the derived values, every sentence, the body of a
// save.
#include "link/json_access.h"
#include "link/text.h"
#include "receivers/coverage.h"
#include "receivers/receiver_list.h"
#include "status/internet_texts.h"
#include "status/overview_texts.h"
#include "support/station_documents.h"
#include "ui/field_rules.h"
#include "ui/settings_body.h"

#include <benchmark/benchmark.h>
#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <cstdio>
#include <string>

namespace {

constexpr int many_addresses = 10'000;

StationSize listeners(const benchmark::State& state) {
    return {.listeners = static_cast<int>(state.range(0))};
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1)->Arg(20)->Arg(200)->Arg(2'000)->Unit(benchmark::kMicrosecond);
}

/// The least that reading takes: each byte once.
void FloorParse(benchmark::State& state) {
    const std::string text = station_document(listeners(state));
    for (auto _ : state) {
        std::string copy = text;
        benchmark::DoNotOptimize(copy.data());
    }
}

void Parse(benchmark::State& state) {
    const std::string text = station_document(listeners(state));
    for (auto _ : state)
        benchmark::DoNotOptimize(parse_reply(text));
}

void Derive(benchmark::State& state) {
    const json::object settings = station_settings(listeners(state));
    const json::object status = station_status(listeners(state));
    for (auto _ : state)
        benchmark::DoNotOptimize(derive_station_state(settings, status));
}

BENCHMARK(FloorParse)->Apply(sizes);
BENCHMARK(Parse)->Apply(sizes);
BENCHMARK(Derive)->Apply(sizes);

/// The least that a sentence takes: its text, printed once, and a string of it.
void FloorSentence(benchmark::State& state) {
    int count = 3;
    for (auto _ : state) {
        benchmark::DoNotOptimize(count);
        char text[128];
        const int length = std::snprintf(text, sizeof text,
                                         "On the air · %d receivers · %d of %d "
                                         "listening · listed on %s",
                                         count, count, count, "stations.example");
        benchmark::DoNotOptimize(std::string{text, static_cast<std::size_t>(length)});
    }
}
BENCHMARK(FloorSentence);

template <class Make> void Sentence(benchmark::State& state, Make make) {
    for (auto _ : state)
        benchmark::DoNotOptimize(make());
}

const StationState& on_the_air() {
    static const StationState state =
        derive_station_state(station_settings({}), station_status({}));
    return state;
}

const StationIdentity& identity() {
    static const StationIdentity identity{"Hilltop SDR", "K1ABC", "EM95"};
    return identity;
}

const json::object& certificate() {
    static const json::object status = station_status({});
    return status.at("https").as_object();
}

#define SENTENCE(name, ...) BENCHMARK_CAPTURE(Sentence, name, [] { return __VA_ARGS__; })

SENTENCE(header_line, header_line(on_the_air(), true));
SENTENCE(checklist_items, checklist_items(on_the_air(), identity()));
SENTENCE(checklist_is_done, checklist_is_done(on_the_air(), identity()));
SENTENCE(checklist_item_markup, checklist_item_markup({"Share at least one receiver", true, ""}));
SENTENCE(receiver_markup, receiver_markup("RSPdx", 7e6, 7.3e6));
SENTENCE(failed_receiver_markup, failed_receiver_markup("2305012345", "no device <found>"));
SENTENCE(listening_title, listening_title(on_the_air()));
SENTENCE(session_time_text, session_time_text(3'725));
SENTENCE(frequency_text, frequency_text(7.074e6));
SENTENCE(tuned_to_text, tuned_to_text(Tuning{7.074e6, "USB", true}, true));
SENTENCE(port_instructions_markup, port_instructions_markup(8'073, "192.168.1.20"));
SENTENCE(reach_line, reach_line(on_the_air()));
SENTENCE(certificate_line, certificate_line(certificate(), on_the_air()));
SENTENCE(listing_line, listing_line(on_the_air()));
SENTENCE(coverage_line, coverage_line("sdrplay", 7.0, 7.3));
SENTENCE(receiver_subtitle_markup, receiver_subtitle_markup("sdrplay", "2305012345", false));
SENTENCE(discovery_text, discovery_text({3, 1}));
SENTENCE(grid_hint, grid_hint("EM95qq"));
SENTENCE(upload_estimate, upload_estimate(20));
SENTENCE(header_title, header_title("Hilltop SDR", "K1ABC"));
SENTENCE(registered_text, registered_text("4711", "ann@hilltop.example"));
SENTENCE(is_email_address, is_email_address("ann@hilltop.example"));

#undef SENTENCE

/// The form as it is after loading, in part.
FormValues form_values(int blocked_addresses) {
    FormValues form;
    form.fields = {{"station.name", std::string{"Hilltop SDR"}},
                   {"station.callsign", std::string{"K1ABC"}},
                   {"attach", true},
                   {"listeners.max", 20.0},
                   {"network.port", 8073.0}};
    form.modes = {"USB", "LSB"};
    for (int number = 0; number < blocked_addresses; ++number)
        form.blocked_text += format_text("198.51.%d.%d\n", number % 250, number / 250);
    return form;
}

/// The least that a save's body takes: the loaded settings copied and written out.
void FloorSaveBody(benchmark::State& state) {
    const json::object loaded =
        station_settings({.blocked_addresses = static_cast<int>(state.range(0))});
    for (auto _ : state) {
        const json::object copy = loaded;
        benchmark::DoNotOptimize(json::serialize(copy));
    }
}

void SaveBody(benchmark::State& state) {
    const int addresses = static_cast<int>(state.range(0));
    const json::object loaded = station_settings({.blocked_addresses = addresses});
    const FormValues form = form_values(addresses);
    for (auto _ : state)
        benchmark::DoNotOptimize(json::serialize(settings_body(loaded, form, {})));
}

void SplitBlockedAddresses(benchmark::State& state) {
    const std::string text = form_values(static_cast<int>(state.range(0))).blocked_text;
    for (auto _ : state)
        benchmark::DoNotOptimize(words_of(text));
}

BENCHMARK(FloorSaveBody)->Arg(2)->Arg(many_addresses)->Unit(benchmark::kMicrosecond);
BENCHMARK(SaveBody)->Arg(2)->Arg(many_addresses)->Unit(benchmark::kMicrosecond);
BENCHMARK(SplitBlockedAddresses)->Arg(2)->Arg(many_addresses)->Unit(benchmark::kMicrosecond);

} // namespace

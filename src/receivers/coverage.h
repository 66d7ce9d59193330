// SPDX-License-Identifier: MIT
// What a receiver can cover: its kind, its widest span, the band presets and the coverage line.
#pragma once

#include "status/status_line.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The kind of receiver, as the subtitle of its card shows it.
const char* kind_label(std::string_view backend);

/// False for receivers that always receive one fixed range: they have no frequency controls.
bool is_tunable(std::string_view backend);

/// Widest range that a tunable receiver receives at once, in MHz.
double maximum_span_mhz(std::string_view backend);

/// An entry of the band menu. `id` is "low-high" in MHz, empty for the menu's first entry.
struct BandPreset {
    const char* id;
    const char* text;
};

/// The band menu in its order: amateur bands upward to 2 m, then the others.
std::span<const BandPreset> band_presets();

struct BandRange {
    double low_mhz = 0;
    double high_mhz = 0;

    bool operator==(const BandRange&) const = default;
};

/// The range of a preset's id, nothing when the id is no pair of numbers. The dot is the decimal
/// point in every locale.
std::optional<BandRange> band_range(std::string_view id);

/// Says whether a range in MHz fits the receiver's widest span. Spans are compared in whole hertz,
/// as they are saved, so that rounding of doubles never makes a range of exactly the maximum too
/// wide.
StatusLine coverage_line(std::string_view backend, double low_mhz, double high_mhz);

/// A receiver's line below its model, as markup: kind, serial number, and a remark when another
/// program uses the device.
std::string receiver_subtitle_markup(std::string_view backend, std::string_view serial,
                                     bool available);

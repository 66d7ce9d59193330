// SPDX-License-Identifier: MIT
// What a receiver can cover: its kind, the band presets and the coverage line.
#pragma once

#include "status/status_line.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

struct ReceiverKind {
    const char* label;       ///< as the subtitle of the card shows it, without markup
    double maximum_span_mhz; ///< 0: always receives one fixed range, no frequency controls
    double default_lo;       ///< range of a receiver that is found for the first time
    double default_hi;
};
const ReceiverKind& receiver_kind(std::string_view backend);

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

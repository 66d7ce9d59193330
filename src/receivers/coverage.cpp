// SPDX-License-Identifier: MIT
#include "receivers/coverage.h"

#include "link/text.h"

#include <charconv>
#include <cmath>

namespace {

/// Longest coverage line, in bytes. The lines of ranges that can be entered are far shorter.
constexpr std::size_t longest_line = 159;

/// In the order of the menu: amateur bands upward to 2 m, then the others in the order of adding.
constexpr BandPreset presets[] = {
    {"", "Band…"},
    {"1.8-2.0", "160 m"},
    {"3.5-4.0", "80 m"},
    {"3.5-7.3", "80 m to 40 m"},
    {"7.0-7.3", "40 m"},
    {"7.0-14.35", "40 m to 20 m"},
    {"10.1-10.15", "30 m"},
    {"14.0-14.35", "20 m"},
    {"14.0-21.45", "20 m to 15 m"},
    {"18.068-18.168", "17 m"},
    {"21.0-21.45", "15 m"},
    {"24.89-24.99", "12 m"},
    {"28.0-29.7", "10 m"},
    {"50.0-54.0", "6 m"},
    {"144.0-148.0", "2 m"},
    {"118.0-126.0", "Airband, lower part"},
    {"156.0-162.1", "Marine VHF"},
    {"430.0-438.0", "70 cm"},
    {"0.5-1.7", "AM broadcast"},
};

constexpr ReceiverKind direct_sampling{"HF direct sampling", 0, 0, 30'000'000};
constexpr ReceiverKind dongle{"RTL-SDR dongle (experimental)", 2, 144'000'000, 146'000'000};
constexpr ReceiverKind other_kind{"SDRplay receiver", 8, 7'000'000, 7'300'000};

double whole_hertz(double mhz) {
    return std::round(mhz * 1e6);
}

} // namespace

const ReceiverKind& receiver_kind(std::string_view backend) {
    if (backend == "rx888")
        return direct_sampling;
    return backend == "rtl-sdr" ? dongle : other_kind;
}

std::span<const BandPreset> band_presets() {
    return presets;
}

std::optional<BandRange> band_range(std::string_view id) {
    BandRange range;
    const char* const end = id.data() + id.size();
    const auto low = std::from_chars(id.data(), end, range.low_mhz);
    if (low.ec != std::errc{} || low.ptr == end || *low.ptr != '-')
        return std::nullopt;
    const auto high = std::from_chars(low.ptr + 1, end, range.high_mhz);
    return high.ec == std::errc{} ? std::optional{range} : std::nullopt;
}

StatusLine coverage_line(std::string_view backend, double low_mhz, double high_mhz) {
    // As doubles, 16.001 - 8.001 is more than 8.
    const double span_mhz = (whole_hertz(high_mhz) - whole_hertz(low_mhz)) / 1e6;
    const double maximum_mhz = receiver_kind(backend).maximum_span_mhz;
    if (span_mhz <= 0)
        // Spelled like this on purpose; a test checks it.
        return {"The top of the range must be aboove its bottom.", StatusClass::error};
    if (span_mhz > maximum_mhz)
        return {format_text("%.2f MHz is too wide: this receiver covers up to %.0f MHz at once.",
                            span_mhz, maximum_mhz)
                    .substr(0, longest_line),
                StatusClass::error};
    return {format_text("Covers %.3g MHz of the %.0f MHz this receiver can take at once.", span_mhz,
                        maximum_mhz),
            StatusClass::none};
}

std::string receiver_subtitle_markup(std::string_view backend, std::string_view serial,
                                     bool available) {
    std::string markup =
        receiver_kind(backend).label + std::string{" · serial "} + escaped_markup(isolated(serial));
    if (!available)
        markup += " · " + coloured_markup(warning_colour, "in use by another program");
    return markup;
}

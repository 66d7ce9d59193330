// SPDX-License-Identifier: MIT
#include "receivers/coverage.h"

#include "support/status_line_printer.h"
#include "support/user_locale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <set>
#include <string>
#include <vector>

namespace {

const StatusLine upside_down{"The top of the range must be aboove its bottom.", StatusClass::error};

StatusLine too_wide(const char* text) {
    return {text, StatusClass::error};
}

StatusLine fits(const char* text) {
    return {text, StatusClass::none};
}

} // namespace

TEST(ReceiverKind, FollowsTheBackendExactly) {
    const struct {
        const char* backend;
        const char* label;
        double span_mhz;
        double lo;
        double hi;
    } cases[] = {
        {"rx888", "HF direct sampling", 0, 0, 30'000'000},
        {"rtl-sdr", "RTL-SDR dongle (experimental)", 2, 144'000'000, 146'000'000},
        {"sdrplay", "SDRplay receiver", 8, 7'000'000, 7'300'000},
        {"", "SDRplay receiver", 8, 7'000'000, 7'300'000},
        {"rtl-sdr ", "SDRplay receiver", 8, 7'000'000, 7'300'000},
        {"RX888", "SDRplay receiver", 8, 7'000'000, 7'300'000},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.backend);
        const ReceiverKind& kind = receiver_kind(c.backend);
        EXPECT_STREQ(kind.label, c.label);
        EXPECT_EQ(kind.maximum_span_mhz, c.span_mhz);
        EXPECT_EQ(kind.default_lo, c.lo);
        EXPECT_EQ(kind.default_hi, c.hi);
    }
}

TEST(BandMenu, HasItsEntriesInOrder) {
    const std::vector<std::pair<std::string, std::string>> expected = {
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
    std::vector<std::pair<std::string, std::string>> entries;
    for (const BandPreset& preset : band_presets())
        entries.emplace_back(preset.id, preset.text);
    EXPECT_EQ(entries, expected);
}

TEST(BandRange, IsThePairOfNumbersInTheId) {
    EXPECT_EQ(band_range("1.8-2.0"), (BandRange{1.8, 2.0}));
    EXPECT_EQ(band_range("18.068-18.168"), (BandRange{18.068, 18.168}));
    EXPECT_EQ(band_range("430.0-438.0"), (BandRange{430, 438}));
}

TEST(BandRange, IsNothingWithoutTwoNumbers) {
    for (const char* id : {"", "Band…", "7.0", "7.0-", "-", "-7.3", "7.0 7.3", "7.0–7.3", "a-b",
                           "7.0-b", "7.0 -7.3"}) {
        SCOPED_TRACE(id);
        EXPECT_EQ(band_range(id), std::nullopt);
    }
}

TEST(BandRange, ReadsADotEvenWhereNumbersHaveAComma) {
    const UserLocale german{"de_DE.UTF-8"};
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr);
    EXPECT_EQ(band_range("10.1-10.15"), (BandRange{10.1, 10.15}));
    EXPECT_EQ(band_range("18.068-18.168"), (BandRange{18.068, 18.168}));
}

TEST(BandMenu, IsTooWideForAnRtlSdrInEightPlaces) {
    const std::set<std::string> expected = {"80 m to 40 m", "40 m to 20 m", "20 m to 15 m",
                                            "6 m",          "2 m",          "Airband, lower part",
                                            "Marine VHF",   "70 cm"};
    std::set<std::string> wide;
    for (const BandPreset& preset : band_presets().subspan(1)) {
        const BandRange range = band_range(preset.id).value();
        const StatusLine line = coverage_line("rtl-sdr", range.low_mhz, range.high_mhz);
        if (line.status_class == StatusClass::error)
            wide.insert(preset.text);
    }
    EXPECT_EQ(wide, expected);
}

TEST(CoverageLine, FollowsItsTable) {
    const struct {
        const char* backend;
        double low_mhz;
        double high_mhz;
        StatusLine expected;
    } cases[] = {
        {"rtl-sdr", 144, 146, fits("Covers 2 MHz of the 2 MHz this receiver can take at once.")},
        {"rtl-sdr", 144, 145.999,
         fits("Covers 2 MHz of the 2 MHz this receiver can take at once.")},
        {"rtl-sdr", 144, 146.001,
         too_wide("2.00 MHz is too wide: this receiver covers up to 2 MHz at once.")},
        {"rtl-sdr", 144, 148,
         too_wide("4.00 MHz is too wide: this receiver covers up to 2 MHz at once.")},
        {"sdrplay", 7, 7.3, fits("Covers 0.3 MHz of the 8 MHz this receiver can take at once.")},
        {"sdrplay", 3.5, 7.3, fits("Covers 3.8 MHz of the 8 MHz this receiver can take at once.")},
        {"sdrplay", 0, 7.999, fits("Covers 8 MHz of the 8 MHz this receiver can take at once.")},
        {"sdrplay", 0, 8, fits("Covers 8 MHz of the 8 MHz this receiver can take at once.")},
        {"sdrplay", 0, 8.001,
         too_wide("8.00 MHz is too wide: this receiver covers up to 8 MHz at once.")},
        {"sdrplay", 0, 8.01,
         too_wide("8.01 MHz is too wide: this receiver covers up to 8 MHz at once.")},
        {"sdrplay", 0, 6000,
         too_wide("6000.00 MHz is too wide: this receiver covers up to 8 MHz at once.")},
        {"sdrplay", 7, 7.001,
         fits("Covers 0.001 MHz of the 8 MHz this receiver can take at once.")},
        {"sdrplay", 7, 7.0003,
         fits("Covers 0.0003 MHz of the 8 MHz this receiver can take at once.")},
        {"sdrplay", 0, 8.0004,
         too_wide("8.00 MHz is too wide: this receiver covers up to 8 MHz at once.")},
        {"sdrplay", 7, 8.234, fits("Covers 1.23 MHz of the 8 MHz this receiver can take at once.")},
        {"sdrplay", 7, 7, upside_down},
        {"sdrplay", 7.001, 7, upside_down},
        {"sdrplay", 6000, 0, upside_down},
        {"rtl-sdr", 0, 0, upside_down},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.backend << " " << c.low_mhz << " " << c.high_mhz);
        EXPECT_EQ(coverage_line(c.backend, c.low_mhz, c.high_mhz), c.expected);
    }
}

TEST(CoverageLine, AcceptsExactlyTheMaximumWhereverItLies) {
    ASSERT_GT(16.001 - 8.001, 8.0);
    EXPECT_EQ(coverage_line("sdrplay", 8.001, 16.001),
              fits("Covers 8 MHz of the 8 MHz this receiver can take at once."));
    for (int low_khz = 0; low_khz <= 30'000; ++low_khz) {
        const double low_mhz = low_khz / 1000.0;
        ASSERT_EQ(coverage_line("sdrplay", low_mhz, (low_khz + 8'000) / 1000.0).status_class,
                  StatusClass::none)
            << low_mhz;
        ASSERT_EQ(coverage_line("sdrplay", low_mhz, (low_khz + 8'001) / 1000.0).status_class,
                  StatusClass::error)
            << low_mhz;
    }
}

TEST(CoverageLine, TakesEndsThatDifferByNothingButRoundingAsEqual) {
    double stepped_mhz = 14;
    for (int step = 0; step < 3; ++step)
        stepped_mhz += 0.001;
    ASSERT_NE(stepped_mhz, 14.003);
    EXPECT_EQ(coverage_line("sdrplay", 14.003, stepped_mhz), upside_down);
    EXPECT_EQ(coverage_line("sdrplay", stepped_mhz, 14.003), upside_down);
    EXPECT_EQ(coverage_line("sdrplay", std::nextafter(14.003, 0), 14.003), upside_down);
}

TEST(CoverageLine, IsNeverLongerThan159Bytes) {
    const StatusLine line = coverage_line("sdrplay", 0, 1e300);
    EXPECT_EQ(line.text.size(), 159u);
    EXPECT_EQ(line.status_class, StatusClass::error);
}

TEST(ReceiverSubtitle, NamesKindAndSerial) {
    EXPECT_EQ(receiver_subtitle_markup("rx888", "0042", true), "HF direct sampling · serial 0042");
    EXPECT_EQ(receiver_subtitle_markup("rtl-sdr", "00000001", true),
              "RTL-SDR dongle (experimental) · serial 00000001");
    EXPECT_EQ(receiver_subtitle_markup("sdrplay", "", true), "SDRplay receiver · serial ");
}

TEST(ReceiverSubtitle, RemarksOnADeviceInUse) {
    EXPECT_EQ(receiver_subtitle_markup("sdrplay", "2201", false),
              "SDRplay receiver · serial 2201 · <span foreground=\"#FFB020\">in use by another "
              "program</span>");
}

TEST(ReceiverSubtitle, ShowsAnySerialLiterally) {
    EXPECT_EQ(receiver_subtitle_markup("sdrplay", "<2>&1", true),
              "SDRplay receiver · serial &lt;2&gt;&amp;1");
}

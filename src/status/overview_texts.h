// SPDX-License-Identifier: MIT
// The sentences of the header line and the Overview page. Functions whose names end in `_markup`
// return Pango markup with the service's strings escaped, all others plain text.
#pragma once

#include "status/station_state.h"
#include "status/status_line.h"

#include <boost/json/fwd.hpp>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

/// The header line. Its class is also the colour of the dot beside it.
StatusLine header_line(const StationState& state, bool broker_running);

/// One thing to do before strangers can listen.
struct ChecklistItem {
    std::string text{}; ///< plain
    bool done = false;
    const char* page = nullptr; ///< page of the window where it is done
};

/// The "Getting started" list, in the order shown.
std::array<ChecklistItem, 4> checklist_items(const StationState& state);

/// True when "Getting started" is hidden: all four items are done and, when the relay is wanted,
/// the station list has confirmed the check-in.
bool checklist_is_done(const StationState& state);

/// Markup of an item's text: escaped, and dimmed when done.
std::string checklist_item_markup(const ChecklistItem& item);

/// Hertz as megahertz with at most six significant digits, rounded to whole kilohertz first:
/// 7074000 is "7.074".
std::string frequency_text(double hz);

/// A receiver on the air: its name in bold ("Receiver" when empty) and its range.
std::string receiver_markup(std::string_view device, double lo_hz, double hi_hz);

/// Who runs a receiver on the air.
const char* receiver_origin(bool attached);

/// The end of a receiver's log: at most 8 KiB, and no more rows than one line of 8 KiB wraps to, so
/// that a log makes no page longer than three screens.
std::string end_of_log(std::string_view log);

/// A receiver that was started and failed, with the end of its log.
std::string failed_receiver_markup(std::string_view serial, std::string_view log);

/// "Listening now · 3 of 20".
std::string listening_title(const StationState& state);

/// Minutes and seconds; hours are never split off: 3725 is "62:05".
std::string session_time_text(std::int32_t seconds);

/// The "Tuned to" column of a listener's record. Throws the JSON library's error when the record
/// has a frequency without `mode` or without the boolean `listening`, or `relayed` is no boolean.
std::string tuned_to_text(const boost::json::object& listener);

// SPDX-License-Identifier: MIT
#include "status/overview_texts.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "link/text.h"

#include <boost/json/value.hpp>

#include <algorithm>
#include <cmath>

namespace {

std::string on_air_sentence(const StationState& state) {
    return "On the air · " + std::to_string(state.receiver_count) +
           (state.receiver_count == 1 ? " receiver" : " receivers") + " · " +
           std::to_string(state.listener_count) + " of " + std::to_string(state.listeners_allowed) +
           " listening";
}

ChecklistItem way_in_item(const StationState& state) {
    if (state.relay_wanted)
        return {"Connect to the " + std::string{directory_host} + " relay with your relay key",
                state.relay_connected, "internet"};
    return {"Forward port " + std::to_string(state.port) + " on your router to this computer",
            state.reachable && state.checked_in, "internet"};
}

/// Whether the character ends a row. Pango begins a new row at a lone carriage return, too.
bool ends_row(std::string_view log, std::size_t at) {
    return log[at] == '\n' || (log[at] == '\r' && !log.substr(at).starts_with("\r\n"));
}

} // namespace

StatusLine header_line(const StationState& state, bool broker_running) {
    const std::string host{directory_host};
    if (!broker_running)
        return {"Off the air: your receiver broker is not running "
                "(systemctl --user start tarnwave-broker)",
                StatusClass::error};
    if (state.receiver_count == 0)
        return {"Off the air: no receiver is running", StatusClass::error};

    const std::string on_air = on_air_sentence(state);
    if (!state.listed_wanted)
        return {on_air + " · not on the station list", StatusClass::good};
    if (!state.registered)
        return {on_air + " · not registered for the station list", StatusClass::warning};
    if (state.directory_state == "check-in failed")
        return {on_air + " · cannot reach " + host, StatusClass::warning};
    if (state.reachable && state.checked_in)
        return {on_air + " · listed on " + host, StatusClass::good};
    if (!state.checked_in)
        return {on_air, StatusClass::good};
    if (state.relay_wanted)
        return {on_air + " · not connected to the " + host + " relay", StatusClass::warning};
    return {on_air + " · not reachable from the internet", StatusClass::warning};
}

std::array<ChecklistItem, 4> checklist_items(const StationState& state) {
    return {{
        {"Name your station and enter its grid square", state.identified, "station"},
        {"Share at least one receiver", state.receiver_count > 0, "receivers"},
        {"Register the station for the list on " + std::string{directory_host}, state.registered,
         "internet"},
        way_in_item(state),
    }};
}

bool checklist_is_done(const StationState& state) {
    return state.identified && state.receiver_count > 0 && state.checked_in && state.reachable &&
           state.registered;
}

std::string checklist_item_markup(const ChecklistItem& item) {
    const std::string text = escaped_markup(item.text);
    return item.done ? coloured_markup(small_colour, text) : text;
}

std::string frequency_text(double hz) {
    const double khz = std::round(hz / 1000);
    return format_text("%g", khz / 1000);
}

std::string receiver_markup(std::string_view device, double lo_hz, double hi_hz) {
    return "<b>" + escaped_markup(device.empty() ? "Receiver" : isolated(device)) + "</b>   " +
           frequency_text(lo_hz) + " – " + frequency_text(hi_hz) + " MHz";
}

const char* receiver_origin(bool attached) {
    return attached ? "shared from Dialhouse" : "started by Tarnwave";
}

std::string end_of_log(std::string_view log) {
    // With its ellipsis no longer than `longest_shown_text`: a further cut would remove the end.
    constexpr std::size_t longest_log = longest_shown_text - 3;
    constexpr std::size_t row_bytes = 90; // in a window of the default width
    constexpr std::size_t most_rows = longest_log / row_bytes + 1;
    std::size_t start = log.size();
    std::size_t column = 0;
    for (std::size_t rows = 1; start > 0; --start) {
        if (ends_row(log, start - 1) || ++column == row_bytes) {
            if (++rows > most_rows)
                break;
            column = 0;
        }
    }
    return shortened_in_front(log, std::min(log.size() - start, longest_log));
}

std::string failed_receiver_markup(std::string_view serial, std::string_view log) {
    return "<b>" + escaped_markup(isolated(serial)) +
           "</b> is not running. Its log: " + escaped_markup(end_of_log(log));
}

std::string listening_title(const StationState& state) {
    return "Listening now · " + std::to_string(state.listener_count) + " of " +
           std::to_string(state.listeners_allowed);
}

std::string session_time_text(std::int32_t seconds) {
    const std::int32_t minutes = seconds / 60;
    return format_text("%d:%02d", minutes, seconds - 60 * minutes);
}

std::string tuned_to_text(const json::object& listener) {
    std::string text;
    if (optional_bool(listener, "relayed", false))
        text.append("via ").append(directory_host).append(" · ");
    if (const json::value* frequency = listener.if_contains("f")) {
        text.append(frequency_text(number_or_zero(*frequency))).append(" MHz ");
        text.append(string_or_empty(required_member(listener, "mode")));
        if (!required_bool(listener, "listening"))
            text.append(" (waterfall only)");
    }
    return text;
}

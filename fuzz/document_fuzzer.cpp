// SPDX-License-Identifier: MIT
// Gives the body of a reply to everything that is decided from it without a display.
//
// A document that breaks the contract ends in an exception, as it does in the program. From any
// other come sentences that a label can show: UTF-8, and markup that is well formed.
#include "link/json_access.h"
#include "receivers/coverage.h"
#include "receivers/receiver_list.h"
#include "status/internet_texts.h"
#include "status/overview_texts.h"
#include "ui/field_rules.h"

#include <boost/json.hpp>
#include <glib.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace {

void require(bool holds, const std::string& text) {
    if (holds)
        return;
    std::fprintf(stderr, "cannot be shown: %s\n", text.c_str());
    std::abort();
}

void show(const std::string& text) {
    // U+0000 is valid in JSON and in UTF-8, but GLib refuses it.
    std::string without_zeros = text;
    std::replace(without_zeros.begin(), without_zeros.end(), '\0', ' ');
    require(g_utf8_validate_len(without_zeros.data(), without_zeros.size(), nullptr), text);
}

void show(const StatusLine& line) {
    show(line.text);
}

void show_markup(const std::string& markup) {
    static const GMarkupParser parser{};
    GMarkupParseContext* context =
        g_markup_parse_context_new(&parser, GMarkupParseFlags{}, nullptr, nullptr);
    const std::string whole = "<markup>" + markup + "</markup>";
    require(g_markup_parse_context_parse(context, whole.data(), static_cast<gssize>(whole.size()),
                                         nullptr) &&
                g_markup_parse_context_end_parse(context, nullptr),
            markup);
    g_markup_parse_context_free(context);
}

const json::object& object_or_empty(const json::object& parent, const char* name) {
    static const json::object empty;
    const json::value* found = parent.if_contains(name);
    const json::object* object = found ? found->if_object() : nullptr;
    return object ? *object : empty;
}

void show_station() {
    const StationState state = derive_station_state(settings_object, status_object);
    show(header_line(state, true));
    show(header_line(state, false));
    for (const ChecklistItem& item : checklist_items(state))
        show_markup(checklist_item_markup(item));
    checklist_is_done(state);
    show(listening_title(state));
    show(reach_line(state));
    show(certificate_line(object_or_empty(status_object, "https"), state));
    show(listing_line(state));
    show_markup(port_instructions_markup(state.port, "192.0.2.1"));
    show(header_title(setting_string("station.name"), setting_string("station.callsign")));
    show(registered_text(setting_string("directory.id"), setting_string("directory.email")));
    show(grid_hint(setting_string("station.grid")).text);
    show(upload_estimate(setting_number("listeners.max")));
}

void show_records() {
    for (const json::value& element : required_array(status_object, "receivers")) {
        const json::object& receiver = as_object(element, "an element of receivers");
        show_markup(receiver_markup(member_string(receiver, "device"),
                                    member_number(receiver, "lo"), member_number(receiver, "hi")));
    }
    for (const json::value& element : required_array(status_object, "started")) {
        const json::object& receiver = as_object(element, "an element of started");
        show_markup(failed_receiver_markup(member_string(receiver, "serial"),
                                           member_string(receiver, "log")));
    }
    for (const json::value& element : required_array(status_object, "listeners")) {
        const json::object& listener = as_object(element, "an element of listeners");
        show(session_time_text(clamped_int32(member_number(listener, "seconds"))));
        show(tuned_to_text(listener));
    }
    for (const json::value& element : required_array(settings_object, "receivers")) {
        const Receiver receiver = receiver_from_settings(element);
        show(coverage_line(receiver.backend, receiver.lo / 1e6, receiver.hi / 1e6));
        show_markup(receiver_subtitle_markup(receiver.backend, receiver.serial, false));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        json::value document = parse_reply({reinterpret_cast<const char*>(data), size});
        if (const json::array* devices = document.if_array()) {
            std::vector<Receiver> list;
            show(discovery_text(devices->size(), merge_devices(list, *devices)));
            return 0;
        }
        settings_object = take_object(document, "settings");
        status_object = take_object(document, "status");
        show_station();
        show_records();
    } catch (const std::exception&) {
        // The document breaks the contract; the program ends here with a sentence.
    }
    return 0;
}

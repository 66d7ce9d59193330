// SPDX-License-Identifier: MIT
#include "status/refresh_status.h"

#include "link/json_access.h"
#include "link/service_link.h"
#include "status/internet_texts.h"
#include "status/listeners_table.h"
#include "status/overview_page.h"
#include "status/overview_texts.h"
#include "ui/widgets/setters.h"

#include <boost/json/value.hpp>

namespace {

/// Time limit of the request, in seconds. Shorter than elsewhere, because every poll of a service
/// that hangs blocks the main loop that long.
constexpr int refresh_time_limit_s = 2;

void show_header_line(const StatusLine& line) {
    set_label_text(widgets.header_status, line.text);
    set_status_class(widgets.header_dot, line.status_class);
}

void draw_internet_status(const StationState& state) {
    set_label_markup(widgets.reachability_label,
                     port_instructions_markup(state.port, lan_address()));
    show_status_line(widgets.port_status_label, reach_line(state));
    const json::value* https = status_object.if_contains("https");
    const json::object* certificate = https ? https->if_object() : nullptr;
    show_status_line(widgets.port_hint_label,
                     certificate_line(certificate ? *certificate : json::object{}, state));
    show_status_line(widgets.listing_status_label, listing_line(state));
}

} // namespace

void refresh_status() {
    const ReadingStep step{"following the station's state"};
    const ServiceReply reply =
        service_request(HttpMethod::get, "/api/state", "", refresh_time_limit_s);
    if (reply.status != 200) {
        show_header_line({"The Tarnwave service is not answering", StatusClass::error});
        return;
    }
    json::value document = parse_reply(reply.body);
    status_object = take_object(document, "status");
    render_state();
}

void render_state() {
    const StationState state = derive_station_state(settings_object, status_object);
    show_header_line(header_line(state, optional_bool(status_object, "broker", false)));
    draw_checklist(state);
    draw_station_link(state);
    draw_receivers_on_air(state);
    draw_listeners(state);
    draw_internet_status(state);
}

// SPDX-License-Identifier: MIT
#include "status/internet_page.h"

#include "link/json_access.h"
#include "status/internet_texts.h"
#include "status/lan_address.h"
#include "ui/widgets/setters.h"

#include <boost/json/value.hpp>

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

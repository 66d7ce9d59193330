// SPDX-License-Identifier: MIT
#include "status/header_line.h"

#include "link/json_access.h"
#include "status/overview_texts.h"
#include "ui/field_rules.h"
#include "ui/widgets/setters.h"

void show_header_title() {
    set_label_text(widgets.header_title, header_title(setting_string("station.name"),
                                                      setting_string("station.callsign")));
}

void show_header_line(const StatusLine& line) {
    set_label_text(widgets.header_status, line.text);
    set_status_class(widgets.header_dot, line.status_class);
}

void draw_header_line(const StationState& state) {
    const bool broker_running = optional_bool(status_object, "broker", false);
    show_header_line(header_line(state, broker_running));
}

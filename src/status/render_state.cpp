// SPDX-License-Identifier: MIT
#include "status/render_state.h"

#include "link/json_access.h"
#include "status/header_line.h"
#include "status/internet_page.h"
#include "status/listeners_table.h"
#include "status/overview_page.h"
#include "status/station_state.h"

void render_state() {
    const StationState state = derive_station_state(settings_object, status_object);
    draw_header_line(state);
    draw_checklist(state);
    draw_station_link(state);
    draw_receivers_on_air(state);
    draw_listeners(state);
    draw_internet_status(state);
}

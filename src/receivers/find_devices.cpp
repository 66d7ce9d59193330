// SPDX-License-Identifier: MIT
#include "receivers/find_devices.h"

#include "link/json_access.h"
#include "link/service_link.h"
#include "receivers/receiver_rows.h"
#include "ui/widgets/busy.h"
#include "ui/widgets/setters.h"

#include <boost/json/value.hpp>

namespace {

/// Time limit of the request, in seconds: drivers are slow to list their devices.
constexpr int discovery_time_limit_s = 30;

void show_devices() {
    const ServiceReply reply =
        service_request(HttpMethod::get, "/api/devices", "", discovery_time_limit_s);
    if (reply.status != 200) {
        set_label_text(widgets.receivers_status, "The Tarnwave service did not answer.");
        return;
    }
    const json::value document = parse_reply(reply.body);
    // Capture again: the user may have edited while the progress text was drawn.
    capture_row_edits();
    const json::array& devices = as_array(document, "the list of devices");
    const std::size_t added = merge_devices(widgets.receiver_list, devices);
    set_label_text(widgets.receivers_status, discovery_text(devices.size(), added));
    rebuild_receiver_rows();
}

} // namespace

void find_devices() {
    const ReadingStep step{"looking for receivers"};
    const BusyWith busy{widgets.find_devices_button};
    capture_row_edits();
    set_label_text(widgets.receivers_status, "Looking for receivers…");
    if (busy.draw_progress())
        show_devices();
}

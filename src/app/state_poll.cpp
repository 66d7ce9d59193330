// SPDX-License-Identifier: MIT
#include "app/state_poll.h"

#include "link/json_access.h"
#include "link/service_link.h"
#include "status/header_line.h"
#include "status/internet_page.h"
#include "status/render_state.h"
#include "ui/widgets/widget_record.h"

#include <boost/json/value.hpp>

namespace {

/// Time limit of the request, in seconds. Shorter than elsewhere: the window stands still
/// meanwhile, at every poll of a service that hangs.
constexpr int poll_time_limit_s = 2;

} // namespace

gboolean poll_state(gpointer) {
    // A timer that was due when the window was closed still fires once.
    if (!widgets.window)
        return G_SOURCE_CONTINUE;
    const ReadingStep step{"following the station's state"};
    ServiceReply reply = service_request(HttpMethod::get, "/api/state", "", poll_time_limit_s);
    if (reply.status != 200) {
        shown_document.clear();
        show_header_line({"The Tarnwave service is not answering", StatusClass::error});
        return G_SOURCE_CONTINUE;
    }
    if (reply.body == shown_document) {
        // Nothing new from the service; this computer's own address may have changed.
        draw_port_instructions();
        return G_SOURCE_CONTINUE;
    }
    json::value document = parse_reply(reply.body);
    status_object = std::move(required_object(as_object(document, "the state document"), "status"));
    shown_document.clear();
    render_state();
    shown_document = std::move(reply.body);
    return G_SOURCE_CONTINUE;
}

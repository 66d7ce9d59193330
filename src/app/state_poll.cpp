// SPDX-License-Identifier: MIT
#include "app/state_poll.h"

#include "link/json_access.h"
#include "link/service_link.h"
#include "status/overview_page.h"
#include "status/render_state.h"

namespace {

/// Time limit of the request, in seconds. Shorter than elsewhere: the window stands still
/// meanwhile, at every poll of a service that hangs.
constexpr int poll_time_limit_s = 2;

} // namespace

gboolean poll_state(gpointer) {
    const ReadingStep step{"following the station's state"};
    const ServiceReply reply =
        service_request(HttpMethod::get, "/api/state", "", poll_time_limit_s);
    if (reply.status != 200) {
        show_header_line({"The Tarnwave service is not answering", StatusClass::error});
        return G_SOURCE_CONTINUE;
    }
    const json::value document = parse_reply(reply.body);
    status_object = required_object(as_object(document, "the state document"), "status");
    render_state();
    return G_SOURCE_CONTINUE;
}

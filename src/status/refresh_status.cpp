// SPDX-License-Identifier: MIT
#include "status/refresh_status.h"

#include "link/json_access.h"
#include "link/service_link.h"
#include "status/render_state.h"

#include <boost/json/value.hpp>

namespace {

/// Time limit of the request, in seconds. Shorter than elsewhere: the window stands still
/// meanwhile, at every poll of a service that hangs.
constexpr int refresh_time_limit_s = 2;

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
    status_object = std::move(required_object(as_object(document, "the state document"), "status"));
    render_state();
}

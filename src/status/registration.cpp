// SPDX-License-Identifier: MIT
#include "status/registration.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "link/service_link.h"
#include "link/text.h"
#include "ui/field_rules.h"
#include "ui/form.h"
#include "ui/widgets/busy.h"
#include "ui/widgets/setters.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

namespace {

/// Time limit of the request, in seconds: the service has to ask the station list first.
constexpr int registration_time_limit_s = 30;

void send_registration(const std::string& email) {
    const ServiceReply reply =
        service_request(HttpMethod::post, "/api/register",
                        json::serialize(json::object{{"email", email}}), registration_time_limit_s);
    if (reply.status == 200) {
        load_form();
        show_footer({format_text("Registered. The station appears on the list as soon as %s can "
                                 "reach it.",
                                 directory_host),
                     StatusClass::good});
    } else if (reply.status != 0) {
        const json::value document = parse_reply(reply.body);
        const json::object& refusal = as_object(document, "the reply to a registration");
        show_footer_error("Not registered: " + string_or_empty(required_member(refusal, "error")));
    } else {
        show_footer_error("Not registered: the service did not answer.");
    }
}

} // namespace

void register_station() {
    const ReadingStep step{"registering the station"};
    if (!gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(widgets.understand_check))) {
        show_footer_error("Tick “I understand” first.");
        return;
    }
    const std::string email = gtk_entry_get_text(GTK_ENTRY(widgets.register_email));
    if (!is_email_address(email)) {
        show_footer_error("Enter your email address.");
        return;
    }
    const BusyWith busy{widgets.register_button};
    if (widgets.dirty && !save_settings())
        return;
    show_footer({"Registering…", StatusClass::none});
    if (busy.draw_progress())
        send_registration(email);
}

// SPDX-License-Identifier: MIT
#include "status/listener_actions.h"

#include "link/json_access.h"
#include "link/service_link.h"
#include "link/text.h"
#include "status/listeners_table.h"
#include "status/refresh_status.h"
#include "ui/form.h"
#include "ui/widgets/busy.h"
#include "ui/widgets/pending_events.h"
#include "ui/widgets/setters.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

namespace {

/// Longest address that the question shows, in bytes, so that the dialog fits the screen. A longer
/// text, which is no address, is cut.
constexpr std::size_t longest_address = 200;

bool user_wants_to_block(const std::string& address) {
    // A screen reader can click the button although the dialog is modal.
    static bool asking = false;
    if (asking)
        return false;
    asking = true;
    // Enter alone must not block an address.
    const gint answer = run_dialog(
        {.text = "Block " + shortened(address, longest_address) + "?",
         .secondary_text = "Their session ends now and the address cannot listen again. You can "
                           "remove it from the blocked addresses on the Listeners page.",
         .stock_buttons = GTK_BUTTONS_OK_CANCEL,
         .default_response = GTK_RESPONSE_CANCEL});
    asking = false;
    if (answer == GTK_RESPONSE_OK)
        wait_until_uncovered();
    return answer == GTK_RESPONSE_OK;
}

void post(const char* target, const json::object& body) {
    service_request(HttpMethod::post, target, json::serialize(body));
}

} // namespace

void listener_action(bool block) {
    const std::optional<ListenerRow> listener = selected_listener();
    if (!listener)
        return;
    if (block && !user_wants_to_block(listener->address))
        return;
    if (!widgets.window)
        return;

    const BusyWith busy{block ? widgets.block_button : widgets.end_session_button,
                        [] { return selected_listener().has_value(); }};
    if (!busy.draw_progress())
        return;
    if (block)
        post("/api/ban", {{"address", listener->address}});
    post("/api/kick", {{"number", listener->number}});
    if (block && !widgets.dirty)
        load_form();
    show_footer({(block ? "Blocked " : "Ended the session of ") + listener->address + ".",
                 StatusClass::good});
    refresh_status();
}

void end_listener_session() {
    listener_action(false);
}

void block_listener_address() {
    listener_action(true);
}

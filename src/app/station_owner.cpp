// SPDX-License-Identifier: MIT
#include "app/station_owner.h"

#include "link/service_link.h"
#include "link/text.h"
#include "ui/widgets/pending_events.h"
#include "ui/widgets/widget_record.h"

#include <chrono>
#include <fstream>
#include <thread>

std::string owner_file_path = "/etc/tarnwave/owner";

namespace {

/// How many times the service is asked whether it accepts the new owner, and the pause after each.
constexpr int tries = 50;
constexpr std::chrono::milliseconds pause{200};

bool user_wants_to_be_owner() {
    const gint answer = run_dialog(
        {.text = "Make " + valid_utf8(g_get_user_name()) + " the station owner?",
         .secondary_text = owner_sentence() +
                           " Only the station owner may change Tarnwave's settings and share "
                           "receivers through it. Becoming the owner needs an administrator's "
                           "password.",
         .buttons = {{"Close", GTK_RESPONSE_CLOSE},
                     {"Make me the owner", GTK_RESPONSE_ACCEPT, "primary"}},
         .default_response = GTK_RESPONSE_CLOSE});
    if (answer == GTK_RESPONSE_ACCEPT)
        wait_until_uncovered();
    return answer == GTK_RESPONSE_ACCEPT;
}

bool set_owner() {
    int wait_status = 1; // a command that cannot be started has failed
    return g_spawn_command_line_sync("pkexec /usr/lib/tarnwave/set-owner", nullptr, nullptr,
                                     &wait_status, nullptr) &&
           wait_status == 0;
}

bool service_accepts_owner() {
    for (int i = 0; i < tries; ++i) {
        if (service_request(HttpMethod::get, "/api/state", "").status == 200)
            return true;
        std::this_thread::sleep_for(pause);
    }
    return false;
}

} // namespace

std::string owner_sentence() {
    std::ifstream file{owner_file_path};
    std::string owner;
    std::getline(file, owner);
    return owner.empty() ? "This station has no owner yet."
                         : "The station owner is " + valid_utf8(owner) + ".";
}

bool check_owner() {
    // When the window was closed just after the answer, nothing may change.
    return user_wants_to_be_owner() && widgets.window && set_owner() && service_accepts_owner();
}

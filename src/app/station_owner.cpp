// SPDX-License-Identifier: MIT
#include "app/station_owner.h"

#include "link/service_link.h"
#include "link/text.h"
#include "ui/widgets/pending_events.h"
#include "ui/widgets/setters.h"

#include <chrono>
#include <fstream>
#include <thread>

std::string owner_file_path = "/etc/tarnwave/owner";

namespace {

/// How often the service is asked whether it accepts the new owner, and the pause between.
constexpr int tries = 50;
constexpr int try_time_limit_s = 3;
constexpr std::chrono::milliseconds pause{200};

bool user_wants_to_be_owner() {
    GtkWidget* dialog = gtk_message_dialog_new(
        GTK_WINDOW(widgets.window), GTK_DIALOG_MODAL, GTK_MESSAGE_QUESTION, GTK_BUTTONS_NONE,
        "Make %s the station owner?", valid_utf8(g_get_user_name()).c_str());
    gtk_message_dialog_format_secondary_text(
        GTK_MESSAGE_DIALOG(dialog),
        "%s Only the station owner may change Tarnwave's settings and share receivers through it. "
        "Becoming the owner needs an administrator's password.",
        owner_sentence().c_str());
    gtk_dialog_add_button(GTK_DIALOG(dialog), "Close", GTK_RESPONSE_CLOSE);
    add_style_class(
        gtk_dialog_add_button(GTK_DIALOG(dialog), "Make me the owner", GTK_RESPONSE_ACCEPT),
        "primary");
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), GTK_RESPONSE_CLOSE);
    if (run_dialog(dialog) != GTK_RESPONSE_ACCEPT)
        return false;
    wait_until_uncovered();
    return true;
}

bool set_owner() {
    int wait_status = 1; // a command that cannot be started has failed
    return g_spawn_command_line_sync("pkexec /usr/lib/tarnwave/set-owner", nullptr, nullptr,
                                     &wait_status, nullptr) &&
           wait_status == 0;
}

bool service_accepts_owner() {
    for (int i = 0; i < tries; ++i) {
        if (service_request(HttpMethod::get, "/api/state", "", try_time_limit_s).status == 200)
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
    // The window may have been closed just after the answer: then change nothing.
    return user_wants_to_be_owner() && widgets.window && set_owner() && service_accepts_owner();
}

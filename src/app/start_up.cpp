// SPDX-License-Identifier: MIT
#include "app/start_up.h"

#include "app/shortcuts.h"
#include "app/station_owner.h"
#include "link/build_constants.h"
#include "link/json_access.h"
#include "link/service_link.h"
#include "status/refresh_status.h"
#include "ui/form.h"
#include "ui/widgets/page_stack.h"
#include "ui/widgets/pending_events.h"
#include "ui/widgets/widget_record.h"
#include "ui/window.h"

#include <boost/json/value.hpp>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

namespace {

/// The name without ".desktop", by which a desktop finds the file that belongs to a window.
constexpr char desktop_file_name[] = "org.tarnwave.Settings";

constexpr char help_text[] =
    "Usage: tarnwave-settings [PAGE]\n"
    "The settings window of a small internet radio station.\n"
    "\n"
    "  PAGE       page shown first: overview, station, receivers, listeners, internet\n"
    "  --help     print this text and exit\n"
    "  --version  print the version and exit\n"
    "\n"
    "Environment:\n"
    "  TARNWAVE_SETTINGS_SOCKET  path of the station service's socket, in place of\n"
    "                            /run/tarnwave/settings.sock\n"
    "  G_MESSAGES_DEBUG=tarnwave prints each exchange with the service\n";

/// Handles an argument that needs no display. Returns whether it was one.
bool answer_without_display(std::string_view argument) {
    if (argument == "--help")
        std::fputs(help_text, stdout);
    else if (argument == "--version")
        std::printf("tarnwave-settings %s\n", program_version);
    else
        return false;
    return true;
}

/// Ends the program at an uncaught exception, after a sentence on stderr. Only documents that break
/// the service's contract get here.
// GCOVR_EXCL_START: the process aborts and takes the counts with it; the end-to-end tests cover it.
[[noreturn]] void end_with_a_sentence() {
    std::string message = "unknown error";
    try {
        if (const std::exception_ptr error = std::current_exception())
            std::rethrow_exception(error);
    } catch (const std::exception& known) {
        message = known.what();
    } catch (...) {
    }
    std::fprintf(stderr, "tarnwave-settings: %s\n",
                 contract_error_message(message.c_str()).c_str());
    std::abort();
}
// GCOVR_EXCL_STOP

/// Asks the service for its state until it answers. Returns nothing when the program has to end.
std::optional<std::string> probe_service() {
    for (;;) {
        ServiceReply reply = service_request(HttpMethod::get, "/api/state", "");
        if (reply.status == 200)
            return std::move(reply.body);
        if (access(settings_socket_path.c_str(), F_OK) != 0) {
            run_dialog({.type = GTK_MESSAGE_ERROR,
                        .text = "The Tarnwave service is not running.",
                        .secondary_text = "Start it with: sudo systemctl start tarnwave",
                        .stock_buttons = GTK_BUTTONS_CLOSE});
            return std::nullopt;
        }
        if (!check_owner())
            return std::nullopt;
    }
}

/// Starts the user's receiver broker when the service says that it is down. Ignores every error in
/// the document: `load_form` reads it again.
void start_broker_if_down(const std::string& state_document) {
    try {
        const json::value document = parse_reply(state_document);
        const json::object& status =
            required_object(as_object(document, "the state document"), "status");
        if (!required_bool(status, "broker")) {
            [[maybe_unused]] const int ignored = std::system(
                "systemctl --user enable --now tarnwave-broker.service >/dev/null 2>&1");
        }
    } catch (const std::exception&) {
    }
}

} // namespace

gboolean poll_state(gpointer) {
    // A timer that was due when the window was closed still fires once.
    if (widgets.window)
        refresh_status();
    return G_SOURCE_CONTINUE;
}

int start_up(int argc, char** argv) {
    if (argc > 1 && answer_without_display(argv[1]))
        return EXIT_SUCCESS;
    std::set_terminate(end_with_a_sentence);
    // With SIGCHLD ignored, as a parent may leave it, the exit statuses of commands are lost.
    std::signal(SIGCHLD, SIG_DFL);

    // The app id of a window, and its class under X11, for which GTK would begin this name with a
    // capital.
    g_set_prgname(desktop_file_name);
    gtk_init(&argc, &argv);
    gdk_set_program_class(desktop_file_name);
    // gtk_init sets the user's locale. Frequencies are written and read with a dot in every locale;
    // dates keep the user's language.
    std::setlocale(LC_NUMERIC, "C");
    if (const char* path = std::getenv("TARNWAVE_SETTINGS_SOCKET"); path && *path)
        settings_socket_path = path;

    build_window();
    add_shortcuts();
    wait_until_window_is_drawn();
    if (!widgets.window)
        return EXIT_SUCCESS;

    const std::optional<std::string> state_document = probe_service();
    if (!state_document)
        return EXIT_FAILURE;
    start_broker_if_down(*state_document);
    load_form();
    if (argc > 1)
        show_page(argv[1]);
    g_timeout_add_seconds(poll_interval_s, poll_state, nullptr);
    // Idle callbacks would otherwise run before the frame that shows the state.
    draw_now();
    if (!widgets.window)
        return EXIT_SUCCESS;
    make_stack_homogeneous_when_idle();
    gtk_main();
    return EXIT_SUCCESS;
}

// SPDX-License-Identifier: MIT
// Loads the form from the body of a reply, polls with it and draws the window. Needs a display.
//
// A warning of GTK is a fault.
#include "app/start_up.h"
#include "fed_link.h"
#include "ui/form.h"
#include "ui/widgets/widget_record.h"
#include "ui/window.h"

#include <gtk/gtk.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <exception>

namespace {

void turn_loop() {
    // The number of turns is limited, so that a window that keeps asking for frames cannot stop the
    // fuzzer.
    for (int turn = 0; turn < 50 && gtk_events_pending(); ++turn)
        gtk_main_iteration();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    setenv("NO_AT_BRIDGE", "1", 1);
    setenv("PATH", "/nonexistent", 1); // no command is found, so none is run
    g_log_set_always_fatal(
        static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
    gtk_init(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    build_window();
    turn_loop();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    feed_reply(reply_with_body({reinterpret_cast<const char*>(data), size}));
    try {
        load_form();
    } catch (const std::exception&) {
        widgets.loading = false; // in the program this error ends the process
    }
    try {
        poll_state(nullptr);
    } catch (const std::exception&) {
    }
    turn_loop();
    return 0;
}

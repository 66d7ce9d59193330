// SPDX-License-Identifier: MIT
// Entry point of the tests that need a display. They run in a session of their own (see
// scripts/under-xvfb); a warning of the toolkit fails them.
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <clocale>
#include <csignal>
#include <cstdlib>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    // Set before any function of GLib: http addresses are for a command of that folder.
    setenv("XDG_DATA_HOME", DESKTOP_FOLDER, 1);
    // The names of months, GTK's own buttons and dates do not depend on the user's locale.
    setenv("LC_ALL", "C.UTF-8", 1);
    unsetenv("LANGUAGE");
    setenv("TZ", "UTC0", 1);
    // Set before gtk_init: these tests need no accessibility bus.
    setenv("NO_AT_BRIDGE", "1", 1);
    g_log_set_always_fatal(
        static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
    std::signal(SIGCHLD, SIG_DFL);
    gtk_init(&argc, &argv);
    std::setlocale(LC_NUMERIC, "C");
    // Tests read the colours of widgets, which must not be in a transition.
    g_object_set(gtk_settings_get_default(), "gtk-enable-animations", FALSE, nullptr);
    return RUN_ALL_TESTS();
}

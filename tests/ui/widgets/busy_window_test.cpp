// SPDX-License-Identifier: MIT
#include "ui/widgets/busy.h"

#include "support/window_fixture.h"

namespace {

class Busy : public WindowTest {
protected:
    Busy() {
        load(state_document());
        show_page_at_once("receivers");
    }
    static bool sensitive() { return gtk_widget_get_sensitive(widgets.find_devices_button); }
    static GdkCursor* pointer() {
        return gdk_window_get_cursor(gtk_widget_get_window(widgets.window));
    }
};

bool never() {
    return false;
}

TEST_F(Busy, GreysItsButtonAndShowsTheBusyPointer) {
    {
        const BusyWith busy{widgets.find_devices_button};
        EXPECT_FALSE(sensitive());
        EXPECT_NE(pointer(), nullptr);
    }
    EXPECT_EQ(pointer(), nullptr);
    EXPECT_FALSE(sensitive()) << "presses that wait must find it grey";
    drain_events();
    EXPECT_TRUE(sensitive());
}

TEST_F(Busy, LosesThePressesThatWaited) {
    int presses = 0;
    const auto on_clicked = +[](GtkButton*, int* count) { ++*count; };
    GtkWidget* button = find_button(widgets.window, "Copy link");
    show_page_at_once("overview");
    const gulong handler = g_signal_connect(button, "clicked", G_CALLBACK(on_clicked), &presses);
    { const BusyWith busy{button}; }
    press_mouse(button);
    release_mouse(button);
    EXPECT_EQ(presses, 0);
    drain_events();
    press_mouse(button);
    release_mouse(button);
    EXPECT_EQ(presses, 1);
    g_signal_handler_disconnect(button, handler);
}

TEST_F(Busy, LeavesTheButtonGreyWhereItsStateSaysSo) {
    { const BusyWith busy{widgets.find_devices_button, never}; }
    drain_events();
    EXPECT_FALSE(sensitive());
}

TEST_F(Busy, GivesTheFocusBackUnlessItMovedOn) {
    gtk_widget_grab_focus(widgets.find_devices_button);
    { const BusyWith busy{widgets.find_devices_button}; }
    drain_events();
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(widgets.window)), widgets.find_devices_button);
    {
        const BusyWith busy{widgets.find_devices_button};
        gtk_widget_grab_focus(field("attach"));
    }
    drain_events();
    EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(widgets.window)), field("attach"));
}

TEST_F(Busy, KeepsThePointerWhenAnActionWithinItIsOver) {
    {
        const BusyWith outer{widgets.register_button};
        { const BusyWith inner{widgets.save_button, never}; }
        EXPECT_NE(pointer(), nullptr);
    }
    EXPECT_EQ(pointer(), nullptr);
    drain_events();
}

TEST_F(Busy, LetsAnActionThatBeginsInItselfNotGoOn) {
    {
        const BusyWith first{widgets.find_devices_button};
        { EXPECT_FALSE(BusyWith{widgets.find_devices_button}.draw_progress()); }
        drain_events();
        EXPECT_FALSE(sensitive()) << "the first is not over";
        EXPECT_NE(pointer(), nullptr);
        EXPECT_TRUE(first.draw_progress());
    }
    drain_events();
    EXPECT_TRUE(sensitive());
}

} // namespace

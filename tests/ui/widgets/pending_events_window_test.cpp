// SPDX-License-Identifier: MIT
#include "ui/widgets/pending_events.h"

#include "support/no_waiting.h"
#include "support/window_fixture.h"
#include "ui/widgets/setters.h"

#include <gdk/gdkx.h>

namespace {

using PendingEvents = WindowTest;

/// Counts the frames that are drawn while it lives.
class FrameCount {
public:
    explicit FrameCount(GtkWidget* widget) : clock_{gtk_widget_get_frame_clock(widget)} {
        const auto on_painted = +[](GdkFrameClock*, int* count) { ++*count; };
        handler_ = g_signal_connect(clock_, "after-paint", G_CALLBACK(on_painted), &count_);
    }
    ~FrameCount() { g_signal_handler_disconnect(clock_, handler_); }
    FrameCount(const FrameCount&) = delete;
    FrameCount& operator=(const FrameCount&) = delete;
    int count() const { return count_; }

private:
    GdkFrameClock* clock_;
    gulong handler_ = 0;
    int count_ = 0;
};

TEST_F(PendingEvents, DrawNowDrawsWhatWasJustWritten) {
    int draws = 0;
    const auto on_draw = +[](GtkWidget*, cairo_t*, int* count) -> gboolean {
        ++*count;
        return GDK_EVENT_PROPAGATE;
    };
    const gulong handler =
        g_signal_connect(widgets.footer_status, "draw", G_CALLBACK(on_draw), &draws);
    for (const char* text : {"Working…", "Still working…"}) {
        draws = 0;
        show_footer({text, StatusClass::none});
        draw_now();
        EXPECT_GT(draws, 0) << text;
    }
    g_signal_handler_disconnect(widgets.footer_status, handler);
}

TEST_F(PendingEvents, DrawNowDrawsAlsoWhereTheProgramWaitedForItsTurnForLong) {
    FrameCount frames{widgets.window};
    run_when_loop_turns([] { skip_time(1); });
    draw_now();
    EXPECT_GT(frames.count(), 0);
}

TEST_F(PendingEvents, DrawNowWaitsForNoWindowThatIsNotThere) {
    const WidgetRecord before = widgets;
    widgets.window = nullptr;
    draw_now();
    widgets = before;
    FrameCount frames{widgets.window};
    draw_now();
    EXPECT_GT(frames.count(), 0);
}

TEST_F(PendingEvents, ADestroyedDialogIsPaintedOverEvenWhereTheDisplayAsksForItLate) {
    bool painted = false;
    const auto on_draw = +[](GtkWidget*, cairo_t*, bool* done) -> gboolean {
        *done = true;
        return GDK_EVENT_PROPAGATE;
    };
    const auto on_late_expose = +[](gpointer done) -> gboolean {
        *static_cast<bool*>(done) = false;
        gtk_widget_queue_draw(widgets.window);
        return G_SOURCE_REMOVE;
    };
    g_signal_connect(widgets.window, "draw", G_CALLBACK(on_draw), &painted);
    answer_next_dialog(GTK_RESPONSE_CLOSE, [&] { g_timeout_add(40, on_late_expose, &painted); });
    run_dialog({.text = "Well?", .stock_buttons = GTK_BUTTONS_CLOSE});
    wait_until_uncovered();
    EXPECT_TRUE(painted);
    g_signal_handlers_disconnect_by_data(widgets.window, &painted);
}

TEST_F(PendingEvents, ADialogIsOffTheScreenWhenItHasBeenAnswered) {
    unsigned long id = 0;
    handle_next_dialog([&id](GtkDialog* dialog) {
        id = gdk_x11_window_get_xid(gtk_widget_get_window(GTK_WIDGET(dialog)));
        gtk_dialog_response(dialog, GTK_RESPONSE_CLOSE);
    });
    run_dialog({.text = "Well?", .stock_buttons = GTK_BUTTONS_CLOSE});
    // The server is asked through a connection of its own, which waits for nothing of the first.
    GdkDisplay* display = gdk_display_open(nullptr);
    EXPECT_EQ(gdk_x11_window_foreign_new_for_display(display, id), nullptr);
    gdk_display_close(display);
}

TEST_F(PendingEvents, RunPendingEventsRunsThemAllAndWaitsForNone) {
    int runs = 0;
    const auto on_idle = +[](gpointer count) -> gboolean {
        return ++*static_cast<int*>(count) < 3 ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
    };
    g_idle_add(on_idle, &runs);
    run_pending_events();
    EXPECT_EQ(runs, 3);
    run_pending_events();
    EXPECT_EQ(runs, 3);
}

TEST_F(PendingEvents, WaitingForAWindowThatIsHiddenComesToAnEnd) {
    gtk_widget_hide(widgets.window);
    draw_now();                   // comes back
    wait_until_window_is_drawn(); // gives up after its second
    gtk_widget_unrealize(widgets.window);
    wait_until_window_is_drawn(); // there is no clock of frames by now
    gtk_widget_show(widgets.window);
    wait_until_window_is_drawn();
    EXPECT_TRUE(gtk_widget_get_mapped(widgets.window));
}

using NewWindow = FreshWindowTest;

TEST_F(NewWindow, IsMappedAndDrawn) {
    EXPECT_TRUE(gtk_widget_get_mapped(widgets.window));
    EXPECT_TRUE(gdk_window_is_visible(gtk_widget_get_window(widgets.window)));
}

TEST_F(NewWindow, MayBeGoneBeforeItIsDrawn) {
    gtk_widget_hide(widgets.window);
    const auto destroy = +[](gpointer) -> gboolean {
        gtk_widget_destroy(widgets.window);
        return G_SOURCE_REMOVE;
    };
    g_idle_add_full(G_PRIORITY_HIGH, destroy, nullptr, nullptr);
    wait_until_window_is_drawn();
    EXPECT_EQ(widgets.window, nullptr);
}

} // namespace

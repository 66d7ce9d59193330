// SPDX-License-Identifier: MIT
#include "ui/widgets/pending_events.h"

#include "ui/widgets/setters.h"
#include "ui/widgets/widget_tree.h"

namespace {

/// Longest wait for the first frame and for a later frame, in milliseconds: longer than window
/// managers take to map a window, and short enough not to look like a hang.
constexpr guint first_frame_limit_ms = 1000;
constexpr guint frame_limit_ms = 250;

/// Time in which the window below a destroyed dialog is drawn again, in milliseconds. Without a
/// compositor the expose event comes late, after the next frame. This was enough in all trials.
constexpr guint uncover_time_ms = 100;

gboolean on_time_over(gpointer over) {
    *static_cast<bool*>(over) = true;
    return G_SOURCE_REMOVE;
}

gboolean on_window_mapped(GtkWidget*, GdkEvent*, gpointer mapped) {
    *static_cast<bool*>(mapped) = true;
    gtk_widget_queue_draw(widgets.window);
    return GDK_EVENT_PROPAGATE;
}

void on_frame_painted(GdkFrameClock*, gpointer painted) {
    *static_cast<bool*>(painted) = true;
}

/// Lower than the priority of GTK's redraw: a frame that is due is drawn even when the program got
/// no processor time until the limit was over.
constexpr gint limit_priority = GDK_PRIORITY_REDRAW + 10;

/// Runs the main loop until `done` returns true or the time is over.
template <class Done> void turn_loop_until(guint limit_ms, Done done) {
    bool over = false;
    const guint timer = g_timeout_add_full(limit_priority, limit_ms, on_time_over, &over, nullptr);
    while (!over && !done())
        gtk_main_iteration_do(TRUE);
    if (!over)
        g_source_remove(timer);
    gdk_display_flush(gdk_display_get_default());
}

/// Waits for a frame that begins after this call.
void wait_for_frame(guint limit_ms) {
    GdkFrameClock* clock = gtk_widget_get_frame_clock(widgets.window);
    if (!clock)
        return;
    bool painted = false;
    g_object_ref(clock);
    const gulong handler =
        g_signal_connect(clock, "after-paint", G_CALLBACK(on_frame_painted), &painted);
    gdk_frame_clock_request_phase(clock, GDK_FRAME_CLOCK_PHASE_PAINT);
    turn_loop_until(limit_ms, [&painted] { return painted || !widgets.window; });
    // Destroying the window has disconnected the handlers of its frame clock.
    if (g_signal_handler_is_connected(clock, handler))
        g_signal_handler_disconnect(clock, handler);
    g_object_unref(clock);
}

} // namespace

void run_pending_events() {
    while (gtk_events_pending())
        gtk_main_iteration();
}

void wait_until_window_is_drawn() {
    bool mapped = false;
    const gulong handler =
        g_signal_connect(widgets.window, "map-event", G_CALLBACK(on_window_mapped), &mapped);
    turn_loop_until(first_frame_limit_ms, [&mapped] { return mapped || !widgets.window; });
    if (!widgets.window)
        return;
    g_signal_handler_disconnect(widgets.window, handler);
    wait_for_frame(first_frame_limit_ms);
    if (widgets.window)
        run_pending_events();
}

void draw_now() {
    if (widgets.window && gtk_widget_get_mapped(widgets.window))
        wait_for_frame(frame_limit_ms);
}

gint run_dialog(const MessageDialog& message) {
    GtkWidget* dialog =
        gtk_message_dialog_new(GTK_WINDOW(widgets.window), GTK_DIALOG_MODAL, message.type,
                               message.stock_buttons, "%s", message.text.c_str());
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s",
                                             message.secondary_text.c_str());
    for (const MessageDialog::Button& button : message.buttons) {
        GtkWidget* made = gtk_dialog_add_button(GTK_DIALOG(dialog), button.label, button.response);
        if (button.style_class)
            add_style_class(made, button.style_class);
    }
    if (message.default_response != GTK_RESPONSE_NONE)
        gtk_dialog_set_default_response(GTK_DIALOG(dialog), message.default_response);
    // A long word from outside must not make the dialog wider than the screen.
    for (GtkWidget* widget : descendants_of(dialog))
        if (GTK_IS_LABEL(widget))
            gtk_label_set_line_wrap_mode(GTK_LABEL(widget), PANGO_WRAP_WORD_CHAR);

    const gint response = gtk_dialog_run(GTK_DIALOG(dialog));
    gtk_widget_destroy(dialog);
    run_pending_events();
    gdk_display_flush(gdk_display_get_default());
    return response;
}

void wait_until_uncovered() {
    turn_loop_until(uncover_time_ms, [] { return !widgets.window; });
}

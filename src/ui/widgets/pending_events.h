// SPDX-License-Identifier: MIT
// Letting the window draw before the program waits for the service.
//
// Running events until none are pending does not draw: drawing waits for the frame clock, and a
// new window for the window manager. These functions turn the main loop, and any handler may run
// meanwhile, even the one that closes the window.
#pragma once

#include <gtk/gtk.h>

/// Runs the events that are pending, without waiting for more.
void run_pending_events();

/// Waits until the window is mapped and has drawn a frame since, at most for a second.
void wait_until_window_is_drawn();

/// Waits until what was just written into a widget of the window is on the screen, at most for a
/// quarter of a second (a window that is covered or minimised draws no frames).
void draw_now();

/// Runs a message dialog until it is answered and destroys it. Returns the response.
gint run_dialog(GtkWidget* dialog);

/// Waits a tenth of a second for the window to be drawn where a destroyed dialog was. Called before
/// something blocks: without a compositor the dialog would stay on the screen meanwhile. Not called
/// otherwise, because an action of the user would be refused during that time.
void wait_until_uncovered();

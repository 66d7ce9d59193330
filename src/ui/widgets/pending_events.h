// SPDX-License-Identifier: MIT
// Letting the window draw before the program waits for the service.
//
// Running events until none are pending does not draw: drawing waits for the frame clock, and a
// new window for the window manager. These functions run the main loop, and any handler may run
// meanwhile, even the one that closes the window.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

/// Runs the events that are pending, without waiting for more.
void run_pending_events();

/// Waits until the window is mapped and has drawn a frame since, at most for a second.
void wait_until_window_is_drawn();

/// Waits until what was just written into a widget is on the screen, at most for a quarter of a
/// second (a window that is covered or minimised draws no frames).
void draw_now();

/// Texts are plain. Without a default response Enter presses the first button.
struct MessageDialog {
    GtkMessageType type = GTK_MESSAGE_QUESTION;
    std::string text{};
    std::string secondary_text{};
    GtkButtonsType stock_buttons = GTK_BUTTONS_NONE;
    struct Button {
        const char* label;
        gint response;
        const char* style_class = nullptr;
    };
    std::vector<Button> buttons{};
    gint default_response = GTK_RESPONSE_NONE;
};

/// Shows a message dialog until it is answered and destroys it. Returns the response.
gint run_dialog(const MessageDialog& message);

/// Called before a blocking call that follows a dialog: waits a tenth of a second until the window
/// is drawn where the dialog was. Without a compositor the dialog would stay on the screen.
void wait_until_uncovered();

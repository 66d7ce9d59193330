// SPDX-License-Identifier: MIT
// Letting the window draw before the program waits for the service.
//
// Running events until none are pending does not draw: drawing waits for the frame clock, and a
// new window for the window manager. Both functions turn the main loop until a frame was drawn,
// and any handler may run meanwhile, even the one that closes the window.
#pragma once

#include <gtk/gtk.h>

/// Runs the events that are pending, without waiting for more.
void run_pending_events();

/// Waits until the window is mapped and has drawn a frame since, at most for a second.
void wait_until_window_is_drawn();

/// Waits until what was just written into a widget of the window is on the screen, at most for a
/// quarter of a second (a window that is covered or minimised draws no frames).
void draw_now();

/// Runs a message dialog until it is answered, destroys it and takes it off the screen, since a
/// blocking call may follow. Returns the response.
gint run_dialog(GtkWidget* dialog);

/// While one lives, the pointer over the window is the busy one and `button` (null: none) is
/// insensitive. Presses that came meanwhile are lost on it: it becomes sensitive again, where
/// `sensitive_again` (null: always) says so, only after they were taken in. Where the action left
/// the window without a focus, the button gets it back, or else the list of pages.
class BusyWith {
public:
    explicit BusyWith(GtkWidget* button, bool (*sensitive_again)() = nullptr);
    ~BusyWith();
    BusyWith(const BusyWith&) = delete;
    BusyWith& operator=(const BusyWith&) = delete;

private:
    struct Restore;
    Restore* restore_ = nullptr;
};

/// Keeps an action that lets other handlers run from being begun a second time meanwhile.
class OnlyOnce {
public:
    explicit OnlyOnce(bool& running) : running_{running}, first_{!running} { running_ = true; }
    ~OnlyOnce() {
        if (first_)
            running_ = false;
    }
    OnlyOnce(const OnlyOnce&) = delete;
    OnlyOnce& operator=(const OnlyOnce&) = delete;

    bool is_first() const { return first_; }

private:
    bool& running_;
    bool first_;
};

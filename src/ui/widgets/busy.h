// SPDX-License-Identifier: MIT
// The busy pointer and the insensitive button while an action of the user runs.
//
// An action draws its progress text and waits for the service. Handlers may run while it draws, so
// the user can start the same action again before it is over.
#pragma once

#include <gtk/gtk.h>

/// Shows the busy pointer over the window and makes `button` insensitive until the end of the
/// scope. An idle callback makes the button sensitive again, so that queued clicks are discarded
/// (and queued keys, when their handlers test whether the button is sensitive), but not when
/// `sensitive_again` (may be null) returns false. If the window lost its focus widget meanwhile,
/// the button gets the focus back if it had it, or else the list of pages gets it.
class BusyWith {
public:
    explicit BusyWith(GtkWidget* button, bool (*sensitive_again)() = nullptr);
    ~BusyWith();
    BusyWith(const BusyWith&) = delete;
    BusyWith& operator=(const BusyWith&) = delete;

    /// Draws what was written into widgets so far. Returns whether the action may go on: false when
    /// the window was closed meanwhile, or when the same action is already running.
    bool draw_progress() const;

private:
    GtkWidget* button_;
    bool (*sensitive_again_)();
    bool first_;           ///< the same action was not already running
    bool focus_was_there_; ///< a widget of the window had the focus
    bool focus_was_here_;  ///< the button had the focus
};

// SPDX-License-Identifier: MIT
// The busy pointer and the insensitive button while an action of the user runs. Handlers may run
// while an action draws its progress, so the user can start it again before it is over.
#pragma once

#include <gtk/gtk.h>

/// Shows the busy pointer and makes `button` insensitive until the end of the scope. The button is
/// re-enabled from idle, so that queued clicks are discarded; it stays insensitive when
/// `sensitive_again` is given and returns false. If the window lost its focus widget meanwhile, the
/// button gets the focus back if it had it, or else the list of pages gets it.
class BusyWith {
public:
    explicit BusyWith(GtkWidget* button, bool (*sensitive_again)() = nullptr);
    ~BusyWith();
    BusyWith(const BusyWith&) = delete;
    BusyWith& operator=(const BusyWith&) = delete;

    /// Draws what was written into widgets so far. Returns false when the window was closed
    /// meanwhile or the same action is already running: the action must not go on.
    bool draw_progress() const;

private:
    GtkWidget* button_;
    bool (*sensitive_again_)();
    bool first_;           ///< no other object of this button exists
    bool focus_was_there_; ///< a widget of the window had the focus
    bool focus_was_here_;  ///< the button had the focus
};

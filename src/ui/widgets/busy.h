// SPDX-License-Identifier: MIT
// What the window shows and refuses while an action of the user runs.
//
// An action draws its progress text and waits for the service. Handlers may run while it draws, so
// an action can be pressed a second time before it is over.
#pragma once

#include <gtk/gtk.h>

/// Shows the busy pointer over the window and makes `button` insensitive, until the end of the
/// scope. The button is re-enabled from idle, so that queued clicks are discarded (and queued keys,
/// where their handlers ask whether the button is sensitive), and only where `sensitive_again`
/// (null: always) says so. If the action left the window without a focus, the button gets it back,
/// or else the list of pages.
class BusyWith {
public:
    explicit BusyWith(GtkWidget* button, bool (*sensitive_again)() = nullptr);
    ~BusyWith();
    BusyWith(const BusyWith&) = delete;
    BusyWith& operator=(const BusyWith&) = delete;

    /// Draws what the action has shown so far. Returns whether the action goes on: not when the
    /// window was closed meanwhile, nor in the midst of the same action.
    bool draw_progress() const;

private:
    GtkWidget* button_;
    bool (*sensitive_again_)();
    bool first_;           ///< not in the midst of the same action
    bool focus_was_there_; ///< somewhere in the window
    bool focus_was_here_;  ///< on the button
};

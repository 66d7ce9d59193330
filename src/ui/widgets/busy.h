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

private:
    struct Restore;
    Restore* restore_ = nullptr;
};

/// Tells an action that runs handlers whether one of them has begun it a second time.
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

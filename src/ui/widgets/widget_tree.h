// SPDX-License-Identifier: MIT
// The tree of widgets: walking it, and keeping the focus while a part of it is replaced.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

/// All widgets below a container, internal children included.
std::vector<GtkWidget*> descendants_of(GtkWidget* container);

/// Names a widget for `KeepFocus`.
void set_focus_name(GtkWidget* widget, const std::string& name);

/// Remembers the name of the widget in `box` that has the focus. At the end of the scope the widget
/// of that name grabs the focus, without scrolling the page.
class KeepFocus {
public:
    explicit KeepFocus(GtkWidget* box);
    ~KeepFocus();
    KeepFocus(const KeepFocus&) = delete;
    KeepFocus& operator=(const KeepFocus&) = delete;

private:
    GtkWidget* box_;
    std::string name_{};
};

// SPDX-License-Identifier: MIT
// The keyboard focus while widgets are replaced by others for the same purpose.
#pragma once

#include <gtk/gtk.h>

#include <string>

/// Names a widget for `KeepFocus`.
void set_focus_name(GtkWidget* widget, const std::string& name);

/// Replacing the named widget that has the focus, somewhere in `box`, loses the focus. The end of
/// the scope gives it to the widget of the same name, without scrolling the page.
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

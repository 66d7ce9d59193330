// SPDX-License-Identifier: MIT
// Spin buttons that read numbers alike in every locale, and fields that ignore the mouse wheel.
#pragma once

#include <gtk/gtk.h>

/// A spin button for whole numbers.
GtkWidget* make_number_spin(double minimum, double maximum);

/// A spin button for a frequency in MHz, with three decimals. `name` is its accessible name.
GtkWidget* make_frequency_spin(const char* name);

/// Lets the mouse wheel scroll the page over the widget, unless the widget has the focus.
void let_wheel_pass(GtkWidget* widget);

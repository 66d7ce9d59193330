// SPDX-License-Identifier: MIT
// Long texts in labels: makes the time of their layout grow linearly with their length.
#pragma once

#include <gtk/gtk.h>

/// Divides a label's text, if it is long, into short runs. Called after the text was set.
void ease_layout(GtkWidget* label);

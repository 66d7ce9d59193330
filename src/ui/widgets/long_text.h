// SPDX-License-Identifier: MIT
// Long texts in labels: makes the time of their layout grow linearly with their length.
#pragma once

#include <gtk/gtk.h>

/// Divides a label's long text into short runs, which does not change what is shown, and turns off
/// the hyphens of broken words. Called after the text was set.
void ease_layout(GtkWidget* label);

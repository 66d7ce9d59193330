// SPDX-License-Identifier: MIT
// Long texts in labels, laid out in time that grows with their length and no faster.
#pragma once

#include <gtk/gtk.h>

/// Cuts a label's long text into pieces that are laid out each by itself, without changing what is
/// shown, and keeps hyphens out of the words that may have to be broken. Called after the text was
/// set.
void ease_layout(GtkWidget* label);

/// Sets a label's text, or its markup, with GTK's function for it, and eases its layout.
void show_in_label(GtkWidget* label, const char* text, void (*set)(GtkLabel*, const char*));

// SPDX-License-Identifier: MIT
// Whether the form holds edits that are not saved.
#pragma once

#include <gtk/gtk.h>

/// Connects the widget's edit signal to `mark_dirty`: switch, spin button, entry, toggle button or
/// text view; other widgets are left alone. A spin button counts as edited while it is typed into.
void track_changes(GtkWidget* widget);

/// Marks the form edited: Save becomes sensitive and "Unsaved changes" shows. Does nothing while
/// the loader fills the form.
void mark_dirty();

/// Back to clean, after a load.
void mark_clean();

/// Turns what is typed in the window's spin buttons into their values, as Enter or Tab would.
/// Whoever reads the form calls it first.
void commit_typed_values();

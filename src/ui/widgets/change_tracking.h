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

/// Marks the form clean, after a load.
void mark_clean();

/// Commits what is typed in the form's spin buttons, as Enter or Tab would. Called before the form
/// is read.
void commit_typed_values();

// SPDX-License-Identifier: MIT
// Whether the form holds edits that are not saved.
#pragma once

#include <gtk/gtk.h>

/// Connects the edit signal of a switch, spin button, entry, toggle button or text view to
/// `mark_dirty`; does nothing for other widgets. Typing into a spin button is an edit at once.
void track_changes(GtkWidget* widget);

/// Marks the form edited: Save becomes sensitive and "Unsaved changes" shows. Does nothing while
/// the loader fills the form.
void mark_dirty();

/// Undoes `mark_dirty`, after a load.
void mark_clean();

/// Commits typed text in the form's spin buttons, as Enter or Tab would. Called before the form
/// is read.
void commit_typed_values();

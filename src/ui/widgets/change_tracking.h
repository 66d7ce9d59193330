// SPDX-License-Identifier: MIT
// Whether the form holds edits that are not saved.
#pragma once

#include <gtk/gtk.h>

/// Connects the edit signal of a switch, spin button, entry, toggle button or text view to
/// `mark_dirty`.
void track_changes(GtkWidget* widget);

/// Marks the form edited, unless the loader is filling it.
void mark_dirty();

/// Undoes `mark_dirty`, after a load.
void mark_clean();

/// Commits typed text in the form's spin buttons, as Enter or Tab would.
void commit_typed_values();

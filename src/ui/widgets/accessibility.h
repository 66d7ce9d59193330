// SPDX-License-Identifier: MIT
// What a screen reader is told beyond what GTK tells it by itself.
#pragma once

#include <gtk/gtk.h>

/// Tells a screen reader that `label` names, or describes, `widget`.
void name_by_label(GtkWidget* widget, GtkWidget* label);
void describe_by_label(GtkWidget* widget, GtkWidget* label);
void set_accessible_name(GtkWidget* widget, const char* name);

/// Lets a screen reader speak the label's text whenever it changes.
void announce_changes(GtkWidget* label);

/// Lets a screen reader speak the label's text now.
void announce(GtkWidget* label);

// SPDX-License-Identifier: MIT
// Names, descriptions and announcements for screen readers.
#pragma once

#include <gtk/gtk.h>

/// Makes `label` the accessible name of `widget`, or its accessible description.
void name_by_label(GtkWidget* widget, GtkWidget* label);
void describe_by_label(GtkWidget* widget, GtkWidget* label);
void set_accessible_name(GtkWidget* widget, const char* name);

/// Announces the label's text to a screen reader whenever it changes.
void announce_changes(GtkWidget* label);

/// Announces the label's text to a screen reader now.
void announce(GtkWidget* label);

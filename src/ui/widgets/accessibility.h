// SPDX-License-Identifier: MIT
// What a screen reader is told beyond what GTK tells it by itself.
#pragma once

#include <gtk/gtk.h>

/// Tells a screen reader that `label` names, or describes, `widget`.
void name_by_label(GtkWidget* widget, GtkWidget* label);
void describe_by_label(GtkWidget* widget, GtkWidget* label);
void set_accessible_name(GtkWidget* widget, const char* name);

/// Relations are kept until this is called, and then made when the program has nothing else to do:
/// making them before the first frame would only delay it. Later ones are made at once.
void make_accessible_relations_when_idle();

/// Lets a screen reader speak the label's text whenever it changes.
void announce_changes(GtkWidget* label);

/// Lets a screen reader speak the label's text now.
void announce(GtkWidget* label);

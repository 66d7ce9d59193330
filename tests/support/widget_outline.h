// SPDX-License-Identifier: MIT
// A tree of widgets as text, to be compared with what it should be.
//
// One line for each widget, deeper ones further in, with only what differs from GTK's defaults:
//     box vertical 14 [26 26 20 26]           spacing, and margins: start, end, top, bottom
//       label "Overview" .page-title          text as written, wrapped unless it says "one line"
//       box vertical .card
//         separator
//         button "Copy link" at end
// What a button, an entry or another control is made of is left out.
#pragma once

#include <gtk/gtk.h>

#include <string>

/// The outline of a widget and all below it, hidden ones included. Ends with a line feed.
std::string outline_of(GtkWidget* widget);

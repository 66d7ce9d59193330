// SPDX-License-Identifier: MIT
// A tree of widgets as text, to be compared with what it should be or with what it was.
//
// One line for each widget, deeper ones further in: its class, its text, its style classes, the
// properties whose value is not the usual one, and what the program calls it:
//     GtkBox .card .vertical
//       GtkLabel "Listening now" .card-title margin-top=12 margin-bottom=8 (listeners_title)
//       GtkButton .text-button label="End session" sensitive=FALSE (end_session_button)
//       GtkEntry placeholder-text="K1ABC" width-request=320 = station.callsign
// What a button or another control is made of is left out.
#pragma once

#include <gtk/gtk.h>

#include <string>

/// The outline of a widget and all below it, hidden ones included. Ends with a line feed.
std::string outline_of(GtkWidget* widget);

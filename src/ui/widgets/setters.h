// SPDX-License-Identifier: MIT
// Setters for labels, entries, text views and style classes. Each writes only what differs from
// what is shown, so that an unchanged value draws nothing.
#pragma once

#include "status/status_line.h"
#include "ui/widgets/widget_record.h"

#include <gtk/gtk.h>

#include <string>

void add_style_class(GtkWidget* widget, const char* style_class);

/// Leaves exactly the given one of the classes "good", "warning" and "error" on the widget.
void set_status_class(GtkWidget* widget, StatusClass status_class);

void set_style_class(GtkWidget* widget, const char* style_class, bool wanted);

void set_label_text(GtkWidget* label, const std::string& text);
void set_label_markup(GtkWidget* label, const std::string& markup);

void show_status_line(GtkWidget* label, const StatusLine& line);

/// Limits a label to one line; a longer text ends in an ellipsis.
void ellipsise(GtkWidget* label);

/// Longest tooltip, in bytes: about a dozen lines.
inline constexpr std::size_t longest_tooltip = 2000;

/// Shows a label's text, at most `longest_tooltip` bytes, as its tooltip while the label is
/// ellipsised.
void add_whole_text_tooltip(GtkWidget* label);

/// Shows a report of saving or of an action in the footer.
void show_footer(const StatusLine& line);
void show_footer_error(const std::string& text);

std::string text_of_view(GtkWidget* text_view);

/// Each leaves the cursor of a field that has the focus where it is.
void set_text_of_entry(GtkWidget* entry, const std::string& text);
void set_text_of_view(GtkWidget* text_view, const std::string& text);

// SPDX-License-Identifier: MIT
// The builders that give every page the same look. Those without a parent return a floating
// reference.
#pragma once

#include "ui/widgets/widget_record.h"

#include <gtk/gtk.h>

#include <functional>
#include <string>

/// Left-aligned label. `text` is Pango markup; `style_class` may be null.
GtkWidget* make_label(const char* text, const char* style_class, bool wrap = true);

GtkWidget* make_box(GtkOrientation orientation, int spacing, const char* style_class = nullptr);
GtkWidget* make_button(const char* text, std::function<void()> on_clicked,
                       const char* style_class = nullptr);

/// Packs at the start or, the second, at the end of a box.
void pack(GtkWidget* box, GtkWidget* child, bool expand = false);
void pack_end(GtkWidget* box, GtkWidget* child);

void set_vertical_margins(GtkWidget* widget, int top, int bottom);

/// Adds a card to a page. `title` is plain; null gives a card without one.
GtkWidget* add_card(GtkWidget* parent, const char* title);

/// Adds one setting to a card:
///     row ─┬─ text column: label, hint     (expands)
///          └─ widget                       (at the end)
/// A separator comes first unless this is the card's first row. Texts are plain; `hint` may be
/// null. The label and the hint name and describe the widget to a screen reader. Returns the text
/// column.
GtkWidget* add_row(GtkWidget* card, const char* label, const char* hint, GtkWidget* widget);

/// Adds a frame with a text view of the given height. Returns the text view, change-tracked.
GtkWidget* add_textbox(GtkWidget* parent, int height);

/// Appends the widget to the field registry and tracks its changes. Returns the widget.
GtkWidget* bind_field(const char* key, GtkWidget* widget);

/// A new entry for a row, bound to a key.
GtkWidget* bind_entry(const char* key, const char* placeholder);

/// Adds a small plain text with margins above and below.
GtkWidget* add_note(GtkWidget* box, const std::string& text, int top = 0, int bottom = 0);

// SPDX-License-Identifier: MIT
// The builders that give every page the same look, and small setters for labels and classes.
//
// Builders return widgets that the tree of their parent owns; those without a parent return a
// floating reference, which the container they are packed into takes over.
#pragma once

#include "status/status_line.h"
#include "ui/widgets/widget_record.h"

#include <gtk/gtk.h>

#include <string>
#include <string_view>

/// Left-aligned label. `text` is Pango markup; `style_class` may be null.
GtkWidget* make_label(const char* text, const char* style_class, bool wrap = true);

/// A text from outside as GTK can show it: valid UTF-8, and U+FFFD in the place of U+0000.
std::string showable(std::string_view text);

GtkWidget* make_box(GtkOrientation orientation, int spacing, const char* style_class = nullptr);
GtkWidget* make_button(const char* text, const char* style_class = nullptr);

/// Packs at the start or, the second, at the end of a box.
void pack(GtkWidget* box, GtkWidget* child, bool expand = false);
void pack_end(GtkWidget* box, GtkWidget* child);

void add_style_class(GtkWidget* widget, const char* style_class);
void set_vertical_margins(GtkWidget* widget, int top, int bottom);

/// Adds a scrolling page to the stack under `name`; `title` and `subtitle` (null: none) are plain.
/// Returns the box for the page's cards.
GtkWidget* add_page(const char* name, const char* title, const char* subtitle);

/// Adds a card to a page. `title` is plain; null gives a card without one.
GtkWidget* add_card(GtkWidget* parent, const char* title);

/// Whether a row's widget gets the width of the text entries.
enum class RowWidth { natural, wide };

/// Adds one setting to a card:
///     row ─┬─ text column: label, hint     (expands)
///          └─ widget                       (at the end)
/// A separator comes first unless this is the card's first row. `hint` and `widget` may be null.
/// Texts are plain. Returns the row. `text_column_out`, when given, receives the text column, for
/// a live hint under the label. The label and the hint name and describe the widget to a screen
/// reader.
GtkWidget* add_row(GtkWidget* card, const char* label, const char* hint, GtkWidget* widget,
                   RowWidth width = RowWidth::natural, GtkWidget** text_column_out = nullptr);

/// Adds a frame with a text view of the given height. Returns the text view, change-tracked.
GtkWidget* add_textbox(GtkWidget* parent, int height);

/// Appends the widget to the field registry and tracks its changes. Returns the widget.
GtkWidget* bind_field(const char* key, GtkWidget* widget);

/// A new entry, bound to a key.
GtkWidget* bind_entry(const char* key, const char* placeholder);

/// Leaves exactly the given one of the classes "good", "warning" and "error" on the widget.
void set_status_class(GtkWidget* widget, StatusClass status_class);

void set_style_class(GtkWidget* widget, const char* style_class, bool wanted);

/// Each writes only when the label shows something else, so that an unchanged text draws nothing.
void set_label_text(GtkWidget* label, const std::string& text);
void set_label_markup(GtkWidget* label, const std::string& markup);

/// Text and colour together. The text is plain.
void show_status_line(GtkWidget* label, const StatusLine& line);

/// Keeps a label to one line, or to that many; what does not fit ends in an ellipsis.
void ellipsise(GtkWidget* label);
void limit_lines(GtkWidget* label, int lines);

/// Longest tooltip, in bytes. Ours: about a dozen lines.
inline constexpr std::size_t longest_tooltip = 2000;

/// Shows a label's text as its tooltip, for labels that may end in an ellipsis. A text longer than
/// a tooltip can be read is cut.
void set_whole_text_tooltip(GtkWidget* label);

/// Reports in the footer.
void show_footer(const StatusLine& line);
void show_footer_error(const std::string& text);

/// The whole text of a text view, without hidden characters.
std::string text_of_view(GtkWidget* text_view);

/// Each leaves the cursor of a field that has the focus where it is.
void set_text_of_entry(GtkWidget* entry, const std::string& text);
void set_text_of_view(GtkWidget* text_view, const std::string& text);

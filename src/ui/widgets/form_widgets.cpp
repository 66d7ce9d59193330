// SPDX-License-Identifier: MIT
#include "ui/widgets/form_widgets.h"

#include "link/format_text.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/change_tracking.h"
#include "ui/widgets/long_text.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

/// Width of the wide widgets at the end of a row, in pixels.
constexpr int wide_widget_width = 320;

/// Key of the object data in which a card counts its rows.
constexpr char row_count_key[] = "rows";

struct FreeGlib {
    void operator()(char* text) const { g_free(text); }
};
using GlibText = std::unique_ptr<char, FreeGlib>;

constexpr struct {
    StatusClass status_class;
    const char* name;
} status_class_names[] = {
    {StatusClass::good, "good"}, {StatusClass::warning, "warning"}, {StatusClass::error, "error"}};

} // namespace

GtkWidget* make_label(const char* text, const char* style_class, bool wrap) {
    GtkWidget* label = gtk_label_new(nullptr);
    gtk_label_set_markup(GTK_LABEL(label), text);
    ease_layout(label);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_label_set_line_wrap(GTK_LABEL(label), wrap);
    // One long word must not widen the window: break it where it has to break.
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    if (style_class)
        add_style_class(label, style_class);
    return label;
}

std::string showable(std::string_view text) {
    // A zero byte counts as invalid too.
    if (g_utf8_validate_len(text.data(), text.size(), nullptr))
        return std::string{text};
    const GlibText mended{g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()))};
    return mended.get();
}

GtkWidget* make_box(GtkOrientation orientation, int spacing, const char* style_class) {
    GtkWidget* box = gtk_box_new(orientation, spacing);
    if (style_class)
        add_style_class(box, style_class);
    return box;
}

GtkWidget* make_button(const char* text, const char* style_class) {
    GtkWidget* button = gtk_button_new_with_label(text);
    if (style_class)
        add_style_class(button, style_class);
    return button;
}

void pack(GtkWidget* box, GtkWidget* child, bool expand) {
    gtk_box_pack_start(GTK_BOX(box), child, expand, TRUE, 0);
}

void pack_end(GtkWidget* box, GtkWidget* child) {
    gtk_box_pack_end(GTK_BOX(box), child, FALSE, FALSE, 0);
}

void add_style_class(GtkWidget* widget, const char* style_class) {
    gtk_style_context_add_class(gtk_widget_get_style_context(widget), style_class);
}

void set_vertical_margins(GtkWidget* widget, int top, int bottom) {
    gtk_widget_set_margin_top(widget, top);
    gtk_widget_set_margin_bottom(widget, bottom);
}

GtkWidget* add_page(const char* name, const char* title, const char* subtitle) {
    GtkWidget* page = make_box(GTK_ORIENTATION_VERTICAL, 14);
    gtk_widget_set_margin_start(page, 26);
    gtk_widget_set_margin_end(page, 26);
    set_vertical_margins(page, 20, 26);
    GtkWidget* heading = make_label(escaped_markup(title).c_str(), "page-title");
    pack(page, heading);
    if (subtitle)
        pack(page, make_label(escaped_markup(subtitle).c_str(), "muted"));

    GtkWidget* scroll = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroll), GTK_POLICY_NEVER,
                                   GTK_POLICY_AUTOMATIC);
    gtk_container_add(GTK_CONTAINER(scroll), page);
    name_by_label(scroll, heading);
    gtk_stack_add_titled(GTK_STACK(widgets.stack), scroll, name, title);
    return page;
}

GtkWidget* add_card(GtkWidget* parent, const char* title) {
    GtkWidget* card = make_box(GTK_ORIENTATION_VERTICAL, 0, "card");
    if (title) {
        GtkWidget* label = make_label(escaped_markup(title).c_str(), "card-title");
        set_vertical_margins(label, 12, 2);
        pack(card, label);
    }
    pack(parent, card);
    return card;
}

GtkWidget* add_row(GtkWidget* card, const char* label, const char* hint, GtkWidget* widget,
                   RowWidth width, GtkWidget** text_column_out) {
    const gsize rows_before = GPOINTER_TO_SIZE(g_object_get_data(G_OBJECT(card), row_count_key));
    if (rows_before > 0)
        pack(card, gtk_separator_new(GTK_ORIENTATION_HORIZONTAL));
    g_object_set_data(G_OBJECT(card), row_count_key, GSIZE_TO_POINTER(rows_before + 1));

    GtkWidget* row = make_box(GTK_ORIENTATION_HORIZONTAL, 18, "row");
    GtkWidget* text_column = make_box(GTK_ORIENTATION_VERTICAL, 2);
    gtk_widget_set_valign(text_column, GTK_ALIGN_CENTER);
    GtkWidget* name = make_label(escaped_markup(label).c_str(), nullptr);
    pack(text_column, name);
    if (widget)
        name_by_label(widget, name);
    if (hint) {
        GtkWidget* hint_label = make_label(escaped_markup(hint).c_str(), "small");
        pack(text_column, hint_label);
        if (widget)
            describe_by_label(widget, hint_label);
    }
    pack(row, text_column, true);
    if (widget) {
        gtk_widget_set_valign(widget, GTK_ALIGN_CENTER);
        if (width == RowWidth::wide)
            gtk_widget_set_size_request(widget, wide_widget_width, -1);
        pack_end(row, widget);
    }
    pack(card, row);
    if (text_column_out)
        *text_column_out = text_column;
    return row;
}

GtkWidget* add_textbox(GtkWidget* parent, int height) {
    GtkWidget* frame = make_box(GTK_ORIENTATION_VERTICAL, 0, "textbox");
    gtk_widget_set_margin_bottom(frame, 12);
    GtkWidget* view = gtk_text_view_new();
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
    // The texts are short and a tab means nothing in them: Tab goes on to the next field.
    gtk_text_view_set_accepts_tab(GTK_TEXT_VIEW(view), FALSE);
    gtk_widget_set_size_request(view, -1, height);
    pack(frame, view, true);
    pack(parent, frame);
    track_changes(view);
    return view;
}

GtkWidget* bind_field(const char* key, GtkWidget* widget) {
    widgets.field_registry.push_back({key, widget});
    track_changes(widget);
    return widget;
}

GtkWidget* bind_entry(const char* key, const char* placeholder) {
    GtkWidget* entry = gtk_entry_new();
    gtk_entry_set_placeholder_text(GTK_ENTRY(entry), placeholder);
    return bind_field(key, entry);
}

void set_status_class(GtkWidget* widget, StatusClass status_class) {
    for (const auto& known : status_class_names)
        set_style_class(widget, known.name, known.status_class == status_class);
}

void set_style_class(GtkWidget* widget, const char* style_class, bool wanted) {
    // GTK restyles the widget even when nothing changes, so ask first.
    GtkStyleContext* context = gtk_widget_get_style_context(widget);
    if (static_cast<bool>(gtk_style_context_has_class(context, style_class)) == wanted)
        return;
    if (wanted)
        gtk_style_context_add_class(context, style_class);
    else
        gtk_style_context_remove_class(context, style_class);
}

void set_label_text(GtkWidget* label, const std::string& text) {
    const std::string shown = shortened(showable(text));
    if (gtk_label_get_label(GTK_LABEL(label)) != shown)
        show_in_label(label, shown.c_str(), gtk_label_set_text);
}

void set_label_markup(GtkWidget* label, const std::string& markup) {
    if (gtk_label_get_label(GTK_LABEL(label)) != markup)
        show_in_label(label, markup.c_str(), gtk_label_set_markup);
}

void show_status_line(GtkWidget* label, const StatusLine& line) {
    set_label_text(label, line.text);
    set_status_class(label, line.status_class);
}

void ellipsise(GtkWidget* label) {
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
    // A line feed in the text begins no line: it is drawn as a sign.
    gtk_label_set_single_line_mode(GTK_LABEL(label), TRUE);
}

void limit_lines(GtkWidget* label, int lines) {
    ellipsise(label);
    gtk_label_set_lines(GTK_LABEL(label), lines);
}

void set_whole_text_tooltip(GtkWidget* label) {
    gtk_widget_set_tooltip_text(
        label, shortened(gtk_label_get_text(GTK_LABEL(label)), longest_tooltip).c_str());
}

void show_footer(const StatusLine& line) {
    const bool same_words =
        gtk_label_get_label(GTK_LABEL(widgets.footer_status)) == showable(line.text);
    show_status_line(widgets.footer_status, line);
    // Said again after a second press, the words are no change, but an answer.
    if (same_words)
        announce(widgets.footer_status);
    set_whole_text_tooltip(widgets.footer_status);
}

void show_footer_error(const std::string& text) {
    show_footer({text, StatusClass::error});
}

void set_text_of_entry(GtkWidget* entry, const std::string& text) {
    const std::string shown = showable(text);
    if (gtk_entry_get_text(GTK_ENTRY(entry)) == shown)
        return;
    // Whoever saves while typing goes on typing at the same place.
    const gint cursor = gtk_editable_get_position(GTK_EDITABLE(entry));
    gtk_entry_set_text(GTK_ENTRY(entry), shown.c_str());
    if (gtk_widget_is_focus(entry))
        gtk_editable_set_position(GTK_EDITABLE(entry), cursor);
}

std::string text_of_view(GtkWidget* text_view) {
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(text_view));
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(buffer, &start, &end);
    const GlibText text{gtk_text_buffer_get_text(buffer, &start, &end, FALSE)};
    return text.get();
}

void set_text_of_view(GtkWidget* text_view, const std::string& text) {
    const std::string shown = showable(text);
    if (text_of_view(text_view) == shown)
        return;
    // The cursor stays, as in an entry.
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(text_view));
    GtkTextIter cursor;
    gtk_text_buffer_get_iter_at_mark(buffer, &cursor, gtk_text_buffer_get_insert(buffer));
    const gint offset = gtk_text_iter_get_offset(&cursor);
    gtk_text_buffer_set_text(buffer, shown.c_str(), -1);
    if (!gtk_widget_is_focus(text_view))
        return;
    gtk_text_buffer_get_iter_at_offset(buffer, &cursor, offset);
    gtk_text_buffer_place_cursor(buffer, &cursor);
}

// SPDX-License-Identifier: MIT
#include "ui/widgets/form_widgets.h"

#include "link/text.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/change_tracking.h"
#include "ui/widgets/long_text.h"
#include "ui/widgets/setters.h"
#include "ui/widgets/signals.h"

namespace {

/// Key of the object data in which a card counts its rows.
constexpr char row_count_key[] = "rows";

/// GTK scrolls the page to a text view that gets the focus, but not to the frame around it.
gboolean on_textbox_focused(GtkWidget* view, GdkEvent*, gpointer) {
    GtkWidget* frame = gtk_widget_get_parent(view);
    GtkWidget* viewport = gtk_widget_get_ancestor(frame, GTK_TYPE_VIEWPORT);
    int top = 0;
    if (!viewport || !gtk_widget_translate_coordinates(frame, viewport, 0, 0, nullptr, &top))
        return GDK_EVENT_PROPAGATE;
    GtkAdjustment* place = gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(viewport));
    const double start = gtk_adjustment_get_value(place) + top;
    gtk_adjustment_clamp_page(place, start, start + gtk_widget_get_allocated_height(frame));
    return GDK_EVENT_PROPAGATE;
}

} // namespace

GtkWidget* make_label(const char* text, const char* style_class, bool wrap) {
    GtkWidget* label = gtk_label_new(nullptr);
    gtk_label_set_markup(GTK_LABEL(label), text);
    ease_layout(label);
    gtk_label_set_xalign(GTK_LABEL(label), 0);
    gtk_label_set_line_wrap(GTK_LABEL(label), wrap);
    // Wrapping at words alone would let one long word widen the window.
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);
    if (style_class)
        add_style_class(label, style_class);
    return label;
}

GtkWidget* make_box(GtkOrientation orientation, int spacing, const char* style_class) {
    GtkWidget* box = gtk_box_new(orientation, spacing);
    if (style_class)
        add_style_class(box, style_class);
    return box;
}

GtkWidget* make_button(const char* text, std::function<void()> on_clicked,
                       const char* style_class) {
    GtkWidget* button = gtk_button_new_with_label(text);
    call_at_signal(button, "clicked", std::move(on_clicked));
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

void set_vertical_margins(GtkWidget* widget, int top, int bottom) {
    gtk_widget_set_margin_top(widget, top);
    gtk_widget_set_margin_bottom(widget, bottom);
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

GtkWidget* add_row(GtkWidget* card, const char* label, const char* hint, GtkWidget* widget) {
    const gsize rows_before = GPOINTER_TO_SIZE(g_object_get_data(G_OBJECT(card), row_count_key));
    if (rows_before > 0)
        pack(card, gtk_separator_new(GTK_ORIENTATION_HORIZONTAL));
    g_object_set_data(G_OBJECT(card), row_count_key, GSIZE_TO_POINTER(rows_before + 1));

    GtkWidget* row = make_box(GTK_ORIENTATION_HORIZONTAL, 18, "row");
    GtkWidget* text_column = make_box(GTK_ORIENTATION_VERTICAL, 2);
    gtk_widget_set_valign(text_column, GTK_ALIGN_CENTER);
    GtkWidget* name = make_label(escaped_markup(label).c_str(), nullptr);
    pack(text_column, name);
    name_by_label(widget, name);
    if (hint)
        describe_by_label(widget, add_note(text_column, hint));
    pack(row, text_column, true);
    gtk_widget_set_valign(widget, GTK_ALIGN_CENTER);
    pack_end(row, widget);
    pack(card, row);
    return text_column;
}

GtkWidget* add_textbox(GtkWidget* parent, int height) {
    GtkWidget* frame = make_box(GTK_ORIENTATION_VERTICAL, 0, "textbox");
    gtk_widget_set_margin_bottom(frame, 12);
    GtkWidget* view = gtk_text_view_new();
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
    // Tab has to move the focus to the next field.
    gtk_text_view_set_accepts_tab(GTK_TEXT_VIEW(view), FALSE);
    gtk_widget_set_size_request(view, -1, height);
    pack(frame, view, true);
    pack(parent, frame);
    g_signal_connect(view, "focus-in-event", G_CALLBACK(on_textbox_focused), nullptr);
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
    gtk_widget_set_size_request(entry, 320, -1);
    return bind_field(key, entry);
}

GtkWidget* add_note(GtkWidget* box, const std::string& text, int top, int bottom) {
    GtkWidget* note = make_label(escaped_markup(text).c_str(), "small");
    set_vertical_margins(note, top, bottom);
    pack(box, note);
    return note;
}

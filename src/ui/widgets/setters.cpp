// SPDX-License-Identifier: MIT
#include "ui/widgets/setters.h"

#include "link/text.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/long_text.h"

namespace {

/// Sets a label's text, or its markup, with GTK's function for it, and eases its layout.
void show_in_label(GtkWidget* label, const char* text, void (*set)(GtkLabel*, const char*)) {
    if (gtk_label_get_attributes(GTK_LABEL(label))) {
        gtk_label_set_attributes(GTK_LABEL(label), nullptr);
        gtk_label_set_width_chars(GTK_LABEL(label), -1);
    }
    set(GTK_LABEL(label), text);
    ease_layout(label);
}

gboolean on_label_query_tooltip(GtkLabel* label, gint, gint, gboolean, GtkTooltip* tooltip,
                                gpointer) {
    if (!pango_layout_is_ellipsized(gtk_label_get_layout(label)))
        return FALSE;
    gtk_tooltip_set_text(tooltip, shortened(gtk_label_get_text(label), longest_tooltip).c_str());
    return TRUE;
}

} // namespace

void add_style_class(GtkWidget* widget, const char* style_class) {
    gtk_style_context_add_class(gtk_widget_get_style_context(widget), style_class);
}

void set_status_class(GtkWidget* widget, StatusClass status_class) {
    set_style_class(widget, "good", status_class == StatusClass::good);
    set_style_class(widget, "warning", status_class == StatusClass::warning);
    set_style_class(widget, "error", status_class == StatusClass::error);
}

void set_style_class(GtkWidget* widget, const char* style_class, bool wanted) {
    GtkStyleContext* context = gtk_widget_get_style_context(widget);
    if (wanted)
        gtk_style_context_add_class(context, style_class);
    else
        gtk_style_context_remove_class(context, style_class);
}

void set_label_text(GtkWidget* label, const std::string& text) {
    const std::string shown = shortened(valid_utf8(text));
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
    // A line feed is drawn as a symbol, not as the end of the line.
    gtk_label_set_single_line_mode(GTK_LABEL(label), TRUE);
}

void add_whole_text_tooltip(GtkWidget* label) {
    gtk_widget_set_has_tooltip(label, TRUE);
    g_signal_connect(label, "query-tooltip", G_CALLBACK(on_label_query_tooltip), nullptr);
}

void show_footer(const StatusLine& line) {
    const bool same_words =
        gtk_label_get_label(GTK_LABEL(widgets.footer_status)) == valid_utf8(line.text);
    show_status_line(widgets.footer_status, line);
    // An unchanged label emits no "notify", which `announce_changes` relies on.
    if (same_words)
        announce(widgets.footer_status);
}

void show_footer_error(const std::string& text) {
    show_footer({text, StatusClass::error});
}

void set_text_of_entry(GtkWidget* entry, const std::string& text) {
    const std::string shown = valid_utf8(text);
    if (gtk_entry_get_text(GTK_ENTRY(entry)) == shown)
        return;
    // The user may go on typing at the same place after a save.
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
    const std::string shown = valid_utf8(text);
    if (text_of_view(text_view) == shown)
        return;
    // Keeps the cursor, as in an entry.
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

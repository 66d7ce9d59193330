// SPDX-License-Identifier: MIT
#include "ui/widgets/spin_buttons.h"

#include "ui/field_rules.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/widget_record.h"

#include <cstring>
#include <string>
#include <string_view>

namespace {

/// Converts the typed text to a value. GTK's own conversion follows the locale and stops at a
/// decimal point of another locale.
gint on_spin_input(GtkSpinButton* spin, gdouble* value, gpointer) {
    const double held = gtk_spin_button_get_value(spin);
    const guint decimals = gtk_spin_button_get_digits(spin);
    const std::string text = gtk_entry_get_text(GTK_ENTRY(spin));
    // The value may have more decimals than the text: keep them when the text is unchanged.
    if (text == decimal_text(held, decimals)) {
        *value = held;
        return TRUE;
    }
    // After GTK_INPUT_ERROR GTK would set an undefined value.
    *value = typed_number(text, decimals).value_or(held);
    return TRUE;
}

gboolean on_spin_output(GtkSpinButton* spin, gpointer) {
    const std::string text =
        decimal_text(gtk_spin_button_get_value(spin), gtk_spin_button_get_digits(spin));
    if (text != gtk_entry_get_text(GTK_ENTRY(spin)))
        gtk_entry_set_text(GTK_ENTRY(spin), text.c_str());
    return TRUE;
}

/// Refuses characters that are in no number. It replaces GTK's "numeric" filter, which drops the
/// comma (or the dot) and turns a typed "7,3" into 73.
void on_spin_insert_text(GtkEditable* spin, const char* text, gint length, gpointer, gpointer) {
    const std::string_view typed{text,
                                 length < 0 ? std::strlen(text) : static_cast<std::size_t>(length)};
    if (typed.find_first_not_of("0123456789.,+- \t\r\n") != std::string_view::npos) {
        g_signal_stop_emission_by_name(spin, "insert-text");
        gtk_widget_error_bell(GTK_WIDGET(spin));
    }
}

bool holds_focus(GtkWidget* widget) {
    GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(widgets.window));
    return focus && (focus == widget || gtk_widget_is_ancestor(focus, widget));
}

gboolean on_scroll(GtkWidget* widget, GdkEvent*, gpointer) {
    if (!holds_focus(widget))
        g_signal_stop_emission_by_name(widget, "scroll-event");
    return GDK_EVENT_PROPAGATE;
}

GtkWidget* wired(GtkWidget* spin) {
    gtk_spin_button_set_numeric(GTK_SPIN_BUTTON(spin), FALSE);
    g_signal_connect(spin, "insert-text", G_CALLBACK(on_spin_insert_text), nullptr);
    g_signal_connect(spin, "input", G_CALLBACK(on_spin_input), nullptr);
    g_signal_connect(spin, "output", G_CALLBACK(on_spin_output), nullptr);
    let_wheel_pass(spin);
    return spin;
}

} // namespace

GtkWidget* make_number_spin(double minimum, double maximum) {
    return wired(gtk_spin_button_new_with_range(minimum, maximum, 1));
}

GtkWidget* make_frequency_spin(const char* name) {
    GtkWidget* spin = gtk_spin_button_new_with_range(0, 6000, 0.001);
    gtk_spin_button_set_digits(GTK_SPIN_BUTTON(spin), 3);
    gtk_entry_set_width_chars(GTK_ENTRY(spin), 9);
    set_accessible_name(spin, name);
    return wired(spin);
}

void let_wheel_pass(GtkWidget* widget) {
    g_signal_connect(widget, "scroll-event", G_CALLBACK(on_scroll), nullptr);
}

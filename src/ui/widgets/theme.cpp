// SPDX-License-Identifier: MIT
#include "ui/widgets/theme.h"

#include "ui/widgets/signals.h"
#include "ui/widgets/style_additions.h"
#include "ui/widgets/style_sheet.h"

#include <gtk/gtk.h>

namespace {

/// Returns a new reference.
GtkStyleProvider* make_provider(const char* sheet) {
    GtkCssProvider* provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, sheet, -1, nullptr);
    return GTK_STYLE_PROVIDER(provider);
}

void add_provider(GtkStyleProvider* provider) {
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), provider,
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

void add_sheet(const char* sheet) {
    GtkStyleProvider* provider = make_provider(sheet);
    add_provider(provider);
    g_object_unref(provider);
}

/// Adds the styles for high contrast, or removes them, depending on the name of the theme.
void follow_high_contrast() {
    static GtkStyleProvider* const high_contrast = make_provider(high_contrast_styles);
    static bool added = false;
    char* of_desktop = nullptr;
    g_object_get(gtk_settings_get_default(), "gtk-theme-name", &of_desktop, nullptr);
    const char* of_user = g_getenv("GTK_THEME"); // overrides the desktop's theme
    const char* name = of_user ? of_user : of_desktop;
    const bool wanted = name && g_str_has_prefix(name, "HighContrast");
    g_free(of_desktop);
    if (wanted && !added)
        add_provider(high_contrast);
    else if (!wanted && added)
        gtk_style_context_remove_provider_for_screen(gdk_screen_get_default(), high_contrast);
    added = wanted;
}

void measure_entries_again(GtkWidget* widget, gpointer) {
    if (GTK_IS_ENTRY(widget)) {
        pango_context_changed(gtk_widget_get_pango_context(widget));
        gtk_widget_queue_resize(widget);
    } else if (GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(GTK_CONTAINER(widget), measure_entries_again, nullptr);
    }
}

/// GTK lays texts out again by itself when the text scale changes, but the Pango contexts of the
/// entries keep the old width of a character, because their font is the same in pt.
void measure_all_entries_again() {
    GList* windows = gtk_window_list_toplevels();
    for (GList* window = windows; window; window = window->next)
        measure_entries_again(GTK_WIDGET(window->data), nullptr);
    g_list_free(windows);
}

} // namespace

void apply_theme() {
    add_sheet(style_sheet);
    add_sheet(added_styles);
    GtkSettings* settings = gtk_settings_get_default();
    call_at_signal(settings, "notify::gtk-theme-name", follow_high_contrast);
    follow_high_contrast();
    call_at_signal(settings, "notify::gtk-xft-dpi", measure_all_entries_again);
}

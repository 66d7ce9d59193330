// SPDX-License-Identifier: MIT
#include "app/shortcuts.h"

#include "status/refresh_status.h"
#include "ui/field_rules.h"
#include "ui/form.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/page_stack.h"
#include "ui/widgets/widget_record.h"
#include "ui/widgets/widget_tree.h"

#include <string>

namespace {

void save_if_edited() {
    // A key that was queued while the form was saved must do nothing, as a click would.
    if (gtk_widget_get_sensitive(widgets.save_button))
        save_settings();
}

/// Sends one request for all presses in the queue: when the service hangs, each request would block
/// for its time limit.
void refresh_when_idle() {
    g_idle_remove_by_data(&widgets);
    const auto refresh = [](gpointer) -> gboolean {
        if (widgets.window)
            refresh_status();
        return G_SOURCE_REMOVE;
    };
    g_idle_add(refresh, &widgets);
}

/// Accelerators as GTK writes them, with blanks between them.
struct Shortcut {
    const char* title;
    const char* accelerators;   ///< null: Ctrl with the number of each page
    const char* not_in_overlay; ///< accelerators that do the same
    void (*action)();
};

/// Every key of the window, in the order of the overlay.
constexpr Shortcut shortcuts[] = {
    {"Save changes", "<Primary>s", "", save_if_edited},
    {"Ask the service for news at once", "F5", "", refresh_when_idle},
    {"Close the window", "<Primary>w <Primary>q", "",
     [] { gtk_window_close(GTK_WINDOW(widgets.window)); }},
    {"Show these shortcuts", "<Primary>question", "<Primary><Shift>question", show_shortcuts},
    {"Show a page by its place", nullptr, "", nullptr},
    {"Next page", "<Primary>Page_Down", "<Primary>KP_Page_Down", [] { turn_pages(1); }},
    {"Previous page", "<Primary>Page_Up", "<Primary>KP_Page_Up", [] { turn_pages(-1); }},
};

gboolean on_shortcut(GtkAccelGroup*, GObject*, guint, GdkModifierType, gpointer shortcut) {
    static_cast<const Shortcut*>(shortcut)->action();
    return TRUE;
}

gboolean on_page_number(GtkAccelGroup*, GObject*, guint, GdkModifierType, gpointer index) {
    show_page_at(GPOINTER_TO_SIZE(index));
    return TRUE;
}

void connect_keys(GtkAccelGroup* keys, const std::string& accelerators, GCallback handler,
                  gconstpointer data) {
    for (const std::string& accelerator : words_of(accelerators)) {
        guint key = 0;
        GdkModifierType modifiers{};
        gtk_accelerator_parse(accelerator.c_str(), &key, &modifiers);
        gtk_accel_group_connect(keys, key, modifiers, GtkAccelFlags{},
                                g_cclosure_new(handler, const_cast<gpointer>(data), nullptr));
    }
}

GtkWidget* make_overlay_row(const Shortcut& shortcut) {
    const std::string accelerators = shortcut.accelerators
                                         ? shortcut.accelerators
                                         : "<Primary>1..." + std::to_string(widgets.pages.size());
    return GTK_WIDGET(g_object_new(GTK_TYPE_SHORTCUTS_SHORTCUT, "visible", TRUE, "title",
                                   shortcut.title, "accelerator", accelerators.c_str(), nullptr));
}

GtkWidget* make_overlay() {
    // GTK lays two groups side by side, which is wider than a small screen.
    gpointer group = g_object_new(GTK_TYPE_SHORTCUTS_GROUP, "visible", TRUE, nullptr);
    for (const Shortcut& shortcut : shortcuts)
        gtk_container_add(GTK_CONTAINER(group), make_overlay_row(shortcut));
    gpointer section = g_object_new(GTK_TYPE_SHORTCUTS_SECTION, "visible", TRUE, "section-name",
                                    "shortcuts", "max-height", 12U, nullptr);
    gtk_container_add(GTK_CONTAINER(section), GTK_WIDGET(group));
    gpointer window = g_object_new(GTK_TYPE_SHORTCUTS_WINDOW, "modal", TRUE, nullptr);
    gtk_container_add(GTK_CONTAINER(window), GTK_WIDGET(section));
    return GTK_WIDGET(window);
}

} // namespace

void add_shortcuts() {
    GtkAccelGroup* keys = gtk_accel_group_new();
    for (const Shortcut& shortcut : shortcuts) {
        if (shortcut.accelerators)
            connect_keys(keys, shortcut.accelerators, G_CALLBACK(on_shortcut), &shortcut);
        connect_keys(keys, shortcut.not_in_overlay, G_CALLBACK(on_shortcut), &shortcut);
    }
    for (std::size_t page = 0; page < widgets.pages.size(); ++page)
        connect_keys(keys, "<Primary>" + std::to_string(page + 1), G_CALLBACK(on_page_number),
                     GSIZE_TO_POINTER(page));
    gtk_window_add_accel_group(GTK_WINDOW(widgets.window), keys);
    g_object_unref(keys);
}

void show_shortcuts() {
    // Made once, and hidden when it is closed: GTK 3.24 complains about a window of this kind that
    // is destroyed while a screen reader follows it.
    static GtkWidget* window = nullptr;
    if (!window) {
        window = make_overlay();
        gtk_window_set_transient_for(GTK_WINDOW(window), GTK_WINDOW(widgets.window));
        gtk_window_set_destroy_with_parent(GTK_WINDOW(window), TRUE);
        g_signal_connect(window, "delete-event", G_CALLBACK(gtk_widget_hide_on_delete), nullptr);
        g_signal_connect(window, "destroy", G_CALLBACK(gtk_widget_destroyed), &window);
        // The search button shows a picture only, and GTK gives it no accessible name.
        for (GtkWidget* widget : descendants_of(gtk_window_get_titlebar(GTK_WINDOW(window))))
            if (GTK_IS_TOGGLE_BUTTON(widget))
                set_accessible_name(widget, "Search");
    }
    gtk_window_present(GTK_WINDOW(window));
}

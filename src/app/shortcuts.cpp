// SPDX-License-Identifier: MIT
#include "app/shortcuts.h"

#include "status/refresh_status.h"
#include "ui/save_settings.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/page_stack.h"
#include "ui/widgets/widget_record.h"

namespace {

void save_if_edited() {
    // As the button: there is nothing to save, or it is being saved.
    if (gtk_widget_get_sensitive(widgets.save_button))
        save_settings();
}

void close_window() {
    gtk_window_close(GTK_WINDOW(widgets.window));
}

void turn_to_next_page() {
    turn_pages(1);
}

void turn_to_previous_page() {
    turn_pages(-1);
}

struct Shortcut {
    guint key;
    GdkModifierType modifiers;
    void (*action)();
};

constexpr GdkModifierType control = GDK_CONTROL_MASK;

constexpr Shortcut shortcuts[] = {
    {GDK_KEY_s, control, save_if_edited},
    {GDK_KEY_w, control, close_window},
    {GDK_KEY_q, control, close_window},
    {GDK_KEY_Page_Down, control, turn_to_next_page},
    {GDK_KEY_Page_Up, control, turn_to_previous_page},
    {GDK_KEY_KP_Page_Down, control, turn_to_next_page},
    {GDK_KEY_KP_Page_Up, control, turn_to_previous_page},
    {GDK_KEY_F5, GdkModifierType{}, refresh_status},
    {GDK_KEY_question, control, show_shortcuts},
    {GDK_KEY_question, GdkModifierType(GDK_CONTROL_MASK | GDK_SHIFT_MASK), show_shortcuts},
};

gboolean on_shortcut(GtkAccelGroup*, GObject*, guint, GdkModifierType, gpointer shortcut) {
    static_cast<const Shortcut*>(shortcut)->action();
    return TRUE;
}

gboolean on_page_number(GtkAccelGroup*, GObject*, guint, GdkModifierType, gpointer index) {
    show_page_at(GPOINTER_TO_INT(index));
    return TRUE;
}

// One group: GTK lays two side by side, wider than a small screen.
constexpr char overlay[] = R"(
<interface>
  <object class="GtkShortcutsWindow" id="overlay">
    <property name="modal">1</property>
    <child>
      <object class="GtkShortcutsSection">
        <property name="visible">1</property>
        <property name="section-name">shortcuts</property>
        <property name="max-height">12</property>
        <child>
          <object class="GtkShortcutsGroup">
            <property name="visible">1</property>
            <child>
              <object class="GtkShortcutsShortcut">
                <property name="visible">1</property>
                <property name="accelerator">&lt;Primary&gt;s</property>
                <property name="title">Save changes</property>
              </object>
            </child>
            <child>
              <object class="GtkShortcutsShortcut">
                <property name="visible">1</property>
                <property name="accelerator">F5</property>
                <property name="title">Ask the service for news at once</property>
              </object>
            </child>
            <child>
              <object class="GtkShortcutsShortcut">
                <property name="visible">1</property>
                <property name="accelerator">&lt;Primary&gt;w &lt;Primary&gt;q</property>
                <property name="title">Close the window</property>
              </object>
            </child>
            <child>
              <object class="GtkShortcutsShortcut">
                <property name="visible">1</property>
                <property name="accelerator">&lt;Primary&gt;question</property>
                <property name="title">Show these shortcuts</property>
              </object>
            </child>
            <child>
              <object class="GtkShortcutsShortcut">
                <property name="visible">1</property>
                <property name="accelerator">&lt;Primary&gt;1...5</property>
                <property name="title">Show a page by its place</property>
              </object>
            </child>
            <child>
              <object class="GtkShortcutsShortcut">
                <property name="visible">1</property>
                <property name="accelerator">&lt;Primary&gt;Page_Down</property>
                <property name="title">Next page</property>
              </object>
            </child>
            <child>
              <object class="GtkShortcutsShortcut">
                <property name="visible">1</property>
                <property name="accelerator">&lt;Primary&gt;Page_Up</property>
                <property name="title">Previous page</property>
              </object>
            </child>
          </object>
        </child>
      </object>
    </child>
  </object>
</interface>
)";

/// The overlay's search button shows a picture only, and GTK has not named it.
void name_search_button(GtkWidget* widget, gpointer) {
    if (GTK_IS_TOGGLE_BUTTON(widget))
        set_accessible_name(widget, "Search");
    else if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(GTK_CONTAINER(widget), name_search_button, nullptr);
}

} // namespace

void add_shortcuts() {
    GtkAccelGroup* keys = gtk_accel_group_new();
    for (const Shortcut& shortcut : shortcuts)
        gtk_accel_group_connect(
            keys, shortcut.key, shortcut.modifiers, GtkAccelFlags{},
            g_cclosure_new(G_CALLBACK(on_shortcut), const_cast<Shortcut*>(&shortcut), nullptr));
    for (int page = 0; page < page_count(); ++page)
        gtk_accel_group_connect(
            keys, static_cast<guint>(GDK_KEY_1 + page), control, GtkAccelFlags{},
            g_cclosure_new(G_CALLBACK(on_page_number), GINT_TO_POINTER(page), nullptr));
    gtk_window_add_accel_group(GTK_WINDOW(widgets.window), keys);
    g_object_unref(keys);
}

void show_shortcuts() {
    // Made once, and hidden when it is closed: GTK 3.24 complains about a window of this kind that
    // is destroyed while a screen reader follows it.
    static GtkWidget* window = nullptr;
    if (!window) {
        GtkBuilder* builder = gtk_builder_new_from_string(overlay, -1);
        window = GTK_WIDGET(gtk_builder_get_object(builder, "overlay"));
        gtk_window_set_transient_for(GTK_WINDOW(window), GTK_WINDOW(widgets.window));
        gtk_window_set_destroy_with_parent(GTK_WINDOW(window), TRUE);
        g_signal_connect(window, "delete-event", G_CALLBACK(gtk_widget_hide_on_delete), nullptr);
        g_signal_connect(window, "destroy", G_CALLBACK(gtk_widget_destroyed), &window);
        if (GtkWidget* bar = gtk_window_get_titlebar(GTK_WINDOW(window)))
            name_search_button(bar, nullptr);
        g_object_unref(builder); // the toolkit holds top-level windows itself
    }
    gtk_window_present(GTK_WINDOW(window));
}

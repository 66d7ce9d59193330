// SPDX-License-Identifier: MIT
#include "support/real_window.h"

#include "support/toplevels.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>

namespace {

void collect(GtkWidget* widget, gpointer all) {
    static_cast<std::vector<GtkWidget*>*>(all)->push_back(widget);
    if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(GTK_CONTAINER(widget), collect, all);
}

gboolean agree(gpointer done) {
    GtkWidget* dialog = real_window::open_dialog();
    if (!dialog)
        return G_SOURCE_CONTINUE;
    *static_cast<bool*>(done) = true;
    gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_OK);
    return G_SOURCE_REMOVE;
}

} // namespace

void real_window::give_up(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::abort();
}

const char* real_window::required_variable(const char* name) {
    const char* value = std::getenv(name);
    if (!value)
        give_up(std::string{name}.append(" is not set"));
    return value;
}

long real_window::open_descriptors() {
    const std::filesystem::directory_iterator all{"/proc/self/fd"};
    return std::distance(begin(all), end(all));
}

std::vector<GtkWidget*> real_window::all_widgets() {
    std::vector<GtkWidget*> all;
    for (GtkWidget* window : toplevels())
        if (g_strcmp0(gtk_window_get_title(GTK_WINDOW(window)), "Tarnwave settings") == 0)
            collect(window, &all);
    return all;
}

GtkWidget* real_window::button_in(GtkWidget* root, const char* name) {
    std::vector<GtkWidget*> all;
    collect(root, &all);
    for (GtkWidget* widget : all)
        if (GTK_IS_BUTTON(widget) && g_strcmp0(gtk_button_get_label(GTK_BUTTON(widget)), name) == 0)
            return widget;
    return nullptr;
}

GtkWidget* real_window::button_named(const char* name) {
    for (GtkWidget* widget : all_widgets())
        if (GTK_IS_BUTTON(widget) && g_strcmp0(gtk_button_get_label(GTK_BUTTON(widget)), name) == 0)
            return widget;
    give_up(std::string{"there is no button "}.append(name));
}

void real_window::wait_for_button(const char* name) {
    while (!gtk_widget_get_sensitive(button_named(name)))
        gtk_main_iteration();
}

void real_window::click(const char* name) {
    GtkWidget* button = button_named(name);
    if (gtk_widget_get_sensitive(button))
        gtk_button_clicked(GTK_BUTTON(button));
}

GtkWidget* real_window::name_entry() {
    return first_of(gtk_entry_get_type(), [](GtkWidget* entry) {
        return g_strcmp0(gtk_entry_get_placeholder_text(GTK_ENTRY(entry)), "Hilltop SDR") == 0;
    });
}

GtkWidget* real_window::open_dialog() {
    for (GtkWidget* window : toplevels())
        if (GTK_IS_DIALOG(window) && gtk_widget_get_mapped(window))
            return window;
    return nullptr;
}

std::vector<std::string> real_window::texts_in(GtkWidget* root) {
    std::vector<GtkWidget*> all;
    collect(root, &all);
    std::vector<std::string> texts;
    for (GtkWidget* widget : all)
        if (GTK_IS_LABEL(widget))
            texts.emplace_back(gtk_label_get_text(GTK_LABEL(widget)));
    return texts;
}

bool real_window::select_first_listener() {
    GtkWidget* view = first_of(gtk_tree_view_get_type(), [](GtkWidget*) { return true; });
    GtkTreeIter first;
    if (!gtk_tree_model_get_iter_first(gtk_tree_view_get_model(GTK_TREE_VIEW(view)), &first))
        return false;
    gtk_tree_selection_select_iter(gtk_tree_view_get_selection(GTK_TREE_VIEW(view)), &first);
    return true;
}

void real_window::click_and_agree(const char* name) {
    GtkWidget* button = button_named(name);
    if (!gtk_widget_get_sensitive(button))
        return;
    bool agreed = false;
    g_idle_add_full(G_PRIORITY_LOW, agree, &agreed, nullptr);
    gtk_button_clicked(GTK_BUTTON(button));
    // The question is asked from the main loop, and what follows it is done in there.
    while (!agreed)
        gtk_main_iteration();
}

void real_window::fill_in_registration() {
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button_named("I understand")), TRUE);
    GtkWidget* email = first_of(gtk_entry_get_type(), [](GtkWidget* entry) {
        const char* hint = gtk_entry_get_placeholder_text(GTK_ENTRY(entry));
        return hint && g_str_has_prefix(hint, "Your email");
    });
    gtk_entry_set_text(GTK_ENTRY(email), "ann@hilltop.example");
}

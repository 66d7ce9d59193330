// SPDX-License-Identifier: MIT
#include "ui/window.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "ui/form.h"
#include "ui/pages.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/change_tracking.h"
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/page_stack.h"
#include "ui/widgets/pending_events.h"
#include "ui/widgets/setters.h"
#include "ui/widgets/theme.h"

namespace {

/// Responses of the question about unsaved changes.
enum CloseAnswer : gint { discard = 1, save = 2 };

void on_window_destroyed(GtkWidget*, gpointer) {
    // Functions that run the main loop test this afterwards.
    widgets.window = nullptr;
    if (gtk_main_level() > 0)
        gtk_main_quit();
}

gboolean on_window_delete(GtkWidget*, GdkEvent*, gpointer) {
    return confirm_close();
}

/// Opens the station's own page in the desktop's browser. A failure is not reported.
void open_station_page() {
    const std::int32_t port = clamped_int32(setting_number("network.port"));
    const std::string address = "http://127.0.0.1:" + std::to_string(port) + "/";
    gtk_show_uri_on_window(GTK_WINDOW(widgets.window), address.c_str(), GDK_CURRENT_TIME, nullptr);
}

GtkWidget* make_header_texts() {
    GtkWidget* texts = make_box(GTK_ORIENTATION_VERTICAL, 3);
    pack(texts, make_label("TARNWAVE", "brand"));
    widgets.header_title = make_label("Your station", "title");
    ellipsise(widgets.header_title);
    gtk_label_set_lines(GTK_LABEL(widgets.header_title), 2);
    add_whole_text_tooltip(widgets.header_title);
    pack(texts, widgets.header_title);

    GtkWidget* line = make_box(GTK_ORIENTATION_HORIZONTAL, 7);
    widgets.header_dot = make_label("●", "dot", false);
    pack(line, widgets.header_dot);
    widgets.header_status = make_label("Connecting to the Tarnwave service…", "muted");
    announce_changes(widgets.header_status);
    pack(line, widgets.header_status);
    pack(texts, line);
    return texts;
}

GtkWidget* make_header() {
    GtkWidget* header = make_box(GTK_ORIENTATION_HORIZONTAL, 12, "header");
    pack(header, make_header_texts(), true);

    GtkWidget* actions = make_box(GTK_ORIENTATION_HORIZONTAL, 8);
    gtk_widget_set_valign(actions, GTK_ALIGN_CENTER);
    widgets.unsaved_label = make_label("Unsaved changes", "warning", false);
    gtk_box_pack_start(GTK_BOX(actions), widgets.unsaved_label, FALSE, TRUE, 6);
    pack(actions, make_button("Open station page", open_station_page));
    widgets.save_button = make_button("Save changes", save_settings, "primary");
    pack(actions, widgets.save_button);
    pack_end(header, actions);
    return header;
}

GtkWidget* make_body() {
    GtkWidget* body = make_box(GTK_ORIENTATION_HORIZONTAL, 0);
    GtkWidget* stack = make_page_stack();
    build_pages();
    pack(body, make_page_list());
    pack(body, stack, true);
    return body;
}

GtkWidget* make_footer() {
    GtkWidget* footer = make_box(GTK_ORIENTATION_HORIZONTAL, 10, "footer");
    widgets.footer_status = make_label("", "muted", false);
    ellipsise(widgets.footer_status);
    add_whole_text_tooltip(widgets.footer_status);
    announce_changes(widgets.footer_status);
    pack(footer, widgets.footer_status, true);
    pack_end(footer,
             make_label((std::string{"Tarnwave "} + program_version).c_str(), "small", false));
    return footer;
}

/// Asks the question, saves when the answer is `save`, and returns whether the window stays open.
bool save_or_stay() {
    const gint answer =
        run_dialog({.text = "Save your changes?",
                    .secondary_text = "Some settings have changed and are not saved yet.",
                    .buttons = {{"Discard", CloseAnswer::discard},
                                {"Cancel", GTK_RESPONSE_CANCEL},
                                {"Save", CloseAnswer::save}},
                    .default_response = CloseAnswer::save});
    if (!widgets.window)
        return false;
    switch (answer) {
    case CloseAnswer::save:
        wait_until_uncovered();
        return widgets.window && !save_settings();
    case CloseAnswer::discard:
        return false;
    default:
        return true;
    }
}

} // namespace

void build_window() {
    apply_theme();
    // The default icon is also that of the dialogs and the shortcuts window.
    gtk_window_set_default_icon_name("tarnwave");
    widgets.window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(widgets.window), "Tarnwave settings");
    gtk_window_set_icon_name(GTK_WINDOW(widgets.window), "tarnwave");
    gtk_window_set_default_size(GTK_WINDOW(widgets.window), 1000, 780);
    g_signal_connect(widgets.window, "destroy", G_CALLBACK(on_window_destroyed), nullptr);
    g_signal_connect(widgets.window, "delete-event", G_CALLBACK(on_window_delete), nullptr);

    GtkWidget* content = make_box(GTK_ORIENTATION_VERTICAL, 0);
    GtkWidget* header = make_header();
    pack(content, header);
    pack(content, make_body(), true);
    pack(content, make_footer());
    gtk_container_add(GTK_CONTAINER(widgets.window), content);

    gtk_widget_show_all(content);
    mark_clean();
    update_relay_visibility();
    // Last, so that the first frame shows the complete window.
    gtk_widget_show(widgets.window);
}

bool confirm_close() {
    if (!widgets.dirty)
        return false;
    // Closing again while the dialog is open, or the form is saved, must not open another one.
    static bool asking = false;
    if (asking)
        return true;
    asking = true;
    const bool stays_open = save_or_stay();
    asking = false;
    return stays_open;
}

// SPDX-License-Identifier: MIT
// Makes the real program live through thousands of polls in a minute, and counts what it holds.
//
// Preloaded into the program (scripts/soak does it): a timer of whole seconds then fires as soon as
// the program has nothing else to do, and between the polls a user turns pages, edits, saves, looks
// for receivers and ends sessions. Every so many polls the service is asked for the same quiet
// document, by a file that it looks for, and a line with the figures goes to the standard output.
#include <gtk/gtk.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

/// The program's own timer is known by its interval.
constexpr guint poll_interval_s = 3;

/// Polls from one line of figures to the next. The last three before it see the quiet document.
constexpr long polls_in_a_round = 100;
constexpr long quiet_polls = 3;

GSourceFunc program_poll = nullptr;
gpointer program_data = nullptr;
long polls = 0;
long wanted_polls = 0;
const char* quiet_file = nullptr;

void collect(GtkWidget* widget, gpointer all) {
    static_cast<std::vector<GtkWidget*>*>(all)->push_back(widget);
    if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(GTK_CONTAINER(widget), collect, all);
}

/// The program's window and everything in it; the toolkit's tooltips are windows of their own.
std::vector<GtkWidget*> all_widgets() {
    std::vector<GtkWidget*> all;
    GList* windows = gtk_window_list_toplevels();
    for (GList* item = windows; item; item = item->next)
        if (g_strcmp0(gtk_window_get_title(GTK_WINDOW(item->data)), "Tarnwave settings") == 0)
            collect(GTK_WIDGET(item->data), &all);
    g_list_free(windows);
    return all;
}

GtkWidget* button_named(const char* name) {
    for (GtkWidget* widget : all_widgets())
        if (GTK_IS_BUTTON(widget) && g_strcmp0(gtk_button_get_label(GTK_BUTTON(widget)), name) == 0)
            return widget;
    std::fprintf(stderr, "there is no button \"%s\"\n", name);
    std::abort();
}

void click(const char* name) {
    GtkWidget* button = button_named(name);
    if (gtk_widget_get_sensitive(button))
        gtk_button_clicked(GTK_BUTTON(button));
}

template <class Condition> GtkWidget* first_of(GType (*type)(), Condition accepts) {
    for (GtkWidget* widget : all_widgets())
        if (G_TYPE_CHECK_INSTANCE_TYPE(widget, type()) && accepts(widget))
            return widget;
    std::fprintf(stderr, "there is no %s\n", g_type_name(type()));
    std::abort();
}

void turn_page() {
    GtkWidget* stack = first_of(gtk_stack_get_type, [](GtkWidget* w) {
        return gtk_stack_get_child_by_name(GTK_STACK(w), "overview") != nullptr;
    });
    GList* pages = gtk_container_get_children(GTK_CONTAINER(stack));
    const guint next = static_cast<guint>(polls / 7) % g_list_length(pages);
    gtk_stack_set_visible_child(GTK_STACK(stack), GTK_WIDGET(g_list_nth_data(pages, next)));
    g_list_free(pages);
}

void edit() {
    GtkWidget* name = first_of(gtk_entry_get_type, [](GtkWidget* w) {
        return g_strcmp0(gtk_entry_get_placeholder_text(GTK_ENTRY(w)), "Hilltop SDR") == 0;
    });
    const std::string text = "Hilltop " + std::to_string(polls % 10);
    gtk_entry_set_text(GTK_ENTRY(name), text.c_str());
    GtkWidget* spin = first_of(gtk_spin_button_get_type, [](GtkWidget*) { return true; });
    gtk_spin_button_spin(GTK_SPIN_BUTTON(spin),
                         polls % 2 ? GTK_SPIN_STEP_FORWARD : GTK_SPIN_STEP_BACKWARD, 1);
}

GtkWidget* open_dialog() {
    GtkWidget* dialog = nullptr;
    GList* windows = gtk_window_list_toplevels();
    for (GList* item = windows; item; item = item->next)
        if (GTK_IS_DIALOG(item->data) && gtk_widget_get_mapped(GTK_WIDGET(item->data)))
            dialog = GTK_WIDGET(item->data);
    g_list_free(windows);
    return dialog;
}

/// Answers the next question, once it is on the screen.
gboolean agree(gpointer) {
    GtkWidget* dialog = open_dialog();
    if (!dialog)
        return G_SOURCE_CONTINUE;
    gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_OK);
    return G_SOURCE_REMOVE;
}

/// The same, for the question about edits that a failed save has left: only if it comes.
gboolean discard(gpointer) {
    GtkWidget* dialog = open_dialog();
    std::vector<GtkWidget*> parts;
    if (dialog)
        collect(dialog, &parts);
    for (GtkWidget* part : parts)
        if (GTK_IS_BUTTON(part) &&
            g_strcmp0(gtk_button_get_label(GTK_BUTTON(part)), "Discard") == 0) {
            gtk_button_clicked(GTK_BUTTON(part));
            return G_SOURCE_REMOVE;
        }
    return G_SOURCE_CONTINUE;
}

/// Acts on the first listener, if there is one: "End session", or "Block address…", which asks.
void act_on_a_listener(const char* button, bool asks) {
    GtkWidget* view = first_of(gtk_tree_view_get_type, [](GtkWidget*) { return true; });
    GtkTreeIter first;
    if (!gtk_tree_model_get_iter_first(gtk_tree_view_get_model(GTK_TREE_VIEW(view)), &first))
        return;
    gtk_tree_selection_select_iter(gtk_tree_view_get_selection(GTK_TREE_VIEW(view)), &first);
    if (asks)
        g_idle_add_full(G_PRIORITY_LOW, agree, nullptr, nullptr);
    click(button);
}

void register_again() {
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button_named("I understand")), TRUE);
    GtkWidget* email = first_of(gtk_entry_get_type, [](GtkWidget* w) {
        const char* hint = gtk_entry_get_placeholder_text(GTK_ENTRY(w));
        return hint && g_str_has_prefix(hint, "Your email");
    });
    gtk_entry_set_text(GTK_ENTRY(email), "ann@hilltop.example");
    click("Register this station");
}

void act() {
    const long turn = polls % polls_in_a_round;
    if (turn >= polls_in_a_round - quiet_polls)
        return;
    if (turn % 7 == 0)
        turn_page();
    if (turn % 20 == 5)
        edit();
    if (turn % 20 == 15)
        click("Save changes");
    if (turn % 25 == 12)
        click("Find devices");
    if (turn % 30 == 10)
        act_on_a_listener("End session", false);
    if (turn == 24 || turn == 74)
        act_on_a_listener("Block address…", true);
    if (turn % 30 == 4)
        register_again();
}

gboolean nothing(gpointer) {
    return G_SOURCE_REMOVE;
}

/// The sources of the main loop. Their numbers only grow, so each one up to the newest is asked
/// for.
long live_sources() {
    const guint newest = g_idle_add(nothing, nullptr);
    g_source_remove(newest);
    long count = 0;
    for (guint id = 1; id < newest; ++id)
        if (g_main_context_find_source_by_id(nullptr, id))
            ++count;
    return count;
}

void print_figures() {
    const std::filesystem::directory_iterator descriptors{"/proc/self/fd"};
    const long open = std::distance(begin(descriptors), end(descriptors));
    long pages = 0;
    long resident = 0;
    std::ifstream{"/proc/self/statm"} >> pages >> resident;
    std::printf("polls %ld resident %ld heap %zu descriptors %ld sources %ld widgets %zu\n", polls,
                resident * sysconf(_SC_PAGESIZE), mallinfo2().uordblks, open, live_sources(),
                all_widgets().size());
    std::fflush(stdout);
}

gboolean poll_and_count(gpointer) {
    program_poll(program_data);
    ++polls;
    const long turn = polls % polls_in_a_round;
    if (turn == 0) {
        print_figures();
        std::filesystem::remove(quiet_file);
    } else if (turn == polls_in_a_round - quiet_polls) {
        std::ofstream{quiet_file};
    }
    if (polls >= wanted_polls) {
        g_idle_add_full(G_PRIORITY_LOW, discard, nullptr, nullptr);
        gtk_window_close(GTK_WINDOW(all_widgets().front()));
        return G_SOURCE_REMOVE;
    }
    act();
    return G_SOURCE_CONTINUE;
}

const char* required_variable(const char* name) {
    const char* value = std::getenv(name);
    if (!value) {
        std::fprintf(stderr, "%s is not set\n", name);
        std::abort();
    }
    return value;
}

} // namespace

/// Takes the place of GLib's function, for the program and for its libraries.
extern "C" guint g_timeout_add_seconds(guint seconds, GSourceFunc function, gpointer data) {
    if (seconds != poll_interval_s) {
        // A timer of the toolkit.
        return g_timeout_add_seconds_full(G_PRIORITY_DEFAULT, seconds, function, data, nullptr);
    }
    program_poll = function;
    program_data = data;
    wanted_polls = std::atol(required_variable("TARNWAVE_SOAK_POLLS"));
    quiet_file = required_variable("TARNWAVE_SOAK_QUIET_FILE");
    return g_idle_add_full(G_PRIORITY_LOW, poll_and_count, nullptr, nullptr);
}

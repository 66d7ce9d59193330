// SPDX-License-Identifier: MIT
// Makes the real program do what a test says, one thing at a time.
//
// Preloaded into the program. Reads commands from the standard input, one a line, and answers each
// on the standard output: a line of JSON with what the window shows afterwards. The poll runs when
// told to and at no other time, so every request that the service sees is one that was asked for.
//     poll             as the timer would
//     edit TEXT        types the station's name
//     listener         selects the first listener of the table; the answer is whether there is one
//     fill             ticks the box and types the address that a registration needs
//     press BUTTON     as soon as it can be pressed
//     agree BUTTON     the same, and OK to the question that follows
//     page NUMBER      shows a page, counted from 0 and round and round
//     figures          the answer is the program's memory, descriptors, sources and widgets
//     answer NUMBER    gives the next dialog this response; its texts are the answer
//     close            closes the window
#include "app/start_up.h"
#include "support/toplevels.h"

#include <boost/json.hpp>
#include <gtk/gtk.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace json = boost::json;

namespace {

/// How often a look is taken for a dialog, in milliseconds.
constexpr guint look_interval_ms = 5;

GSourceFunc program_poll = nullptr;
gpointer program_data = nullptr;
std::deque<int> responses;

[[noreturn]] void give_up(const std::string& what) {
    std::fprintf(stderr, "%s\n", what.c_str());
    std::abort();
}

void collect(GtkWidget* widget, gpointer all) {
    static_cast<std::vector<GtkWidget*>*>(all)->push_back(widget);
    if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(GTK_CONTAINER(widget), collect, all);
}

/// The program's window and everything in it; the toolkit's tooltips are windows of their own.
std::vector<GtkWidget*> all_widgets() {
    std::vector<GtkWidget*> all;
    for (GtkWidget* window : toplevels())
        if (g_strcmp0(gtk_window_get_title(GTK_WINDOW(window)), "Tarnwave settings") == 0)
            collect(window, &all);
    return all;
}

/// The first widget of a type that a condition accepts: widgets are found by their texts, as a user
/// finds them.
template <class Condition> GtkWidget* first_of(GType type, Condition accepts) {
    for (GtkWidget* widget : all_widgets())
        if (G_TYPE_CHECK_INSTANCE_TYPE(widget, type) && accepts(widget))
            return widget;
    give_up(std::string{"there is no "}.append(g_type_name(type)));
}

GtkWidget* entry_with_placeholder(const char* beginning) {
    return first_of(gtk_entry_get_type(), [beginning](GtkWidget* entry) {
        const char* placeholder = gtk_entry_get_placeholder_text(GTK_ENTRY(entry));
        return placeholder && g_str_has_prefix(placeholder, beginning);
    });
}

GtkWidget* name_entry() {
    return entry_with_placeholder("Hilltop SDR");
}

GtkWidget* button_named(const char* name) {
    return first_of(gtk_button_get_type(), [name](GtkWidget* button) {
        return g_strcmp0(gtk_button_get_label(GTK_BUTTON(button)), name) == 0;
    });
}

/// The newest dialog on the screen; null when there is none.
GtkWidget* open_dialog() {
    for (GtkWidget* window : toplevels())
        if (GTK_IS_DIALOG(window) && gtk_widget_get_mapped(window))
            return window;
    return nullptr;
}

void say(const json::object& answer) {
    std::printf("%s\n", json::serialize(answer).c_str());
    std::fflush(stdout);
}

/// The texts of the labels below a widget, those of buttons too.
json::array texts_of(GtkWidget* root) {
    std::vector<GtkWidget*> all;
    collect(root, &all);
    json::array texts;
    for (GtkWidget* widget : all)
        if (GTK_IS_LABEL(widget))
            texts.emplace_back(gtk_label_get_text(GTK_LABEL(widget)));
    return texts;
}

/// Looks for the label, which is shown at once; the button becomes sensitive only when it is no
/// longer busy.
bool says_unsaved(const std::vector<GtkWidget*>& all) {
    return std::any_of(all.begin(), all.end(), [](GtkWidget* widget) {
        return GTK_IS_LABEL(widget) && gtk_widget_get_visible(widget) &&
               g_strcmp0(gtk_label_get_text(GTK_LABEL(widget)), "Unsaved changes") == 0;
    });
}

void report() {
    const std::vector<GtkWidget*> all = all_widgets();
    if (all.empty()) {
        say({{"closed", true}});
        return;
    }
    say({{"texts", texts_of(all.front())},
         {"name", gtk_entry_get_text(GTK_ENTRY(name_entry()))},
         {"unsaved", says_unsaved(all)}});
}

gboolean nothing(gpointer) {
    return G_SOURCE_REMOVE;
}

/// The sources of the main loop. Their numbers only grow, so each one up to the newest is tried.
long live_sources() {
    const guint newest = g_idle_add(nothing, nullptr);
    g_source_remove(newest);
    long count = 0;
    for (guint id = 1; id < newest; ++id)
        if (g_main_context_find_source_by_id(nullptr, id))
            ++count;
    return count;
}

void report_figures() {
    long pages = 0;
    long resident = 0;
    std::ifstream{"/proc/self/statm"} >> pages >> resident;
    const std::filesystem::directory_iterator descriptors{"/proc/self/fd"};
    say({{"resident", resident * sysconf(_SC_PAGESIZE)},
         {"heap", mallinfo2().uordblks},
         {"descriptors", std::distance(begin(descriptors), end(descriptors))},
         {"sources", live_sources()},
         {"widgets", all_widgets().size()}});
}

void turn_to_page(long page) {
    GtkWidget* stack = first_of(gtk_stack_get_type(), [](GtkWidget* w) {
        return gtk_stack_get_child_by_name(GTK_STACK(w), "overview") != nullptr;
    });
    GList* pages = gtk_container_get_children(GTK_CONTAINER(stack));
    const guint place = static_cast<guint>(page) % g_list_length(pages);
    gtk_stack_set_visible_child(GTK_STACK(stack), GTK_WIDGET(g_list_nth_data(pages, place)));
    g_list_free(pages);
}

gboolean answer_dialog(gpointer) {
    GtkWidget* dialog = open_dialog();
    if (!dialog)
        return G_SOURCE_CONTINUE;
    say({{"dialog", texts_of(dialog)}});
    const int response = responses.front();
    responses.pop_front();
    gtk_dialog_response(GTK_DIALOG(dialog), response);
    return G_SOURCE_REMOVE;
}

/// False when there is no listener.
bool select_first_listener() {
    GtkTreeView* view =
        GTK_TREE_VIEW(first_of(gtk_tree_view_get_type(), [](auto*) { return true; }));
    GtkTreeIter first;
    if (!gtk_tree_model_get_iter_first(gtk_tree_view_get_model(view), &first))
        return false;
    gtk_tree_selection_select_iter(gtk_tree_view_get_selection(view), &first);
    return true;
}

void fill_in_registration() {
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button_named("I understand")), TRUE);
    gtk_entry_set_text(GTK_ENTRY(entry_with_placeholder("Your email")), "ann@hilltop.example");
}

/// Presses a button once it is sensitive; it is not while its last action comes to an end.
void press(const std::string& name) {
    while (!gtk_widget_get_sensitive(button_named(name.c_str())))
        gtk_main_iteration();
    gtk_button_clicked(GTK_BUTTON(button_named(name.c_str())));
}

gboolean agree(gpointer done) {
    GtkWidget* dialog = open_dialog();
    if (!dialog)
        return G_SOURCE_CONTINUE;
    *static_cast<bool*>(done) = true;
    gtk_dialog_response(GTK_DIALOG(dialog), GTK_RESPONSE_OK);
    return G_SOURCE_REMOVE;
}

/// The same for a button that asks a question, which is accepted. Returns when the action is over.
void press_and_agree(const std::string& name) {
    bool agreed = false;
    g_idle_add_full(G_PRIORITY_LOW, agree, &agreed, nullptr);
    press(name);
    // The question is asked from the main loop, and what follows it is done in there.
    while (!agreed)
        gtk_main_iteration();
}

long number_in(std::string_view text) {
    long number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// The next word of a line, and the line without it.
std::string_view next_word(std::string_view& line) {
    const std::string_view word = line.substr(0, line.find(' '));
    line.remove_prefix(std::min(word.size() + 1, line.size()));
    return word;
}

void obey(std::string_view line) {
    std::string_view words = line;
    const std::string_view verb = next_word(words);
    const std::string rest{words};
    if (verb == "answer") {
        responses.push_back(static_cast<int>(number_in(rest)));
        g_timeout_add(look_interval_ms, answer_dialog, nullptr);
        return;
    }
    if (verb == "figures") {
        report_figures();
        return;
    }
    if (verb == "listener") {
        say({{"selected", select_first_listener()}});
        return;
    }
    if (verb == "poll")
        program_poll(program_data);
    else if (verb == "edit")
        gtk_entry_set_text(GTK_ENTRY(name_entry()), rest.c_str());
    else if (verb == "fill")
        fill_in_registration();
    else if (verb == "press")
        press(rest);
    else if (verb == "agree")
        press_and_agree(rest);
    else if (verb == "page")
        turn_to_page(number_in(rest));
    else if (verb == "close")
        gtk_window_close(GTK_WINDOW(all_widgets().front()));
    else
        give_up("unknown command: " + std::string{line});
    report();
}

gboolean read_command(GIOChannel* channel, GIOCondition, gpointer) {
    char* line = nullptr;
    gsize end = 0;
    if (g_io_channel_read_line(channel, &line, nullptr, &end, nullptr) != G_IO_STATUS_NORMAL)
        return G_SOURCE_REMOVE;
    const std::string command{line, end};
    g_free(line);
    obey(command);
    return G_SOURCE_CONTINUE;
}

gboolean report_once(gpointer) {
    report();
    return G_SOURCE_REMOVE;
}

__attribute__((constructor)) void listen_to_commands() {
    // The commands that the program runs are left alone.
    unsetenv("LD_PRELOAD");
    GIOChannel* channel = g_io_channel_unix_new(STDIN_FILENO);
    // After all that the program has to do, drawing included.
    g_io_add_watch_full(channel, G_PRIORITY_LOW, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP),
                        read_command, nullptr, nullptr);
    g_io_channel_unref(channel);
}

} // namespace

/// Takes the place of GLib's function, for the program and for its libraries.
extern "C" guint g_timeout_add_seconds(guint seconds, GSourceFunc function, gpointer data) {
    // The program's own timer is known by its interval.
    if (seconds != poll_interval_s)
        return g_timeout_add_seconds_full(G_PRIORITY_DEFAULT, seconds, function, data, nullptr);
    program_poll = function;
    program_data = data;
    return g_idle_add_full(G_PRIORITY_LOW, report_once, nullptr, nullptr);
}

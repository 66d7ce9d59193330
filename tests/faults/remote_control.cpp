// SPDX-License-Identifier: MIT
// Makes the real program do what the test of the faults says, one request at a time.
//
// Preloaded into the program. Reads commands from the standard input, one a line, and answers each
// on the standard output: a line of JSON with what the window shows afterwards. The poll runs when
// told to and at no other time, so every request that the service sees is one that was asked for.
//     poll, save, find, register, end, block, close      as the user or the timer would
//     edit TEXT       types the station's name
//     answer NUMBER   gives the next dialog this response; its texts are the answer
#include "app/state_poll.h"
#include "support/real_window.h"

#include <boost/json.hpp>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <string_view>

namespace json = boost::json;
using namespace real_window;

namespace {

/// How often a look is taken for a dialog, in milliseconds.
constexpr guint look_interval_ms = 5;

GSourceFunc program_poll = nullptr;
gpointer program_data = nullptr;
std::deque<int> responses;

void say(const json::object& answer) {
    std::printf("%s\n", json::serialize(answer).c_str());
    std::fflush(stdout);
}

json::array texts_of(GtkWidget* root) {
    json::array texts;
    for (const std::string& text : texts_in(root))
        texts.emplace_back(text);
    return texts;
}

/// What the user sees at once; the button follows when it is no longer busy.
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
         {"unsaved", says_unsaved(all)},
         {"descriptors", open_descriptors()}});
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

long number_in(std::string_view text) {
    long number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

void press(const char* name) {
    wait_for_button(name);
    click(name);
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
    if (verb == "poll")
        program_poll(program_data);
    else if (verb == "save")
        press("Save changes");
    else if (verb == "find")
        press("Find devices");
    else if (verb == "register") {
        fill_in_registration();
        press("Register this station");
    } else if (verb == "end") {
        select_first_listener();
        press("End session");
    } else if (verb == "block") {
        select_first_listener();
        wait_for_button("Block address…");
        click_and_agree("Block address…");
    } else if (verb == "close")
        gtk_window_close(GTK_WINDOW(all_widgets().front()));
    else if (verb == "edit")
        gtk_entry_set_text(GTK_ENTRY(name_entry()), rest.c_str());
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
    g_io_add_watch(channel, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), read_command, nullptr);
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

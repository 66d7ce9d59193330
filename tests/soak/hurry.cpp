// SPDX-License-Identifier: MIT
// Makes the real program live through thousands of polls in a minute, and counts what it holds.
//
// Preloaded into the program (scripts/soak does it): a timer of whole seconds then fires as soon as
// the program has nothing else to do, and between the polls a user turns pages, edits, saves, looks
// for receivers and ends sessions. Every so many polls the service is asked for the same quiet
// document, by a file that it looks for, and a line with the figures goes to the standard output.
#include "app/state_poll.h"
#include "support/real_window.h"

#include <malloc.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

using namespace real_window;

namespace {

/// Polls from one line of figures to the next. The last three before it see the quiet document.
constexpr long polls_in_a_round = 100;
constexpr long quiet_polls = 3;

GSourceFunc program_poll = nullptr;
gpointer program_data = nullptr;
long polls = 0;
long wanted_polls = 0;
const char* quiet_file = nullptr;

void turn_to_page(guint page) {
    GtkWidget* stack = first_of(gtk_stack_get_type(), [](GtkWidget* w) {
        return gtk_stack_get_child_by_name(GTK_STACK(w), "overview") != nullptr;
    });
    GList* pages = gtk_container_get_children(GTK_CONTAINER(stack));
    const guint place = page % g_list_length(pages);
    gtk_stack_set_visible_child(GTK_STACK(stack), GTK_WIDGET(g_list_nth_data(pages, place)));
    g_list_free(pages);
}

void edit() {
    const std::string text = "Hilltop " + std::to_string(polls % 10);
    gtk_entry_set_text(GTK_ENTRY(name_entry()), text.c_str());
    GtkWidget* spin = first_of(gtk_spin_button_get_type(), [](GtkWidget*) { return true; });
    gtk_spin_button_spin(GTK_SPIN_BUTTON(spin),
                         polls % 2 ? GTK_SPIN_STEP_FORWARD : GTK_SPIN_STEP_BACKWARD, 1);
}

/// Answers the question about edits that a failed save has left: only if it comes.
gboolean discard(gpointer) {
    GtkWidget* dialog = open_dialog();
    GtkWidget* button = dialog ? button_in(dialog, "Discard") : nullptr;
    if (!button)
        return G_SOURCE_CONTINUE;
    gtk_button_clicked(GTK_BUTTON(button));
    return G_SOURCE_REMOVE;
}

/// The first page, and what the service has: the cards of receivers that were only found are gone.
void come_to_rest() {
    turn_to_page(0);
    edit();
    wait_for_button("Save changes");
    click("Save changes");
}

void act() {
    const long turn = polls % polls_in_a_round;
    if (turn >= polls_in_a_round - quiet_polls) {
        // The first quiet poll may still have missed a service that had gone away.
        if (turn == polls_in_a_round - 2)
            come_to_rest();
        return;
    }
    if (turn % 7 == 0)
        turn_to_page(static_cast<guint>(polls / 7));
    if (turn % 20 == 5)
        edit();
    if (turn % 20 == 15)
        click("Save changes");
    if (turn % 25 == 12)
        click("Find devices");
    if (turn % 30 == 10 && select_first_listener())
        click("End session");
    if ((turn == 24 || turn == 74) && select_first_listener())
        click_and_agree("Block address…");
    if (turn % 30 == 4) {
        fill_in_registration();
        click("Register this station");
    }
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
    long pages = 0;
    long resident = 0;
    std::ifstream{"/proc/self/statm"} >> pages >> resident;
    std::printf("polls %ld resident %ld heap %zu descriptors %ld sources %ld widgets %zu\n", polls,
                resident * sysconf(_SC_PAGESIZE), mallinfo2().uordblks, open_descriptors(),
                live_sources(), all_widgets().size());
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

} // namespace

/// Takes the place of the system's function. A service that had gone away is there again once
/// somebody has missed it.
extern "C" int connect(int descriptor, const sockaddr* address, socklen_t size) {
    const long result = syscall(SYS_connect, descriptor, address, size);
    if (result != 0 && errno == ENOENT && address->sa_family == AF_UNIX) {
        const std::string path = reinterpret_cast<const sockaddr_un*>(address)->sun_path;
        std::rename((path + ".away").c_str(), path.c_str());
        errno = ENOENT;
    }
    return static_cast<int>(result);
}

/// Takes the place of GLib's function, for the program and for its libraries.
extern "C" guint g_timeout_add_seconds(guint seconds, GSourceFunc function, gpointer data) {
    if (seconds != poll_interval_s) {
        // A timer of the toolkit: the program's own is known by its interval.
        return g_timeout_add_seconds_full(G_PRIORITY_DEFAULT, seconds, function, data, nullptr);
    }
    program_poll = function;
    program_data = data;
    wanted_polls = std::atol(required_variable("TARNWAVE_SOAK_POLLS"));
    quiet_file = required_variable("TARNWAVE_SOAK_QUIET_FILE");
    return g_idle_add_full(G_PRIORITY_LOW, poll_and_count, nullptr, nullptr);
}

/* SPDX-License-Identifier: MIT
 * The floor: the least that a window like the program's can cost with this toolkit. As many widgets
 * on five pages, the same style rules, a table of the listeners, and a poll in plain C that writes
 * only the cells that changed. It understands no other documents than those of scripts/bench.
 *
 * Usage: bench_floor WIDGETS STYLE-FILE SOCKET */
#include "plain_exchange.h"

#include <gtk/gtk.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define POLL_INTERVAL_S 3
#define PAGES 5

enum { NUMBER, ADDRESS, TUNED_TO, TIME, COLUMNS };

static const char* socket_path;
static GtkWidget* header;
static GtkWidget* title;
static GtkListStore* store;
static int widgets;

static GtkWidget* counted(GtkWidget* widget) {
    ++widgets;
    return widget;
}

static GtkWidget* add(GtkWidget* box, GtkWidget* widget) {
    gtk_box_pack_start(GTK_BOX(box), counted(widget), FALSE, FALSE, 4);
    return widget;
}

static GtkWidget* listeners_table(void) {
    store = gtk_list_store_new(COLUMNS, G_TYPE_INT, G_TYPE_STRING, G_TYPE_STRING, G_TYPE_STRING);
    GtkWidget* table = counted(gtk_tree_view_new_with_model(GTK_TREE_MODEL(store)));
    for (int column = 0; column < COLUMNS; ++column) {
        GtkTreeViewColumn* view_column = gtk_tree_view_column_new_with_attributes(
            "Column", gtk_cell_renderer_text_new(), "text", column, NULL);
        gtk_tree_view_column_set_sizing(view_column, GTK_TREE_VIEW_COLUMN_FIXED);
        gtk_tree_view_column_set_fixed_width(view_column, 150);
        gtk_tree_view_append_column(GTK_TREE_VIEW(table), view_column);
    }
    gtk_tree_view_set_fixed_height_mode(GTK_TREE_VIEW(table), TRUE);
    GtkWidget* scroll = gtk_scrolled_window_new(NULL, NULL);
    gtk_widget_set_size_request(scroll, -1, 200);
    gtk_container_add(GTK_CONTAINER(scroll), table);
    return scroll;
}

/* A card with a text, a hint and something to edit, as the form has them. */
static void add_card(GtkWidget* page, int number) {
    GtkWidget* card = add(page, gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8));
    gtk_style_context_add_class(gtk_widget_get_style_context(card), "card");
    GtkWidget* column = add(card, gtk_box_new(GTK_ORIENTATION_VERTICAL, 2));
    add(column, gtk_label_new("What the setting is called"));
    add(column, gtk_label_new("A sentence that says what it is good for."));
    add(card, number % 2 ? gtk_entry_new() : gtk_switch_new());
}

static void build_window(int wanted_widgets) {
    GtkWidget* window = counted(gtk_window_new(GTK_WINDOW_TOPLEVEL));
    gtk_window_set_default_size(GTK_WINDOW(window), 1000, 700);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), NULL);
    GtkWidget* columns = counted(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0));
    gtk_container_add(GTK_CONTAINER(window), columns);
    GtkWidget* stack = gtk_stack_new();
    GtkWidget* sidebar = add(columns, gtk_stack_sidebar_new());
    gtk_stack_sidebar_set_stack(GTK_STACK_SIDEBAR(sidebar), GTK_STACK(stack));
    gtk_box_pack_start(GTK_BOX(columns), counted(stack), TRUE, TRUE, 0);
    for (int page = 0; page < PAGES; ++page) {
        char name[] = "Page 0";
        name[5] = (char)('1' + page);
        GtkWidget* scroll = counted(gtk_scrolled_window_new(NULL, NULL));
        GtkWidget* box = counted(gtk_box_new(GTK_ORIENTATION_VERTICAL, 8));
        gtk_container_add(GTK_CONTAINER(scroll), box);
        gtk_stack_add_titled(GTK_STACK(stack), scroll, name, name);
        if (page == 0) {
            header = add(box, gtk_label_new(""));
            title = add(box, gtk_label_new(""));
            add(box, listeners_table());
        }
        for (int card = 0; widgets < wanted_widgets * (page + 1) / PAGES; ++card)
            add_card(box, card);
    }
    gtk_widget_show_all(window);
}

static void write_label(GtkWidget* label, const char* text) {
    if (strcmp(gtk_label_get_text(GTK_LABEL(label)), text) != 0)
        gtk_label_set_text(GTK_LABEL(label), text);
}

/* The number after the next "key" behind *place, which is moved there; -1 when there is none before
 * `end`. */
static long number_after(const char** place, const char* end, const char* key) {
    const char* found = strstr(*place, key);
    if (!found || (end && found > end))
        return -1;
    *place = found + strlen(key);
    return strtol(*place, NULL, 10);
}

static gboolean poll_service(gpointer data) {
    (void)data;
    char* reply = plain_exchange(socket_path);
    if (!reply)
        exit(EXIT_FAILURE);
    const char* place = strstr(reply, "\"listeners\":[");
    GtkTreeIter row;
    gboolean there = gtk_tree_model_get_iter_first(GTK_TREE_MODEL(store), &row);
    int count = 0;
    for (long number; place && (number = number_after(&place, NULL, "\"number\":")) >= 0; ++count) {
        const char* address = strstr(place, "\"address\":\"") + 11;
        const int length = (int)strcspn(address, "\"");
        const long seconds = number_after(&place, NULL, "\"seconds\":");
        const long frequency = number_after(&place, strstr(place, "}"), "\"f\":");
        char time[32], tuned_to[32];
        snprintf(time, sizeof time, "%ld:%02ld", seconds / 60, seconds % 60);
        snprintf(tuned_to, sizeof tuned_to, "%ld.%03ld MHz", frequency / 1000000,
                 frequency / 1000 % 1000);
        if (there) {
            char* shown = NULL;
            gtk_tree_model_get(GTK_TREE_MODEL(store), &row, TIME, &shown, -1);
            if (g_strcmp0(shown, time) != 0)
                gtk_list_store_set(store, &row, TIME, time, -1);
            g_free(shown);
            there = gtk_tree_model_iter_next(GTK_TREE_MODEL(store), &row);
        } else {
            char* text = g_strndup(address, (gsize)length);
            gtk_list_store_insert_with_values(store, NULL, -1, NUMBER, (int)number, ADDRESS, text,
                                              TUNED_TO, tuned_to, TIME, time, -1);
            g_free(text);
        }
    }
    char text[64];
    snprintf(text, sizeof text, "On the air with %d listeners", count);
    write_label(header, text);
    write_label(title, text);
    free(reply);
    return G_SOURCE_CONTINUE;
}

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    if (argc != 4)
        return EXIT_FAILURE;
    socket_path = argv[3];
    GtkCssProvider* style = gtk_css_provider_new();
    gtk_css_provider_load_from_path(style, argv[2], NULL);
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(style),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    build_window(atoi(argv[1]));
    poll_service(NULL);
    g_timeout_add_seconds(POLL_INTERVAL_S, poll_service, NULL);
    gtk_main();
    return EXIT_SUCCESS;
}

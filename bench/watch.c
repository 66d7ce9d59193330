/* SPDX-License-Identifier: MIT
 * Preloaded into the program or into its floor, neither of which is changed for it: notes when the
 * first frame and the station's state are drawn, calls the timeout of the polls again as soon as
 * nothing has been drawn for a while, and ends the process with a report, one JSON object.
 *
 *     BENCH_REPORT   file for the report
 *     BENCH_STARTED  when the process was started: CLOCK_MONOTONIC, in nanoseconds
 *     BENCH_TEXT     beginning of the label that shows the state; when not set, the first frame
 *                    counts as showing it
 *     BENCH_POLLS    how many polls are measured; 0: the report is made when the state is shown
 *     BENCH_STYLE    file to which the style rules of the program are written */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <gtk/gtk.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

/* The program's timeout with this interval is the one of the polls. */
#define POLL_INTERVAL_S 3
#define WARM_UP_POLLS 3
/* The next poll begins when nothing has been drawn for so long. */
#define REST_MS 25

#define REAL(function) ((__typeof__(&function))dlsym(RTLD_NEXT, #function))

static GtkWidget* window;
static gboolean drawn;
static double first_frame_ms, state_ms;
static double last_activity_ms;

static GSourceFunc program_poll;
static gpointer program_data;
static int polls_wanted, polls_begun, frames, all_frames;
static double poll_cpu_ms, busy_since_ms, stall_ms;
static double *costs_ms, *stalls_ms;

static double now_ms(clockid_t clock) {
    struct timespec now;
    clock_gettime(clock, &now);
    return (double)now.tv_sec * 1e3 + (double)now.tv_nsec / 1e6;
}

static void count_widget(GtkWidget* widget, gpointer count) {
    ++*(int*)count;
    if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(GTK_CONTAINER(widget), count_widget, count);
}

static long private_dirty_kb(void) {
    char line[256];
    long kb = 0;
    FILE* file = fopen("/proc/self/smaps_rollup", "r");
    while (file && fgets(line, sizeof line, file))
        if (sscanf(line, "Private_Dirty: %ld", &kb) == 1)
            break;
    if (file)
        fclose(file);
    return kb;
}

static void write_list(FILE* file, const char* name, const double* values) {
    fprintf(file, ", \"%s\": [", name);
    for (int i = 0; i < polls_wanted; ++i)
        fprintf(file, "%s%.4f", i ? ", " : "", values[i]);
    fputc(']', file);
}

static void report_and_end(void) {
    int count = 0;
    count_widget(window, &count);
    FILE* file = fopen(getenv("BENCH_REPORT"), "w");
    fprintf(file,
            "{\"first_frame_ms\": %.3f, \"state_ms\": %.3f, \"widgets\": %d, "
            "\"private_dirty_kb\": %ld, \"frames\": %d",
            first_frame_ms, state_ms, count, private_dirty_kb(), all_frames);
    write_list(file, "polls_ms", costs_ms);
    write_list(file, "stalls_ms", stalls_ms);
    fputs("}\n", file);
    fclose(file);
    _exit(0);
}

static void look_for_text(GtkWidget* widget, gpointer found) {
    if (GTK_IS_LABEL(widget) && gtk_widget_get_mapped(widget) &&
        g_str_has_prefix(gtk_label_get_text(GTK_LABEL(widget)), getenv("BENCH_TEXT")))
        *(gboolean*)found = TRUE;
    else if (GTK_IS_CONTAINER(widget))
        gtk_container_forall(GTK_CONTAINER(widget), look_for_text, found);
}

static gboolean state_is_shown(void) {
    gboolean found = !getenv("BENCH_TEXT");
    if (!found)
        look_for_text(window, &found);
    return found;
}

static gboolean on_draw(GtkWidget* widget, cairo_t* cairo, gpointer data) {
    (void)widget, (void)cairo, (void)data;
    drawn = TRUE;
    return FALSE;
}

static void on_frame_painted(GdkFrameClock* clock, gpointer data) {
    (void)clock, (void)data;
    /* The frame clock also ticks when there is nothing to draw. */
    if (!drawn)
        return;
    drawn = FALSE;
    ++frames;
    last_activity_ms = now_ms(CLOCK_MONOTONIC);
    const double since_start_ms =
        last_activity_ms - g_ascii_strtod(getenv("BENCH_STARTED"), NULL) / 1e6;
    if (first_frame_ms == 0)
        first_frame_ms = since_start_ms;
    if (state_ms == 0 && state_is_shown()) {
        state_ms = since_start_ms;
        if (polls_wanted == 0)
            report_and_end();
    }
}

/* The longest time between two waits of the main loop. */
static gint wait_for_events(GPollFD* descriptors, guint count, gint timeout) {
    if (busy_since_ms > 0)
        stall_ms = MAX(stall_ms, now_ms(CLOCK_MONOTONIC) - busy_since_ms);
    const gint result = g_poll(descriptors, count, timeout);
    busy_since_ms = now_ms(CLOCK_MONOTONIC);
    return result;
}

static gboolean on_map(GSignalInvocationHint* hint, guint count, const GValue* values,
                       gpointer data) {
    (void)hint, (void)count, (void)data;
    GtkWidget* widget = g_value_get_object(&values[0]);
    if (window || !GTK_IS_WINDOW(widget))
        return TRUE;
    window = widget;
    g_signal_connect(window, "draw", G_CALLBACK(on_draw), NULL);
    g_signal_connect(gtk_widget_get_frame_clock(window), "after-paint",
                     G_CALLBACK(on_frame_painted), NULL);
    g_main_context_set_poll_func(NULL, wait_for_events);
    return FALSE;
}

static gboolean poll_when_at_rest(gpointer data) {
    (void)data;
    if (state_ms == 0 || now_ms(CLOCK_MONOTONIC) - last_activity_ms < REST_MS)
        return G_SOURCE_CONTINUE;
    const int ended = polls_begun - 1 - WARM_UP_POLLS;
    if (ended >= 0) {
        costs_ms[ended] = now_ms(CLOCK_PROCESS_CPUTIME_ID) - poll_cpu_ms;
        stalls_ms[ended] = stall_ms;
        all_frames += frames;
    }
    if (ended + 1 == polls_wanted)
        report_and_end();
    ++polls_begun;
    frames = 0;
    stall_ms = 0;
    poll_cpu_ms = now_ms(CLOCK_PROCESS_CPUTIME_ID);
    program_poll(program_data);
    last_activity_ms = now_ms(CLOCK_MONOTONIC);
    return G_SOURCE_CONTINUE;
}

/* ---- Functions that the program calls in place of GTK's and GLib's. ---- */

void gtk_init(int* argc, char*** argv) {
    REAL(gtk_init)(argc, argv);
    const char* polls = getenv("BENCH_POLLS");
    polls_wanted = polls ? atoi(polls) : 0;
    costs_ms = g_new0(double, polls_wanted + 1);
    stalls_ms = g_new0(double, polls_wanted + 1);
    gpointer type = g_type_class_ref(GTK_TYPE_WIDGET);
    g_signal_add_emission_hook(g_signal_lookup("map", GTK_TYPE_WIDGET), 0, on_map, NULL, NULL);
    g_type_class_unref(type);
}

guint g_timeout_add_seconds(guint interval, GSourceFunc function, gpointer data) {
    if (interval != POLL_INTERVAL_S || polls_wanted == 0)
        return REAL(g_timeout_add_seconds)(interval, function, data);
    program_poll = function;
    program_data = data;
    return g_timeout_add(REST_MS, poll_when_at_rest, NULL);
}

gboolean gtk_css_provider_load_from_data(GtkCssProvider* provider, const gchar* rules,
                                         gssize length, GError** error) {
    const char* path = getenv("BENCH_STYLE");
    FILE* file = path ? fopen(path, "a") : NULL;
    if (file) {
        fwrite(rules, 1, length < 0 ? strlen(rules) : (size_t)length, file);
        fclose(file);
    }
    return REAL(gtk_css_provider_load_from_data)(provider, rules, length, error);
}

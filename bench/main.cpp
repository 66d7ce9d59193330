// SPDX-License-Identifier: MIT
// Entry point of the benchmarks. The window is built once, as start-up builds it, and stays on the
// display: run under scripts/under-xvfb.
#include "ui/widgets/pending_events.h"
#include "ui/window.h"

#include <benchmark/benchmark.h>
#include <gtk/gtk.h>

#include <clocale>
#include <csignal>
#include <cstdlib>

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    // Neither the accessibility bus nor the system's own commands belong to what is measured.
    setenv("NO_AT_BRIDGE", "1", 1);
    setenv("PATH", "/nonexistent", 1);
    std::signal(SIGCHLD, SIG_DFL);
    gtk_init(&argc, &argv);
    std::setlocale(LC_NUMERIC, "C");
    build_window();
    wait_until_window_is_drawn();
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}

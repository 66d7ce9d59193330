// SPDX-License-Identifier: MIT
#include "ui/widgets/signals.h"

#include "ui/widgets/widget_record.h"

#include <memory>

namespace {

using Action = std::function<void()>;

/// Connected "swapped", so that the action comes first. The other arguments are not read.
void on_signal(gpointer action) {
    (*static_cast<Action*>(action))();
}

gboolean on_idle(gpointer data) {
    const std::unique_ptr<Action> action{static_cast<Action*>(data)};
    if (widgets.window)
        (*action)();
    return G_SOURCE_REMOVE;
}

} // namespace

void call_at_signal(gpointer instance, const char* signal, Action action) {
    g_signal_connect_data(
        instance, signal, G_CALLBACK(on_signal), new Action{std::move(action)},
        [](gpointer kept, GClosure*) { delete static_cast<Action*>(kept); }, G_CONNECT_SWAPPED);
}

void call_when_idle(gint priority, Action action) {
    g_idle_add_full(priority, on_idle, new Action{std::move(action)}, nullptr);
}

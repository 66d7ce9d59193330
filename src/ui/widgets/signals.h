// SPDX-License-Identifier: MIT
// Running functions without arguments at signals and from idle.
#pragma once

#include <glib-object.h>

#include <functional>

/// Calls `action` at each emission of a signal whose handlers return nothing.
void call_at_signal(gpointer instance, const char* signal, std::function<void()> action);

/// Calls `action` once from idle, unless the window was destroyed by then.
void call_when_idle(gint priority, std::function<void()> action);

// SPDX-License-Identifier: MIT
// Connecting functions that take no arguments to signals, and running them from idle.
#pragma once

#include <glib-object.h>

#include <functional>

/// Calls `action` at each emission of a signal without arguments, such as "clicked", or of a
/// "notify" for one property.
void call_at_signal(gpointer instance, const char* signal, std::function<void()> action);

/// Calls `action` once from idle, unless the window was destroyed by then.
void call_when_idle(gint priority, std::function<void()> action);

// SPDX-License-Identifier: MIT
// The window's keys, and the overlay that lists them.
#pragma once

/// Connects the keys to the window's actions. The window must be built.
void add_shortcuts();

/// Shows the overlay with every key.
void show_shortcuts();

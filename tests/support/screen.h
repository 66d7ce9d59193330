// SPDX-License-Identifier: MIT
// What the display server itself shows, asked through a connection of its own.
#pragma once

#include <gtk/gtk.h>

/// The display server's number of a window that is realised.
unsigned long screen_id_of(GtkWidget* window);

/// Whether a window is mapped and all around it too. False for one that is gone. May be called on
/// any thread.
bool is_on_screen(unsigned long id);

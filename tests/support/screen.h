// SPDX-License-Identifier: MIT
// What the X server itself shows, asked through a connection of its own. A Wayland compositor tells
// a program nothing of what it shows.
#pragma once

#include <gtk/gtk.h>

/// The X server's number of a window that is realised.
unsigned long screen_id_of(GtkWidget* window);

/// Whether a window is mapped and all around it too. False for one that is gone. May be called on
/// any thread.
bool is_on_screen(unsigned long id);

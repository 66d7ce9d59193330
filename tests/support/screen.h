// SPDX-License-Identifier: MIT
// What the display server itself shows, asked through a connection of its own.
#pragma once

#include <gtk/gtk.h>

/// Whether the display server answers such questions. A Wayland compositor tells a program nothing
/// of what it shows.
bool screen_can_be_asked();

/// The display server's number of a window that is realised.
unsigned long screen_id_of(GtkWidget* window);

/// Whether a window is mapped and all around it too. False for one that is gone. May be called on
/// any thread.
bool is_on_screen(unsigned long id);

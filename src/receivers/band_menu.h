// SPDX-License-Identifier: MIT
// The menu beside a receiver's frequencies that sets them to a band.
#pragma once

#include <gtk/gtk.h>

#include <cstddef>

/// A combo box of the bands. It writes the chosen band into the spin buttons of the receiver at
/// `index` of the list, also when the band that it shows is chosen again.
GtkWidget* make_band_menu(std::size_t index);

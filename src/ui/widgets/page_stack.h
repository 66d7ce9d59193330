// SPDX-License-Identifier: MIT
// The stack of pages and the list beside it: adding a page, showing one, turning pages.
#pragma once

#include <gtk/gtk.h>

/// Makes the stack, still without pages, and writes it into the widget record.
GtkWidget* make_page_stack();

/// Makes the list of the pages that the stack holds, and writes its list box into the record.
GtkWidget* make_page_list();

/// Adds a scrolling page. Texts are plain; `subtitle` may be null. Returns its box for cards.
GtkWidget* add_page(const char* name, const char* title, const char* subtitle);

/// Shows a page by its name, or by its index in the stack. An unknown one changes nothing.
void show_page(const char* name);
void show_page_at(std::size_t index);

/// Shows the page `distance` places after the current one, if there is one.
void turn_pages(int distance);

/// Makes the stack homogeneous in an idle callback. It is not homogeneous at first, because GTK
/// would then measure all pages before the first frame.
void make_stack_homogeneous_when_idle();

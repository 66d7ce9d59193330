// SPDX-License-Identifier: MIT
// Functions to operate the window of the real program, for libraries that are preloaded into it.
//
// Widgets are found by their texts and placeholders, as a user finds them. When a widget is not
// there, the program ends.
#pragma once

#include <gtk/gtk.h>

#include <string>
#include <vector>

namespace real_window {

/// The program's window and everything in it; the toolkit's tooltips are windows of their own.
std::vector<GtkWidget*> all_widgets();

/// A button of the window by its text.
GtkWidget* button_named(const char* name);
/// The same below a widget; null when there is none.
GtkWidget* button_in(GtkWidget* root, const char* name);
/// Waits until a button is sensitive; it is not while its last action comes to an end.
void wait_for_button(const char* name);
/// Presses a button if it is sensitive.
void click(const char* name);

/// The entry of the station's name.
GtkWidget* name_entry();

/// The newest dialog on the screen; null when there is none.
GtkWidget* open_dialog();
/// The texts of the labels below a widget, those of buttons too.
std::vector<std::string> texts_in(GtkWidget* root);

/// Presses a button that asks a question, if it is sensitive, and accepts. Returns when the action
/// is over.
void click_and_agree(const char* name);

/// False when there is no listener.
bool select_first_listener();

/// Ticks the box and types an address; then "Register this station" can be pressed.
void fill_in_registration();

/// The first widget of a type that a condition accepts.
template <class Condition> GtkWidget* first_of(GType type, Condition accepts);

[[noreturn]] void give_up(const std::string& what);

/// A variable of the environment that has to be there.
const char* required_variable(const char* name);

/// The descriptors that the program has open.
long open_descriptors();

} // namespace real_window

template <class Condition> GtkWidget* real_window::first_of(GType type, Condition accepts) {
    for (GtkWidget* widget : all_widgets())
        if (G_TYPE_CHECK_INSTANCE_TYPE(widget, type) && accepts(widget))
            return widget;
    give_up(std::string{"there is no "}.append(g_type_name(type)));
}

// SPDX-License-Identifier: MIT
// The window's widgets, which GTK's widget tree owns, and flags, for all of the program.
#pragma once

#include "receivers/receiver_list.h"

#include <gtk/gtk.h>

#include <array>
#include <string>
#include <vector>

/// A setting and the widget that edits it: a switch, a spin button or an entry.
struct FieldBinding {
    std::string key{}; ///< dotted path into the settings object
    GtkWidget* widget = nullptr;
};

/// The modes that listeners may choose, in button order and as the settings spell them.
inline constexpr std::array<const char*, 5> mode_names = {"USB", "LSB", "CW", "AM", "FM"};

struct WidgetRecord {
    GtkWidget* window = nullptr;
    GtkWidget* stack = nullptr;
    std::vector<GtkWidget*> pages{}; ///< the stack's children
    GtkWidget* page_list = nullptr;  ///< list box, one row per page

    // Header
    GtkWidget* header_title = nullptr;  ///< the station's name
    GtkWidget* header_dot = nullptr;    ///< its class shows the station's health
    GtkWidget* header_status = nullptr; ///< the header line, beside the dot
    GtkWidget* save_button = nullptr;   ///< sensitive while the form is dirty
    GtkWidget* unsaved_label = nullptr; ///< "Unsaved changes": visible while the form is dirty

    GtkWidget* footer_status = nullptr; ///< the reports of saving and of the actions

    // Overview
    GtkWidget* getting_started_card = nullptr;
    GtkWidget* getting_started_box = nullptr; ///< one row per checklist item
    GtkWidget* station_link_row = nullptr;
    GtkWidget* station_link = nullptr; ///< link button
    GtkWidget* on_air_box = nullptr;   ///< one row per receiver on the air or failed
    GtkWidget* listeners_title = nullptr;
    GtkWidget* listeners_view = nullptr;
    GtkListStore* listeners_store = nullptr; ///< number, address, tuned to, time
    GtkWidget* listeners_scroll = nullptr;
    GtkWidget* listeners_empty = nullptr;
    GtkWidget* end_session_button = nullptr;
    GtkWidget* block_button = nullptr;

    // Station
    GtkWidget* grid_entry = nullptr;
    GtkWidget* grid_hint = nullptr;
    GtkWidget* description_view = nullptr;

    // Receivers
    GtkWidget* receiver_rows_box = nullptr; ///< one card per receiver
    GtkWidget* find_devices_button = nullptr;
    GtkWidget* receivers_status = nullptr; ///< beside "Find devices"

    // Listeners
    GtkWidget* max_listeners_spin = nullptr;
    GtkWidget* upload_estimate = nullptr;
    std::array<GtkWidget*, mode_names.size()> mode_buttons{}; ///< in the order of `mode_names`
    GtkWidget* banned_view = nullptr;

    // Internet
    GtkWidget* relay_switch = nullptr;
    GtkWidget* relay_key_row = nullptr;
    GtkWidget* relay_note = nullptr;
    GtkWidget* reachability_label = nullptr; ///< the port instructions, as markup
    GtkWidget* port_status_label = nullptr;  ///< the reach line
    GtkWidget* port_box = nullptr;
    GtkWidget* port_hint_label = nullptr; ///< the certificate line, above the public port
    GtkWidget* listing_status_label = nullptr;
    GtkWidget* register_box = nullptr;
    GtkWidget* understand_check = nullptr;
    GtkWidget* register_email = nullptr;
    GtkWidget* register_button = nullptr;
    GtkWidget* registered_label = nullptr;
    GtkWidget* linger_switch = nullptr;

    bool loading = false;      ///< `load_form` writes into the form, which is no edit
    bool dirty = false;        ///< something was edited since the last load
    bool linger_guard = false; ///< `show_linger` is setting the switch

    /// The bound fields, in the order in which they are made, loaded and saved.
    std::vector<FieldBinding> field_registry{};
    /// The receivers shown. `rebuild_receiver_rows` sets their widgets.
    std::vector<Receiver> receiver_list{};
};

inline WidgetRecord widgets;

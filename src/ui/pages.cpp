// SPDX-License-Identifier: MIT
#include "ui/pages.h"

#include "link/build_constants.h"
#include "link/text.h"
#include "receivers/find_devices.h"
#include "receivers/linger.h"
#include "status/listener_actions.h"
#include "status/listeners_table.h"
#include "status/registration.h"
#include "ui/form.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/change_tracking.h"
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/page_stack.h"
#include "ui/widgets/setters.h"
#include "ui/widgets/signals.h"
#include "ui/widgets/spin_buttons.h"

namespace {

void copy_station_link() {
    gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD),
                           gtk_link_button_get_uri(GTK_LINK_BUTTON(widgets.station_link)), -1);
    show_footer({"Station link copied.", StatusClass::good});
}

void build_link_row(GtkWidget* card) {
    widgets.station_link_row = make_box(GTK_ORIENTATION_HORIZONTAL, 8, "row");
    pack(widgets.station_link_row, make_label("Station page", nullptr));
    widgets.station_link = gtk_link_button_new("about:blank");
    add_style_class(widgets.station_link, "link");
    pack(widgets.station_link_row, widgets.station_link);
    pack_end(widgets.station_link_row, make_button("Copy link", copy_station_link));
    pack(card, widgets.station_link_row);
}

void build_listeners_card(GtkWidget* page) {
    GtkWidget* card = add_card(page, nullptr);
    widgets.listeners_title = make_label("Listening now", "card-title");
    set_vertical_margins(widgets.listeners_title, 12, 8);
    pack(card, widgets.listeners_title);
    pack(card, make_listeners_table());
    name_by_label(widgets.listeners_view, widgets.listeners_title);
    name_by_label(widgets.listeners_scroll, widgets.listeners_title);
    widgets.listeners_empty = make_label("Nobody is listening right now.", "muted");
    set_vertical_margins(widgets.listeners_empty, 6, 6);
    pack(card, widgets.listeners_empty);

    GtkWidget* buttons = make_box(GTK_ORIENTATION_HORIZONTAL, 8);
    set_vertical_margins(buttons, 10, 12);
    widgets.end_session_button = make_button("End session", end_listener_session);
    // A click through the accessibility bus blocks the bus until its handler has returned: a screen
    // reader that clicks could not read a dialog that the handler runs. An idle callback of high
    // priority runs before the next event.
    widgets.block_button = make_button(
        "Block address…", [] { call_when_idle(G_PRIORITY_HIGH, block_listener_address); });
    pack(buttons, widgets.end_session_button);
    pack(buttons, widgets.block_button);
    GtkWidget* hint =
        make_label("Select a listener to end their session or block them.", "small", false);
    ellipsise(hint);
    pack_end(buttons, hint);
    pack(card, buttons);
    update_listener_buttons();
}

void build_overview_page() {
    GtkWidget* page = add_page("overview", "Overview", nullptr);
    widgets.getting_started_card = add_card(page, "Getting started");
    widgets.getting_started_box = make_box(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_margin_bottom(widgets.getting_started_box, 6);
    pack(widgets.getting_started_card, widgets.getting_started_box);

    GtkWidget* on_air = add_card(page, "On the air");
    build_link_row(on_air);
    widgets.on_air_box = make_box(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_margin_bottom(widgets.on_air_box, 6);
    pack(on_air, widgets.on_air_box);

    build_listeners_card(page);
}

void build_station_page() {
    GtkWidget* page = add_page("station", "Station",
                               "How your station appears on its page and on the station list.");
    GtkWidget* about = add_card(page, "About the station");
    add_row(about, "Station name", nullptr, bind_entry("station.name", "Hilltop SDR"));
    add_row(about, "Callsign", "Leave empty if you do not have one.",
            bind_entry("station.callsign", "K1ABC"));
    add_row(about, "Operator", nullptr, bind_entry("station.operator", "Your name"));
    add_row(about, "Location", "Town, region and country. Shown on the list.",
            bind_entry("station.location", "Asheville, North Carolina, USA"));
    widgets.grid_entry = bind_entry("station.grid", "EM95");
    gtk_entry_set_max_length(GTK_ENTRY(widgets.grid_entry), 6);
    widgets.grid_hint = add_note(add_row(about, "Grid square", nullptr, widgets.grid_entry), "");
    describe_by_label(widgets.grid_entry, widgets.grid_hint);
    call_at_signal(widgets.grid_entry, "changed", check_grid_square);
    add_row(about, "Antenna", nullptr, bind_entry("station.antenna", "80 m end-fed, 12 m up"));
    add_row(about, "Contact", "A web page or email address for listeners.",
            bind_entry("station.contact", "https://…"));

    GtkWidget* for_listeners = add_card(page, "For listeners");
    GtkWidget* label =
        add_note(for_listeners, "Description, shown on the station page and the list", 8, 6);
    widgets.description_view = add_textbox(for_listeners, 80);
    name_by_label(widgets.description_view, label);
    add_row(for_listeners, "Message on the station page",
            "A short notice, for example planned downtime.", bind_entry("station.banner", ""));
}

void build_receivers_page() {
    GtkWidget* page =
        add_page("receivers", "Receivers",
                 "Choose which receivers listeners can use and the frequencies each one covers.");
    widgets.receiver_rows_box = make_box(GTK_ORIENTATION_VERTICAL, 12);
    pack(page, widgets.receiver_rows_box);

    GtkWidget* discovery = make_box(GTK_ORIENTATION_HORIZONTAL, 12);
    widgets.find_devices_button = make_button("Find devices", find_devices);
    pack(discovery, widgets.find_devices_button);
    widgets.receivers_status = make_label("", "small");
    announce_changes(widgets.receivers_status);
    pack(discovery, widgets.receivers_status, true);
    pack(page, discovery);

    add_row(add_card(page, nullptr), "Share Dialhouse's receivers too",
            "Receivers Dialhouse runs on this computer stay as they are; listeners tune "
            "inside what they cover.",
            bind_field("attach", gtk_switch_new()));
}

GtkWidget* make_mode_buttons() {
    GtkWidget* box = make_box(GTK_ORIENTATION_HORIZONTAL, 0);
    for (std::size_t i = 0; i < mode_names.size(); ++i) {
        GtkWidget* button = gtk_toggle_button_new_with_label(mode_names[i]);
        add_style_class(button, "mode");
        track_changes(button);
        pack(box, button);
        widgets.mode_buttons[i] = button;
    }
    return box;
}

void build_listeners_page() {
    GtkWidget* page = add_page("listeners", "Listeners",
                               "How many people can listen, for how long, and what they may use.");
    GtkWidget* places = add_card(page, "Places and time");
    widgets.max_listeners_spin = bind_field("listeners.max", make_number_spin(1, 200));
    widgets.upload_estimate =
        add_note(add_row(places, "Listeners at once", nullptr, widgets.max_listeners_spin), "");
    describe_by_label(widgets.max_listeners_spin, widgets.upload_estimate);
    call_at_signal(widgets.max_listeners_spin, "value-changed", update_upload_estimate);
    add_row(places, "Listeners from one address", "Stops one visitor from taking every place.",
            bind_field("listeners.per_address", make_number_spin(1, 20)));
    add_row(places, "Session length", "Minutes before a session ends. 0 means no limit.",
            bind_field("listeners.session_minutes", make_number_spin(0, 1440)));
    add_row(places, "Wait before listening again",
            "Minutes after a session ends before the same address can return.",
            bind_field("listeners.cooldown_minutes", make_number_spin(0, 1440)));
    add_row(places, "Ask “Still listening?” after",
            "Minutes without touching a control. Nobody answering frees the place.",
            bind_field("listeners.idle_minutes", make_number_spin(1, 1440)));

    add_row(add_card(page, "Modes"), "Modes listeners may choose", nullptr, make_mode_buttons());

    GtkWidget* bands = add_card(page, "Broadcast bands");
    add_row(bands, "No FM broadcast audio", "87.5 to 108 MHz. The waterfall still shows the band.",
            bind_field("content.block_fm_broadcast", gtk_switch_new()));
    add_row(bands, "No AM broadcast audio", "530 to 1700 kHz.",
            bind_field("content.block_am_broadcast", gtk_switch_new()));
    add_note(bands,
             "Rebroadcasting commercial stations online can raise copyright questions in some "
             "countries. It is your choice.",
             0, 12);

    GtkWidget* blocked = add_card(page, "Blocked addresses");
    GtkWidget* label = add_note(blocked,
                                "One per line: an address such as 203.0.113.7, or a range such "
                                "as 203.0.113.0/24.",
                                0, 6);
    widgets.banned_view = add_textbox(blocked, 70);
    name_by_label(widgets.banned_view, label);
}

void register_at_enter() {
    // Enter must do nothing when the button would do nothing: the registration may be running.
    if (gtk_widget_get_sensitive(widgets.register_button))
        register_station();
}

void build_way_in_card(GtkWidget* page) {
    const std::string host{directory_host};
    GtkWidget* card = add_card(page, "1 · Open the way in");
    widgets.relay_switch = bind_field("relay.enabled", gtk_switch_new());
    const std::string relay_hint =
        "Starlink, a mobile or apartment connection, or a router you can't change: " + host +
        " can host your page and carry listeners to you instead. It needs a relay key from "
        "Corvane.";
    add_row(card, "I can't accept incoming connections", relay_hint.c_str(), widgets.relay_switch);
    call_at_signal(widgets.relay_switch, "notify::active", update_relay_visibility);
    const std::string key_hint = "From Corvane, through " + host + "/contact.html.";
    widgets.relay_key_row =
        gtk_widget_get_parent(add_row(card, "Relay key", key_hint.c_str(),
                                      bind_entry("relay.key", "XXXX-XXXX-XXXX-XXXX-XXXX-XXXX")));
    widgets.relay_note = add_note(card,
                                  "Corvane may withdraw a relay key at any time. Through the "
                                  "relay, listeners get no FM or AM broadcast audio.",
                                  6, 0);

    widgets.reachability_label = make_label("", nullptr);
    gtk_widget_set_margin_top(widgets.reachability_label, 8);
    pack(card, widgets.reachability_label);
    widgets.port_status_label = add_note(card, "", 6, 6);

    widgets.port_box = make_box(GTK_ORIENTATION_VERTICAL, 0);
    widgets.port_hint_label = add_note(widgets.port_box, "", 0, 6);
    pack(widgets.port_box, gtk_separator_new(GTK_ORIENTATION_HORIZONTAL));
    add_row(widgets.port_box, "Public port",
            "The port listeners connect to. A change takes effect when Tarnwave restarts.",
            bind_field("network.port", make_number_spin(1024, 65535)));
    pack(card, widgets.port_box);
}

void build_register_box(GtkWidget* card) {
    widgets.register_box = make_box(GTK_ORIENTATION_VERTICAL, 8);
    gtk_widget_set_margin_bottom(widgets.register_box, 14);
    gtk_box_pack_start(GTK_BOX(widgets.register_box), gtk_separator_new(GTK_ORIENTATION_HORIZONTAL),
                       FALSE, TRUE, 4);
    pack(widgets.register_box, make_label("<b>Register once</b>", nullptr));
    GtkWidget* statement = add_note(
        widgets.register_box,
        "You run this station independently and are solely responsible for it, for what it "
        "receives and streams, and for following the law where you are. Corvane does not "
        "monitor, review or filter stations; the list shows them as they are.");
    widgets.understand_check = gtk_check_button_new_with_label("I understand");
    describe_by_label(widgets.understand_check, statement);
    pack(widgets.register_box, widgets.understand_check);

    GtkWidget* row = make_box(GTK_ORIENTATION_HORIZONTAL, 10);
    constexpr char email_placeholder[] = "Your email (not shown on the list)";
    widgets.register_email = gtk_entry_new();
    gtk_entry_set_placeholder_text(GTK_ENTRY(widgets.register_email), email_placeholder);
    set_accessible_name(widgets.register_email, email_placeholder);
    call_at_signal(widgets.register_email, "activate", register_at_enter);
    pack(row, widgets.register_email, true);
    widgets.register_button = make_button("Register this station", register_station, "primary");
    pack(row, widgets.register_button);
    pack(widgets.register_box, row);
    pack(card, widgets.register_box);
}

void build_list_card(GtkWidget* page) {
    const std::string host{directory_host};
    GtkWidget* card = add_card(page, "2 · Appear on the station list");
    add_row(card, ("List this station on " + host).c_str(),
            ("Listeners find stations at " + host + "/websdr.html.").c_str(),
            bind_field("directory.listed", gtk_switch_new()));
    widgets.listing_status_label = add_note(card, "", 0, 8);
    build_register_box(card);
    widgets.registered_label = add_note(card, "", 0, 12);
}

void build_stay_card(GtkWidget* page) {
    GtkWidget* card = add_card(page, "3 · Stay on the air");
    // Not a bound field: the switch changes the system at once, and Save does not send it.
    widgets.linger_switch = gtk_switch_new();
    add_row(card, "Keep sharing when I'm logged out",
            "Your receivers keep running after you log out and come back after a restart. An "
            "RX-888 still needs you logged in.",
            widgets.linger_switch);
    call_at_signal(widgets.linger_switch, "notify::active", on_linger_switch_toggled);
}

void build_advanced_expander(GtkWidget* page) {
    GtkWidget* expander = gtk_expander_new("Advanced");
    GtkWidget* box = make_box(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_margin_top(box, 8);
    add_row(add_card(box, nullptr), "Station list address", nullptr,
            bind_entry("directory.url", ""));
    gtk_container_add(GTK_CONTAINER(expander), box);
    // Tab reaches the children of a closed expander unless they are hidden.
    gtk_widget_show_all(box);
    gtk_widget_set_no_show_all(box, TRUE);
    g_object_bind_property(expander, "expanded", box, "visible", G_BINDING_SYNC_CREATE);
    pack(page, expander);
}

void build_internet_page() {
    const std::string subtitle = format_text(
        "Let people reach your station, and list it on %s so they can find it.", directory_host);
    GtkWidget* page = add_page("internet", "Internet", subtitle.c_str());
    build_way_in_card(page);
    build_list_card(page);
    build_stay_card(page);
    build_advanced_expander(page);
}

} // namespace

void build_pages() {
    build_overview_page();
    build_station_page();
    build_receivers_page();
    build_listeners_page();
    build_internet_page();
}

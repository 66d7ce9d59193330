// SPDX-License-Identifier: MIT
#include "ui/build_internet_page.h"

#include "link/build_constants.h"
#include "link/text.h"
#include "receivers/linger.h"
#include "status/registration.h"
#include "ui/field_checks.h"
#include "ui/widgets/accessibility.h"
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/page_stack.h"
#include "ui/widgets/setters.h"
#include "ui/widgets/signals.h"

namespace {

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
        add_row(card, "Relay key", key_hint.c_str(),
                bind_entry("relay.key", "XXXX-XXXX-XXXX-XXXX-XXXX-XXXX"), RowWidth::wide);
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
    add_number_row(widgets.port_box, "network.port", "Public port",
                   "The port listeners connect to. A change takes effect when Tarnwave restarts.",
                   1024, 65535);
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
        "monitor, review or filter stations; the list shows them as they are.",
        0, 0);
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
    add_switch_row(card, "directory.listed", ("List this station on " + host).c_str(),
                   ("Listeners find stations at " + host + "/websdr.html.").c_str());
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
    add_entry_row(add_card(box, nullptr), "directory.url", "Station list address", nullptr, "");
    gtk_container_add(GTK_CONTAINER(expander), box);
    // Tab reaches the children of a closed expander unless they are hidden.
    gtk_widget_show_all(box);
    gtk_widget_set_no_show_all(box, TRUE);
    g_object_bind_property(expander, "expanded", box, "visible", G_BINDING_SYNC_CREATE);
    pack(page, expander);
}

} // namespace

void build_internet_page() {
    const std::string subtitle = format_text(
        "Let people reach your station, and list it on %s so they can find it.", directory_host);
    GtkWidget* page = add_page("internet", "Internet", subtitle.c_str());
    build_way_in_card(page);
    build_list_card(page);
    build_stay_card(page);
    build_advanced_expander(page);
}

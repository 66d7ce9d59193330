// SPDX-License-Identifier: MIT
// Every page as it is built: its words, classes, spaces and order, and the fields it binds.
#include "ui/pages.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "support/widget_outline.h"
#include "support/window_fixture.h"

namespace {

using Pages = UntouchedWindowTest;
using PageFields = WindowTest;

/// `text` with the station list's host, which the build chooses, in the place of "HOST".
std::string with_host(std::string text) {
    constexpr std::string_view mark = "HOST";
    for (std::size_t at = text.find(mark); at != text.npos; at = text.find(mark, at))
        text.replace(at, mark.size(), directory_host);
    return text;
}

std::string outline_of_page(const char* name) {
    return outline_of(gtk_stack_get_child_by_name(GTK_STACK(widgets.stack), name));
}

TEST_F(Pages, OverviewHoldsItsCardsInOrder) {
    EXPECT_EQ(outline_of_page("overview"), with_host(R"(scrolled
  viewport
    box vertical 14 [26 26 20 26]
      label "Overview" .page-title
      box vertical .card (getting_started_card)
        label "Getting started" .card-title [0 0 12 2]
        box vertical [0 0 0 6] (getting_started_box)
      box vertical .card
        label "On the air" .card-title [0 0 12 2]
        box horizontal 8 .row (station_link_row)
          label "Station page"
          link "about:blank" .link (station_link)
          button "Copy link" at end (copy_link_button)
        box vertical [0 0 0 6] (on_air_box)
      box vertical .card
        label "Listening now" .card-title [0 0 12 8] (listeners_title)
        scrolled every way height 150 (listeners_scroll)
          table "#" "Address" "Tuned to" expands "Time" (listeners_view)
        label "Nobody is listening right now." .muted [0 0 6 6] (listeners_empty)
        box horizontal 8 [0 0 10 12]
          button "End session" insensitive (end_session_button)
          button "Block address…" insensitive (block_button)
          label "Select a listener to end their session or block them." one line ellipsised .small at end
)"));
}

TEST_F(Pages, StationHoldsItsCardsInOrder) {
    EXPECT_EQ(outline_of_page("station"), with_host(R"(scrolled
  viewport
    box vertical 14 [26 26 20 26]
      label "Station" .page-title
      label "How your station appears on its page and on the station list." .muted
      box vertical .card
        label "About the station" .card-title [0 0 12 2]
        row | label "Station name"
          entry "Hilltop SDR" width 320 centred at end = station.name
        separator
        row | label "Callsign" | label "Leave empty if you do not have one." .small
          entry "K1ABC" width 320 centred at end = station.callsign
        separator
        row | label "Operator"
          entry "Your name" width 320 centred at end = station.operator
        separator
        row | label "Location" | label "Town, region and country. Shown on the list." .small
          entry "Asheville, North Carolina, USA" width 320 centred at end = station.location
        separator
        row | label "Grid square" | label "" .small (grid_hint)
          entry "EM95" at most 6 width 320 centred at end = station.grid (grid_entry)
        separator
        row | label "Antenna"
          entry "80 m end-fed, 12 m up" width 320 centred at end = station.antenna
        separator
        row | label "Contact" | label "A web page or email address for listeners." .small
          entry "https://…" width 320 centred at end = station.contact
      box vertical .card
        label "For listeners" .card-title [0 0 12 2]
        label "Description, shown on the station page and the list" .small [0 0 8 6]
        box vertical .textbox [0 0 0 12]
          text view height 80 expands (description_view)
        row | label "Message on the station page" | label "A short notice, for example planned downtime." .small
          entry "" width 320 centred at end = station.banner
)"));
}

TEST_F(Pages, ReceiversHoldsItsCardsInOrder) {
    EXPECT_EQ(outline_of_page("receivers"), with_host(R"(scrolled
  viewport
    box vertical 14 [26 26 20 26]
      label "Receivers" .page-title
      label "Choose which receivers listeners can use and the frequencies each one covers." .muted
      box vertical 12 (receiver_rows_box)
      box horizontal 12
        button "Find devices" (find_devices_button)
        label "" .small expands (receivers_status)
      box vertical .card
        row | label "Share Dialhouse's receivers too" | label "Receivers Dialhouse runs on this computer stay as they are; listeners tune inside what they cover." .small
          switch centred at end = attach
)"));
}

TEST_F(Pages, ListenersHoldsItsCardsInOrder) {
    EXPECT_EQ(outline_of_page("listeners"), with_host(R"(scrolled
  viewport
    box vertical 14 [26 26 20 26]
      label "Listeners" .page-title
      label "How many people can listen, for how long, and what they may use." .muted
      box vertical .card
        label "Places and time" .card-title [0 0 12 2]
        row | label "Listeners at once" | label "" .small (upload_estimate)
          spin 1 to 200 by 1 centred at end = listeners.max (max_listeners_spin)
        separator
        row | label "Listeners from one address" | label "Stops one visitor from taking every place." .small
          spin 1 to 20 by 1 centred at end = listeners.per_address
        separator
        row | label "Session length" | label "Minutes before a session ends. 0 means no limit." .small
          spin 0 to 1440 by 1 centred at end = listeners.session_minutes
        separator
        row | label "Wait before listening again" | label "Minutes after a session ends before the same address can return." .small
          spin 0 to 1440 by 1 centred at end = listeners.cooldown_minutes
        separator
        row | label "Ask “Still listening?” after" | label "Minutes without touching a control. Nobody answering frees the place." .small
          spin 1 to 1440 by 1 centred at end = listeners.idle_minutes
      box vertical .card
        label "Modes" .card-title [0 0 12 2]
        row | label "Modes listeners may choose"
          box horizontal centred at end
            toggle "USB" .mode (mode_buttons[0])
            toggle "LSB" .mode (mode_buttons[1])
            toggle "CW" .mode (mode_buttons[2])
            toggle "AM" .mode (mode_buttons[3])
            toggle "FM" .mode (mode_buttons[4])
      box vertical .card
        label "Broadcast bands" .card-title [0 0 12 2]
        row | label "No FM broadcast audio" | label "87.5 to 108 MHz. The waterfall still shows the band." .small
          switch centred at end = content.block_fm_broadcast
        separator
        row | label "No AM broadcast audio" | label "530 to 1700 kHz." .small
          switch centred at end = content.block_am_broadcast
        label "Rebroadcasting commercial stations online can raise copyright questions in some countries. It is your choice." .small [0 0 0 12]
      box vertical .card
        label "Blocked addresses" .card-title [0 0 12 2]
        label "One per line: an address such as 203.0.113.7, or a range such as 203.0.113.0/24." .small [0 0 0 6]
        box vertical .textbox [0 0 0 12]
          text view height 70 expands (banned_view)
)"));
}

TEST_F(Pages, InternetHoldsItsCardsInOrder) {
    EXPECT_EQ(outline_of_page("internet"), with_host(R"outline(scrolled
  viewport
    box vertical 14 [26 26 20 26]
      label "Internet" .page-title
      label "Let people reach your station, and list it on HOST so they can find it." .muted
      box vertical .card
        label "1 · Open the way in" .card-title [0 0 12 2]
        row | label "I can't accept incoming connections" | label "Starlink, a mobile or apartment connection, or a router you can't change: HOST can host your page and carry listeners to you instead. It needs a relay key from Corvane." .small
          switch centred at end = relay.enabled (relay_switch)
        separator
        row hidden (relay_key_row) | label "Relay key" | label "From Corvane, through HOST/contact.html." .small
          entry "XXXX-XXXX-XXXX-XXXX-XXXX-XXXX" width 320 centred at end = relay.key
        label "Corvane may withdraw a relay key at any time. Through the relay, listeners get no FM or AM broadcast audio." .small [0 0 6 0] hidden (relay_note)
        label "" [0 0 8 0] (reachability_label)
        label "" .small [0 0 6 6] (port_status_label)
        box vertical (port_box)
          label "" .small [0 0 0 6] (port_hint_label)
          separator
          row | label "Public port" | label "The port listeners connect to. A change takes effect when Tarnwave restarts." .small
            spin 1024 to 65535 by 1 centred at end = network.port
      box vertical .card
        label "2 · Appear on the station list" .card-title [0 0 12 2]
        row | label "List this station on HOST" | label "Listeners find stations at HOST/websdr.html." .small
          switch centred at end = directory.listed
        label "" .small [0 0 0 8] (listing_status_label)
        box vertical 8 [0 0 0 14] (register_box)
          separator padding 4
          label "<b>Register once</b>" markup
          label "You run this station independently and are solely responsible for it, for what it receives and streams, and for following the law where you are. Corvane does not monitor, review or filter stations; the list shows them as they are." .small
          check "I understand" (understand_check)
          box horizontal 10
            entry "Your email (not shown on the list)" expands (register_email)
            button "Register this station" .primary (register_button)
        label "" .small [0 0 0 12] (registered_label)
      box vertical .card
        label "3 · Stay on the air" .card-title [0 0 12 2]
        row | label "Keep sharing when I'm logged out" | label "Your receivers keep running after you log out and come back after a restart. An RX-888 still needs you logged in." .small
          switch centred at end (linger_switch)
      expander "Advanced"
        box vertical [0 0 8 0] hidden
          box vertical .card
            row | label "Station list address"
              entry "" width 320 centred at end = directory.url
)outline"));
}

TEST_F(Pages, StandInTheSidebarsOrder) {
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"overview", "Overview"},   {"station", "Station"},   {"receivers", "Receivers"},
        {"listeners", "Listeners"}, {"internet", "Internet"},
    };
    std::vector<std::pair<std::string, std::string>> pages;
    for (GtkWidget* page : children_of(widgets.stack)) {
        char* name = nullptr;
        char* title = nullptr;
        gtk_container_child_get(GTK_CONTAINER(widgets.stack), page, "name", &name, "title", &title,
                                nullptr);
        pages.emplace_back(name, title);
        g_free(name);
        g_free(title);
    }
    EXPECT_EQ(pages, expected);
    EXPECT_STREQ(gtk_stack_get_visible_child_name(GTK_STACK(widgets.stack)), "overview");
}

std::string page_of(GtkWidget* widget) {
    while (gtk_widget_get_parent(widget) != widgets.stack)
        widget = gtk_widget_get_parent(widget);
    char* name = nullptr;
    gtk_container_child_get(GTK_CONTAINER(widgets.stack), widget, "name", &name, nullptr);
    const std::string page{name};
    g_free(name);
    return page;
}

TEST_F(Pages, BindEachKeyOnceInTheOrderOfThePages) {
    std::vector<std::string> in_order;
    for (GtkWidget* widget : tree_of(widgets.stack))
        for (const FieldBinding& binding : widgets.field_registry)
            if (binding.widget == widget)
                in_order.push_back(binding.key);
    std::vector<std::string> registered;
    for (const FieldBinding& binding : widgets.field_registry)
        registered.push_back(binding.key);
    EXPECT_EQ(registered, in_order);
}

TEST_F(PageFields, EveryControlIsNamedByItsLabelOrInItself) {
    for (GtkWidget* widget : tree_of(widgets.stack)) {
        const bool is_control = GTK_IS_ENTRY(widget) || GTK_IS_SWITCH(widget) ||
                                GTK_IS_TEXT_VIEW(widget) || GTK_IS_TREE_VIEW(widget);
        if (!is_control || !gtk_widget_get_can_focus(widget))
            continue;
        AtkObject* accessible = gtk_widget_get_accessible(widget);
        AtkRelationSet* relations = atk_object_ref_relation_set(accessible);
        const char* name = atk_object_get_name(accessible);
        EXPECT_TRUE(atk_relation_set_contains(relations, ATK_RELATION_LABELLED_BY) ||
                    (name && *name))
            << outline_of(widget) << " on " << page_of(widget);
        g_object_unref(relations);
    }
}

} // namespace

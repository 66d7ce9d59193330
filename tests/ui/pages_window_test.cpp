// SPDX-License-Identifier: MIT
// Every page as it is built: its words, classes, spaces and order, and the fields it binds.
#include "ui/pages.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "support/widget_outline.h"
#include "support/window_fixture.h"

namespace {

using Pages = FreshWindowTest;
using PageFields = WindowTest;

/// `text` with the station list's host, which the build chooses, in the place of "HOST".
std::string with_host(std::string text) {
    constexpr std::string_view mark = "HOST";
    for (std::size_t at = text.find(mark); at != text.npos; at = text.find(mark, at))
        text.replace(at, mark.size(), directory_host);
    return text;
}

const char overview_page[] = R"(GtkScrolledWindow name="overview" title="Overview"
  GtkViewport .frame
    GtkBox .vertical spacing=14 margin-start=26 margin-end=26 margin-top=20 margin-bottom=26
      GtkLabel "Overview" .page-title
      GtkBox .card .vertical (getting_started_card)
        GtkLabel "Getting started" .card-title margin-top=12 margin-bottom=2
        GtkBox .vertical margin-bottom=6 (getting_started_box)
      GtkBox .card .vertical
        GtkLabel "On the air" .card-title margin-top=12 margin-bottom=2
        GtkBox .horizontal .row spacing=8 (station_link_row)
          GtkLabel "Station page"
          GtkLinkButton .flat .link .text-button label="about:blank" uri="about:blank" (station_link)
          GtkButton .text-button label="Copy link" fill=FALSE pack-type=end
        GtkBox .vertical margin-bottom=6 (on_air_box)
      GtkBox .card .vertical
        GtkLabel "Listening now" .card-title margin-top=12 margin-bottom=8 (listeners_title)
        GtkScrolledWindow hscrollbar-policy=automatic height-request=150 (listeners_scroll)
          GtkTreeView | # | Address | Tuned to (expands) | Time .view (listeners_view)
        GtkLabel "Nobody is listening right now." .muted margin-top=6 margin-bottom=6 (listeners_empty)
        GtkBox .horizontal spacing=8 margin-top=10 margin-bottom=12
          GtkButton .text-button label="End session" sensitive=FALSE (end_session_button)
          GtkButton .text-button label="Block address…" sensitive=FALSE (block_button)
          GtkLabel "Select a listener to end their session or block them." .small wrap=FALSE ellipsize=end fill=FALSE pack-type=end
)";

const char station_page[] = R"(GtkScrolledWindow name="station" title="Station"
  GtkViewport .frame
    GtkBox .vertical spacing=14 margin-start=26 margin-end=26 margin-top=20 margin-bottom=26
      GtkLabel "Station" .page-title
      GtkLabel "How your station appears on its page and on the station list." .muted
      GtkBox .card .vertical
        GtkLabel "About the station" .card-title margin-top=12 margin-bottom=2
        row | GtkLabel "Station name"
          GtkEntry placeholder-text="Hilltop SDR" width-request=320 valign=center fill=FALSE pack-type=end = station.name
        GtkSeparator .horizontal
        row | GtkLabel "Callsign" | GtkLabel "Leave empty if you do not have one." .small
          GtkEntry placeholder-text="K1ABC" width-request=320 valign=center fill=FALSE pack-type=end = station.callsign
        GtkSeparator .horizontal
        row | GtkLabel "Operator"
          GtkEntry placeholder-text="Your name" width-request=320 valign=center fill=FALSE pack-type=end = station.operator
        GtkSeparator .horizontal
        row | GtkLabel "Location" | GtkLabel "Town, region and country. Shown on the list." .small
          GtkEntry placeholder-text="Asheville, North Carolina, USA" width-request=320 valign=center fill=FALSE pack-type=end = station.location
        GtkSeparator .horizontal
        row | GtkLabel "Grid square" | GtkLabel "" .small (grid_hint)
          GtkEntry placeholder-text="EM95" max-length=6 width-request=320 valign=center fill=FALSE pack-type=end = station.grid (grid_entry)
        GtkSeparator .horizontal
        row | GtkLabel "Antenna"
          GtkEntry placeholder-text="80 m end-fed, 12 m up" width-request=320 valign=center fill=FALSE pack-type=end = station.antenna
        GtkSeparator .horizontal
        row | GtkLabel "Contact" | GtkLabel "A web page or email address for listeners." .small
          GtkEntry placeholder-text="https://…" width-request=320 valign=center fill=FALSE pack-type=end = station.contact
      GtkBox .card .vertical
        GtkLabel "For listeners" .card-title margin-top=12 margin-bottom=2
        GtkLabel "Description, shown on the station page and the list" .small margin-top=8 margin-bottom=6
        GtkBox .textbox .vertical margin-bottom=12
          GtkTextView "" .view height-request=80 expand=TRUE (description_view)
        row | GtkLabel "Message on the station page" | GtkLabel "A short notice, for example planned downtime." .small
          GtkEntry width-request=320 valign=center fill=FALSE pack-type=end = station.banner
)";

const char receivers_page[] = R"(GtkScrolledWindow name="receivers" title="Receivers"
  GtkViewport .frame
    GtkBox .vertical spacing=14 margin-start=26 margin-end=26 margin-top=20 margin-bottom=26
      GtkLabel "Receivers" .page-title
      GtkLabel "Choose which receivers listeners can use and the frequencies each one covers." .muted
      GtkBox .vertical spacing=12 (receiver_rows_box)
      GtkBox .horizontal spacing=12
        GtkButton .text-button label="Find devices" (find_devices_button)
        GtkLabel "" .small expand=TRUE (receivers_status)
      GtkBox .card .vertical
        row | GtkLabel "Share Dialhouse's receivers too" | GtkLabel "Receivers Dialhouse runs on this computer stay as they are; listeners tune inside what they cover." .small
          GtkSwitch valign=center fill=FALSE pack-type=end = attach
)";

const char listeners_page[] = R"(GtkScrolledWindow name="listeners" title="Listeners"
  GtkViewport .frame
    GtkBox .vertical spacing=14 margin-start=26 margin-end=26 margin-top=20 margin-bottom=26
      GtkLabel "Listeners" .page-title
      GtkLabel "How many people can listen, for how long, and what they may use." .muted
      GtkBox .card .vertical
        GtkLabel "Places and time" .card-title margin-top=12 margin-bottom=2
        row | GtkLabel "Listeners at once" | GtkLabel "" .small (upload_estimate)
          GtkSpinButton 1 to 200 by 1.000 .horizontal text="1" valign=center fill=FALSE pack-type=end = listeners.max (max_listeners_spin)
        GtkSeparator .horizontal
        row | GtkLabel "Listeners from one address" | GtkLabel "Stops one visitor from taking every place." .small
          GtkSpinButton 1 to 20 by 1.000 .horizontal text="1" valign=center fill=FALSE pack-type=end = listeners.per_address
        GtkSeparator .horizontal
        row | GtkLabel "Session length" | GtkLabel "Minutes before a session ends. 0 means no limit." .small
          GtkSpinButton 0 to 1440 by 1.000 .horizontal text="0" valign=center fill=FALSE pack-type=end = listeners.session_minutes
        GtkSeparator .horizontal
        row | GtkLabel "Wait before listening again" | GtkLabel "Minutes after a session ends before the same address can return." .small
          GtkSpinButton 0 to 1440 by 1.000 .horizontal text="0" valign=center fill=FALSE pack-type=end = listeners.cooldown_minutes
        GtkSeparator .horizontal
        row | GtkLabel "Ask “Still listening?” after" | GtkLabel "Minutes without touching a control. Nobody answering frees the place." .small
          GtkSpinButton 1 to 1440 by 1.000 .horizontal text="1" valign=center fill=FALSE pack-type=end = listeners.idle_minutes
      GtkBox .card .vertical
        GtkLabel "Modes" .card-title margin-top=12 margin-bottom=2
        row | GtkLabel "Modes listeners may choose"
          GtkBox .horizontal valign=center fill=FALSE pack-type=end
            GtkToggleButton .mode .text-button .toggle label="USB" (mode_buttons[0])
            GtkToggleButton .mode .text-button .toggle label="LSB" (mode_buttons[1])
            GtkToggleButton .mode .text-button .toggle label="CW" (mode_buttons[2])
            GtkToggleButton .mode .text-button .toggle label="AM" (mode_buttons[3])
            GtkToggleButton .mode .text-button .toggle label="FM" (mode_buttons[4])
      GtkBox .card .vertical
        GtkLabel "Broadcast bands" .card-title margin-top=12 margin-bottom=2
        row | GtkLabel "No FM broadcast audio" | GtkLabel "87.5 to 108 MHz. The waterfall still shows the band." .small
          GtkSwitch valign=center fill=FALSE pack-type=end = content.block_fm_broadcast
        GtkSeparator .horizontal
        row | GtkLabel "No AM broadcast audio" | GtkLabel "530 to 1700 kHz." .small
          GtkSwitch valign=center fill=FALSE pack-type=end = content.block_am_broadcast
        GtkLabel "Rebroadcasting commercial stations online can raise copyright questions in some countries. It is your choice." .small margin-bottom=12
      GtkBox .card .vertical
        GtkLabel "Blocked addresses" .card-title margin-top=12 margin-bottom=2
        GtkLabel "One per line: an address such as 203.0.113.7, or a range such as 203.0.113.0/24." .small margin-bottom=6
        GtkBox .textbox .vertical margin-bottom=12
          GtkTextView "" .view height-request=70 expand=TRUE (banned_view)
)";

const char internet_page[] = R"outline(GtkScrolledWindow name="internet" title="Internet"
  GtkViewport .frame
    GtkBox .vertical spacing=14 margin-start=26 margin-end=26 margin-top=20 margin-bottom=26
      GtkLabel "Internet" .page-title
      GtkLabel "Let people reach your station, and list it on HOST so they can find it." .muted
      GtkBox .card .vertical
        GtkLabel "1 · Open the way in" .card-title margin-top=12 margin-bottom=2
        row | GtkLabel "I can't accept incoming connections" | GtkLabel "Starlink, a mobile or apartment connection, or a router you can't change: HOST can host your page and carry listeners to you instead. It needs a relay key from Corvane." .small
          GtkSwitch valign=center fill=FALSE pack-type=end = relay.enabled (relay_switch)
        GtkSeparator .horizontal
        row visible=FALSE (relay_key_row) | GtkLabel "Relay key" | GtkLabel "From Corvane, through HOST/contact.html." .small
          GtkEntry placeholder-text="XXXX-XXXX-XXXX-XXXX-XXXX-XXXX" width-request=320 valign=center fill=FALSE pack-type=end = relay.key
        GtkLabel "Corvane may withdraw a relay key at any time. Through the relay, listeners get no FM or AM broadcast audio." .small margin-top=6 visible=FALSE (relay_note)
        GtkLabel "" margin-top=8 (reachability_label)
        GtkLabel "" .small margin-top=6 margin-bottom=6 (port_status_label)
        GtkBox .vertical (port_box)
          GtkLabel "" .small margin-bottom=6 (port_hint_label)
          GtkSeparator .horizontal
          row | GtkLabel "Public port" | GtkLabel "The port listeners connect to. A change takes effect when Tarnwave restarts." .small
            GtkSpinButton 1024 to 65535 by 1.000 .horizontal text="1024" valign=center fill=FALSE pack-type=end = network.port
      GtkBox .card .vertical
        GtkLabel "2 · Appear on the station list" .card-title margin-top=12 margin-bottom=2
        row | GtkLabel "List this station on HOST" | GtkLabel "Listeners find stations at HOST/websdr.html." .small
          GtkSwitch valign=center fill=FALSE pack-type=end = directory.listed
        GtkLabel "" .small margin-bottom=8 (listing_status_label)
        GtkBox .vertical spacing=8 margin-bottom=14 (register_box)
          GtkSeparator .horizontal padding=4
          GtkLabel "Register once" markup=<b>Register once</b>
          GtkLabel "You run this station independently and are solely responsible for it, for what it receives and streams, and for following the law where you are. Corvane does not monitor, review or filter stations; the list shows them as they are." .small
          GtkCheckButton .text-button label="I understand" (understand_check)
          GtkBox .horizontal spacing=10
            GtkEntry placeholder-text="Your email (not shown on the list)" expand=TRUE (register_email)
            GtkButton .primary .text-button label="Register this station" (register_button)
        GtkLabel "" .small margin-bottom=12 (registered_label)
      GtkBox .card .vertical
        GtkLabel "3 · Stay on the air" .card-title margin-top=12 margin-bottom=2
        row | GtkLabel "Keep sharing when I'm logged out" | GtkLabel "Your receivers keep running after you log out and come back after a restart. An RX-888 still needs you logged in." .small
          GtkSwitch valign=center fill=FALSE pack-type=end (linger_switch)
      GtkExpander
        GtkBox .vertical margin-top=8 visible=FALSE
          GtkBox .card .vertical
            row | GtkLabel "Station list address"
              GtkEntry width-request=320 valign=center fill=FALSE pack-type=end = directory.url
        GtkLabel "Advanced" wrap=FALSE xalign=0.500000
)outline";

TEST_F(Pages, StandInTheSidebarsOrderWithTheirCards) {
    const char* const expected[] = {overview_page, station_page, receivers_page, listeners_page,
                                    internet_page};
    const std::vector<GtkWidget*> pages = children_of(widgets.stack);
    ASSERT_EQ(pages.size(), std::size(expected));
    for (std::size_t i = 0; i < pages.size(); ++i)
        EXPECT_EQ(outline_of(pages[i]), with_host(expected[i]));
    EXPECT_EQ(gtk_stack_get_visible_child(GTK_STACK(widgets.stack)), pages[0]);
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
            << outline_of(widget);
        g_object_unref(relations);
    }
}

} // namespace

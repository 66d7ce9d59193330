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
      box vertical .card
        label "Getting started" .card-title [0 0 12 2]
        box vertical [0 0 0 6]
      box vertical .card
        label "On the air" .card-title [0 0 12 2]
        box horizontal 8 .row
          label "Station page"
          link "about:blank" .link
          button "Copy link" at end
        box vertical [0 0 0 6]
      box vertical .card
        label "Listening now" .card-title [0 0 12 8]
        scrolled height 150
          table "#" "Address" "Tuned to" expands "Time"
        label "Nobody is listening right now." .muted [0 0 6 6]
        box horizontal 8 [0 0 10 12]
          button "End session" insensitive
          button "Block address…" insensitive
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
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Station name"
          entry "Hilltop SDR" width 320 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Callsign"
            label "Leave empty if you do not have one." .small
          entry "K1ABC" width 320 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Operator"
          entry "Your name" width 320 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Location"
            label "Town, region and country. Shown on the list." .small
          entry "Asheville, North Carolina, USA" width 320 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Grid square"
            label "" .small
          entry "EM95" at most 6 width 320 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Antenna"
          entry "80 m end-fed, 12 m up" width 320 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Contact"
            label "A web page or email address for listeners." .small
          entry "https://…" width 320 centred at end
      box vertical .card
        label "For listeners" .card-title [0 0 12 2]
        label "Description, shown on the station page and the list" .small [0 0 8 6]
        box vertical .textbox [0 0 0 12]
          text view height 80 expands
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Message on the station page"
            label "A short notice, for example planned downtime." .small
          entry "" width 320 centred at end
)"));
}

TEST_F(Pages, ReceiversHoldsItsCardsInOrder) {
    EXPECT_EQ(outline_of_page("receivers"), with_host(R"(scrolled
  viewport
    box vertical 14 [26 26 20 26]
      label "Receivers" .page-title
      label "Choose which receivers listeners can use and the frequencies each one covers." .muted
      box vertical 12
      box horizontal 12
        button "Find devices"
        label "" .small expands
      box vertical .card
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Share Dialhouse's receivers too"
            label "Receivers Dialhouse runs on this computer stay as they are; listeners tune inside what they cover." .small
          switch centred at end
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
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Listeners at once"
            label "" .small
          spin 1 to 200 by 1 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Listeners from one address"
            label "Stops one visitor from taking every place." .small
          spin 1 to 20 by 1 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Session length"
            label "Minutes before a session ends. 0 means no limit." .small
          spin 0 to 1440 by 1 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Wait before listening again"
            label "Minutes after a session ends before the same address can return." .small
          spin 0 to 1440 by 1 centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Ask “Still listening?” after"
            label "Minutes without touching a control. Nobody answering frees the place." .small
          spin 1 to 1440 by 1 centred at end
      box vertical .card
        label "Modes" .card-title [0 0 12 2]
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Modes listeners may choose"
          box horizontal centred at end
            toggle "USB" .mode
            toggle "LSB" .mode
            toggle "CW" .mode
            toggle "AM" .mode
            toggle "FM" .mode
      box vertical .card
        label "Broadcast bands" .card-title [0 0 12 2]
        box horizontal 18 .row
          box vertical 2 centred expands
            label "No FM broadcast audio"
            label "87.5 to 108 MHz. The waterfall still shows the band." .small
          switch centred at end
        separator
        box horizontal 18 .row
          box vertical 2 centred expands
            label "No AM broadcast audio"
            label "530 to 1700 kHz." .small
          switch centred at end
        label "Rebroadcasting commercial stations online can raise copyright questions in some countries. It is your choice." .small [0 0 0 12]
      box vertical .card
        label "Blocked addresses" .card-title [0 0 12 2]
        label "One per line: an address such as 203.0.113.7, or a range such as 203.0.113.0/24." .small [0 0 0 6]
        box vertical .textbox [0 0 0 12]
          text view height 70 expands
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
        box horizontal 18 .row
          box vertical 2 centred expands
            label "I can't accept incoming connections"
            label "Starlink, a mobile or apartment connection, or a router you can't change: HOST can host your page and carry listeners to you instead. It needs a relay key from Corvane." .small
          switch centred at end
        separator
        box horizontal 18 .row hidden
          box vertical 2 centred expands
            label "Relay key"
            label "From Corvane, through HOST/contact.html." .small
          entry "XXXX-XXXX-XXXX-XXXX-XXXX-XXXX" width 320 centred at end
        label "Corvane may withdraw a relay key at any time. Through the relay, listeners get no FM or AM broadcast audio." .small [0 0 6 0] hidden
        label "" [0 0 8 0]
        label "" .small [0 0 6 6]
        box vertical
          label "" .small [0 0 0 6]
          separator
          box horizontal 18 .row
            box vertical 2 centred expands
              label "Public port"
              label "The port listeners connect to. A change takes effect when Tarnwave restarts." .small
            spin 1024 to 65535 by 1 centred at end
      box vertical .card
        label "2 · Appear on the station list" .card-title [0 0 12 2]
        box horizontal 18 .row
          box vertical 2 centred expands
            label "List this station on HOST"
            label "Listeners find stations at HOST/websdr.html." .small
          switch centred at end
        label "" .small [0 0 0 8]
        box vertical 8 [0 0 0 14]
          separator padding 4
          label "<b>Register once</b>" markup
          label "You run this station independently and are solely responsible for it, for what it receives and streams, and for following the law where you are. Corvane does not monitor, review or filter stations; the list shows them as they are." .small
          check "I understand"
          box horizontal 10
            entry "Your email (not shown on the list)" expands
            button "Register this station" .primary
        label "" .small [0 0 0 12]
      box vertical .card
        label "3 · Stay on the air" .card-title [0 0 12 2]
        box horizontal 18 .row
          box vertical 2 centred expands
            label "Keep sharing when I'm logged out"
            label "Your receivers keep running after you log out and come back after a restart. An RX-888 still needs you logged in." .small
          switch centred at end
      expander "Advanced"
        box vertical [0 0 8 0] hidden
          box vertical .card
            box horizontal 18 .row
              box vertical 2 centred expands
                label "Station list address"
              entry "" width 320 centred at end
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

TEST_F(Pages, ScrollUpAndDownOnly) {
    for (GtkWidget* page : children_of(widgets.stack)) {
        GtkPolicyType horizontal = GTK_POLICY_ALWAYS;
        GtkPolicyType vertical = GTK_POLICY_ALWAYS;
        gtk_scrolled_window_get_policy(GTK_SCROLLED_WINDOW(page), &horizontal, &vertical);
        EXPECT_EQ(horizontal, GTK_POLICY_NEVER);
        EXPECT_EQ(vertical, GTK_POLICY_AUTOMATIC);
    }
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

/// The nearest box of a style class above a widget; null when there is none.
GtkWidget* ancestor_with(GtkWidget* widget, const char* style_class) {
    do
        widget = gtk_widget_get_parent(widget);
    while (widget && !has_class(widget, style_class));
    return widget;
}

std::string card_of(GtkWidget* widget) {
    GtkWidget* first = children_of(ancestor_with(widget, "card")).front();
    return has_class(first, "card-title") ? text_of(first) : "";
}

/// The labels in the text column of the row that a widget stands in, first the row's own.
std::vector<GtkWidget*> texts_beside(GtkWidget* widget) {
    return children_of(children_of(ancestor_with(widget, "row")).front());
}

std::string kind_of(GtkWidget* widget) {
    std::string outline = outline_of(widget);
    return outline.substr(0, outline.find(" centred"));
}

TEST_F(Pages, BindTheirFieldsInOrder) {
    const struct {
        const char* key;
        const char* page;
        const char* card;
        std::string label;
        const char* widget;
        std::string hint; ///< "live" for one that follows what is typed
    } expected[] = {
        {"station.name", "station", "About the station", "Station name",
         R"(entry "Hilltop SDR" width 320)", ""},
        {"station.callsign", "station", "About the station", "Callsign",
         R"(entry "K1ABC" width 320)", "Leave empty if you do not have one."},
        {"station.operator", "station", "About the station", "Operator",
         R"(entry "Your name" width 320)", ""},
        {"station.location", "station", "About the station", "Location",
         R"(entry "Asheville, North Carolina, USA" width 320)",
         "Town, region and country. Shown on the list."},
        {"station.grid", "station", "About the station", "Grid square",
         R"(entry "EM95" at most 6 width 320)", "live"},
        {"station.antenna", "station", "About the station", "Antenna",
         R"(entry "80 m end-fed, 12 m up" width 320)", ""},
        {"station.contact", "station", "About the station", "Contact",
         R"(entry "https://…" width 320)", "A web page or email address for listeners."},
        {"station.banner", "station", "For listeners", "Message on the station page",
         R"(entry "" width 320)", "A short notice, for example planned downtime."},
        {"attach", "receivers", "", "Share Dialhouse's receivers too", "switch",
         "Receivers Dialhouse runs on this computer stay as they are; listeners tune inside what "
         "they cover."},
        {"listeners.max", "listeners", "Places and time", "Listeners at once", "spin 1 to 200 by 1",
         "live"},
        {"listeners.per_address", "listeners", "Places and time", "Listeners from one address",
         "spin 1 to 20 by 1", "Stops one visitor from taking every place."},
        {"listeners.session_minutes", "listeners", "Places and time", "Session length",
         "spin 0 to 1440 by 1", "Minutes before a session ends. 0 means no limit."},
        {"listeners.cooldown_minutes", "listeners", "Places and time",
         "Wait before listening again", "spin 0 to 1440 by 1",
         "Minutes after a session ends before the same address can return."},
        {"listeners.idle_minutes", "listeners", "Places and time", "Ask “Still listening?” after",
         "spin 1 to 1440 by 1",
         "Minutes without touching a control. Nobody answering frees the place."},
        {"content.block_fm_broadcast", "listeners", "Broadcast bands", "No FM broadcast audio",
         "switch", "87.5 to 108 MHz. The waterfall still shows the band."},
        {"content.block_am_broadcast", "listeners", "Broadcast bands", "No AM broadcast audio",
         "switch", "530 to 1700 kHz."},
        {"relay.enabled", "internet", "1 · Open the way in", "I can't accept incoming connections",
         "switch",
         with_host("Starlink, a mobile or apartment connection, or a router you can't change: HOST "
                   "can host your page and carry listeners to you instead. It needs a relay key "
                   "from Corvane.")},
        {"relay.key", "internet", "1 · Open the way in", "Relay key",
         R"(entry "XXXX-XXXX-XXXX-XXXX-XXXX-XXXX" width 320)",
         with_host("From Corvane, through HOST/contact.html.")},
        {"network.port", "internet", "1 · Open the way in", "Public port",
         "spin 1024 to 65535 by 1",
         "The port listeners connect to. A change takes effect when Tarnwave restarts."},
        {"directory.listed", "internet", "2 · Appear on the station list",
         with_host("List this station on HOST"), "switch",
         with_host("Listeners find stations at HOST/websdr.html.")},
        {"directory.url", "internet", "", "Station list address", R"(entry "" width 320)", ""},
    };
    ASSERT_EQ(widgets.field_registry.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const FieldBinding& binding = widgets.field_registry[i];
        SCOPED_TRACE(expected[i].key);
        EXPECT_EQ(binding.key, expected[i].key);
        EXPECT_EQ(page_of(binding.widget), expected[i].page);
        EXPECT_EQ(card_of(binding.widget), expected[i].card);
        EXPECT_EQ(kind_of(binding.widget), expected[i].widget);
        const std::vector<GtkWidget*> texts = texts_beside(binding.widget);
        EXPECT_EQ(text_of(texts.at(0)), expected[i].label);
        ASSERT_EQ(texts.size(), expected[i].hint.empty() ? 1U : 2U);
        if (expected[i].hint == "live") {
            EXPECT_TRUE(texts[1] == widgets.grid_hint || texts[1] == widgets.upload_estimate);
        } else if (!expected[i].hint.empty()) {
            EXPECT_EQ(text_of(texts[1]), expected[i].hint);
        }
    }
}

TEST_F(Pages, NumbersStartAtTheirMinimum) {
    for (const FieldBinding& binding : widgets.field_registry) {
        if (!GTK_IS_SPIN_BUTTON(binding.widget))
            continue;
        SCOPED_TRACE(binding.key);
        double minimum = -1;
        gtk_spin_button_get_range(GTK_SPIN_BUTTON(binding.widget), &minimum, nullptr);
        EXPECT_EQ(gtk_spin_button_get_value(GTK_SPIN_BUTTON(binding.widget)), minimum);
        EXPECT_EQ(gtk_spin_button_get_digits(GTK_SPIN_BUTTON(binding.widget)), 0U);
    }
}

TEST_F(PageFields, NumbersRefuseWhatIsOutOfRange) {
    const struct {
        const char* key;
        const char* typed;
        double value;
    } cases[] = {
        {"network.port", "1023", 1024},
        {"network.port", "1024", 1024},
        {"network.port", "80", 1024},
        {"network.port", "65535", 65535},
        {"network.port", "65536", 65535},
        {"listeners.max", "0", 1},
        {"listeners.max", "200", 200},
        {"listeners.max", "201", 200},
        {"listeners.max", "-4", 1},
        {"listeners.session_minutes", "0", 0},
        {"listeners.session_minutes", "1441", 1440},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string{c.key} + " " + c.typed);
        type_into(c.key, c.typed);
        gtk_spin_button_update(GTK_SPIN_BUTTON(field(c.key)));
        EXPECT_EQ(gtk_spin_button_get_value(GTK_SPIN_BUTTON(field(c.key))), c.value);
    }
}

TEST_F(PageFields, TheGridSquareTakesSixCharactersAndNoSeventh) {
    type_into("station.grid", "");
    gint position = 0;
    for (const char* letter : {"E", "M", "9", "5", "a", "b"})
        gtk_editable_insert_text(GTK_EDITABLE(widgets.grid_entry), letter, -1, &position);
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(widgets.grid_entry)), "EM95ab");
    gtk_editable_insert_text(GTK_EDITABLE(widgets.grid_entry), "c", -1, &position);
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(widgets.grid_entry)), "EM95ab");
}

TEST_F(Pages, ModesStandInOrderAndAreUp) {
    const char* names[] = {"USB", "LSB", "CW", "AM", "FM"};
    for (std::size_t i = 0; i < std::size(names); ++i) {
        GtkWidget* button = widgets.mode_buttons[i];
        EXPECT_STREQ(gtk_button_get_label(GTK_BUTTON(button)), names[i]);
        EXPECT_FALSE(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button)));
    }
}

TEST_F(Pages, TextBoxesWrapAnywhereAndLetTabPass) {
    for (GtkWidget* view : {widgets.description_view, widgets.banned_view}) {
        EXPECT_EQ(gtk_text_view_get_wrap_mode(GTK_TEXT_VIEW(view)), GTK_WRAP_WORD_CHAR);
        EXPECT_FALSE(gtk_text_view_get_accepts_tab(GTK_TEXT_VIEW(view)));
    }
}

TEST_F(Pages, TheRecordKnowsEveryStatusLine) {
    const struct {
        const char* what;
        GtkWidget* widget;
        const char* outline;
    } cases[] = {
        {"port instructions", widgets.reachability_label, "label \"\" [0 0 8 0]\n"},
        {"reach line", widgets.port_status_label, "label \"\" .small [0 0 6 6]\n"},
        {"certificate line", widgets.port_hint_label, "label \"\" .small [0 0 0 6]\n"},
        {"listing line", widgets.listing_status_label, "label \"\" .small [0 0 0 8]\n"},
        {"registration line", widgets.registered_label, "label \"\" .small [0 0 0 12]\n"},
        {"what discovery says", widgets.receivers_status, "label \"\" .small expands\n"},
        {"grid hint", widgets.grid_hint, "label \"\" .small\n"},
        {"upload estimate", widgets.upload_estimate, "label \"\" .small\n"},
        {"empty table", widgets.listeners_empty,
         "label \"Nobody is listening right now.\" .muted [0 0 6 6]\n"},
        {"getting started", widgets.getting_started_box, "box vertical [0 0 0 6]\n"},
        {"receivers on the air", widgets.on_air_box, "box vertical [0 0 0 6]\n"},
        {"receiver rows", widgets.receiver_rows_box, "box vertical 12\n"},
        {"find devices", widgets.find_devices_button, "button \"Find devices\"\n"},
        {"end session", widgets.end_session_button, "button \"End session\" insensitive\n"},
        {"block", widgets.block_button, "button \"Block address…\" insensitive\n"},
        {"register", widgets.register_button, "button \"Register this station\" .primary\n"},
        {"understood", widgets.understand_check, "check \"I understand\"\n"},
        {"relay switch", widgets.relay_switch, "switch centred at end\n"},
        {"linger switch", widgets.linger_switch, "switch centred at end\n"},
        {"description", widgets.description_view, "text view height 80 expands\n"},
        {"blocked addresses", widgets.banned_view, "text view height 70 expands\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(outline_of(c.widget), c.outline);
    }
    EXPECT_EQ(page_of(widgets.reachability_label), "internet");
    EXPECT_EQ(page_of(widgets.receivers_status), "receivers");
    EXPECT_EQ(gtk_widget_get_parent(widgets.port_hint_label), widgets.port_box);
    EXPECT_EQ(ancestor_with(field("relay.key"), "row"), widgets.relay_key_row);
    EXPECT_EQ(field("station.grid"), widgets.grid_entry);
    EXPECT_EQ(field("listeners.max"), widgets.max_listeners_spin);
    EXPECT_EQ(field("relay.enabled"), widgets.relay_switch);
}

TEST_F(Pages, TheListenersTableHasANumberAndThreeTexts) {
    GtkTreeModel* model = GTK_TREE_MODEL(widgets.listeners_store);
    ASSERT_EQ(gtk_tree_model_get_n_columns(model), 4);
    EXPECT_EQ(gtk_tree_model_get_column_type(model, 0), G_TYPE_INT);
    for (gint column = 1; column < 4; ++column)
        EXPECT_EQ(gtk_tree_model_get_column_type(model, column), G_TYPE_STRING);
    EXPECT_EQ(gtk_tree_view_get_model(GTK_TREE_VIEW(widgets.listeners_view)), model);
}

TEST_F(PageFields, TheListenersButtonsFollowTheSelection) {
    load(state_document());
    GtkTreeIter row;
    ASSERT_TRUE(gtk_tree_model_get_iter_first(GTK_TREE_MODEL(widgets.listeners_store), &row));
    GtkTreeSelection* selection =
        gtk_tree_view_get_selection(GTK_TREE_VIEW(widgets.listeners_view));
    const auto expect_sensitive = [](bool sensitive) {
        EXPECT_EQ(gtk_widget_get_sensitive(widgets.end_session_button), sensitive);
        EXPECT_EQ(gtk_widget_get_sensitive(widgets.block_button), sensitive);
    };
    gtk_tree_selection_unselect_all(selection);
    expect_sensitive(false);
    gtk_tree_selection_select_iter(selection, &row);
    expect_sensitive(true);
    gtk_tree_selection_unselect_all(selection);
    expect_sensitive(false);
    gtk_tree_selection_select_iter(selection, &row);
    poll(with(state_document(), "status.listeners", json::array{}));
    expect_sensitive(false);
}

TEST_F(Pages, AdvancedIsClosedAtFirst) {
    GtkWidget* expander = gtk_widget_get_ancestor(field("directory.url"), GTK_TYPE_EXPANDER);
    ASSERT_NE(expander, nullptr);
    EXPECT_FALSE(gtk_expander_get_expanded(GTK_EXPANDER(expander)));
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

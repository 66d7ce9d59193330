// SPDX-License-Identifier: MIT
#include "status/render_state.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "support/row_parts.h"
#include "support/window_fixture.h"
#include "ui/load_form.h"

namespace {

const std::string host{directory_host};

using RenderState = WindowTest;

json::value old_document() {
    return without(state_document(), "status.https");
}

/// Differs from the old document in every section that a pass draws.
json::value new_document() {
    json::value document = with(old_document(), "status.directory",
                                {{"state", "check-in failed"}, {"address", "192.0.2.8:8073"}});
    document = with(document, "status.receivers",
                    json::array{{{"device", "One"}, {"attached", false}, {"lo", 1e6}, {"hi", 2e6}},
                                {{"device", "Two"}, {"attached", true}, {"lo", 3e6}, {"hi", 4e6}},
                                {{"device", "Six"}, {"attached", true}, {"lo", 5e6}, {"hi", 6e6}}});
    document = with(document, "status.started",
                    json::array{{{"running", false}, {"serial", "S"}, {"log", "L"}},
                                {{"running", false}, {"serial", "T"}, {"log", "M"}}});
    return with(document, "status.listeners",
                json::array{{{"number", 1}, {"address", "a"}, {"seconds", 1}}});
}

/// The sections of a pass that show the new document, in the order in which they are drawn.
std::string sections_that_are_new() {
    std::string sections;
    const auto add = [&sections](const char* name, bool is_new) {
        if (is_new)
            sections.append(sections.empty() ? "" : " ").append(name);
    };
    add("header", text_of(widgets.header_status) ==
                      "On the air · 3 receivers · 1 of 8 listening · cannot reach " + host);
    add("checklist", gtk_widget_get_visible(widgets.getting_started_card));
    add("link", std::string{gtk_link_button_get_uri(GTK_LINK_BUTTON(widgets.station_link))} ==
                    "http://192.0.2.8:8073/");
    add("title", text_of(widgets.listeners_title) == "Listening now · 1 of 8");
    add("table",
        gtk_tree_model_iter_n_children(GTK_TREE_MODEL(widgets.listeners_store), nullptr) == 1);
    add("internet", text_of(widgets.port_status_label) == "Checking…");
    return sections;
}

/// The names in the rows of receivers, with blanks between them.
std::string receivers_shown() {
    std::string names;
    for (GtkWidget* row : children_of(widgets.on_air_box)) {
        const std::string text = text_of(children_of(row).at(1));
        names.append(names.empty() ? "" : " ").append(text.substr(0, text.find(' ')));
    }
    return names;
}

TEST_F(RenderState, DrawsEverySectionInOnePass) {
    load(old_document());
    EXPECT_EQ(sections_that_are_new(), "");
    EXPECT_EQ(receivers_shown(), "RSPdx RTL-SDR");
    poll(new_document());
    EXPECT_EQ(sections_that_are_new(), "header checklist link title table internet");
    EXPECT_EQ(receivers_shown(), "One Two Six S T");
}

TEST_F(RenderState, StopsWhereTheDocumentIsBroken) {
    const json::value whole = new_document();
    const std::string nothing;
    const std::string before_receivers = "header checklist link";
    const std::string before_table = "header checklist link title";
    const std::string both = "RSPdx RTL-SDR";
    const struct {
        const char* what;
        json::value document;
        std::string new_sections;
        std::string receivers;
    } cases[] = {
        {"no directory", without(whole, "status.directory"), nothing, both},
        {"a directory that is null", with(whole, "status.directory", nullptr), nothing, both},
        {"a directory that is an array", with(whole, "status.directory", json::array{}), nothing,
         both},
        {"a directory without a state", without(whole, "status.directory.state"), nothing, both},
        {"reachable as a word", with(whole, "status.directory.reachable", "yes"), nothing, both},
        {"reachable as null", with(whole, "status.directory.reachable", nullptr), nothing, both},
        {"no receivers", without(whole, "status.receivers"), nothing, both},
        {"receivers as an object", with(whole, "status.receivers", json::object{}), nothing, both},
        {"no listeners", without(whole, "status.listeners"), nothing, both},
        {"listeners as null", with(whole, "status.listeners", nullptr), nothing, both},
        {"broker as a word", with(whole, "status.broker", "yes"), nothing, both},
        {"broker as a number", with(whole, "status.broker", 1), nothing, both},
        {"broker as null", with(whole, "status.broker", nullptr), nothing, both},
        {"a receiver that is a word", with(whole, "status.receivers.1", "Two"), before_receivers,
         "One"},
        {"a receiver that is null", with(whole, "status.receivers.0", nullptr), before_receivers,
         ""},
        {"attached is missing", without(whole, "status.receivers.1.attached"), before_receivers,
         "One"},
        {"attached is a number", with(whole, "status.receivers.1.attached", 1), before_receivers,
         "One"},
        {"lo is missing", without(whole, "status.receivers.1.lo"), before_receivers, "One"},
        {"hi is missing", without(whole, "status.receivers.2.hi"), before_receivers, "One Two"},
        {"no started", without(whole, "status.started"), before_receivers, "One Two Six"},
        {"started as null", with(whole, "status.started", nullptr), before_receivers,
         "One Two Six"},
        {"started as an object", with(whole, "status.started", json::object{}), before_receivers,
         "One Two Six"},
        {"a started receiver that is a number", with(whole, "status.started.1", 1),
         before_receivers, "One Two Six S"},
        {"running is missing", without(whole, "status.started.0.running"), before_receivers,
         "One Two Six"},
        {"running is a word", with(whole, "status.started.0.running", "no"), before_receivers,
         "One Two Six"},
        {"serial is missing", without(whole, "status.started.0.serial"), before_receivers,
         "One Two Six"},
        {"log is missing", without(whole, "status.started.1.log"), before_receivers,
         "One Two Six S"},
        {"a listener that is null", with(whole, "status.listeners.0", nullptr), before_table,
         "One Two Six S T"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        load(old_document());
        EXPECT_THROW(poll(c.document), std::exception);
        // Two rows of the table went and none came, so it is not the new one.
        EXPECT_EQ(sections_that_are_new(), c.new_sections);
        EXPECT_EQ(receivers_shown(), c.receivers);
        poll(whole);
        EXPECT_EQ(sections_that_are_new(), "header checklist link title table internet");
        EXPECT_EQ(receivers_shown(), "One Two Six S T");
    }
}

TEST_F(RenderState, NeedsNeitherSerialNorLogOfAReceiverThatRuns) {
    load(with(old_document(), "status.started", json::array{{{"running", true}}}));
    EXPECT_EQ(receivers_shown(), "RSPdx RTL-SDR");
}

TEST_F(RenderState, TakesMissingPartsOfTheStatusForNothing) {
    json::value document = with(state_document(), "settings.relay.enabled", true);
    document = without(without(document, "status.relay"), "status.https");
    load(document);
    EXPECT_EQ(text_of(widgets.port_status_label), "Press Save to connect.");
    EXPECT_EQ(text_of(widgets.port_hint_label), "A secure https address comes automatically once " +
                                                    host + " can reach the station.");
    for (const json::value& other : {json::value(nullptr), json::value(5), json::value("on"),
                                     json::value(json::array{}), json::value(true)}) {
        SCOPED_TRACE(json::serialize(other));
        poll(with(with(document, "status.relay", other), "status.https", other));
        EXPECT_EQ(text_of(widgets.port_status_label), "Press Save to connect.");
        EXPECT_FALSE(gtk_widget_get_visible(widgets.station_link_row));
    }
}

TEST_F(RenderState, CountsTheListAsWantedWhenNothingSaysSo) {
    const json::value unregistered =
        with(state_document(), "status.directory.state", "not registered");
    load(without(unregistered, "settings.directory.listed"));
    EXPECT_EQ(text_of(widgets.listing_status_label), "Not registered yet: register below.");
    load(with(unregistered, "settings.directory.listed", false));
    EXPECT_EQ(text_of(widgets.listing_status_label),
              "Not listed: switch on “List this station” to appear.");
}

TEST_F(RenderState, RefusesAWishForTheListThatIsNoBoolean) {
    load(state_document());
    for (const json::value& listed : {json::value("true"), json::value(1), json::value(nullptr)}) {
        SCOPED_TRACE(json::serialize(listed));
        EXPECT_THROW(load(with(state_document(), "settings.directory.listed", listed)),
                     std::exception);
    }
}

TEST_F(RenderState, TakesAWishForTheRelayThatIsNoBooleanForNone) {
    for (const json::value& enabled : {json::value("true"), json::value(1), json::value(nullptr)}) {
        SCOPED_TRACE(json::serialize(enabled));
        load(with(state_document(), "settings.relay.enabled", enabled));
        EXPECT_EQ(text_of(widgets.port_status_label),
                  "✓ " + host + " reached the station at 192.0.2.7:8073.");
    }
}

TEST_F(RenderState, ReadsTheSettingsAsOfTheLastLoad) {
    load(state_document());
    poll(with(with(state_document(), "settings.listeners.max", 99), "status.broker", true));
    EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 2 of 8");
    load(with(state_document(), "settings.listeners.max", 99));
    EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 2 of 99");
}

TEST_F(RenderState, CountsNoPlacesWhereTheSettingsNameNone) {
    load(without(state_document(), "settings.listeners"));
    EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 2 of 0");
    load(with(state_document(), "settings.listeners.max", 12.9));
    EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 2 of 12");
    load(with(state_document(), "settings.listeners.max", "many"));
    EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 2 of 0");
}

TEST_F(RenderState, ThrowsWhenThereIsNoStateYet) {
    load(state_document());
    const std::string line = text_of(widgets.header_status);
    status_object = {};
    EXPECT_THROW(render_state(), std::exception);
    EXPECT_EQ(text_of(widgets.header_status), line);
}

} // namespace

// SPDX-License-Identifier: MIT
#include "status/refresh_status.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "support/window_fixture.h"

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

TEST_F(RenderState, StopsWhereTheDocumentIsBroken) {
    const json::value whole = new_document();
    const std::string both = "RSPdx RTL-SDR";
    const std::string to_link = "header checklist link";
    const struct {
        const char* what;
        json::value document;
        std::string new_sections;
        std::string receivers;
    } cases[] = {
        {"no directory", without(whole, "status.directory"), "", both},
        {"broker as a word", with(whole, "status.broker", "yes"), "", both},
        {"a receiver that is null", with(whole, "status.receivers.0", nullptr), to_link, ""},
        {"attached is a number", with(whole, "status.receivers.1.attached", 1), to_link, "One"},
        {"hi is missing", without(whole, "status.receivers.2.hi"), to_link, "One Two"},
        {"no started", without(whole, "status.started"), to_link, "One Two Six"},
        {"serial is missing", without(whole, "status.started.0.serial"), to_link, "One Two Six"},
        {"log is missing", without(whole, "status.started.1.log"), to_link, "One Two Six S"},
        {"a listener that is null", with(whole, "status.listeners.0", nullptr),
         "header checklist link title", "One Two Six S T"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        load(old_document());
        EXPECT_EQ(sections_that_are_new(), "");
        EXPECT_EQ(receivers_shown(), both);
        EXPECT_THROW(poll(c.document), std::exception);
        // Two rows of the table went and none came, so it is not the new one.
        EXPECT_EQ(sections_that_are_new(), c.new_sections);
        EXPECT_EQ(receivers_shown(), c.receivers);
        poll(whole);
        EXPECT_EQ(sections_that_are_new(), "header checklist link title table internet");
        EXPECT_EQ(receivers_shown(), "One Two Six S T");
    }
}

} // namespace

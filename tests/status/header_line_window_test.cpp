// SPDX-License-Identifier: MIT
#include "link/build_constants.h"
#include "link/json_access.h"
#include "support/window_fixture.h"

namespace {

using HeaderLineInTheWindow = WindowTest;

TEST_F(HeaderLineInTheWindow, PutsItsColourOnTheDotAlone) {
    const std::string off = "Off the air: your receiver broker is not running (systemctl --user "
                            "start tarnwave-broker)";
    const struct {
        const char* when;
        json::value document;
        std::string line;
        std::string dot_class;
    } cases[] = {
        {"all is well", state_document(),
         std::string{"On the air · 2 receivers · 2 of 8 listening · listed on "} + directory_host,
         "good"},
        {"the router forwards nothing", with(state_document(), "status.directory.reachable", false),
         "On the air · 2 receivers · 2 of 8 listening · not reachable from the internet",
         "warning"},
        {"the broker is down", with(state_document(), "status.broker", false), off, "error"},
        {"the broker is not mentioned", without(state_document(), "status.broker"), off, "error"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        load(c.document);
        EXPECT_EQ(text_of(widgets.header_status), c.line);
        EXPECT_EQ(status_class_of(widgets.header_dot), c.dot_class);
        EXPECT_EQ(status_class_of(widgets.header_status), "");
        EXPECT_FALSE(gtk_label_get_use_markup(GTK_LABEL(widgets.header_status)));
        EXPECT_EQ(children_of(widgets.on_air_box).size(), 2U);
    }
}

} // namespace

// SPDX-License-Identifier: MIT
#include "ui/form.h"

#include "support/window_fixture.h"

namespace {

using GridSquare = WindowTest;

TEST_F(GridSquare, IsJudgedAsItIsTyped) {
    load(state_document());
    type_into("station.grid", "EM9");
    EXPECT_EQ(text_of(widgets.grid_hint),
              "Not a grid square: two letters A–R, two digits, and optionally two letters a–x.");
    EXPECT_EQ(status_class_of(widgets.grid_hint), "error");
    EXPECT_TRUE(has_class(widgets.grid_entry, "invalid"));
    type_into("station.grid", "em95");
    EXPECT_EQ(text_of(widgets.grid_hint), "On the map at about 35.5° N, 81.0° W.");
    EXPECT_EQ(status_class_of(widgets.grid_hint), "");
    EXPECT_FALSE(has_class(widgets.grid_entry, "invalid"));
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(widgets.grid_entry)), "em95");
}

TEST_F(GridSquare, IsJudgedWhenItIsLoaded) {
    load(with(state_document(), "settings.station.grid", "EM9"));
    EXPECT_TRUE(has_class(widgets.grid_entry, "invalid"));
    load(state_document());
    EXPECT_FALSE(has_class(widgets.grid_entry, "invalid"));
}

using UploadEstimate = WindowTest;

TEST_F(UploadEstimate, FollowsTheNumberOfListeners) {
    load(state_document());
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(widgets.max_listeners_spin), 17);
    EXPECT_EQ(text_of(widgets.upload_estimate),
              "Uses about 1.0 Mbit/s of your upload when every place is taken.");
}

TEST_F(UploadEstimate, FollowsALoadThatLeavesTheNumberAsItWas) {
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(widgets.max_listeners_spin), 8);
    gtk_label_set_text(GTK_LABEL(widgets.upload_estimate), "");
    load(state_document());
    EXPECT_EQ(text_of(widgets.upload_estimate),
              "Uses about 480 kbit/s of your upload when every place is taken.");
}

} // namespace

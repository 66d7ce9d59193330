// SPDX-License-Identifier: MIT
#include "ui/field_checks.h"

#include "support/window_fixture.h"

namespace {

using GridSquare = WindowTest;

TEST_F(GridSquare, IsJudgedAsItIsTyped) {
    constexpr char example[] = "Places the station on the list's map, e.g. EM95 or EM95ab.";
    constexpr char wrong[] =
        "Not a grid square: two letters A–R, two digits, and optionally two letters a–x.";
    const struct {
        const char* typed;
        const char* hint;
        bool valid;
    } cases[] = {
        {"", example, true},
        {"E", wrong, false},
        {"EM", wrong, false},
        {"EM9", wrong, false},
        {"EM95", "On the map at about 35.5° N, 81.0° W.", true},
        {"em95", "On the map at about 35.5° N, 81.0° W.", true},
        {"EM95a", wrong, false},
        {"EM95ab", "On the map at about 35.1° N, 82.0° W.", true},
        {"em95AB", "On the map at about 35.1° N, 82.0° W.", true},
        {"EM95ay", wrong, false},
        {"ES95", wrong, false},
        {"RR99", "On the map at about 89.5° N, 179.0° E.", true},
        {"JJ00", "On the map at about 0.5° N, 1.0° E.", true},
        {"AA00", "On the map at about 89.5° S, 179.0° W.", true},
        {"", example, true},
    };
    load(state_document());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        type_into("station.grid", c.typed);
        EXPECT_EQ(text_of(widgets.grid_hint), c.hint);
        EXPECT_EQ(status_class_of(widgets.grid_hint), c.valid ? "" : "error");
        EXPECT_EQ(has_class(widgets.grid_entry, "invalid"), !c.valid);
        EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(widgets.grid_entry)), c.typed);
    }
}

TEST_F(GridSquare, IsJudgedWhenItIsLoaded) {
    load(with(state_document(), "settings.station.grid", "EM9"));
    EXPECT_TRUE(has_class(widgets.grid_entry, "invalid"));
    load(with(state_document(), "settings.station.grid", "JJ00"));
    EXPECT_EQ(text_of(widgets.grid_hint), "On the map at about 0.5° N, 1.0° E.");
    EXPECT_FALSE(has_class(widgets.grid_entry, "invalid"));
    load(with(state_document(), "settings.station.grid", ""));
    EXPECT_EQ(text_of(widgets.grid_hint),
              "Places the station on the list's map, e.g. EM95 or EM95ab.");
}

using UploadEstimate = WindowTest;

TEST_F(UploadEstimate, FollowsTheNumberOfListeners) {
    const struct {
        double listeners;
        const char* text;
    } cases[] = {
        {1, "Uses about 60 kbit/s of your upload when every place is taken."},
        {2, "Uses about 120 kbit/s of your upload when every place is taken."},
        {16, "Uses about 960 kbit/s of your upload when every place is taken."},
        {17, "Uses about 1.0 Mbit/s of your upload when every place is taken."},
        {20, "Uses about 1.2 Mbit/s of your upload when every place is taken."},
        {200, "Uses about 12.0 Mbit/s of your upload when every place is taken."},
    };
    load(state_document());
    for (const auto& c : cases) {
        SCOPED_TRACE(c.listeners);
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(widgets.max_listeners_spin), c.listeners);
        EXPECT_EQ(text_of(widgets.upload_estimate), c.text);
    }
}

TEST_F(UploadEstimate, FollowsALoadThatLeavesTheNumberAsItWas) {
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(widgets.max_listeners_spin), 8);
    gtk_label_set_text(GTK_LABEL(widgets.upload_estimate), "");
    load(state_document());
    EXPECT_EQ(text_of(widgets.upload_estimate),
              "Uses about 480 kbit/s of your upload when every place is taken.");
}

} // namespace

// SPDX-License-Identifier: MIT
#include "ui/widgets/change_tracking.h"

#include "support/window_fixture.h"
#include "ui/widgets/setters.h"

#include <functional>

namespace {

class ChangeTracking : public WindowTest {
protected:
    ChangeTracking() { load(state_document()); }

    void expect_dirty(bool dirty) {
        EXPECT_EQ(widgets.dirty, dirty);
        EXPECT_EQ(gtk_widget_get_sensitive(widgets.save_button), dirty);
        EXPECT_EQ(gtk_widget_get_visible(widgets.unsaved_label), dirty);
    }
};

void flip(GtkWidget* toggle) {
    gtk_switch_set_active(GTK_SWITCH(toggle), !gtk_switch_get_active(GTK_SWITCH(toggle)));
}

void step_up(GtkWidget* spin) {
    gtk_spin_button_spin(GTK_SPIN_BUTTON(spin), GTK_SPIN_STEP_FORWARD, 1);
}

TEST_F(ChangeTracking, EveryFieldMarksTheFormEdited) {
    for (const FieldBinding& binding : widgets.field_registry) {
        SCOPED_TRACE(binding.key);
        mark_clean();
        if (GTK_IS_SWITCH(binding.widget)) {
            flip(binding.widget);
        } else if (GTK_IS_SPIN_BUTTON(binding.widget)) {
            step_up(binding.widget);
        } else {
            type_into(binding.widget, "edit");
        }
        expect_dirty(true);
    }
}

TEST_F(ChangeTracking, EveryOtherPartOfTheFormDoesToo) {
    const Receiver& receiver = widgets.receiver_list.at(0);
    const struct {
        const char* what;
        std::function<void()> edit;
    } cases[] = {
        {"the description", [] { set_text_of_view(widgets.description_view, "Edited."); }},
        {"the blocked addresses", [] { set_text_of_view(widgets.banned_view, "192.0.2.1"); }},
        {"USB", [] { gtk_button_clicked(GTK_BUTTON(widgets.mode_buttons[0])); }},
        {"LSB", [] { gtk_button_clicked(GTK_BUTTON(widgets.mode_buttons[1])); }},
        {"CW", [] { gtk_button_clicked(GTK_BUTTON(widgets.mode_buttons[2])); }},
        {"AM", [] { gtk_button_clicked(GTK_BUTTON(widgets.mode_buttons[3])); }},
        {"FM", [] { gtk_button_clicked(GTK_BUTTON(widgets.mode_buttons[4])); }},
        {"a receiver's lowest frequency", [&] { step_up(receiver.low_spin); }},
        {"a receiver's highest frequency", [&] { step_up(receiver.high_spin); }},
        {"a receiver's switch", [&] { flip(receiver.share_switch); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        mark_clean();
        c.edit();
        expect_dirty(true);
    }
}

TEST_F(ChangeTracking, WhatIsNoSettingDoesNot) {
    flip(widgets.linger_switch);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.understand_check), TRUE);
    type_into(widgets.register_email, "ann@hilltop.example");
    drain_events();
    expect_dirty(false);
}

TEST_F(ChangeTracking, AnEditTakenBackIsStillAnEdit) {
    flip(field("attach"));
    flip(field("attach"));
    expect_dirty(true);
    mark_clean();
    type_into("station.name", "Elsewhere");
    type_into("station.name", "Hilltop SDR");
    expect_dirty(true);
}

TEST_F(ChangeTracking, TypedDigitsAreAnEditBeforeTheyAreAValue) {
    type_into("listeners.max", "12");
    EXPECT_EQ(gtk_spin_button_get_value(GTK_SPIN_BUTTON(field("listeners.max"))), 8);
    expect_dirty(true);
}

TEST_F(ChangeTracking, TakesTypedDigitsOver) {
    type_into("listeners.max", "12");
    type_into("network.port", "nonsense");
    type_into(widgets.receiver_list.at(0).low_spin, "7.1");
    commit_typed_values();
    EXPECT_EQ(gtk_spin_button_get_value(GTK_SPIN_BUTTON(field("listeners.max"))), 12);
    EXPECT_EQ(gtk_spin_button_get_value(GTK_SPIN_BUTTON(field("network.port"))), 8073);
    EXPECT_DOUBLE_EQ(
        gtk_spin_button_get_value(GTK_SPIN_BUTTON(widgets.receiver_list.at(0).low_spin)), 7.1);
}

TEST_F(ChangeTracking, IgnoresTheLoadersWrites) {
    widgets.loading = true;
    type_into("station.name", "Loaded");
    flip(field("attach"));
    mark_dirty();
    widgets.loading = false;
    expect_dirty(false);
}

TEST_F(ChangeTracking, LeavesOtherWidgetsAlone) {
    GtkWidget* button = gtk_button_new_with_label("No setting");
    g_object_ref_sink(button);
    track_changes(button);
    gtk_button_clicked(GTK_BUTTON(button));
    expect_dirty(false);
    GtkWidget* check = gtk_check_button_new();
    g_object_ref_sink(check);
    track_changes(check);
    gtk_button_clicked(GTK_BUTTON(check));
    expect_dirty(true);
    g_object_unref(check);
    g_object_unref(button);
}

} // namespace

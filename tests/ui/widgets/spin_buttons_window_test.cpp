// SPDX-License-Identifier: MIT
#include "ui/widgets/spin_buttons.h"

#include "link/json_access.h"
#include "support/user_locale.h"
#include "support/widget_outline.h"
#include "support/window_fixture.h"

namespace {

class SpinButtons : public WindowTest {
protected:
    SpinButtons() {
        load(state_document());
        show_page_at_once("receivers");
    }

    GtkWidget* frequency() const { return widgets.receiver_list.at(0).low_spin; }

    static double value_of(GtkWidget* spin) {
        return gtk_spin_button_get_value(GTK_SPIN_BUTTON(spin));
    }
    static std::string shown_in(GtkWidget* spin) { return gtk_entry_get_text(GTK_ENTRY(spin)); }
    static void take_over(GtkWidget* spin) { gtk_spin_button_update(GTK_SPIN_BUTTON(spin)); }
};

constexpr const char* locales[] = {"C.UTF-8", "de_DE.UTF-8", "ar_EG.UTF-8", "fr_FR.UTF-8"};

TEST_F(SpinButtons, AFrequencyHasKilohertzSteps) {
    EXPECT_EQ(outline_of(frequency()),
              "GtkSpinButton 0 to 6000 by 0.001 .horizontal text=\"7.000\" digits=3 (low_spin)\n");
    EXPECT_EQ(gtk_entry_get_width_chars(GTK_ENTRY(frequency())), 9);
    EXPECT_STREQ(atk_object_get_name(gtk_widget_get_accessible(frequency())),
                 "Lowest frequency of RSPdx in MHz");
}

TEST_F(SpinButtons, ReadWhatIsTypedCharacterByCharacterInEveryLocale) {
    for (const char* locale : locales) {
        SCOPED_TRACE(locale);
        const UserLocale user{locale};
        for (const std::string typed : {"7.3", "7,3"}) {
            SCOPED_TRACE(typed);
            gtk_spin_button_set_value(GTK_SPIN_BUTTON(frequency()), 1);
            type_into(frequency(), "");
            gint place = 0;
            for (const char& letter : typed)
                gtk_editable_insert_text(GTK_EDITABLE(frequency()), &letter, 1, &place);
            EXPECT_EQ(shown_in(frequency()), typed);
            take_over(frequency());
            EXPECT_DOUBLE_EQ(value_of(frequency()), 7.3);
            EXPECT_EQ(shown_in(frequency()), "7.300");
        }
    }
}

TEST_F(SpinButtons, KeepLettersOut) {
    type_into(frequency(), "7");
    gint place = 1;
    for (const char* letter : {"a", "MHz", "e", "٣"})
        gtk_editable_insert_text(GTK_EDITABLE(frequency()), letter, -1, &place);
    EXPECT_EQ(shown_in(frequency()), "7");
}

TEST_F(SpinButtons, ReadWhatIsPasted) {
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(frequency()), 1);
    gtk_editable_select_region(GTK_EDITABLE(frequency()), 0, -1);
    gtk_clipboard_set_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), " 7,3\n", -1);
    gtk_editable_paste_clipboard(GTK_EDITABLE(frequency()));
    ASSERT_TRUE(wait_until([&] { return shown_in(frequency()) != "1.000"; }));
    take_over(frequency());
    EXPECT_DOUBLE_EQ(value_of(frequency()), 7.3);
}

TEST_F(SpinButtons, KeepTheirValueWhenWhatIsTypedIsNoNumber) {
    for (const char* typed : {"", "nonsense", "7.3.1"}) {
        SCOPED_TRACE(typed);
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(frequency()), 7.1);
        type_into(frequency(), typed);
        take_over(frequency());
        EXPECT_DOUBLE_EQ(value_of(frequency()), 7.1);
        EXPECT_EQ(shown_in(frequency()), "7.100");
    }
}

TEST_F(SpinButtons, GoToTheEndsOfTheirRangeAndRoundToTheirDigits) {
    const std::pair<const char*, const char*> cases[] = {
        {"-1", "0.000"}, {"6000.001", "6000.000"}, {"7.1236", "7.124"}};
    for (const auto& [typed, shown] : cases) {
        type_into(frequency(), typed);
        take_over(frequency());
        EXPECT_EQ(shown_in(frequency()), shown);
    }
}

TEST_F(SpinButtons, WholeNumbersShowNoDecimals) {
    type_into("listeners.max", "12,4");
    take_over(field("listeners.max"));
    EXPECT_EQ(value_of(field("listeners.max")), 12);
    EXPECT_EQ(shown_in(field("listeners.max")), "12");
}

class Wheel : public SpinButtons {
protected:
    GtkAdjustment* scrolled() const {
        return gtk_scrolled_window_get_vadjustment(
            GTK_SCROLLED_WINDOW(gtk_stack_get_visible_child(GTK_STACK(widgets.stack))));
    }
    GtkWidget* band_menu() const {
        for (GtkWidget* widget : tree_of(widgets.receiver_list.at(0).details_box))
            if (GTK_IS_COMBO_BOX(widget))
                return widget;
        return nullptr;
    }
    GtkWidget* menu_button() const {
        for (GtkWidget* widget : tree_of(band_menu()))
            if (GTK_IS_TOGGLE_BUTTON(widget))
                return widget;
        return nullptr;
    }
    /// Receivers enough for a page that scrolls.
    void load_many_receivers() {
        json::array receivers;
        for (int i = 0; i < 12; ++i)
            receivers.push_back({{"backend", "sdrplay"},
                                 {"serial", std::to_string(i)},
                                 {"lo", 7'000'000},
                                 {"hi", 7'300'000}});
        load(with(state_document(), "settings.receivers", receivers));
        ASSERT_TRUE(wait_for_frame_on(widgets.window));
        ASSERT_GT(gtk_adjustment_get_upper(scrolled()), gtk_adjustment_get_page_size(scrolled()));
        gtk_adjustment_set_value(scrolled(), 0);
        drain_events();
    }
};

TEST_F(Wheel, ScrollsThePageOverAnUnfocusedSpinButton) {
    load_many_receivers();
    ASSERT_FALSE(gtk_widget_has_focus(frequency()));
    turn_wheel(frequency(), GDK_SCROLL_DOWN);
    EXPECT_DOUBLE_EQ(value_of(frequency()), 7.0);
    EXPECT_GT(gtk_adjustment_get_value(scrolled()), 0);
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(Wheel, TurnsAFocusedSpinButton) {
    load_many_receivers();
    gtk_widget_grab_focus(frequency());
    turn_wheel(frequency(), GDK_SCROLL_UP);
    EXPECT_DOUBLE_EQ(value_of(frequency()), 7.001);
    EXPECT_TRUE(widgets.dirty);
}

TEST_F(Wheel, ScrollsThePageOverAnUnfocusedBandMenu) {
    load_many_receivers();
    turn_wheel(menu_button(), GDK_SCROLL_DOWN);
    EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), 0);
    EXPECT_GT(gtk_adjustment_get_value(scrolled()), 0);
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(Wheel, ChoosesInAFocusedBandMenu) {
    load_many_receivers();
    gtk_widget_grab_focus(menu_button());
    turn_wheel(menu_button(), GDK_SCROLL_DOWN);
    EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), 1);
}

} // namespace

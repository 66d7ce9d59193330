// SPDX-License-Identifier: MIT
#include "receivers/receiver_rows.h"

#include "link/json_access.h"
#include "receivers/coverage.h"
#include "support/widget_outline.h"
#include "support/window_fixture.h"

#include "ui/widgets/change_tracking.h"

#include <algorithm>
#include <functional>

namespace {

json::object receiver_setting(const char* backend, double lo, double hi, bool enabled = true) {
    return {{"backend", backend}, {"serial", "S1"}, {"model", "Model"},
            {"lo", lo},           {"hi", hi},       {"enabled", enabled}};
}

json::value only(const json::object& receiver) {
    return with(state_document(), "settings.receivers", json::array{receiver});
}

class ReceiverRows : public WindowTest {
protected:
    ReceiverRows() { show_page_at_once("receivers"); }

    static Receiver& receiver(std::size_t index = 0) { return widgets.receiver_list.at(index); }

    static GtkWidget* card(std::size_t index = 0) {
        return children_of(widgets.receiver_rows_box).at(index);
    }

    static GtkWidget* band_menu(std::size_t index = 0) {
        for (GtkWidget* widget : tree_of(receiver(index).details_box))
            if (GTK_IS_COMBO_BOX(widget))
                return widget;
        ADD_FAILURE() << "no band menu";
        return nullptr;
    }

    static void set_range(double low_mhz, double high_mhz) {
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver().low_spin), low_mhz);
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver().high_spin), high_mhz);
    }

    static std::string range() {
        return std::string{gtk_entry_get_text(GTK_ENTRY(receiver().low_spin))} + "-" +
               gtk_entry_get_text(GTK_ENTRY(receiver().high_spin));
    }

    static std::string coverage() {
        return text_of(receiver().coverage_label) + "|" +
               status_class_of(receiver().coverage_label);
    }

    /// Opens the band menu from the keyboard. Returns its list.
    static GtkWidget* open_band_menu() {
        drain_events();
        gtk_widget_grab_focus(band_menu());
        press_key(widgets.window, GDK_KEY_Down, GDK_MOD1_MASK);
        GtkWidget* list = GTK_WIDGET(gtk_menu_get_for_attach_widget(band_menu())->data);
        EXPECT_TRUE(wait_until([list] { return gtk_widget_get_mapped(list); }));
        return list;
    }

    /// The index of a band in the menu. Fails the test when there is no band of that name.
    static int place_of(std::string_view text) {
        const auto bands = band_presets();
        const auto found = std::find_if(bands.begin(), bands.end(),
                                        [text](const BandPreset& b) { return b.text == text; });
        EXPECT_NE(found, bands.end()) << text;
        return static_cast<int>(found - bands.begin());
    }

    /// Opens the band menu and chooses an item, as the mouse or Enter does.
    static void choose_band(std::string_view text) {
        const int place = place_of(text);
        GtkWidget* list = open_band_menu();
        GtkWidget* item = children_of(list).at(static_cast<std::size_t>(place));
        gtk_menu_shell_activate_item(GTK_MENU_SHELL(list), item, TRUE);
        drain_events();
        EXPECT_FALSE(gtk_widget_get_mapped(list));
    }
};

TEST_F(ReceiverRows, AreOneCardOfWordsWhenThereIsNoReceiver) {
    load(with(state_document(), "settings.receivers", json::array{}));
    EXPECT_EQ(outline_of(widgets.receiver_rows_box),
              R"(GtkBox .vertical spacing=12 (receiver_rows_box)
  GtkBox .card .vertical
    GtkLabel "No receivers yet. Plug in your SDR and press Find devices." markup=No receivers yet. Plug in your SDR and press <b>Find devices</b>. .muted margin-top=14 margin-bottom=14
)");
}

TEST_F(ReceiverRows, AreBuiltLikeThis) {
    load(without(state_document(), "settings.receivers.1"));
    EXPECT_EQ(outline_of(card()), R"(GtkBox .card .vertical
  GtkBox .horizontal .row spacing=12
    GtkBox .vertical spacing=2 expand=TRUE
      GtkLabel "RSPdx" markup=<b>RSPdx</b>
      GtkLabel "SDRplay receiver · serial 2305012345" .small
    GtkSwitch active=TRUE valign=center fill=FALSE pack-type=end (share_switch)
  GtkBox .details .vertical spacing=4 margin-bottom=12 (details_box)
    GtkBox .horizontal spacing=8
      GtkLabel "Frequencies" wrap=FALSE ellipsize=end
      GtkSpinButton 0 to 6000 by 0.001 .horizontal text="7.000" digits=3 (low_spin)
      GtkLabel "to" wrap=FALSE
      GtkSpinButton 0 to 6000 by 0.001 .horizontal text="7.300" digits=3 (high_spin)
      GtkLabel "MHz" wrap=FALSE
      GtkComboBoxText active=0 fill=FALSE pack-type=end
    GtkLabel "Covers 0.3 MHz of the 8 MHz this receiver can take at once." .small (coverage_label)
)");
    EXPECT_EQ(tooltip_of(receiver().share_switch), "Share this receiver with listeners");
    EXPECT_EQ(range(), "7.000-7.300");
    EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), 0);
    for (GtkWidget* const widget : {receiver().share_switch, receiver().low_spin,
                                    receiver().high_spin, receiver().coverage_label})
        EXPECT_TRUE(gtk_widget_get_mapped(widget));
}

TEST_F(ReceiverRows, OfferNoFrequenciesForAReceiverThatTakesAllOfHf) {
    load(only(receiver_setting("rx888", 1e6, 2e6)));
    EXPECT_EQ(outline_of(receiver().details_box),
              R"(GtkBox .details .vertical spacing=4 margin-bottom=12 (details_box)
  GtkLabel "Covers all of HF, 0 to 30 MHz." .muted
)");
    EXPECT_NE(receiver().share_switch, nullptr);
    EXPECT_EQ(receiver().low_spin, nullptr);
    EXPECT_EQ(receiver().high_spin, nullptr);
    EXPECT_EQ(receiver().coverage_label, nullptr);
    check_receiver_range(0);
    gtk_switch_set_active(GTK_SWITCH(receiver().share_switch), FALSE);
    capture_row_edits();
    EXPECT_FALSE(receiver().enabled);
    EXPECT_EQ(receiver().lo, 1e6);
    EXPECT_EQ(receiver().hi, 2e6);
}

TEST_F(ReceiverRows, TellWhetherTheRangeFitsAsItChanges) {
    load(only(receiver_setting("rtl-sdr", 144e6, 148e6)));
    EXPECT_EQ(coverage(), "4.00 MHz is too wide: this receiver covers up to 2 MHz at once.|error");
    set_range(144, 146);
    EXPECT_EQ(coverage(), "Covers 2 MHz of the 2 MHz this receiver can take at once.|");
    set_range(146, 146);
    EXPECT_EQ(coverage(), "The top of the range must be aboove its bottom.|error");
}

TEST_F(ReceiverRows, TellTwoReceiversOfOneModelApartByTheirSerials) {
    const auto name_of = [](GtkWidget* widget) {
        return std::string{atk_object_get_name(gtk_widget_get_accessible(widget))};
    };
    load(with(state_document(), "settings.receivers.1.model", "RSPdx"));
    EXPECT_EQ(name_of(receiver(0).share_switch), "Share RSPdx (serial 2305012345) with listeners");
    EXPECT_EQ(name_of(receiver(1).high_spin),
              "Highest frequency of RSPdx (serial 00000001) in MHz");
}

TEST_F(ReceiverRows, NameTheBandMenuByWhatItShows) {
    load(state_document());
    AtkObject* menu = gtk_widget_get_accessible(band_menu());
    EXPECT_STREQ(atk_object_get_name(menu), "Band…");
    gtk_combo_box_set_active(GTK_COMBO_BOX(band_menu()), place_of("40 m"));
    EXPECT_STREQ(atk_object_get_name(menu), "40 m");
}

TEST_F(ReceiverRows, OfferTheBandsAndTakeEachOverIntoTheRange) {
    load(only(receiver_setting("rtl-sdr", 200e6, 201e6)));
    GtkComboBox* menu = GTK_COMBO_BOX(band_menu());
    const auto bands = band_presets();
    ASSERT_EQ(gtk_tree_model_iter_n_children(gtk_combo_box_get_model(menu), nullptr),
              static_cast<gint>(bands.size()));
    for (std::size_t place = 1; place < bands.size(); ++place) {
        SCOPED_TRACE(bands[place].text);
        mark_clean();
        gtk_combo_box_set_active(menu, static_cast<gint>(place));
        char* text = gtk_combo_box_text_get_active_text(GTK_COMBO_BOX_TEXT(menu));
        EXPECT_STREQ(text, bands[place].text);
        g_free(text);
        const BandRange band = band_range(bands[place].id).value();
        EXPECT_EQ(gtk_spin_button_get_value(GTK_SPIN_BUTTON(receiver().low_spin)), band.low_mhz);
        EXPECT_EQ(gtk_spin_button_get_value(GTK_SPIN_BUTTON(receiver().high_spin)), band.high_mhz);
        EXPECT_TRUE(widgets.dirty);
    }
}

TEST_F(ReceiverRows, LeaveTheRangeAloneWhenNoBandIsChosen) {
    load(state_document());
    choose_band("40 m");
    set_range(7.05, 7.1);
    choose_band("Band…");
    EXPECT_EQ(range(), "7.050-7.100");
    EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), 0);
}

TEST_F(ReceiverRows, TakeABandOverAgainAfterTheRangeWasEdited) {
    load(state_document());
    choose_band("20 m");
    EXPECT_EQ(range(), "14.000-14.350");
    EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), place_of("20 m"));
    for (int again = 0; again < 2; ++again) {
        SCOPED_TRACE(again);
        set_range(14.1, 14.2);
        ASSERT_EQ(range(), "14.100-14.200");
        choose_band("20 m");
        EXPECT_EQ(range(), "14.000-14.350");
        EXPECT_EQ(coverage(), "Covers 0.35 MHz of the 8 MHz this receiver can take at once.|");
        EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), place_of("20 m"));
    }
}

TEST_F(ReceiverRows, TakeABandOverWhateverIsHalfTyped) {
    load(state_document());
    choose_band("40 m");
    type_into(receiver().high_spin, "9");
    choose_band("40 m");
    EXPECT_EQ(range(), "7.000-7.300");
    capture_row_edits();
    EXPECT_DOUBLE_EQ(receiver().hi, 7.3e6);
}

TEST_F(ReceiverRows, LeaveTheRangeAloneWhenTheMenuIsLeft) {
    load(state_document());
    choose_band("20 m");
    set_range(14.1, 14.2);
    GtkWidget* list = open_band_menu();
    gtk_menu_shell_cancel(GTK_MENU_SHELL(list));
    drain_events();
    EXPECT_EQ(range(), "14.100-14.200");
}

TEST_F(ReceiverRows, GreyTheFrequenciesOfAReceiverThatIsOff) {
    load(state_document());
    EXPECT_TRUE(gtk_widget_get_sensitive(receiver().details_box));
    gtk_switch_set_active(GTK_SWITCH(receiver().share_switch), FALSE);
    EXPECT_FALSE(gtk_widget_get_sensitive(receiver().details_box));
    EXPECT_FALSE(gtk_widget_is_sensitive(receiver().low_spin));
    EXPECT_EQ(range(), "7.000-7.300");
    EXPECT_TRUE(widgets.dirty);
    // The opacity applies to all of the box, whatever the colours of its parts.
    GtkStyleContext* style = gtk_widget_get_style_context(receiver().details_box);
    double opacity = 1;
    gtk_style_context_get(style, gtk_style_context_get_state(style), "opacity", &opacity, nullptr);
    EXPECT_LT(opacity, 1);
    gtk_switch_set_active(GTK_SWITCH(receiver().share_switch), TRUE);
    EXPECT_TRUE(gtk_widget_get_sensitive(receiver().details_box));
    gtk_style_context_get(style, gtk_style_context_get_state(style), "opacity", &opacity, nullptr);
    EXPECT_EQ(opacity, 1);
    load(only(receiver_setting("sdrplay", 1e6, 2e6, false)));
    EXPECT_FALSE(gtk_switch_get_active(GTK_SWITCH(receiver().share_switch)));
    EXPECT_FALSE(gtk_widget_get_sensitive(receiver().details_box));
}

TEST_F(ReceiverRows, AreNotCapturedBeforeTheyAreBuilt) {
    load(state_document());
    Receiver unseen;
    unseen.backend = "sdrplay";
    unseen.lo = 5e6;
    unseen.enabled = true;
    widgets.receiver_list.push_back(unseen);
    capture_row_edits();
    EXPECT_TRUE(receiver(2).enabled);
    EXPECT_EQ(receiver(2).lo, 5e6);
    check_receiver_range(2);
    check_receiver_range(widgets.receiver_list.size());
    rebuild_receiver_rows();
    EXPECT_NE(receiver(2).share_switch, nullptr);
}

TEST_F(ReceiverRows, KeepAFrequencyThatIsFinerThanWhatIsShown) {
    load(only(receiver_setting("sdrplay", 7000000.4, 7300000.6)));
    EXPECT_EQ(range(), "7.000-7.300");
    capture_row_edits();
    EXPECT_DOUBLE_EQ(receiver().lo, 7000000.4);
    EXPECT_DOUBLE_EQ(receiver().hi, 7300000.6);
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(ReceiverRows, LeaveTheFormCleanWhenABandIsChosenThatIsThere) {
    load(state_document());
    gtk_combo_box_set_active(GTK_COMBO_BOX(band_menu()), place_of("40 m"));
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(ReceiverRows, ActOnTheirOwnReceiver) {
    load(state_document());
    gtk_combo_box_set_active(GTK_COMBO_BOX(band_menu(1)), place_of("80 m"));
    EXPECT_EQ(range(), "7.000-7.300");
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(receiver(1).low_spin)), "3.500");
    EXPECT_EQ(text_of(receiver(1).coverage_label),
              "Covers 0.5 MHz of the 2 MHz this receiver can take at once.");
    gtk_switch_set_active(GTK_SWITCH(receiver(1).share_switch), FALSE);
    EXPECT_TRUE(gtk_widget_get_sensitive(receiver(0).details_box));
    EXPECT_FALSE(gtk_widget_get_sensitive(receiver(1).details_box));
}

TEST_F(ReceiverRows, SurviveARebuildWhileOneIsTypedIn) {
    load(state_document());
    gtk_widget_grab_focus(receiver().low_spin);
    type_into(receiver().low_spin, "3.5");
    load(without(state_document(), "settings.receivers.0"));
    EXPECT_EQ(widgets.receiver_list.size(), 1U);
    EXPECT_EQ(range(), "144.000-146.000");
    drain_events();
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(ReceiverRows, KeepTheFocusOnTheSameControlOverALoad) {
    load(state_document());
    drain_events();
    const auto menu_button = [](std::size_t index) {
        for (GtkWidget* widget : tree_of(band_menu(index)))
            if (GTK_IS_TOGGLE_BUTTON(widget))
                return widget;
        return static_cast<GtkWidget*>(nullptr);
    };
    const std::function<GtkWidget*()> controls[] = {
        [] { return receiver().share_switch; },
        [] { return receiver().low_spin; },
        [] { return receiver().high_spin; },
        [&menu_button] { return menu_button(0); },
    };
    for (const auto& control : controls) {
        gtk_widget_grab_focus(control());
        ASSERT_EQ(gtk_window_get_focus(GTK_WINDOW(widgets.window)), control());
        load(state_document());
        EXPECT_EQ(gtk_window_get_focus(GTK_WINDOW(widgets.window)), control());
    }
}

} // namespace

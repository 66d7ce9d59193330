// SPDX-License-Identifier: MIT
#include "receivers/receiver_rows.h"

#include "link/json_access.h"
#include "support/row_parts.h"
#include "support/user_locale.h"
#include "support/window_fixture.h"

#include <functional>

namespace {

constexpr char top_below_bottom[] = "The top of the range must be aboove its bottom.";

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

    /// Opens the band menu and chooses the item at a place, as the mouse or Enter does.
    static void choose_band(int place) {
        GtkWidget* list = open_band_menu();
        GtkWidget* item = children_of(list).at(static_cast<std::size_t>(place));
        gtk_menu_shell_activate_item(GTK_MENU_SHELL(list), item, TRUE);
        drain_events();
        EXPECT_FALSE(gtk_widget_get_mapped(list));
    }
};

TEST_F(ReceiverRows, AreOneCardOfWordsWhenThereIsNoReceiver) {
    load(with(state_document(), "settings.receivers", json::array{}));
    ASSERT_EQ(children_of(widgets.receiver_rows_box).size(), 1U);
    EXPECT_EQ(own_classes_of(card()), "card");
    EXPECT_EQ(parts_of(card()),
              (std::vector<RowPart>{
                  {.kind = "GtkLabel",
                   .text = "No receivers yet. Plug in your SDR and press <b>Find devices</b>.",
                   .classes = "muted",
                   .wraps = true}}));
    GtkWidget* label = children_of(card()).front();
    EXPECT_EQ(text_of(label), "No receivers yet. Plug in your SDR and press Find devices.");
    EXPECT_EQ(gtk_widget_get_margin_top(label), 14);
    EXPECT_EQ(gtk_widget_get_margin_bottom(label), 14);
    EXPECT_TRUE(gtk_widget_get_visible(label));
}

TEST_F(ReceiverRows, AreBuiltLikeThis) {
    load(state_document());
    ASSERT_EQ(children_of(widgets.receiver_rows_box).size(), 2U);
    EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(widgets.receiver_rows_box)), 12);
    EXPECT_EQ(own_classes_of(card()), "card");
    const std::vector<GtkWidget*> inside = children_of(card());
    ASSERT_EQ(inside.size(), 2U);

    GtkWidget* header = inside[0];
    EXPECT_EQ(own_classes_of(header), "row");
    EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(header)), 12);
    EXPECT_EQ(parts_of(header), (std::vector<RowPart>{{.kind = "GtkBox", .expands = true},
                                                      {.kind = "GtkSwitch", .at_end = true}}));
    GtkWidget* names = children_of(header)[0];
    EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(names)), 2);
    EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(names)), GTK_ORIENTATION_VERTICAL);
    EXPECT_EQ(parts_of(names),
              (std::vector<RowPart>{{.kind = "GtkLabel", .text = "<b>RSPdx</b>", .wraps = true},
                                    {.kind = "GtkLabel",
                                     .text = "SDRplay receiver · serial 2305012345",
                                     .classes = "small",
                                     .wraps = true}}));
    EXPECT_EQ(gtk_label_get_xalign(GTK_LABEL(children_of(names)[0])), 0);
    EXPECT_EQ(children_of(header)[1], receiver().share_switch);
    EXPECT_EQ(gtk_widget_get_valign(receiver().share_switch), GTK_ALIGN_CENTER);
    char* tip = gtk_widget_get_tooltip_text(receiver().share_switch);
    EXPECT_STREQ(tip, "Share this receiver with listeners");
    g_free(tip);

    GtkWidget* details = inside[1];
    EXPECT_EQ(details, receiver().details_box);
    EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(details)), 4);
    EXPECT_EQ(gtk_widget_get_margin_bottom(details), 12);
    EXPECT_EQ(parts_of(details),
              (std::vector<RowPart>{
                  {.kind = "GtkBox"},
                  {.kind = "GtkLabel",
                   .text = "Covers 0.3 MHz of the 8 MHz this receiver can take at once.",
                   .classes = "small",
                   .wraps = true}}));
    GtkWidget* frequencies = children_of(details)[0];
    EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(frequencies)), 8);
    std::vector<std::string> kinds;
    for (const RowPart& part : parts_of(frequencies))
        kinds.push_back(part.kind + (part.text.empty() ? "" : " " + part.text) +
                        (part.at_end ? " at the end" : ""));
    EXPECT_EQ(kinds, (std::vector<std::string>{"GtkLabel Frequencies", "GtkSpinButton",
                                               "GtkLabel to", "GtkSpinButton", "GtkLabel MHz",
                                               "GtkComboBoxText at the end"}));
    EXPECT_EQ(children_of(frequencies)[1], receiver().low_spin);
    EXPECT_EQ(children_of(frequencies)[3], receiver().high_spin);
    for (GtkWidget* widget : tree_of(widgets.receiver_rows_box))
        if (GTK_IS_LABEL(widget) || GTK_IS_ENTRY(widget) || GTK_IS_SWITCH(widget)) {
            EXPECT_TRUE(gtk_widget_get_visible(widget));
        }
}

TEST_F(ReceiverRows, TakeFrequenciesUpToSixGigahertzInKilohertz) {
    load(state_document());
    for (GtkWidget* spin : {receiver().low_spin, receiver().high_spin}) {
        double least = -1;
        double most = -1;
        double step = -1;
        gtk_spin_button_get_range(GTK_SPIN_BUTTON(spin), &least, &most);
        gtk_spin_button_get_increments(GTK_SPIN_BUTTON(spin), &step, nullptr);
        EXPECT_EQ(least, 0);
        EXPECT_EQ(most, 6000);
        EXPECT_EQ(step, 0.001);
        EXPECT_EQ(gtk_spin_button_get_digits(GTK_SPIN_BUTTON(spin)), 3U);
        EXPECT_EQ(gtk_entry_get_width_chars(GTK_ENTRY(spin)), 9);
    }
    EXPECT_EQ(range(), "7.000-7.300");
}

TEST_F(ReceiverRows, NameKindSerialAndWhoHoldsTheDevice) {
    const struct {
        const char* backend;
        bool available;
        const char* subtitle;
    } cases[] = {
        {"rx888", true, "HF direct sampling · serial S1"},
        {"rtl-sdr", true, "RTL-SDR dongle (experimental) · serial S1"},
        {"sdrplay", true, "SDRplay receiver · serial S1"},
        {"", true, "SDRplay receiver · serial S1"},
        {"RX888", true, "SDRplay receiver · serial S1"},
        {"sdrplay", false,
         "SDRplay receiver · serial S1 · <span foreground=\"#FFB020\">in use by another "
         "program</span>"},
        {"rx888", false,
         "HF direct sampling · serial S1 · <span foreground=\"#FFB020\">in use by another "
         "program</span>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.subtitle);
        load(only(receiver_setting(c.backend, 1e6, 2e6)));
        receiver().available = c.available;
        rebuild_receiver_rows();
        EXPECT_EQ(label_texts_below(card()).at(1), c.subtitle);
    }
}

TEST_F(ReceiverRows, ShowMarkupInNamesAsItIs) {
    json::object setting = receiver_setting("sdrplay", 1e6, 2e6);
    setting["model"] = "<i>R&D</i>";
    setting["serial"] = "<&\">";
    load(only(setting));
    EXPECT_NE(find_label(card(), "<i>R&D</i>"), nullptr);
    EXPECT_NE(find_label(card(), "SDRplay receiver · serial <&\">"), nullptr);
}

TEST_F(ReceiverRows, OfferNoFrequenciesForAReceiverThatTakesAllOfHf) {
    load(only(receiver_setting("rx888", 1e6, 2e6)));
    EXPECT_EQ(parts_of(receiver().details_box),
              (std::vector<RowPart>{{.kind = "GtkLabel",
                                     .text = "Covers all of HF, 0 to 30 MHz.",
                                     .classes = "muted",
                                     .wraps = true}}));
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
    const std::string covers_8 = " MHz of the 8 MHz this receiver can take at once.|";
    const std::string covers_2 = " MHz of the 2 MHz this receiver can take at once.|";
    const std::string wide_8 = " MHz is too wide: this receiver covers up to 8 MHz at once.|error";
    const std::string wide_2 = " MHz is too wide: this receiver covers up to 2 MHz at once.|error";
    const struct {
        const char* backend;
        double low;
        double high;
        std::string line;
    } cases[] = {
        {"sdrplay", 7, 7.3, "Covers 0.3" + covers_8},
        {"sdrplay", 7.3, 7.3, std::string{top_below_bottom} + "|error"},
        {"sdrplay", 7.301, 7.3, std::string{top_below_bottom} + "|error"},
        {"sdrplay", 7.299, 7.3, "Covers 0.001" + covers_8},
        {"sdrplay", 8.001, 16.001, "Covers 8" + covers_8},
        {"sdrplay", 8.001, 16.002, "8.00" + wide_8},
        {"sdrplay", 8, 15.999, "Covers 8" + covers_8},
        {"sdrplay", 0, 6000, "6000.00" + wide_8},
        {"other", 118, 126, "Covers 8" + covers_8},
        {"rtl-sdr", 144, 146, "Covers 2" + covers_2},
        {"rtl-sdr", 144.001, 146.001, "Covers 2" + covers_2},
        {"rtl-sdr", 144, 146.001, "2.00" + wide_2},
        {"rtl-sdr", 144, 148, "4.00" + wide_2},
        {"rtl-sdr", 145.234, 146, "Covers 0.766" + covers_2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.backend << ' ' << c.low << " to " << c.high);
        load(only(receiver_setting(c.backend, 1e6, 2e6)));
        set_range(c.low, c.high);
        EXPECT_EQ(coverage(), c.line);
        // And as it was loaded.
        load(only(receiver_setting(c.backend, c.low * 1e6, c.high * 1e6)));
        EXPECT_EQ(coverage(), c.line);
        EXPECT_FALSE(widgets.dirty);
    }
}

TEST_F(ReceiverRows, OfferTheBandsInTheirOrder) {
    load(state_document());
    const std::vector<std::pair<std::string, std::string>> bands = {
        {"", "Band…"},
        {"1.8-2.0", "160 m"},
        {"3.5-4.0", "80 m"},
        {"3.5-7.3", "80 m to 40 m"},
        {"7.0-7.3", "40 m"},
        {"7.0-14.35", "40 m to 20 m"},
        {"10.1-10.15", "30 m"},
        {"14.0-14.35", "20 m"},
        {"14.0-21.45", "20 m to 15 m"},
        {"18.068-18.168", "17 m"},
        {"21.0-21.45", "15 m"},
        {"24.89-24.99", "12 m"},
        {"28.0-29.7", "10 m"},
        {"50.0-54.0", "6 m"},
        {"144.0-148.0", "2 m"},
        {"118.0-126.0", "Airband, lower part"},
        {"156.0-162.1", "Marine VHF"},
        {"430.0-438.0", "70 cm"},
        {"0.5-1.7", "AM broadcast"},
    };
    GtkTreeModel* model = gtk_combo_box_get_model(GTK_COMBO_BOX(band_menu()));
    std::vector<std::pair<std::string, std::string>> offered;
    GtkTreeIter iter;
    for (gboolean valid = gtk_tree_model_get_iter_first(model, &iter); valid;
         valid = gtk_tree_model_iter_next(model, &iter)) {
        char* text = nullptr;
        char* id = nullptr;
        gtk_tree_model_get(model, &iter, 0, &text, 1, &id, -1);
        offered.emplace_back(id, text);
        g_free(text);
        g_free(id);
    }
    EXPECT_EQ(offered, bands);
    EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), 0);
}

TEST_F(ReceiverRows, TellTwoReceiversOfOneModelApartByTheirSerials) {
    const auto name_of = [](GtkWidget* widget) {
        return std::string{atk_object_get_name(gtk_widget_get_accessible(widget))};
    };
    json::object dongle = {{"backend", "rtl-sdr"},
                           {"serial", "00000001"},
                           {"model", "Dongle"},
                           {"lo", 144e6},
                           {"hi", 146e6}};
    json::object other = dongle;
    other["serial"] = "00000002";
    load(with(state_document(), "settings.receivers", json::array{dongle, other}));
    EXPECT_EQ(name_of(receiver(0).share_switch), "Share Dongle (serial 00000001) with listeners");
    EXPECT_EQ(name_of(receiver(1).share_switch), "Share Dongle (serial 00000002) with listeners");
    EXPECT_EQ(name_of(receiver(1).low_spin), "Lowest frequency of Dongle (serial 00000002) in MHz");
    EXPECT_EQ(name_of(receiver(1).high_spin),
              "Highest frequency of Dongle (serial 00000002) in MHz");

    load(only(dongle));
    EXPECT_EQ(name_of(receiver(0).share_switch), "Share Dongle with listeners");
}

TEST_F(ReceiverRows, NameTheBandMenuByWhatItShows) {
    load(state_document());
    AtkObject* menu = gtk_widget_get_accessible(band_menu());
    EXPECT_STREQ(atk_object_get_name(menu), "Band…");
    gtk_combo_box_set_active(GTK_COMBO_BOX(band_menu()), 4);
    EXPECT_STREQ(atk_object_get_name(menu), "40 m");
}

TEST_F(ReceiverRows, TakeEveryBandOverIntoTheRange) {
    const std::string fits_8 = " MHz of the 8 MHz this receiver can take at once.|";
    const std::string fits_2 = " MHz of the 2 MHz this receiver can take at once.|";
    const std::string wide_2 = " MHz is too wide: this receiver covers up to 2 MHz at once.|error";
    const struct {
        int place;
        const char* range;
        std::string of_sdrplay;
        std::string of_dongle;
    } cases[] = {
        {1, "1.800-2.000", "Covers 0.2" + fits_8, "Covers 0.2" + fits_2},
        {2, "3.500-4.000", "Covers 0.5" + fits_8, "Covers 0.5" + fits_2},
        {3, "3.500-7.300", "Covers 3.8" + fits_8, "3.80" + wide_2},
        {4, "7.000-7.300", "Covers 0.3" + fits_8, "Covers 0.3" + fits_2},
        {5, "7.000-14.350", "Covers 7.35" + fits_8, "7.35" + wide_2},
        {6, "10.100-10.150", "Covers 0.05" + fits_8, "Covers 0.05" + fits_2},
        {7, "14.000-14.350", "Covers 0.35" + fits_8, "Covers 0.35" + fits_2},
        {8, "14.000-21.450", "Covers 7.45" + fits_8, "7.45" + wide_2},
        {9, "18.068-18.168", "Covers 0.1" + fits_8, "Covers 0.1" + fits_2},
        {10, "21.000-21.450", "Covers 0.45" + fits_8, "Covers 0.45" + fits_2},
        {11, "24.890-24.990", "Covers 0.1" + fits_8, "Covers 0.1" + fits_2},
        {12, "28.000-29.700", "Covers 1.7" + fits_8, "Covers 1.7" + fits_2},
        {13, "50.000-54.000", "Covers 4" + fits_8, "4.00" + wide_2},
        {14, "144.000-148.000", "Covers 4" + fits_8, "4.00" + wide_2},
        {15, "118.000-126.000", "Covers 8" + fits_8, "8.00" + wide_2},
        {16, "156.000-162.100", "Covers 6.1" + fits_8, "6.10" + wide_2},
        {17, "430.000-438.000", "Covers 8" + fits_8, "8.00" + wide_2},
        {18, "0.500-1.700", "Covers 1.2" + fits_8, "Covers 1.2" + fits_2},
    };
    for (const auto& c : cases) {
        for (const bool dongle : {false, true}) {
            SCOPED_TRACE(testing::Message() << c.range << (dongle ? " rtl-sdr" : " sdrplay"));
            load(only(receiver_setting(dongle ? "rtl-sdr" : "sdrplay", 200e6, 201e6)));
            gtk_combo_box_set_active(GTK_COMBO_BOX(band_menu()), c.place);
            EXPECT_EQ(range(), c.range);
            EXPECT_EQ(coverage(), dongle ? c.of_dongle : c.of_sdrplay);
            EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), c.place);
            EXPECT_TRUE(widgets.dirty);
        }
    }
}

TEST_F(ReceiverRows, LeaveTheRangeAloneWhenNoBandIsChosen) {
    load(state_document());
    choose_band(4);
    set_range(7.05, 7.1);
    choose_band(0);
    EXPECT_EQ(range(), "7.050-7.100");
    EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), 0);
}

TEST_F(ReceiverRows, TakeABandOverAgainAfterTheRangeWasEdited) {
    load(state_document());
    choose_band(7);
    EXPECT_EQ(range(), "14.000-14.350");
    EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), 7);
    for (int again = 0; again < 2; ++again) {
        SCOPED_TRACE(again);
        set_range(14.1, 14.2);
        ASSERT_EQ(range(), "14.100-14.200");
        choose_band(7);
        EXPECT_EQ(range(), "14.000-14.350");
        EXPECT_EQ(coverage(), "Covers 0.35 MHz of the 8 MHz this receiver can take at once.|");
        EXPECT_EQ(gtk_combo_box_get_active(GTK_COMBO_BOX(band_menu())), 7);
    }
}

TEST_F(ReceiverRows, TakeABandOverWhateverIsHalfTyped) {
    load(state_document());
    choose_band(4);
    type_into(receiver().high_spin, "9");
    choose_band(4);
    EXPECT_EQ(range(), "7.000-7.300");
    capture_row_edits();
    EXPECT_DOUBLE_EQ(receiver().hi, 7.3e6);
}

TEST_F(ReceiverRows, LeaveTheRangeAloneWhenTheMenuIsLeft) {
    load(state_document());
    choose_band(7);
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
    // All of it pales, whatever colours its parts have of their own.
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

TEST_F(ReceiverRows, AreCapturedWithSwitchAndRange) {
    load(state_document());
    set_range(14.001, 14.35);
    gtk_switch_set_active(GTK_SWITCH(receiver().share_switch), FALSE);
    capture_row_edits();
    EXPECT_FALSE(receiver(0).enabled);
    EXPECT_DOUBLE_EQ(receiver(0).lo, 14.001e6);
    EXPECT_DOUBLE_EQ(receiver(0).hi, 14.35e6);
    EXPECT_TRUE(receiver(1).enabled);
    EXPECT_EQ(receiver(1).lo, 144e6);
    EXPECT_EQ(receiver(1).hi, 146e6);
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

TEST_F(ReceiverRows, MarkTheFormEditedWithEveryWidgetButTheMenuItself) {
    load(state_document());
    gtk_combo_box_set_active(GTK_COMBO_BOX(band_menu()), 4); // the range that is there
    EXPECT_FALSE(widgets.dirty);
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver().low_spin), 7.1);
    EXPECT_TRUE(widgets.dirty);
    load(state_document());
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(receiver().high_spin), 7.2);
    EXPECT_TRUE(widgets.dirty);
    load(state_document());
    gtk_switch_set_active(GTK_SWITCH(receiver().share_switch), FALSE);
    EXPECT_TRUE(widgets.dirty);
}

TEST_F(ReceiverRows, ActOnTheirOwnReceiver) {
    load(state_document());
    gtk_combo_box_set_active(GTK_COMBO_BOX(band_menu(1)), 2);
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

TEST_F(ReceiverRows, WriteAndReadADotInGermanToo) {
    const UserLocale german{"de_DE.UTF-8"};
    load(only(receiver_setting("sdrplay", 7074000, 7300000)));
    EXPECT_EQ(range(), "7.074-7.300");
    EXPECT_EQ(coverage(), "Covers 0.226 MHz of the 8 MHz this receiver can take at once.|");
    choose_band(9);
    EXPECT_EQ(range(), "18.068-18.168");
    type_into(receiver().low_spin, "18,1");
    type_into(receiver().high_spin, "18.15");
    capture_row_edits();
    EXPECT_DOUBLE_EQ(receiver().lo, 18.1e6);
    EXPECT_DOUBLE_EQ(receiver().hi, 18.15e6);
    EXPECT_EQ(coverage(), "Covers 0.05 MHz of the 8 MHz this receiver can take at once.|");
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

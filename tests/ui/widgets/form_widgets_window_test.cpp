// SPDX-License-Identifier: MIT
#include "ui/widgets/form_widgets.h"
#include "ui/widgets/setters.h"

#include "link/text.h"

#include "support/widget_outline.h"
#include "support/window_fixture.h"

namespace {

/// Builders are tried in a box of their own, which ends with the test.
class Builders : public WindowTest {
protected:
    Builders() : registered_before_{widgets.field_registry.size()} {
        // Never shown, and nobody's child: the test holds it.
        g_object_ref_sink(box);
    }
    ~Builders() override {
        gtk_widget_destroy(box);
        g_object_unref(box);
        widgets.field_registry.resize(registered_before_);
    }

    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);

private:
    std::size_t registered_before_;
};

TEST_F(Builders, ALabelIsMarkupAndStandsLeft) {
    GtkWidget* label = make_label("<b>bold</b> &amp; plain", "muted");
    pack(box, label);
    EXPECT_EQ(text_of(label), "bold & plain");
    EXPECT_EQ(gtk_label_get_xalign(GTK_LABEL(label)), 0);
    EXPECT_TRUE(gtk_label_get_line_wrap(GTK_LABEL(label)));
    EXPECT_EQ(gtk_label_get_line_wrap_mode(GTK_LABEL(label)), PANGO_WRAP_WORD_CHAR);
    EXPECT_TRUE(has_class(label, "muted"));
}

TEST_F(Builders, ALabelMayStandOnOneLineWithoutAClass) {
    GtkWidget* label = make_label("plain", nullptr, false);
    pack(box, label);
    EXPECT_FALSE(gtk_label_get_line_wrap(GTK_LABEL(label)));
    EXPECT_EQ(outline_of(label), "label \"plain\" one line hidden\n");
}

TEST_F(Builders, ACardWithATitleBeginsWithIt) {
    GtkWidget* card = add_card(box, "R&D <b>rooms</b>");
    EXPECT_EQ(children_of(box).at(0), card);
    EXPECT_TRUE(has_class(card, "card"));
    GtkWidget* title = children_of(card).at(0);
    EXPECT_EQ(text_of(title), "R&D <b>rooms</b>");
    EXPECT_EQ(gtk_widget_get_margin_top(title), 12);
    EXPECT_EQ(gtk_widget_get_margin_bottom(title), 2);
    EXPECT_TRUE(has_class(title, "card-title"));
}

TEST_F(Builders, ACardWithoutATitleIsEmpty) {
    GtkWidget* card = add_card(box, nullptr);
    gtk_widget_show(card);
    EXPECT_EQ(outline_of(card), "box vertical .card\n");
}

TEST_F(Builders, TheFirstRowHasNoSeparatorAndEachLaterOneHas) {
    GtkWidget* card = add_card(box, "Card");
    for (const char* label : {"One", "Two", "Three"})
        add_row(card, label, nullptr, nullptr);
    gtk_widget_show_all(box);
    EXPECT_EQ(outline_of(card), R"(box vertical .card
  label "Card" .card-title [0 0 12 2]
  box horizontal 18 .row
    box vertical 2 centred expands
      label "One"
  separator
  box horizontal 18 .row
    box vertical 2 centred expands
      label "Two"
  separator
  box horizontal 18 .row
    box vertical 2 centred expands
      label "Three"
)");
}

TEST_F(Builders, EachCardCountsItsOwnRows) {
    add_row(add_card(box, nullptr), "One", nullptr, nullptr);
    GtkWidget* second = add_card(box, nullptr);
    add_row(second, "Two", nullptr, nullptr);
    EXPECT_EQ(children_of(second).size(), 1U);
}

TEST_F(Builders, ARowHoldsLabelHintAndWidget) {
    GtkWidget* card = add_card(box, nullptr);
    GtkWidget* entry = gtk_entry_new();
    GtkWidget* row = add_row(card, "A & <i>B</i>", "less < more", entry);
    gtk_widget_show_all(box);
    EXPECT_EQ(children_of(card).at(0), row);
    EXPECT_EQ(children_of(row).at(1), entry);
    const std::vector<GtkWidget*> texts = children_of(children_of(row).at(0));
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(text_of(texts[0]), "A & <i>B</i>");
    EXPECT_EQ(text_of(texts[1]), "less < more");
    EXPECT_TRUE(has_class(texts[1], "small"));
    EXPECT_EQ(outline_of(entry), "entry \"\" centred at end\n");
}

TEST_F(Builders, AWideWidgetIs320PixelsWide) {
    GtkWidget* entry = gtk_entry_new();
    add_row(add_card(box, nullptr), "Name", nullptr, entry, RowWidth::wide);
    gtk_widget_show_all(box);
    EXPECT_EQ(outline_of(entry), "entry \"\" width 320 centred at end\n");
}

TEST_F(Builders, ARowHandsOutItsTextColumn) {
    GtkWidget* column = nullptr;
    GtkWidget* row =
        add_row(add_card(box, nullptr), "Name", nullptr, nullptr, RowWidth::natural, &column);
    EXPECT_EQ(column, children_of(row).at(0));
}

TEST_F(Builders, ATextBoxIsTrackedAndWraps) {
    GtkWidget* view = add_textbox(box, 80);
    gtk_widget_show_all(box);
    EXPECT_EQ(outline_of(children_of(box).at(0)), R"(box vertical .textbox [0 0 0 12]
  text view height 80 expands
)");
    EXPECT_EQ(gtk_text_view_get_wrap_mode(GTK_TEXT_VIEW(view)), GTK_WRAP_WORD_CHAR);
    set_text_of_view(view, "typed");
    EXPECT_TRUE(widgets.dirty);
}

TEST_F(Builders, ABoundFieldEndsUpLastInTheRegistry) {
    GtkWidget* widget = gtk_switch_new();
    pack(box, widget);
    EXPECT_EQ(bind_field("some.key", widget), widget);
    EXPECT_EQ(widgets.field_registry.back().key, "some.key");
    EXPECT_EQ(widgets.field_registry.back().widget, widget);
    gtk_switch_set_active(GTK_SWITCH(widget), TRUE);
    EXPECT_TRUE(widgets.dirty);
}

TEST_F(Builders, ABoundEntryShowsItsPlaceholder) {
    GtkWidget* entry = bind_entry("other.key", "An example");
    pack(box, entry);
    EXPECT_STREQ(gtk_entry_get_placeholder_text(GTK_ENTRY(entry)), "An example");
    EXPECT_EQ(widgets.field_registry.back().key, "other.key");
    EXPECT_EQ(widgets.field_registry.back().widget, entry);
    type_into(entry, "typed");
    EXPECT_TRUE(widgets.dirty);
}

using StatusClasses = Builders;

TEST_F(StatusClasses, LeaveExactlyTheWantedOne) {
    const struct {
        StatusClass status_class;
        const char* expected;
    } cases[] = {
        {StatusClass::good, "good"},   {StatusClass::warning, "warning"},
        {StatusClass::error, "error"}, {StatusClass::none, ""},
        {StatusClass::error, "error"}, {StatusClass::good, "good"},
        {StatusClass::good, "good"},   {StatusClass::none, ""},
    };
    GtkWidget* label = make_label("", "small");
    pack(box, label);
    for (const auto& c : cases) {
        set_status_class(label, c.status_class);
        EXPECT_EQ(status_class_of(label), c.expected);
        EXPECT_TRUE(has_class(label, "small"));
    }
}

TEST_F(StatusClasses, ClearAMixOfThem) {
    GtkWidget* label = make_label("", nullptr);
    pack(box, label);
    for (const char* name : {"good", "warning", "error"})
        add_style_class(label, name);
    set_status_class(label, StatusClass::warning);
    EXPECT_EQ(status_class_of(label), "warning");
}

using Footer = WindowTest;

TEST_F(Footer, ShowsAnErrorAsPlainText) {
    show_footer({"Well.", StatusClass::good});
    show_footer_error("<b>No</b> & never");
    EXPECT_EQ(text_of(widgets.footer_status), "<b>No</b> & never");
    EXPECT_EQ(status_class_of(widgets.footer_status), "error");
    EXPECT_TRUE(has_class(widgets.footer_status, "muted"));
}

/// The text of the tooltip that a label shows; "" when it shows none.
std::string shown_tooltip(GtkWidget* label) {
    auto* tooltip = static_cast<GtkTooltip*>(g_object_new(GTK_TYPE_TOOLTIP, nullptr));
    gboolean shown = FALSE;
    g_signal_emit_by_name(label, "query-tooltip", 0, 0, FALSE, tooltip, &shown);
    std::string text;
    GList* windows = gtk_window_list_toplevels();
    for (GList* window = windows; shown && window; window = window->next)
        for (GtkWidget* widget : tree_of(GTK_WIDGET(window->data)))
            if (GTK_IS_LABEL(widget) && text_of(label).starts_with(text_of(widget).substr(0, 9)) &&
                gtk_widget_get_toplevel(widget) != gtk_widget_get_toplevel(label))
                text = text_of(widget);
    g_list_free(windows);
    g_object_unref(tooltip);
    return text;
}

TEST_F(Footer, HasATooltipWhereItsTextIsCut) {
    show_footer_error("Short enough.");
    wait_for_frame_on(widgets.window);
    EXPECT_EQ(shown_tooltip(widgets.footer_status), "");
    const std::string text(300, 'x');
    show_footer_error(text);
    wait_for_frame_on(widgets.window);
    EXPECT_EQ(shown_tooltip(widgets.footer_status), text);
}

TEST_F(Footer, CutsATooltipThatNobodyCouldRead) {
    const std::string text(longest_tooltip, 'x');
    show_footer_error(text + "y");
    wait_for_frame_on(widgets.window);
    EXPECT_EQ(shown_tooltip(widgets.footer_status), text + "…");
}

TEST_F(Footer, NeverWidensTheWindow) {
    int before = 0;
    gtk_widget_get_preferred_width(widgets.window, &before, nullptr);
    show_footer_error(std::string(10'000, 'w'));
    int after = 0;
    gtk_widget_get_preferred_width(widgets.window, &after, nullptr);
    EXPECT_EQ(after, before);
}

TEST_F(Footer, StaysOneLineHighWhateverItSays) {
    const auto height_with = [](const std::string& text) {
        show_footer_error(text);
        int height = 0;
        gtk_widget_get_preferred_height(widgets.footer_status, nullptr, &height);
        return height;
    };
    const int height_of_one_line = height_with("Not saved: the port is taken.");
    const std::string text = "Not saved: the port is taken,\nby\nanother\nprogram.";
    // The sign for a line feed may come from a font with higher letters.
    EXPECT_LT(height_with(text), height_of_one_line * 3 / 2);
    EXPECT_EQ(text_of(widgets.footer_status), text);
}

using HeaderTitleLabel = WindowTest;

TEST_F(HeaderTitleLabel, IsTwoLinesHighAtMostWhateverTheName) {
    const auto height_with = [](const std::string& title) {
        set_label_text(widgets.header_title, title);
        int height = 0;
        gtk_widget_get_preferred_height_for_width(widgets.header_title, 300, nullptr, &height);
        return height;
    };
    std::string words;
    std::string lines;
    for (int i = 0; i < 50; ++i) {
        words += "Hilltop ";
        lines += "Hilltop\n";
    }
    const int height_of_one_line = height_with("Hilltop");
    EXPECT_GT(height_with(words), height_of_one_line * 3 / 2);
    EXPECT_LT(height_with(lines), height_of_one_line * 3);
}

using LabelSetters = Builders;

TEST_F(LabelSetters, WriteOnlyWhatIsNew) {
    GtkWidget* label = make_label("", nullptr);
    pack(box, label);
    int writes = 0;
    const auto on_write = +[](GtkLabel*, GParamSpec*, int* count) { ++*count; };
    g_signal_connect(label, "notify::label", G_CALLBACK(on_write), &writes);
    set_label_text(label, "one");
    set_label_text(label, "one");
    EXPECT_EQ(writes, 1);
    set_label_text(label, "two");
    EXPECT_EQ(writes, 2);
    set_label_markup(label, "<b>three</b>");
    set_label_markup(label, "<b>three</b>");
    EXPECT_EQ(writes, 3);
    EXPECT_EQ(text_of(label), "three");
}

TEST_F(LabelSetters, TextIsNoMarkup) {
    GtkWidget* label = make_label("<b>bold</b>", nullptr);
    pack(box, label);
    set_label_text(label, "<i>&amp;");
    EXPECT_EQ(text_of(label), "<i>&amp;");
}

using TextBoxes = WindowTest;

TEST_F(TextBoxes, GiveBackWhatWasWritten) {
    for (const std::string text : {"", "one", "two\nlines\n", "  blanks\tand\ttabs ", "Ä–…"}) {
        set_text_of_view(widgets.description_view, text);
        EXPECT_EQ(text_of_view(widgets.description_view), text);
    }
}

TEST_F(TextBoxes, LeaveHiddenCharactersOut) {
    set_text_of_view(widgets.description_view, "seen hidden");
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(widgets.description_view));
    GtkTextTag* tag = gtk_text_buffer_create_tag(buffer, nullptr, "invisible", TRUE, nullptr);
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_iter_at_offset(buffer, &start, 4);
    gtk_text_buffer_get_end_iter(buffer, &end);
    gtk_text_buffer_apply_tag(buffer, tag, &start, &end);
    EXPECT_EQ(text_of_view(widgets.description_view), "seen");
}

/// Where the pieces begin and end that a label's text is cut into, in bytes; the last one ends
/// nowhere.
std::vector<std::pair<int, int>> pieces_of(GtkWidget* label) {
    std::vector<std::pair<int, int>> pieces;
    PangoAttrIterator* each =
        pango_attr_list_get_iterator(gtk_label_get_attributes(GTK_LABEL(label)));
    do {
        auto& [start, end] = pieces.emplace_back();
        pango_attr_iterator_range(each, &start, &end);
    } while (pango_attr_iterator_next(each));
    pango_attr_iterator_destroy(each);
    return pieces;
}

TEST(LongTexts, AreLaidOutInTimeThatGrowsWithTheirLength) {
    // One run of 64 kB takes minutes: the pieces it is cut into are what this holds.
    GtkWidget* label = make_label(std::string(65'536, 'x').c_str(), nullptr);
    g_object_ref_sink(label);
    int longest = 0;
    for (const auto& [start, end] : pieces_of(label))
        if (start < 65'536)
            longest = std::max(longest, end - start);
    EXPECT_LE(longest, 64);
    EXPECT_EQ(gtk_label_get_width_chars(GTK_LABEL(label)), 20);
    set_label_text(label, "short");
    EXPECT_EQ(gtk_label_get_attributes(GTK_LABEL(label)), nullptr);
    EXPECT_EQ(gtk_label_get_width_chars(GTK_LABEL(label)), -1);
    g_object_unref(label);
}

TEST(LongTexts, AreNeverCutInsideACharacter) {
    std::string text = "x"; // an odd beginning: every even boundary lies inside a character
    for (int i = 0; i < 1000; ++i)
        text.append("ü");
    GtkWidget* label = make_label(text.c_str(), nullptr);
    g_object_ref_sink(label);
    const std::vector<std::pair<int, int>> pieces = pieces_of(label);
    EXPECT_GT(pieces.size(), 10U);
    for (const auto& [start, end] : pieces) {
        const auto place = static_cast<std::size_t>(start);
        if (place < text.size()) {
            EXPECT_NE(static_cast<unsigned char>(text[place]) & 0xC0, 0x80) << place;
        }
    }
    g_object_unref(label);
}

TEST(LongTexts, BreakLongWordsWithoutAHyphen) {
    GtkWidget* label = make_label(std::string(41, 'x').c_str(), nullptr);
    g_object_ref_sink(label);
    EXPECT_NE(gtk_label_get_attributes(GTK_LABEL(label)), nullptr);
    set_label_text(label, format_text("%0*d %0*d", 40, 1, 40, 2));
    EXPECT_EQ(gtk_label_get_attributes(GTK_LABEL(label)), nullptr);
    g_object_unref(label);
}

} // namespace

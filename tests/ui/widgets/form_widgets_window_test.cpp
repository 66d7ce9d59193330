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
    Builders() {
        // The box has no parent, so the test holds the reference.
        g_object_ref_sink(box);
    }
    ~Builders() override {
        gtk_widget_destroy(box);
        g_object_unref(box);
    }

    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
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

TEST_F(Builders, TitlesLabelsAndHintsAreNoMarkup) {
    GtkWidget* card = add_card(box, "R&D <b>rooms</b>");
    add_row(card, "A & <i>B</i>", "less < more", gtk_switch_new());
    gtk_widget_show_all(box);
    EXPECT_NE(find_label(card, "R&D <b>rooms</b>"), nullptr);
    EXPECT_NE(find_label(card, "A & <i>B</i>"), nullptr);
    EXPECT_NE(find_label(card, "less < more"), nullptr);
}

using StatusClasses = Builders;

TEST_F(StatusClasses, LeaveExactlyTheWantedOne) {
    GtkWidget* label = make_label("", "small");
    pack(box, label);
    const std::pair<StatusClass, const char*> cases[] = {{StatusClass::good, "good"},
                                                         {StatusClass::warning, "warning"},
                                                         {StatusClass::error, "error"},
                                                         {StatusClass::none, ""}};
    for (const auto& [status_class, expected] : cases) {
        set_status_class(label, status_class);
        EXPECT_EQ(status_class_of(label), expected);
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

TEST_F(TextBoxes, AreScrolledWhollyIntoSightWithTheFocus) {
    show_page_at_once("station");
    GtkWidget* view = widgets.description_view;
    GtkWidget* frame = gtk_widget_get_parent(view);
    GtkWidget* viewport = gtk_widget_get_ancestor(view, GTK_TYPE_VIEWPORT);
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    const int height = gtk_widget_get_allocated_height(viewport);
    gtk_window_resize(GTK_WINDOW(widgets.window), 800, 480);
    ASSERT_TRUE(wait_until([=] { return gtk_widget_get_allocated_height(viewport) < height; }));
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    const auto bottom = [&] {
        int top = 0;
        gtk_widget_translate_coordinates(frame, viewport, 0, 0, nullptr, &top);
        return top + gtk_widget_get_allocated_height(frame);
    };
    EXPECT_GT(bottom(), gtk_widget_get_allocated_height(viewport));
    gtk_widget_grab_focus(view);
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    EXPECT_LE(bottom(), gtk_widget_get_allocated_height(viewport));
    gtk_window_resize(GTK_WINDOW(widgets.window), 1000, 780);
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

/// The begin and end, in bytes, of each piece that a label's text is cut into; the end of the last
/// one is G_MAXINT.
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
    // A run of 64 kB takes minutes; the length of the pieces is checked, not the time.
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
    std::string text = "x"; // one byte, so that every even position is inside a character
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

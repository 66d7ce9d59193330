// SPDX-License-Identifier: MIT
#include "status/overview_page.h"

#include "link/json_access.h"
#include "support/widget_outline.h"
#include "support/window_fixture.h"

namespace {

using OverviewPage = WindowTest;

std::vector<GtkWidget*> checklist() {
    return children_of(widgets.getting_started_box);
}

std::vector<GtkWidget*> receiver_rows() {
    return children_of(widgets.on_air_box);
}

/// A row in the outline, its parts one per line.
std::string row(const std::vector<std::string>& parts) {
    std::string outline = "GtkBox .horizontal .row spacing=10\n";
    for (const std::string& part : parts)
        outline.append("  ").append(part).append("\n");
    return outline;
}

const std::string open_mark = "GtkLabel \"○\" .muted wrap=FALSE";
const std::string done_mark = "GtkLabel \"✓\" .good wrap=FALSE";
const std::string go_there = "GtkButton .link .text-button label=\"Go there →\"";

std::string words(const std::string& markup) {
    char* text = nullptr;
    EXPECT_TRUE(pango_parse_markup(markup.c_str(), -1, 0, nullptr, &text, nullptr, nullptr));
    const bool plain = markup == text;
    const std::string line = "GtkLabel \"" + std::string{text} + "\"";
    g_free(text);
    return line + (plain ? "" : " markup=" + markup) + " expand=TRUE";
}

std::string dot(const std::string& status_class) {
    return "GtkLabel \"●\" ." + status_class + " wrap=FALSE";
}

std::string origin(const std::string& text) {
    return "GtkLabel \"" + text + "\" .small wrap=FALSE";
}

/// A station that has done nothing yet.
json::value bare_station() {
    json::value document = state_document();
    for (const char* member : {"name", "callsign", "grid"})
        document = with(document, "settings.station." + std::string{member}, "");
    document = with(document, "settings.directory.id", "");
    document = with(document, "status.receivers", json::array{});
    document = with(document, "status.started", json::array{});
    document = with(document, "status.listeners", json::array{});
    document = with(document, "status.directory", {{"state", "not registered"}});
    return without(document, "status.https");
}

/// The same, once the service has begun to register it: one item of the checklist is done.
json::value registering() {
    return with(bare_station(), "status.directory", {{"state", "checking"}});
}

std::string page_shown() {
    return gtk_stack_get_visible_child_name(GTK_STACK(widgets.stack));
}

/// Whether the next frame of the window draws or measures anything.
bool next_frame_works() {
    struct Work {
        bool any = false;
        bool over = false;
    } work;
    GdkFrameClock* clock = gtk_widget_get_frame_clock(widgets.window);
    const auto on_work = +[](GdkFrameClock*, Work* seen) { seen->any = true; };
    const auto on_over = +[](GdkFrameClock*, Work* seen) { seen->over = true; };
    const gulong handlers[] = {
        g_signal_connect(clock, "layout", G_CALLBACK(on_work), &work),
        g_signal_connect(clock, "paint", G_CALLBACK(on_work), &work),
        g_signal_connect(clock, "after-paint", G_CALLBACK(on_over), &work),
    };
    gdk_frame_clock_request_phase(clock, GDK_FRAME_CLOCK_PHASE_AFTER_PAINT);
    EXPECT_TRUE(wait_until([&work] { return work.over; }));
    for (const gulong handler : handlers)
        g_signal_handler_disconnect(clock, handler);
    return work.any;
}

TEST_F(OverviewPage, LeadsFromEachOpenRowOfTheChecklistToThePageWhereItIsDone) {
    load(bare_station());
    EXPECT_TRUE(gtk_widget_get_visible(widgets.getting_started_card));
    const std::vector<std::string> pages = {"station", "receivers", "internet", "internet"};
    ASSERT_EQ(checklist().size(), pages.size());
    EXPECT_EQ(outline_of(checklist()[0]),
              row({open_mark, words("Name your station and enter its grid square"), go_there}));
    for (std::size_t i = 0; i < pages.size(); ++i) {
        SCOPED_TRACE(i);
        show_page_at_once("overview");
        click(find_button(checklist()[i], "Go there →"));
        EXPECT_EQ(page_shown(), pages[i]);
    }
}

TEST_F(OverviewPage, DimsADoneRowAndTakesItsButtonAway) {
    load(with(state_document(), "status.directory.reachable", false));
    ASSERT_EQ(checklist().size(), 4U);
    EXPECT_EQ(
        outline_of(checklist()[1]),
        row({done_mark, words("<span foreground=\"#7590A8\">Share at least one receiver</span>")}));
    EXPECT_EQ(
        outline_of(checklist()[3]),
        row({open_mark, words("Forward port 8073 on your router to this computer"), go_there}));
}

TEST_F(OverviewPage, HidesTheChecklistWhileAllIsDone) {
    load(state_document());
    for (const bool reachable : {true, false, true}) {
        poll(with(state_document(), "status.directory.reachable", reachable));
        EXPECT_NE(gtk_widget_get_visible(widgets.getting_started_card), reachable);
    }
}

TEST_F(OverviewPage, ShowsTheStationLinkWhereThereIsOne) {
    const json::value plain = without(state_document(), "status.https");
    const std::pair<json::value, std::string> cases[] = {
        {state_document(), "https://k1abc.example:8073/"},
        {without(plain, "status.directory.address"), ""},
        {with(plain, "status.directory.address", "a_b&c<d"), "http://a_b&c<d/"}};
    for (const auto& [document, link] : cases) {
        SCOPED_TRACE(link);
        load(document);
        EXPECT_EQ(gtk_widget_get_visible(widgets.station_link_row), !link.empty());
        EXPECT_EQ(gtk_button_get_label(GTK_BUTTON(widgets.station_link)), link);
        EXPECT_FALSE(gtk_button_get_use_underline(GTK_BUTTON(widgets.station_link)));
        EXPECT_EQ(gtk_link_button_get_uri(GTK_LINK_BUTTON(widgets.station_link)),
                  link.empty() ? std::string{"about:blank"} : link);
    }
}

TEST_F(OverviewPage, ShowsReceiversOnTheAirAndBelowThemThoseThatFailed) {
    const json::value document = with(
        state_document(), "status.receivers",
        json::array{
            {{"device", "R&D <one>"}, {"attached", false}, {"lo", 7000000}, {"hi", 10489549600}},
            {{"device", 7}, {"attached", true}, {"lo", "low"}, {"hi", nullptr}}});
    load(with(document, "status.started",
              json::array{{{"running", false}, {"serial", "A<1>"}, {"log", "no & device"}},
                          {{"running", true}},
                          {{"running", false}, {"serial", 5}, {"log", nullptr}}}));
    const std::vector<std::vector<std::string>> expected = {
        {dot("good"), words("<b>R&amp;D &lt;one&gt;</b>   7 – 10489.5 MHz"),
         origin("started by Tarnwave")},
        {dot("good"), words("<b>Receiver</b>   0 – 0 MHz"), origin("shared from Dialhouse")},
        {dot("error"), words("<b>A&lt;1&gt;</b> is not running. Its log: no &amp; device")},
        {dot("error"), words("<b></b> is not running. Its log: ")},
    };
    ASSERT_EQ(receiver_rows().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(outline_of(receiver_rows()[i]), row(expected[i]));
    }
    EXPECT_NE(find_label(widgets.on_air_box, "R&D <one>   7 – 10489.5 MHz"), nullptr);
}

TEST_F(OverviewPage, OffersToChooseReceiversWhereNoneRunsOrWasStarted) {
    load(bare_station());
    ASSERT_EQ(receiver_rows().size(), 1U);
    EXPECT_EQ(outline_of(receiver_rows()[0]),
              row({words("<span foreground=\"#B0C6DA\">No receiver is on the air yet.</span>"),
                   "GtkButton .link .text-button label=\"Choose receivers →\""}));
    click(find_button(widgets.on_air_box, "Choose receivers →"));
    EXPECT_EQ(page_shown(), "receivers");
    poll(with(bare_station(), "status.started", json::array{{{"running", true}}}));
    EXPECT_EQ(receiver_rows().size(), 0U);
}

TEST_F(OverviewPage, ChangesAndDrawsNothingWhenTheStateIsTheSame) {
    const json::value document = with(state_document(), "status.directory.reachable", false);
    load(document);
    drain_events();
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    ASSERT_TRUE(wait_until([] { return !next_frame_works(); }));
    const std::vector<GtkWidget*> before = tree_of(widgets.window);
    poll(document);
    EXPECT_EQ(tree_of(widgets.window), before);
    EXPECT_FALSE(next_frame_works());
    poll(with(document, "status.broker", false));
    EXPECT_TRUE(next_frame_works());
}

TEST_F(OverviewPage, MakesOnlyTheRowsAnewWhoseContentChanged) {
    load(bare_station());
    const std::vector<GtkWidget*> before = checklist();
    poll(registering());
    const std::vector<GtkWidget*> after = checklist();
    ASSERT_EQ(after.size(), 4U);
    EXPECT_EQ(after[0], before[0]);
    EXPECT_EQ(after[1], before[1]);
    EXPECT_NE(find_label(after[2], "✓"), nullptr);
    EXPECT_EQ(after[3], before[3]);

    load(state_document());
    const std::vector<GtkWidget*> receivers = receiver_rows();
    poll(with(state_document(), "status.receivers.1.hi", 145000000));
    ASSERT_EQ(receiver_rows().size(), 2U);
    EXPECT_EQ(receiver_rows()[0], receivers[0]);
    EXPECT_NE(find_label(receiver_rows()[1], "RTL-SDR Blog V4   144 – 145 MHz"), nullptr);
}

TEST_F(OverviewPage, FindsTheFocusAgainByWhereItsButtonLed) {
    load(bare_station());
    gtk_widget_grab_focus(find_button(checklist()[2], "Go there →"));
    poll(registering());
    EXPECT_TRUE(gtk_widget_is_focus(find_button(checklist()[3], "Go there →")));
}

TEST_F(OverviewPage, MovesTheFocusToOneButtonWhereTwoLeadToItsPage) {
    load(bare_station());
    gtk_widget_grab_focus(find_button(checklist()[3], "Go there →"));
    std::vector<GtkWidget*> focused;
    const auto on_set_focus = +[](GtkWindow*, GtkWidget* widget, std::vector<GtkWidget*>* list) {
        if (widget)
            list->push_back(widget);
    };
    const gulong handler =
        g_signal_connect(widgets.window, "set-focus", G_CALLBACK(on_set_focus), &focused);
    load(with(bare_station(), "settings.network.port", 9000));
    g_signal_handler_disconnect(widgets.window, handler);
    EXPECT_EQ(focused, std::vector<GtkWidget*>{find_button(checklist()[3], "Go there →")});
}

TEST_F(OverviewPage, LeavesTheFocusAloneWhereNothingLeadsThere) {
    load(bare_station());
    gtk_widget_grab_focus(find_button(widgets.on_air_box, "Choose receivers →"));
    GtkWidget* other = find_button(checklist()[0], "Go there →");
    poll(state_document());
    EXPECT_EQ(find_button(widgets.on_air_box, "Choose receivers →"), nullptr);
    EXPECT_FALSE(gtk_widget_is_focus(other));
}

TEST_F(OverviewPage, TakesAClickThatAPollCameInto) {
    load(bare_station());
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    GtkWidget* go = find_button(checklist()[0], "Go there →");
    press_mouse(go);
    poll(registering());
    ASSERT_EQ(find_button(checklist()[0], "Go there →"), go);
    release_mouse(go);
    drain_events();
    EXPECT_EQ(page_shown(), "station");
}

TEST_F(OverviewPage, StaysScrolledWhereItWas) {
    json::value document = bare_station();
    json::array many;
    for (int i = 0; i < 40; ++i)
        many.push_back({{"device", "Receiver " + std::to_string(i)},
                        {"attached", false},
                        {"lo", 7000000},
                        {"hi", 7300000}});
    document = with(document, "status.receivers", many);
    load(document);
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    GtkAdjustment* place = gtk_scrolled_window_get_vadjustment(
        GTK_SCROLLED_WINDOW(gtk_widget_get_ancestor(widgets.on_air_box, GTK_TYPE_SCROLLED_WINDOW)));
    gtk_adjustment_set_value(place, 400);
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    ASSERT_EQ(gtk_adjustment_get_value(place), 400);
    document = with(document, "status.receivers.3.hi", 7200000);
    poll(with(document, "status.receivers.30.device", "Another"));
    ASSERT_TRUE(wait_for_frame_on(widgets.window));
    EXPECT_EQ(gtk_adjustment_get_value(place), 400);
}

} // namespace

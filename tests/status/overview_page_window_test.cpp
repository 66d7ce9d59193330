// SPDX-License-Identifier: MIT
#include "status/overview_page.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "status/render_state.h"
#include "support/row_parts.h"
#include "support/window_fixture.h"

namespace {

const std::string host{directory_host};

using OverviewPage = WindowTest;

std::vector<GtkWidget*> checklist() {
    return children_of(widgets.getting_started_box);
}

std::vector<GtkWidget*> receiver_rows() {
    return children_of(widgets.on_air_box);
}

RowPart open_mark() {
    return {.kind = "GtkLabel", .text = "○", .classes = "muted"};
}

RowPart done_mark() {
    return {.kind = "GtkLabel", .text = "✓", .classes = "good"};
}

RowPart words(const std::string& markup) {
    return {.kind = "GtkLabel", .text = markup, .expands = true, .wraps = true};
}

RowPart link_button(const std::string& text) {
    return {.kind = "GtkButton", .text = text, .classes = "link"};
}

RowPart dot(const std::string& status_class) {
    return {.kind = "GtkLabel", .text = "●", .classes = status_class};
}

RowPart origin(const std::string& text) {
    return {.kind = "GtkLabel", .text = text, .classes = "small"};
}

void expect_box_of_a_row(GtkWidget* row) {
    ASSERT_TRUE(GTK_IS_BOX(row));
    EXPECT_EQ(gtk_orientable_get_orientation(GTK_ORIENTABLE(row)), GTK_ORIENTATION_HORIZONTAL);
    EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(row)), 10);
    EXPECT_EQ(own_classes_of(row), "row");
    for (GtkWidget* child : children_of(row)) {
        EXPECT_TRUE(gtk_widget_get_visible(child));
        if (GTK_IS_LABEL(child)) {
            EXPECT_EQ(gtk_label_get_xalign(GTK_LABEL(child)), 0);
            EXPECT_TRUE(gtk_label_get_use_markup(GTK_LABEL(child)));
        }
    }
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

TEST_F(OverviewPage, MakesTheFourOpenRowsOfTheChecklist) {
    load(bare_station());
    const std::string texts[] = {"Name your station and enter its grid square",
                                 "Share at least one receiver",
                                 "Register the station for the list on " + host,
                                 "Forward port 8073 on your router to this computer"};
    ASSERT_EQ(checklist().size(), std::size(texts));
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        SCOPED_TRACE(texts[i]);
        expect_box_of_a_row(checklist()[i]);
        EXPECT_EQ(parts_of(checklist()[i]),
                  (std::vector<RowPart>{open_mark(), words(texts[i]), link_button("Go there →")}));
    }
    EXPECT_TRUE(gtk_widget_get_visible(widgets.getting_started_card));
}

TEST_F(OverviewPage, DimsTheDoneRowsAndTakesTheirButtonAway) {
    load(with(state_document(), "status.directory.reachable", false));
    const std::string dimmed[] = {"Name your station and enter its grid square",
                                  "Share at least one receiver",
                                  "Register the station for the list on " + host};
    ASSERT_EQ(checklist().size(), 4U);
    for (std::size_t i = 0; i < std::size(dimmed); ++i) {
        SCOPED_TRACE(dimmed[i]);
        expect_box_of_a_row(checklist()[i]);
        EXPECT_EQ(parts_of(checklist()[i]),
                  (std::vector<RowPart>{done_mark(), words("<span foreground=\"#7590A8\">" +
                                                           dimmed[i] + "</span>")}));
    }
    EXPECT_EQ(parts_of(checklist()[3]),
              (std::vector<RowPart>{open_mark(),
                                    words("Forward port 8073 on your router to this computer"),
                                    link_button("Go there →")}));
}

TEST_F(OverviewPage, LeadsFromEachOpenRowToThePageWhereItIsDone) {
    load(bare_station());
    const std::vector<std::string> pages = {"station", "receivers", "internet", "internet"};
    for (std::size_t i = 0; i < pages.size(); ++i) {
        SCOPED_TRACE(i);
        show_page_at_once("overview");
        click(find_button(checklist()[i], "Go there →"));
        EXPECT_EQ(page_shown(), pages[i]);
    }
}

TEST_F(OverviewPage, HidesTheChecklistExactlyWhenAllIsDone) {
    const json::value relay = with(with(state_document(), "settings.relay.enabled", true),
                                   "status.relay.state", "connected");
    const struct {
        const char* when;
        json::value document;
        bool shown;
    } cases[] = {
        {"all is done", state_document(), false},
        {"the name alone is there", with(state_document(), "settings.station.callsign", ""), false},
        {"the callsign alone is there", with(state_document(), "settings.station.name", ""), false},
        {"the grid square is missing", with(state_document(), "settings.station.grid", ""), true},
        {"no receiver runs", with(state_document(), "status.receivers", json::array{}), true},
        {"not checked in yet", with(state_document(), "status.directory.state", "checking"), true},
        {"the check-in failed", with(state_document(), "status.directory.state", "check-in failed"),
         true},
        {"not registered", with(state_document(), "status.directory.state", "not registered"),
         true},
        {"not reachable", with(state_document(), "status.directory.reachable", false), true},
        {"reachable is not said", without(state_document(), "status.directory.reachable"), true},
        {"the relay is connected and the list has checked in", relay, false},
        {"the relay is connected, the list has not checked in",
         with(relay, "status.directory.state", "checking"), true},
        {"the relay is connecting", with(relay, "status.relay.state", "connecting"), true},
        {"the relay is wanted and not there", without(relay, "status.relay"), true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        load(c.document);
        EXPECT_EQ(gtk_widget_get_visible(widgets.getting_started_card), c.shown);
    }
}

TEST_F(OverviewPage, AsksForTheRelayInPlaceOfThePort) {
    json::value document = with(bare_station(), "settings.relay.enabled", true);
    document = with(document, "status.relay.state", "connecting");
    load(document);
    const std::string text = "Connect to the " + host + " relay with your relay key";
    EXPECT_EQ(parts_of(checklist().at(3)),
              (std::vector<RowPart>{open_mark(), words(text), link_button("Go there →")}));
    poll(with(document, "status.relay.state", "connected"));
    EXPECT_EQ(parts_of(checklist().at(3)),
              (std::vector<RowPart>{done_mark(),
                                    words("<span foreground=\"#7590A8\">" + text + "</span>")}));
    EXPECT_TRUE(gtk_widget_get_visible(widgets.getting_started_card));
}

TEST_F(OverviewPage, PutsTheHeadersClassOnTheDotAlone) {
    const struct {
        const char* when;
        json::value document;
        std::string line;
        std::string dot_class;
    } cases[] = {
        {"all is well", state_document(),
         "On the air · 2 receivers · 2 of 8 listening · listed on " + host, "good"},
        {"the broker is down, though receivers are listed",
         with(state_document(), "status.broker", false),
         "Off the air: your receiver broker is not running (systemctl --user start "
         "tarnwave-broker)",
         "error"},
        {"the broker is not mentioned", without(state_document(), "status.broker"),
         "Off the air: your receiver broker is not running (systemctl --user start "
         "tarnwave-broker)",
         "error"},
        {"no receiver runs", with(state_document(), "status.receivers", json::array{}),
         "Off the air: no receiver is running", "error"},
        {"one receiver runs", without(state_document(), "status.receivers.1"),
         "On the air · 1 receiver · 2 of 8 listening · listed on " + host, "good"},
        {"the list is not wanted, nor registered",
         with(with(state_document(), "settings.directory.listed", false), "status.directory.state",
              "not registered"),
         "On the air · 2 receivers · 2 of 8 listening · not on the station list", "good"},
        {"the router forwards nothing", with(state_document(), "status.directory.reachable", false),
         "On the air · 2 receivers · 2 of 8 listening · not reachable from the internet",
         "warning"},
        {"not registered", with(state_document(), "status.directory.state", "not registered"),
         "On the air · 2 receivers · 2 of 8 listening · not registered for the station list",
         "warning"},
        {"the check-in failed", with(state_document(), "status.directory.state", "check-in failed"),
         "On the air · 2 receivers · 2 of 8 listening · cannot reach " + host, "warning"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        load(c.document);
        EXPECT_EQ(text_of(widgets.header_status), c.line);
        EXPECT_EQ(status_class_of(widgets.header_dot), c.dot_class);
        EXPECT_EQ(status_class_of(widgets.header_status), "");
        EXPECT_FALSE(gtk_label_get_use_markup(GTK_LABEL(widgets.header_status)));
    }
}

TEST_F(OverviewPage, DrawsTheReceiversEvenWhileTheBrokerIsDown) {
    load(with(state_document(), "status.broker", false));
    EXPECT_EQ(receiver_rows().size(), 2U);
}

TEST_F(OverviewPage, ShowsTheStationLinkWhereThereIsOne) {
    const json::value relay = with(with(state_document(), "settings.relay.enabled", true),
                                   "status.relay.state", "connected");
    const json::value plain = without(state_document(), "status.https");
    const struct {
        const char* when;
        json::value document;
        std::string link;
    } cases[] = {
        {"with a certificate", state_document(), "https://k1abc.example:8073/"},
        {"with an address alone", plain, "http://192.0.2.7:8073/"},
        {"with a certificate that has no name", without(state_document(), "status.https.name"),
         "http://192.0.2.7:8073/"},
        {"with nothing", without(plain, "status.directory.address"), ""},
        {"through the relay", relay, "https://relay.example/k1abc/"},
        {"through a relay that says no address", without(relay, "status.relay.url"), ""},
        {"through a relay that connects", with(relay, "status.relay.state", "connecting"), ""},
        {"with \"&\" and \"_\" in it", with(plain, "status.directory.address", "a_b&c<d"),
         "http://a_b&c<d/"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        load(c.document);
        EXPECT_EQ(gtk_widget_get_visible(widgets.station_link_row), !c.link.empty());
        EXPECT_EQ(gtk_button_get_label(GTK_BUTTON(widgets.station_link)), c.link);
        EXPECT_FALSE(gtk_button_get_use_underline(GTK_BUTTON(widgets.station_link)));
        EXPECT_EQ(gtk_link_button_get_uri(GTK_LINK_BUTTON(widgets.station_link)),
                  c.link.empty() ? std::string{"about:blank"} : c.link);
    }
}

TEST_F(OverviewPage, BuildsTheStationLinksRow) {
    load(state_document());
    EXPECT_EQ(own_classes_of(widgets.station_link_row), "row");
    EXPECT_EQ(gtk_box_get_spacing(GTK_BOX(widgets.station_link_row)), 8);
    EXPECT_EQ(
        parts_of(widgets.station_link_row),
        (std::vector<RowPart>{
            {.kind = "GtkLabel", .text = "Station page", .wraps = true},
            {.kind = "GtkLinkButton", .text = "https://k1abc.example:8073/", .classes = "link"},
            {.kind = "GtkButton", .text = "Copy link", .at_end = true},
        }));
}

TEST_F(OverviewPage, ShowsAReceiverOnTheAir) {
    json::value document = with(
        state_document(), "status.receivers",
        json::array{{{"device", "RSPdx"}, {"attached", false}, {"lo", 7000000}, {"hi", 7300000}},
                    {{"device", ""}, {"attached", true}, {"lo", 144000000.0}, {"hi", 10489750000}},
                    {{"attached", true}, {"lo", "low"}, {"hi", nullptr}},
                    {{"device", "R&D <one>"}, {"attached", false}, {"lo", 1}, {"hi", 10489549600}},
                    {{"device", 7}, {"attached", false}, {"lo", 500}, {"hi", 1500}}});
    load(document);
    const std::vector<std::vector<RowPart>> expected = {
        {dot("good"), words("<b>RSPdx</b>   7 – 7.3 MHz"), origin("started by Tarnwave")},
        {dot("good"), words("<b>Receiver</b>   144 – 10489.8 MHz"),
         origin("shared from Dialhouse")},
        {dot("good"), words("<b>Receiver</b>   0 – 0 MHz"), origin("shared from Dialhouse")},
        {dot("good"), words("<b>R&amp;D &lt;one&gt;</b>   0 – 10489.5 MHz"),
         origin("started by Tarnwave")},
        {dot("good"), words("<b>Receiver</b>   0.001 – 0.002 MHz"), origin("started by Tarnwave")},
    };
    ASSERT_EQ(receiver_rows().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(i);
        expect_box_of_a_row(receiver_rows()[i]);
        EXPECT_EQ(parts_of(receiver_rows()[i]), expected[i]);
    }
    EXPECT_NE(find_label(widgets.on_air_box, "R&D <one>   0 – 10489.5 MHz"), nullptr);
}

TEST_F(OverviewPage, ShowsReceiversThatFailedBelowThoseOnTheAir) {
    load(with(state_document(), "status.started",
              json::array{{{"running", false}, {"serial", "A<1>"}, {"log", "no & device"}},
                          {{"running", true}},
                          {{"running", false}, {"serial", 5}, {"log", nullptr}}}));
    ASSERT_EQ(receiver_rows().size(), 4U);
    expect_box_of_a_row(receiver_rows()[2]);
    EXPECT_EQ(
        parts_of(receiver_rows()[2]),
        (std::vector<RowPart>{
            dot("error"), words("<b>A&lt;1&gt;</b> is not running. Its log: no &amp; device")}));
    EXPECT_EQ(parts_of(receiver_rows()[3]),
              (std::vector<RowPart>{dot("error"), words("<b></b> is not running. Its log: ")}));
}

TEST_F(OverviewPage, OffersToChooseReceiversWhereNoneRunsOrWasStarted) {
    load(bare_station());
    ASSERT_EQ(receiver_rows().size(), 1U);
    expect_box_of_a_row(receiver_rows()[0]);
    EXPECT_EQ(parts_of(receiver_rows()[0]),
              (std::vector<RowPart>{
                  words("<span foreground=\"#B0C6DA\">No receiver is on the air yet.</span>"),
                  link_button("Choose receivers →")}));
    click(find_button(widgets.on_air_box, "Choose receivers →"));
    EXPECT_EQ(page_shown(), "receivers");
}

TEST_F(OverviewPage, DoesNotOfferToChooseReceiversWhereSomeWereStarted) {
    const json::value none = with(state_document(), "status.receivers", json::array{});
    load(with(none, "status.started",
              json::array{{{"running", false}, {"serial", "1"}, {"log", "gone"}}}));
    ASSERT_EQ(receiver_rows().size(), 1U);
    EXPECT_EQ(find_button(widgets.on_air_box, "Choose receivers →"), nullptr);
    poll(with(none, "status.started", json::array{{{"running", true}}}));
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
    // Other words for the same, which have to be read.
    poll(with(document, "status.uptime", 12));
    EXPECT_EQ(tree_of(widgets.window), before);
    EXPECT_FALSE(next_frame_works());
    render_state();
    EXPECT_EQ(tree_of(widgets.window), before);
    EXPECT_FALSE(next_frame_works());
    poll(with(document, "status.broker", false));
    EXPECT_TRUE(next_frame_works());
}

TEST_F(OverviewPage, MakesOnlyTheRowsAnewWhoseContentChanged) {
    load(bare_station());
    const std::vector<GtkWidget*> before = checklist();
    json::value document = with(bare_station(), "status.directory", {{"state", "checking"}});
    poll(document);
    const std::vector<GtkWidget*> after = checklist();
    ASSERT_EQ(after.size(), 4U);
    EXPECT_EQ(after[0], before[0]);
    EXPECT_EQ(after[1], before[1]);
    EXPECT_EQ(parts_of(after[2]).front(), done_mark());
    EXPECT_EQ(after[3], before[3]);

    load(state_document());
    const std::vector<GtkWidget*> receivers = receiver_rows();
    poll(with(state_document(), "status.receivers.1.hi", 145000000));
    ASSERT_EQ(receiver_rows().size(), 2U);
    EXPECT_EQ(receiver_rows()[0], receivers[0]);
    EXPECT_EQ(parts_of(receiver_rows()[1])[1], words("<b>RTL-SDR Blog V4</b>   144 – 145 MHz"));
    EXPECT_EQ(parts_of(receiver_rows()[1])[2], origin("shared from Dialhouse"));
}

TEST_F(OverviewPage, KeepsTheFocusOnALinkButtonOverAPoll) {
    load(bare_station());
    GtkWidget* go = find_button(checklist()[1], "Go there →");
    gtk_widget_grab_focus(go);
    poll(with(bare_station(), "status.directory", {{"state", "checking"}}));
    EXPECT_TRUE(gtk_widget_is_focus(go));
    GtkWidget* choose = find_button(widgets.on_air_box, "Choose receivers →");
    gtk_widget_grab_focus(choose);
    poll(bare_station());
    EXPECT_TRUE(gtk_widget_is_focus(choose));
}

TEST_F(OverviewPage, FindsTheFocusAgainByWhereItsButtonLed) {
    load(bare_station());
    gtk_widget_grab_focus(find_button(checklist()[2], "Go there →"));
    poll(with(bare_station(), "status.directory", {{"state", "checking"}}));
    EXPECT_TRUE(gtk_widget_is_focus(find_button(checklist()[3], "Go there →")));
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
    poll(with(bare_station(), "status.directory", {{"state", "checking"}}));
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

// SPDX-License-Identifier: MIT
// What happens when one action begins in the middle of another. Drawing a progress text and asking
// a question both run the main loop, which then also handles the user's events and timeouts.
#include "link/json_access.h"
#include "receivers/find_devices.h"
#include "receivers/linger.h"
#include "status/listener_actions.h"
#include "status/refresh_status.h"
#include "status/registration.h"
#include "support/window_fixture.h"
#include "ui/form.h"
#include "ui/widgets/pending_events.h"
#include "ui/window.h"

#include <algorithm>
#include <map>

namespace {

/// Requests by method and target, and how often each has to come.
using Requests = std::map<std::string, int>;

/// An action of the window and what it sends when no other action begins meanwhile.
struct Action {
    const char* name = nullptr;
    std::function<void()> run{};
    Requests sends{};
    bool asks = false;         ///< answers a question first, else draws first or does neither
    bool run_on_edits = false; ///< makes the form edited before it turns the main loop
    int answer = GTK_RESPONSE_OK;
};

void block_listener() {
    listener_action(true);
}

void end_session() {
    listener_action(false);
}

void press_enter_in_the_address() {
    gtk_widget_activate(widgets.register_email);
}

void press_linger_switch() {
    gtk_widget_activate(widgets.linger_switch);
    set_linger();
}

/// Loads the form so that each of the actions could begin.
void make_ready() {
    load_form();
    type_into(widgets.register_email, "ann@hilltop.example");
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.understand_check), TRUE);
    select_listener(0);
    drain_events();
}

class Reentrancy : public WindowTest {
protected:
    Reentrancy() {
        service.will_answer("GET", "/api/devices", 200, R"([
            {"backend":"rtl-sdr","serial":"new","model":"Dongle","available":true}])");
        service.will_answer("POST", "/api/register", 200, "{}");
        service.will_answer("POST", "/api/kick", 200, "{}");
        service.will_answer("POST", "/api/ban", 200, "{}");
        service.will_answer("PUT", "/api/settings", 200, R"({"restart":false})");
    }

    ~Reentrancy() override { drain_events(); }

    void begin() {
        service.will_answer_state(json::serialize(state_document()));
        make_ready();
        service.forget_requests();
    }

    /// All but the reloads and polls, of which there may be any number.
    Requests sent() const {
        Requests counts;
        for (const RecordedRequest& request : service.requests())
            if (request.target != "/api/state")
                ++counts[request.method + " " + request.target];
        return counts;
    }

    void expect_a_window_at_rest() const {
        EXPECT_TRUE(gtk_widget_get_sensitive(widgets.find_devices_button));
        EXPECT_TRUE(gtk_widget_get_sensitive(widgets.register_button));
        EXPECT_EQ(gtk_widget_get_sensitive(widgets.save_button), widgets.dirty);
        EXPECT_FALSE(widgets.loading);
        EXPECT_FALSE(widgets.linger_guard);
        EXPECT_NE(text_of(widgets.receivers_status), "Looking for receivers…");
        EXPECT_NE(text_of(widgets.footer_status), "Registering…");
        EXPECT_EQ(status_class_of(widgets.header_dot), "good");
        for (const Receiver& receiver : widgets.receiver_list)
            EXPECT_TRUE(GTK_IS_SWITCH(receiver.share_switch));
    }
};

TEST_F(Reentrancy, EveryActionMayBeginInTheMiddleOfEveryOther) {
    const Action find{"find devices", find_devices, {{"GET /api/devices", 1}}};
    const Action enrol{"register", press_enter_in_the_address, {{"POST /api/register", 1}}};
    const Action block{
        "block", block_listener, {{"POST /api/ban", 1}, {"POST /api/kick", 1}}, true};
    const Action end{"end session", end_session, {{"POST /api/kick", 1}}};
    const Action save{"save", [] { save_settings(); }, {{"PUT /api/settings", 1}}};
    const Action close{"close and cancel",
                       [] {
                           type_into("station.name", "Edited");
                           EXPECT_TRUE(confirm_close());
                           load_form();
                       },
                       {},
                       true,
                       true,
                       GTK_RESPONSE_CANCEL};
    const Action reload{"load", load_form, {}};
    const Action refresh{"refresh the status", refresh_status, {}};
    const Action linger{"linger", press_linger_switch, {}};
    const Action turn_page{"turn the page", [] { show_page_at_once("internet"); }, {}};

    // The outer actions run the main loop; any other action may begin meanwhile.
    const Action outer_actions[] = {find, enrol, block, close, end, save};
    const Action inner_actions[] = {find,   enrol,   block,  end,      save,
                                    reload, refresh, linger, turn_page};
    for (const Action& outer : outer_actions) {
        for (const Action& inner : inner_actions) {
            SCOPED_TRACE(testing::Message() << inner.name << " in the middle of " << outer.name);
            begin();
            // An action that runs the main loop does not begin a second time meanwhile.
            const bool begins = std::string_view{inner.name} != outer.name;
            bool ran = false;
            const auto intrude = [this, &inner, begins, &ran] {
                ran = true;
                if (inner.asks && begins)
                    answer_next_dialog(GTK_RESPONSE_OK);
                inner.run();
            };
            if (outer.asks)
                answer_next_dialog(outer.answer, intrude);
            else
                run_when_loop_turns(intrude);
            outer.run();
            EXPECT_TRUE(ran);
            drain_events();

            Requests expected = outer.sends;
            if (begins)
                for (const auto& [request, count] : inner.sends)
                    expected[request] += count;
            // The question is about edits, and a registration saves them first.
            if (outer.run_on_edits && std::string_view{inner.name} == enrol.name)
                ++expected["PUT /api/settings"];
            EXPECT_EQ(sent(), expected);
            expect_a_window_at_rest();
        }
    }
}

class WindowClosedMeanwhile : public FreshWindowTest, public testing::WithParamInterface<Action> {};

TEST_P(WindowClosedMeanwhile, SendsNothing) {
    service.will_answer_state(json::serialize(state_document()));
    make_ready();
    service.forget_requests();
    const auto close = [] { gtk_widget_destroy(widgets.window); };
    if (GetParam().asks)
        answer_next_dialog(GetParam().answer, close);
    else
        run_when_loop_turns(close);
    GetParam().run();
    EXPECT_EQ(widgets.window, nullptr);
    EXPECT_TRUE(service.requests().empty());
}

void close_edited() {
    type_into("station.name", "Edited");
    EXPECT_FALSE(confirm_close());
}

constexpr int answer_save = 2;

INSTANTIATE_TEST_SUITE_P(
    Every, WindowClosedMeanwhile,
    testing::Values(Action{"Discovery", find_devices}, Action{"Registration", register_station},
                    Action{"EndOfASession", end_session}, Action{"Block", block_listener, {}, true},
                    Action{"Save", [] { EXPECT_FALSE(save_settings()); }},
                    Action{"CloseAndSave", close_edited, {}, true, true, answer_save}),
    [](const auto& action) { return std::string{action.param.name}; });

TEST_F(Reentrancy, ASaveInTheMiddleOfADiscoveryKeepsBoth) {
    begin();
    type_into("station.name", "Edited");
    run_when_loop_turns([] { save_settings(); });
    find_devices();
    ASSERT_EQ(service.requests("PUT", "/api/settings").size(), 1U);
    EXPECT_EQ(
        json::parse(service.requests("PUT", "/api/settings")[0].body).at("station").at("name"),
        json::value("Edited"));
    EXPECT_EQ(widgets.receiver_list.size(), 3U);
    EXPECT_EQ(text_of(widgets.receivers_status), "1 found, 1 new: switch on the ones to share.");
    EXPECT_EQ(text_of(widgets.footer_status), "Saved.");
}

TEST_F(Reentrancy, ALoadInTheMiddleOfADiscoveryLeavesNoRowOfTheOldList) {
    begin();
    service.will_answer_state(
        json::serialize(with(state_document(), "settings.receivers", json::array{})));
    run_when_loop_turns([] { load_form(); });
    find_devices();
    ASSERT_EQ(widgets.receiver_list.size(), 1U);
    EXPECT_EQ(widgets.receiver_list[0].serial, "new");
    EXPECT_EQ(children_of(widgets.receiver_rows_box).size(), 1U);
}

TEST_F(Reentrancy, APollInTheMiddleOfTheQuestionLeavesTheQuestion) {
    begin();
    answer_next_dialog(GTK_RESPONSE_CANCEL, [this] {
        poll(with(state_document(), "status.listeners", json::array{}));
        EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 0 of 8");
    });
    listener_action(true);
    EXPECT_EQ(dialogs.size(), 1U);
    EXPECT_TRUE(sent().empty());
    drain_events();
    EXPECT_FALSE(gtk_widget_get_sensitive(widgets.block_button));
}

} // namespace

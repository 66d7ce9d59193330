// SPDX-License-Identifier: MIT
#include "status/listener_actions.h"

#include "link/json_access.h"
#include "status/listeners_table.h"
#include "support/window_fixture.h"
#include "ui/widgets/setters.h"

namespace {

class ListenerActions : public WindowTest {
protected:
    ListenerActions() {
        load(state_document());
        service.will_answer("POST", "/api/ban", 200, "{}");
        service.will_answer("POST", "/api/kick", 200, "{}");
        select_listener(1);
        drain_events();
        service.forget_requests();
    }

    /// Waits for the idle work that an action leaves behind.
    ~ListenerActions() override { drain_events(); }
};

TEST_F(ListenerActions, DoNothingWithoutASelection) {
    gtk_tree_selection_unselect_all(
        gtk_tree_view_get_selection(GTK_TREE_VIEW(widgets.listeners_view)));
    show_footer({"As it was.", StatusClass::warning});
    listener_action(false);
    listener_action(true);
    EXPECT_TRUE(service.requests().empty());
    EXPECT_TRUE(dialogs.empty());
    EXPECT_EQ(footer(), "As it was.|warning");
}

TEST_F(ListenerActions, EndASession) {
    click(widgets.end_session_button);
    EXPECT_EQ(requests_sent(), (std::vector<std::string>{"POST /api/kick", "GET /api/state"}));
    EXPECT_EQ(json::parse(service.requests()[0].body), (json::value{{"number", 18}}));
    EXPECT_EQ(footer(), "Ended the session of 2001:db8::17.|good");
}

TEST_F(ListenerActions, AskBeforeBlocking) {
    answer_next_dialog(GTK_RESPONSE_CANCEL);
    listener_action(true);
    ASSERT_EQ(dialogs.size(), 1U);
    EXPECT_EQ(dialogs[0].primary, "Block 2001:db8::17?");
    EXPECT_EQ(dialogs[0].secondary,
              "Their session ends now and the address cannot listen again. You can remove it from "
              "the blocked addresses on the Listeners page.");
    EXPECT_EQ(dialogs[0].type, GTK_MESSAGE_QUESTION);
    EXPECT_TRUE(dialogs[0].modal);
    EXPECT_EQ(dialogs[0].parent, GTK_WINDOW(widgets.window));
    std::vector<int> responses = dialogs[0].responses;
    std::sort(responses.begin(), responses.end());
    EXPECT_EQ(responses, (std::vector<int>{GTK_RESPONSE_CANCEL, GTK_RESPONSE_OK}));
    // Enter alone shuts nobody out.
    ASSERT_FALSE(dialogs[0].default_button.empty());
    const auto preset =
        std::find(dialogs[0].buttons.begin(), dialogs[0].buttons.end(), dialogs[0].default_button);
    EXPECT_EQ(dialogs[0].responses[static_cast<std::size_t>(preset - dialogs[0].buttons.begin())],
              GTK_RESPONSE_CANCEL);
}

TEST_F(ListenerActions, SendNothingWhenTheQuestionIsNotAnsweredWithOk) {
    show_footer({"As it was.", StatusClass::none});
    for (const int answer : {GTK_RESPONSE_CANCEL, GTK_RESPONSE_DELETE_EVENT, GTK_RESPONSE_NONE,
                             GTK_RESPONSE_CLOSE, GTK_RESPONSE_NO}) {
        SCOPED_TRACE(answer);
        answer_next_dialog(answer);
        listener_action(true);
        EXPECT_TRUE(service.requests().empty());
        EXPECT_EQ(footer(), "As it was.|");
        EXPECT_TRUE(gtk_widget_get_sensitive(widgets.block_button));
    }
}

TEST_F(ListenerActions, BanFirstAndEndTheSessionThen) {
    answer_next_dialog(GTK_RESPONSE_OK);
    click(widgets.block_button);
    drain_events();
    EXPECT_EQ(requests_sent(), (std::vector<std::string>{"POST /api/ban", "POST /api/kick",
                                                         "GET /api/state", "GET /api/state"}));
    EXPECT_EQ(json::parse(service.requests()[0].body), (json::value{{"address", "2001:db8::17"}}));
    EXPECT_EQ(json::parse(service.requests()[1].body), (json::value{{"number", 18}}));
    EXPECT_EQ(footer(), "Blocked 2001:db8::17.|good");
}

TEST_F(ListenerActions, ShowTheBlockedAddressInAnUneditedForm) {
    for (const bool edited : {false, true}) {
        load(state_document());
        select_listener(1);
        if (edited)
            type_into("station.name", "Half typed");
        service.before_answering("POST", "/api/kick", [this] {
            service.will_answer_state(json::serialize(
                with(state_document(), "settings.access.banned", json::array{"2001:db8::17"})));
        });
        answer_next_dialog(GTK_RESPONSE_OK);
        listener_action(true);
        EXPECT_EQ(footer(), "Blocked 2001:db8::17.|good");
        EXPECT_EQ(text_of_view(widgets.banned_view),
                  edited ? "203.0.113.9\n2001:db8::66\n" : "2001:db8::17\n");
        EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("station.name"))),
                     edited ? "Half typed" : "Hilltop SDR");
        EXPECT_EQ(widgets.dirty, edited);
        drain_events();
    }
}

TEST_F(ListenerActions, DropTheEndedListenerAtOnce) {
    service.before_answering("POST", "/api/kick", [this] {
        service.will_answer_state(json::serialize(without(state_document(), "status.listeners.1")));
    });
    listener_action(false);
    EXPECT_EQ(text_of(widgets.listeners_title), "Listening now · 1 of 8");
    drain_events();
    EXPECT_FALSE(gtk_widget_get_sensitive(widgets.end_session_button));
    EXPECT_FALSE(gtk_widget_get_sensitive(widgets.block_button));
}

TEST_F(ListenerActions, ReportSuccessWhateverTheServiceSays) {
    for (const bool answers : {true, false}) {
        SCOPED_TRACE(answers);
        service.will_answer("POST", "/api/ban", 404, "no JSON");
        service.will_answer("POST", "/api/kick", 500, "");
        if (!answers)
            service.stop();
        listener_action(false);
        EXPECT_EQ(footer(), "Ended the session of 2001:db8::17.|good");
        answer_next_dialog(GTK_RESPONSE_OK);
        listener_action(true);
        EXPECT_EQ(footer(), "Blocked 2001:db8::17.|good");
        EXPECT_EQ(text_of(widgets.header_status) == "The Tarnwave service is not answering",
                  !answers);
    }
}

TEST_F(ListenerActions, ActOnTheRowThatTheQuestionWasAbout) {
    answer_next_dialog(GTK_RESPONSE_OK, [this] {
        poll(with(state_document(), "status.listeners",
                  json::array{{{"number", 30}, {"address", "192.0.2.30"}, {"seconds", 1}},
                              {{"number", 31}, {"address", "192.0.2.31"}, {"seconds", 1}}}));
        select_listener(0);
        service.forget_requests();
    });
    listener_action(true);
    ASSERT_GE(service.requests().size(), 2U);
    EXPECT_EQ(json::parse(service.requests()[0].body), (json::value{{"address", "2001:db8::17"}}));
    EXPECT_EQ(json::parse(service.requests()[1].body), (json::value{{"number", 18}}));
    EXPECT_EQ(footer(), "Blocked 2001:db8::17.|good");
}

TEST_F(ListenerActions, ShowAnAddressAsItIs) {
    poll(with(state_document(), "status.listeners",
              json::array{{{"number", 1}, {"address", "<i>%s&amp;"}, {"seconds", 1}}}));
    select_listener(0);
    answer_next_dialog(GTK_RESPONSE_OK);
    listener_action(true);
    EXPECT_EQ(dialogs.at(0).primary, "Block <i>%s&amp;?");
    EXPECT_EQ(footer(), "Blocked <i>%s&amp;.|good");
}

TEST_F(ListenerActions, CutAnAddressThatWouldMakeTheQuestionTallerThanTheScreen) {
    const std::string address(5000, '7');
    poll(with(state_document(), "status.listeners",
              json::array{{{"number", 1}, {"address", address}, {"seconds", 1}}}));
    select_listener(0);
    answer_next_dialog(GTK_RESPONSE_OK);
    listener_action(true);
    EXPECT_EQ(dialogs.at(0).primary, "Block " + std::string(200, '7') + "…?");
    EXPECT_EQ(json::parse(service.requests("POST", "/api/ban").at(0).body).at("address"),
              json::value(address));
}

TEST_F(ListenerActions, LoseNoPressOnTheOtherButtonMeanwhile) {
    click(widgets.end_session_button);
    EXPECT_FALSE(gtk_widget_get_sensitive(widgets.end_session_button));
    EXPECT_TRUE(gtk_widget_get_sensitive(widgets.block_button));
    drain_events();
    EXPECT_TRUE(gtk_widget_get_sensitive(widgets.end_session_button));
}

} // namespace

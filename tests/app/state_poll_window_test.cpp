// SPDX-License-Identifier: MIT
#include "app/state_poll.h"

#include "link/json_access.h"
#include "support/window_fixture.h"

namespace {

using StatePoll = WindowTest;

TEST_F(StatePoll, AsksForTheStateOnceWithAnEmptyBody) {
    load(state_document());
    service.forget_requests();
    EXPECT_EQ(poll_state(nullptr), G_SOURCE_CONTINUE);
    const std::vector<RecordedRequest> requests = service.requests();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].line(), "GET /api/state HTTP/1.1");
    EXPECT_EQ(requests[0].body, "");
}

TEST_F(StatePoll, AsksForNothingOnceTheWindowIsClosed) {
    GtkWidget* const window = widgets.window;
    widgets.window = nullptr;
    EXPECT_EQ(poll_state(nullptr), G_SOURCE_CONTINUE);
    widgets.window = window;
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(StatePoll, SaysThatTheServiceIsNotAnsweringAndChangesNothingElse) {
    load(state_document());
    const std::string listeners = text_of(widgets.listeners_title);
    const json::object status = status_object;
    service.stop();
    EXPECT_EQ(poll_state(nullptr), G_SOURCE_CONTINUE);
    EXPECT_EQ(text_of(widgets.header_status), "The Tarnwave service is not answering");
    EXPECT_EQ(status_class_of(widgets.header_dot), "error");
    EXPECT_EQ(text_of(widgets.listeners_title), listeners);
    EXPECT_EQ(status_object, status);
}

TEST_F(StatePoll, TakesEveryAnswerButSuccessForNoAnswer) {
    for (const int status : {199, 201, 204, 302, 404, 500, 503}) {
        SCOPED_TRACE(status);
        poll(state_document());
        ASSERT_NE(text_of(widgets.header_status), "The Tarnwave service is not answering");
        service.will_answer("GET", "/api/state", status, json::serialize(state_document()));
        EXPECT_EQ(poll_state(nullptr), G_SOURCE_CONTINUE);
        EXPECT_EQ(text_of(widgets.header_status), "The Tarnwave service is not answering");
        EXPECT_EQ(status_class_of(widgets.header_dot), "error");
    }
}

TEST_F(StatePoll, TakesTheErrorBackWhenTheServiceAnswersAgain) {
    load(state_document());
    const std::string line = text_of(widgets.header_status);
    service.stop();
    poll_state(nullptr);
    ASSERT_EQ(status_class_of(widgets.header_dot), "error");
    service.start();
    poll_state(nullptr);
    EXPECT_EQ(text_of(widgets.header_status), line);
    EXPECT_EQ(status_class_of(widgets.header_dot), "good");
}

TEST_F(StatePoll, DrawsTheNewStatusAndKeepsTheSettings) {
    load(state_document());
    const json::object settings = settings_object;
    json::value document = with(state_document(), "settings.station.name", "Elsewhere");
    document = with(document, "status.broker", false);
    poll(document);
    EXPECT_EQ(settings_object, settings);
    EXPECT_EQ(status_object, document.at("status").as_object());
    EXPECT_EQ(text_of(widgets.header_status), "Off the air: your receiver broker is not running "
                                              "(systemctl --user start tarnwave-broker)");
    EXPECT_EQ(text_of(widgets.header_title), "K1ABC · Hilltop SDR");
}

TEST_F(StatePoll, NeverTouchesTheForm) {
    load(state_document());
    type_into("station.name", "Half typed");
    type_into("listeners.max", "12");
    poll(with(state_document(), "settings.station.name", "Elsewhere"));
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("station.name"))), "Half typed");
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("listeners.max"))), "12");
    EXPECT_TRUE(widgets.dirty);
    EXPECT_TRUE(gtk_widget_get_sensitive(widgets.save_button));
}

TEST_F(StatePoll, EndsWithTheLibrarysErrorAtADocumentThatBreaksTheContract) {
    load(state_document());
    const json::object status = status_object;
    const struct {
        const char* what;
        std::string body;
    } cases[] = {
        {"no text at all", ""},
        {"no JSON", "<html>"},
        {"an array", "[]"},
        {"a string", R"("status")"},
        {"no status", R"({"settings":{}})"},
        {"a status that is a number", R"({"status":1})"},
        {"a status that is null", R"({"status":null})"},
        {"a status that is an array", R"({"status":[]})"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        service.will_answer_state(c.body);
        EXPECT_THROW(poll_state(nullptr), std::exception);
        EXPECT_EQ(status_object, status);
    }
}

TEST_F(StatePoll, NeedsNoSettingsInTheDocument) {
    load(state_document());
    poll(without(state_document(), "settings"));
    EXPECT_EQ(status_class_of(widgets.header_dot), "good");
}

} // namespace

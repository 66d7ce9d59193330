// SPDX-License-Identifier: MIT
#include "status/refresh_status.h"

#include "link/json_access.h"
#include "support/window_fixture.h"

namespace {

class RefreshStatus : public WindowTest {
protected:
    RefreshStatus() {
        load(state_document());
        service.forget_requests();
    }
    static std::string header() {
        return text_of(widgets.header_status) + "|" + status_class_of(widgets.header_dot);
    }
};

const std::string not_answering = "The Tarnwave service is not answering|error";

TEST_F(RefreshStatus, SaysThatTheServiceIsNotAnsweringUntilItDoes) {
    const std::string line = header();
    const std::string listeners = text_of(widgets.listeners_title);
    const json::object status = status_object;
    service.stop();
    refresh_status();
    EXPECT_EQ(header(), not_answering);
    EXPECT_EQ(text_of(widgets.listeners_title), listeners);
    EXPECT_EQ(status_object, status);
    service.start();
    refresh_status();
    EXPECT_EQ(header(), line);
}

TEST_F(RefreshStatus, TakesEveryAnswerButSuccessForNoAnswer) {
    for (const int status : {199, 201, 500}) {
        SCOPED_TRACE(status);
        poll(state_document());
        ASSERT_NE(header(), not_answering);
        service.will_answer("GET", "/api/state", status, json::serialize(state_document()));
        refresh_status();
        EXPECT_EQ(header(), not_answering);
    }
}

TEST_F(RefreshStatus, DrawsTheNewStatusAndTouchesNeitherSettingsNorForm) {
    const json::object settings = settings_object;
    type_into("station.name", "Half typed");
    type_into("listeners.max", "12");
    json::value document = with(state_document(), "settings.station.name", "Elsewhere");
    document = with(document, "status.broker", false);
    poll(document);
    EXPECT_EQ(status_object, document.at("status").as_object());
    EXPECT_TRUE(header().starts_with("Off the air: your receiver broker is not running"));
    EXPECT_EQ(status_class_of(widgets.header_dot), "error");
    EXPECT_EQ(status_class_of(widgets.header_status), "");
    EXPECT_FALSE(gtk_label_get_use_markup(GTK_LABEL(widgets.header_status)));
    EXPECT_EQ(children_of(widgets.on_air_box).size(), 2U);
    EXPECT_EQ(settings_object, settings);
    EXPECT_EQ(text_of(widgets.header_title), "K1ABC · Hilltop SDR");
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("station.name"))), "Half typed");
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("listeners.max"))), "12");
    EXPECT_TRUE(widgets.dirty);
}

TEST_F(RefreshStatus, EndsWithTheLibrarysErrorAtADocumentThatBreaksTheContract) {
    const json::object status = status_object;
    for (const char* body : {"", "<html>", "[]", "{}", R"({"status":1})", R"({"status":[]})"}) {
        SCOPED_TRACE(body);
        service.will_answer_state(body);
        EXPECT_THROW(refresh_status(), std::exception);
        EXPECT_EQ(status_object, status);
    }
}

TEST_F(RefreshStatus, NeedsNoSettingsInTheDocument) {
    poll(without(state_document(), "settings"));
    EXPECT_EQ(status_class_of(widgets.header_dot), "good");
}

} // namespace

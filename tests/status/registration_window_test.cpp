// SPDX-License-Identifier: MIT
#include "status/registration.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "support/window_fixture.h"
#include "ui/widgets/setters.h"

namespace {

const std::string host{directory_host};
const std::string registered =
    "Registered. The station appears on the list as soon as " + host + " can reach it.|good";

json::value unregistered() {
    json::value document = with(state_document(), "settings.directory.id", "");
    return with(document, "status.directory", {{"state", "not registered"}});
}

class Registration : public WindowTest {
protected:
    Registration() {
        load(unregistered());
        show_page_at_once("internet");
        service.will_answer("POST", "/api/register", 200, "{}");
        fill_in("ann@hilltop.example", true);
        service.forget_requests();
    }

    ~Registration() override { drain_events(); }

    void fill_in(const std::string& email, bool understood) {
        type_into(widgets.register_email, email);
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.understand_check), understood);
    }

    std::string said_meanwhile{};
};

TEST_F(Registration, AsksForConsentFirst) {
    fill_in("ann@hilltop.example", false);
    register_station();
    EXPECT_EQ(footer(), "Tick “I understand” first.|error");
    fill_in("no address", false);
    register_station();
    EXPECT_EQ(footer(), "Tick “I understand” first.|error");
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(Registration, AsksForAnAddressNext) {
    type_into("station.name", "Half typed");
    for (const char* text : {"", " ann@hilltop.org"}) {
        SCOPED_TRACE(text);
        fill_in(text, true);
        register_station();
        EXPECT_EQ(footer(), "Enter your email address.|error");
    }
    // What fails here is not even saved.
    EXPECT_TRUE(service.requests().empty());
    EXPECT_TRUE(widgets.dirty);
}

TEST_F(Registration, SendsTheAddressAndReloads) {
    service.before_answering("POST", "/api/register", [this] {
        service.will_answer_state(json::serialize(state_document()));
    });
    run_when_loop_turns([this] { said_meanwhile = footer(); });
    click(widgets.register_button);
    EXPECT_EQ(said_meanwhile, "Registering…|");
    EXPECT_EQ(requests_sent(), (std::vector<std::string>{"POST /api/register", "GET /api/state"}));
    EXPECT_EQ(json::parse(service.requests()[0].body),
              (json::value{{"email", "ann@hilltop.example"}}));
    EXPECT_EQ(footer(), registered);
    EXPECT_FALSE(gtk_widget_get_visible(widgets.register_box));
    EXPECT_TRUE(gtk_widget_get_visible(widgets.registered_label));
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(widgets.register_email)), "ann@hilltop.example");
    EXPECT_TRUE(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(widgets.understand_check)));
}

TEST_F(Registration, ReportsASuccessEvenWhenTheReloadFails) {
    service.will_answer("GET", "/api/state", 500, "");
    register_station();
    EXPECT_EQ(footer(), registered);
    EXPECT_TRUE(gtk_widget_get_visible(widgets.register_box));
}

TEST_F(Registration, SavesEditsFirst) {
    type_into("station.name", "Edited");
    service.will_answer("PUT", "/api/settings", 200, R"({"restart":false})");
    register_station();
    EXPECT_EQ(requests_sent(), (std::vector<std::string>{"PUT /api/settings", "GET /api/state",
                                                         "POST /api/register", "GET /api/state"}));
    EXPECT_EQ(json::parse(service.requests()[0].body).at("station").at("name"),
              json::value("Edited"));
    EXPECT_EQ(footer(), registered);
}

TEST_F(Registration, SendsNothingWhenTheSaveFails) {
    type_into("station.name", "Edited");
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"The port is taken."})");
    register_station();
    EXPECT_EQ(requests_sent(), (std::vector<std::string>{"PUT /api/settings"}));
    EXPECT_EQ(footer(), "Not saved: The port is taken.|error");
    service.stop();
    register_station();
    EXPECT_EQ(footer(), "Not saved: the Tarnwave service did not answer.|error");
    EXPECT_TRUE(widgets.dirty);
    EXPECT_TRUE(service.requests("POST", "/api/register").empty());
}

TEST_F(Registration, TellsWhyItWasRefused) {
    const struct {
        int status;
        const char* body;
        const char* footer;
    } cases[] = {
        {400, R"({"error":"<b>&amp;</b>","more":1})", "Not registered: <b>&amp;</b>|error"},
        {502, R"({"error":7})", "Not registered: |error"},
        {201, R"({"error":"Later."})", "Not registered: Later.|error"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.body);
        service.will_answer("POST", "/api/register", c.status, c.body);
        register_station();
        EXPECT_EQ(footer(), c.footer);
    }
    EXPECT_TRUE(service.requests("GET", "/api/state").empty());
    service.stop();
    register_station();
    EXPECT_EQ(footer(), "Not registered: the service did not answer.|error");
}

TEST_F(Registration, EndsWithTheLibrarysErrorAtARefusalThatBreaksTheContract) {
    for (const char* body : {"", "[]", "{}"}) {
        SCOPED_TRACE(body);
        service.will_answer("POST", "/api/register", 400, body);
        EXPECT_THROW(register_station(), std::exception);
        EXPECT_EQ(footer(), "Registering…|");
    }
}

TEST_F(Registration, IgnoresAnEnterThatWasPressedWhileItRan) {
    service.will_answer("POST", "/api/register", 409, R"({"error":"Not now."})");
    gtk_widget_activate(widgets.register_email);
    gtk_widget_activate(widgets.register_email); // handled before anything idle, as a queued key
    EXPECT_EQ(service.requests("POST", "/api/register").size(), 1U);
    drain_events();
    gtk_widget_activate(widgets.register_email);
    EXPECT_EQ(service.requests("POST", "/api/register").size(), 2U);
}

TEST_F(Registration, IgnoresAnEnterThatWasPressedWhileItsSaveFailed) {
    type_into("station.name", "Edited");
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"The port is taken."})");
    gtk_widget_activate(widgets.register_email);
    gtk_widget_activate(widgets.register_email);
    EXPECT_EQ(service.requests("PUT", "/api/settings").size(), 1U);
}

} // namespace

// SPDX-License-Identifier: MIT
#include "ui/form.h"

#include "link/json_access.h"
#include "support/window_fixture.h"
#include "ui/widgets/setters.h"

namespace {

class SaveSettings : public WindowTest {
protected:
    SaveSettings() {
        load(state_document());
        service.will_answer("PUT", "/api/settings", 200, R"({"restart":false})");
    }

    /// Saves and returns the body that was sent.
    json::value saved_body() {
        service.forget_requests();
        EXPECT_TRUE(save_settings());
        const std::vector<RecordedRequest> saves = service.requests("PUT", "/api/settings");
        EXPECT_EQ(saves.size(), 1U);
        return saves.empty() ? json::value{} : json::parse(saves[0].body);
    }
};

TEST_F(SaveSettings, SendsTheWholeSettingsInOneRequest) {
    service.forget_requests();
    EXPECT_TRUE(save_settings());
    const std::vector<RecordedRequest> requests = service.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].line(), "PUT /api/settings HTTP/1.1");
    EXPECT_EQ(requests[1].line(), "GET /api/state HTTP/1.1");
}

TEST_F(SaveSettings, WritesEveryFieldInItsKind) {
    const json::value before = state_document().at("settings");
    for (const FieldBinding& binding : widgets.field_registry) {
        if (GTK_IS_SWITCH(binding.widget))
            gtk_switch_set_active(GTK_SWITCH(binding.widget),
                                  !gtk_switch_get_active(GTK_SWITCH(binding.widget)));
        else if (GTK_IS_SPIN_BUTTON(binding.widget))
            gtk_spin_button_spin(GTK_SPIN_BUTTON(binding.widget), GTK_SPIN_STEP_FORWARD, 1);
        else
            type_into(binding.widget, "NEW");
    }
    const json::object body = saved_body().as_object();
    for (const FieldBinding& binding : widgets.field_registry) {
        SCOPED_TRACE(binding.key);
        const json::value* sent = find_path(body, binding.key);
        const json::value* old = find_path(before.as_object(), binding.key);
        ASSERT_TRUE(sent && old);
        if (old->is_bool())
            EXPECT_EQ(*sent, json::value(!old->get_bool()));
        else if (old->is_number())
            EXPECT_EQ(sent->to_number<double>(), old->to_number<double>() + 1);
        else
            EXPECT_EQ(*sent, json::value("NEW"));
    }
}

TEST_F(SaveSettings, SendsWhatIsNoBoundField) {
    set_text_of_view(widgets.description_view, "Two\nlines\n");
    set_text_of_view(widgets.banned_view, "203.0.113.7 198.51.100.0/24\n");
    for (std::size_t i = 0; i < widgets.mode_buttons.size(); ++i)
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.mode_buttons[i]), i == 0 || i == 4);
    gtk_switch_set_active(GTK_SWITCH(widgets.receiver_list.at(0).share_switch), FALSE);
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(widgets.receiver_list.at(1).low_spin), 144.0000006);
    const json::value body = saved_body();
    EXPECT_EQ(body.at("station").at("description"), json::value("Two\nlines\n"));
    EXPECT_EQ(body.at("access").at("banned"), (json::array{"203.0.113.7", "198.51.100.0/24"}));
    EXPECT_EQ(body.at("content").at("modes"), (json::array{"USB", "FM"}));
    ASSERT_EQ(body.at("receivers").as_array().size(), 1U);
    EXPECT_EQ(body.at("receivers").at(0).at("serial"), "00000001");
    EXPECT_EQ(body.at("receivers").at(0).at("lo").as_double(), 144000001);
}

TEST_F(SaveSettings, LeavesTheCallsignEntryToTheReload) {
    type_into("station.callsign", "n0call");
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"No."})");
    EXPECT_FALSE(save_settings());
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("station.callsign"))), "n0call");
}

TEST_F(SaveSettings, TakesOverWhatIsTypedInSpinButtons) {
    type_into("listeners.max", "12");
    type_into("network.port", "9000");
    type_into(widgets.receiver_list.at(0).low_spin, "7,1");
    const json::value body = saved_body();
    EXPECT_EQ(body.at("listeners").at("max").as_double(), 12);
    EXPECT_EQ(body.at("network").at("port").as_double(), 9000);
    EXPECT_EQ(body.at("receivers").at(0).at("lo").as_double(), 7100000);
}

TEST_F(SaveSettings, SaysThatItSaved) {
    type_into("station.name", "Edited");
    EXPECT_TRUE(save_settings());
    EXPECT_EQ(text_of(widgets.footer_status), "Saved.");
    EXPECT_EQ(status_class_of(widgets.footer_status), "good");
    EXPECT_FALSE(widgets.dirty);
    EXPECT_FALSE(gtk_widget_get_visible(widgets.unsaved_label));
}

TEST_F(SaveSettings, SaysThatTheNewPortWaitsForARestart) {
    service.will_answer("PUT", "/api/settings", 200, R"({"restart":true})");
    EXPECT_TRUE(save_settings());
    EXPECT_EQ(text_of(widgets.footer_status),
              "Saved. The new port takes effect when Tarnwave restarts.");
    EXPECT_EQ(status_class_of(widgets.footer_status), "good");
}

TEST_F(SaveSettings, ShowsWhatTheServiceMadeOfIt) {
    type_into("station.name", "Edited");
    service.will_answer_state(
        json::serialize(with(state_document(), "settings.station.name", "EDITED BY SERVICE")));
    EXPECT_TRUE(save_settings());
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("station.name"))), "EDITED BY SERVICE");
    EXPECT_EQ(setting_string("station.name"), "EDITED BY SERVICE");
}

TEST_F(SaveSettings, KeepsTheEditsWhenTheServiceRefuses) {
    const struct {
        int status;
        const char* body;
        const char* footer;
    } cases[] = {
        {409, R"({"error":"The port is taken."})", "Not saved: The port is taken."},
        {400, R"({"error":"<b>A & B</b>"})", "Not saved: <b>A & B</b>"},
        {201, R"({"error":"Only 200 counts."})", "Not saved: Only 200 counts."},
    };
    const json::object settings = settings_object;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.body);
        type_into("station.name", "Hilltop");
        show_footer({"Saved.", StatusClass::good});
        service.will_answer("PUT", "/api/settings", c.status, c.body);
        EXPECT_FALSE(save_settings());
        EXPECT_EQ(text_of(widgets.footer_status), c.footer);
        EXPECT_EQ(status_class_of(widgets.footer_status), "error");
        EXPECT_TRUE(widgets.dirty);
        EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("station.name"))), "Hilltop");
        EXPECT_EQ(settings_object, settings);
    }
}

TEST_F(SaveSettings, KeepsTheEditsWhenTheServiceIsGone) {
    type_into("station.name", "Hilltop");
    service.stop();
    EXPECT_FALSE(save_settings());
    EXPECT_EQ(text_of(widgets.footer_status), "Not saved: the Tarnwave service did not answer.");
    EXPECT_EQ(status_class_of(widgets.footer_status), "error");
    EXPECT_TRUE(widgets.dirty);
    EXPECT_TRUE(gtk_widget_get_visible(widgets.unsaved_label));
}

TEST_F(SaveSettings, ReloadsBeforeItReadsAnOddReply) {
    type_into("station.name", "Edited");
    service.will_answer("PUT", "/api/settings", 200, R"({"restart":"no"})");
    EXPECT_THROW(save_settings(), std::exception);
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(SaveSettings, IsWhatTheButtonDoes) {
    type_into("station.name", "Edited");
    service.forget_requests();
    click(widgets.save_button);
    EXPECT_EQ(service.requests("PUT", "/api/settings").size(), 1U);
    drain_events();
    EXPECT_FALSE(gtk_widget_get_sensitive(widgets.save_button));
}

TEST_F(SaveSettings, GreysTheButtonUntilItIsOver) {
    type_into("station.name", "Edited");
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"No."})");
    EXPECT_FALSE(save_settings());
    EXPECT_FALSE(gtk_widget_get_sensitive(widgets.save_button));
    drain_events();
    EXPECT_TRUE(gtk_widget_get_sensitive(widgets.save_button));
}

} // namespace

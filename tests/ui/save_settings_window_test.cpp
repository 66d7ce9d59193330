// SPDX-License-Identifier: MIT
#include "ui/save_settings.h"

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

    static std::vector<std::string> member_names(const json::value& object) {
        std::vector<std::string> names;
        for (const auto& member : object.as_object())
            names.emplace_back(member.key());
        return names;
    }
};

/// The settings of the usual document as a save sends them: unchanged.
json::value unchanged_settings() {
    return state_document().at("settings");
}

/// Equal but for the way numbers are spelled.
bool means_the_same(const json::value& a, const json::value& b) {
    if (a.is_number() && b.is_number())
        return a.to_number<double>() == b.to_number<double>();
    if (a.is_array() && b.is_array())
        return std::equal(a.get_array().begin(), a.get_array().end(), b.get_array().begin(),
                          b.get_array().end(), means_the_same);
    if (a.is_object() && b.is_object())
        return std::equal(a.get_object().begin(), a.get_object().end(), b.get_object().begin(),
                          b.get_object().end(), [](const auto& one, const auto& other) {
                              return one.key() == other.key() &&
                                     means_the_same(one.value(), other.value());
                          });
    return a == b;
}

TEST_F(SaveSettings, SendsTheWholeSettingsInOneRequest) {
    service.forget_requests();
    EXPECT_TRUE(save_settings());
    const std::vector<RecordedRequest> requests = service.requests();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].line(), "PUT /api/settings HTTP/1.1");
    EXPECT_EQ(requests[1].line(), "GET /api/state HTTP/1.1");
}

TEST_F(SaveSettings, SendsBackWhatWasNotEdited) {
    EXPECT_TRUE(means_the_same(saved_body(), unchanged_settings()))
        << service.requests("PUT", "/api/settings").at(0).body;
}

TEST_F(SaveSettings, WritesEveryFieldInItsKind) {
    const json::value before = unchanged_settings();
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

TEST_F(SaveSettings, SpellsNumbersAsFloatingPoint) {
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(field("listeners.max")), 20);
    const json::value body = saved_body();
    EXPECT_TRUE(body.at("listeners").at("max").is_double());
    EXPECT_EQ(body.at("listeners").at("max").as_double(), 20.0);
    EXPECT_TRUE(body.at("receivers").at(0).at("lo").is_double());
}

TEST_F(SaveSettings, KeepsUnknownKeysAndTheOrderOfAll) {
    json::value document = with(state_document(), "settings.zebra", json::array{1, "two", nullptr});
    document = with(document, "settings.station.extra", json::object{{"a", 1}});
    document = with(document, "settings.aardvark", 1e-7);
    load(document);
    const json::value body = saved_body();
    EXPECT_EQ(member_names(body), member_names(document.at("settings")));
    EXPECT_EQ(member_names(body.at("station")),
              member_names(document.at("settings").at("station")));
    EXPECT_TRUE(means_the_same(body, document.at("settings")));
}

TEST_F(SaveSettings, AddsNoKeyThatWasNotSent) {
    json::value document = without(state_document(), "settings.station.name");
    document = without(document, "settings.relay");
    document = without(document, "settings.attach");
    load(document);
    type_into("station.name", "Typed");
    gtk_switch_set_active(GTK_SWITCH(field("attach")), FALSE);
    const json::value body = saved_body();
    EXPECT_EQ(member_names(body), member_names(document.at("settings")));
    EXPECT_FALSE(body.at("station").as_object().contains("name"));
}

TEST_F(SaveSettings, WritesOverAValueOfAnotherKind) {
    json::value document = with(state_document(), "settings.attach", "yes");
    document = with(document, "settings.listeners.max", nullptr);
    document = with(document, "settings.station.name", 5);
    load(document);
    const json::value body = saved_body();
    EXPECT_EQ(body.at("attach"), json::value(false));
    EXPECT_EQ(body.at("listeners").at("max").as_double(), 1.0);
    EXPECT_EQ(body.at("station").at("name"), json::value(""));
}

TEST_F(SaveSettings, SendsTheDescriptionAsItIs) {
    set_text_of_view(widgets.description_view, "Two\nlines, \"quoted\" <b>&\\ Ä\n");
    EXPECT_EQ(saved_body().at("station").at("description"),
              json::value("Two\nlines, \"quoted\" <b>&\\ Ä\n"));
}

TEST_F(SaveSettings, SendsTheCallsignInCapitals) {
    const std::pair<const char*, const char*> cases[] = {
        {"k1abc", "K1ABC"}, {"K1ABC", "K1ABC"}, {"dl/k1abc-7 z", "DL/K1ABC-7 Z"},
        {"", ""},           {"äß1ı", "äß1ı"},
    };
    for (const auto& [typed, sent] : cases) {
        type_into("station.callsign", typed);
        const json::value body = saved_body();
        EXPECT_EQ(body.at("station").at("callsign"), json::value(sent));
    }
}

TEST_F(SaveSettings, LeavesTheCallsignEntryToTheReload) {
    type_into("station.callsign", "n0call");
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"No."})");
    EXPECT_FALSE(save_settings());
    EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("station.callsign"))), "n0call");
}

TEST_F(SaveSettings, SendsThePressedModesInButtonOrder) {
    const struct {
        std::vector<int> pressed;
        json::array sent;
    } cases[] = {
        {{}, {}},
        {{4, 0}, {"USB", "FM"}},
        {{0, 1, 2, 3, 4}, {"USB", "LSB", "CW", "AM", "FM"}},
        {{2}, {"CW"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(json::serialize(c.sent));
        for (GtkWidget* button : widgets.mode_buttons)
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button), FALSE);
        for (const int index : c.pressed)
            click(widgets.mode_buttons.at(static_cast<std::size_t>(index)));
        EXPECT_EQ(saved_body().at("content").at("modes"), json::value(c.sent));
    }
}

TEST_F(SaveSettings, SendsEachBlockedWord) {
    const struct {
        const char* text;
        json::array sent;
    } cases[] = {
        {"", {}},
        {" \n\t\n ", {}},
        {"203.0.113.7", {"203.0.113.7"}},
        {"203.0.113.7\n", {"203.0.113.7"}},
        {"\n\n  203.0.113.7 198.51.100.0/24\t2001:db8::1\n\n",
         {"203.0.113.7", "198.51.100.0/24", "2001:db8::1"}},
        {"same same", {"same", "same"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        set_text_of_view(widgets.banned_view, c.text);
        EXPECT_EQ(saved_body().at("access").at("banned"), json::value(c.sent));
    }
}

TEST_F(SaveSettings, SendsReceiversWithExactlySixMembers) {
    const json::value receivers = saved_body().at("receivers");
    ASSERT_EQ(receivers.as_array().size(), 2U);
    EXPECT_EQ(member_names(receivers.at(0)),
              (std::vector<std::string>{"backend", "serial", "model", "lo", "hi", "enabled"}));
    EXPECT_TRUE(means_the_same(receivers.at(0), {{"backend", "sdrplay"},
                                                 {"serial", "2305012345"},
                                                 {"model", "RSPdx"},
                                                 {"lo", 7000000.0},
                                                 {"hi", 7300000.0},
                                                 {"enabled", true}}));
}

TEST_F(SaveSettings, RoundsFrequenciesToWholeHertz) {
    const struct {
        double megahertz;
        double hertz;
    } cases[] = {{7.0, 7e6},        {7.3, 7.3e6},           {14.35, 14.35e6},      {0.530, 530e3},
                 {16.001, 16001e3}, {10.1000004, 10100000}, {10.1000006, 10100001}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.megahertz);
        // Every save makes the list anew.
        GtkWidget* low_spin = widgets.receiver_list.at(0).low_spin;
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(low_spin), c.megahertz);
        EXPECT_EQ(saved_body().at("receivers").at(0).at("lo").as_double(), c.hertz);
    }
}

TEST_F(SaveSettings, LeavesOutReceiversThatAreOff) {
    gtk_switch_set_active(GTK_SWITCH(widgets.receiver_list.at(0).share_switch), FALSE);
    const json::value one = saved_body().at("receivers");
    ASSERT_EQ(one.as_array().size(), 1U);
    EXPECT_EQ(one.at(0).at("serial"), "00000001");
    for (const Receiver& receiver : widgets.receiver_list)
        gtk_switch_set_active(GTK_SWITCH(receiver.share_switch), FALSE);
    EXPECT_EQ(saved_body().at("receivers"), json::value(json::array{}));
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
        {500, R"({"error":""})", "Not saved: "},
        {500, R"({"error":5})", "Not saved: "},
        {500, R"({"error":null,"restart":true})", "Not saved: "},
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

TEST_F(SaveSettings, EndsWithTheLibrarysErrorAtAReplyThatBreaksTheContract) {
    const struct {
        int status;
        const char* body;
    } cases[] = {
        {200, ""},
        {200, "Saved"},
        {200, "[]"},
        {200, "null"},
        {200, "{}"},
        {200, R"({"restart":"no"})"},
        {200, R"({"restart":0})"},
        {200, R"({"restart":null})"},
        {409, ""},
        {409, "<html>"},
        {409, "[]"},
        {409, "{}"},
        {500, R"({"reason":"x"})"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.body);
        service.will_answer("PUT", "/api/settings", c.status, c.body);
        EXPECT_THROW(save_settings(), std::exception);
    }
}

TEST_F(SaveSettings, ReloadsBeforeItReadsAnOddReply) {
    type_into("station.name", "Edited");
    service.will_answer("PUT", "/api/settings", 200, R"({"restart":"no"})");
    EXPECT_THROW(save_settings(), std::exception);
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(SaveSettings, NeedsTheMembersItWritesInPlace) {
    for (const char* path : {"station", "content", "access"}) {
        SCOPED_TRACE(path);
        load(state_document());
        settings_object.erase(path);
        service.forget_requests();
        EXPECT_THROW(save_settings(), std::exception);
        EXPECT_TRUE(service.requests().empty());
    }
    const std::pair<const char*, const char*> inner[] = {{"station", "description"},
                                                         {"station", "callsign"},
                                                         {"content", "modes"},
                                                         {"access", "banned"}};
    for (const auto& [group, member] : inner) {
        SCOPED_TRACE(member);
        load(state_document());
        settings_object.at(group).as_object().erase(member);
        service.forget_requests();
        EXPECT_THROW(save_settings(), std::exception);
        EXPECT_TRUE(service.requests().empty());
    }
}

TEST_F(SaveSettings, AddsReceiversAtTheEndWhenTheyWereMissing) {
    settings_object.erase("receivers");
    settings_object["zebra"] = 1;
    const json::value body = saved_body();
    EXPECT_EQ(member_names(body).back(), "receivers");
    EXPECT_EQ(body.at("receivers").as_array().size(), 2U);
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

using SaveSettingsInAWindowOfItsOwn = FreshWindowTest;

TEST_F(SaveSettingsInAWindowOfItsOwn, SendsNothingWhenTheWindowIsClosedWhileItDraws) {
    load(state_document());
    service.forget_requests();
    const auto close = +[](gpointer) -> gboolean {
        gtk_widget_destroy(widgets.window);
        return G_SOURCE_REMOVE;
    };
    g_idle_add_full(G_PRIORITY_HIGH, close, nullptr, nullptr);
    EXPECT_FALSE(save_settings());
    EXPECT_EQ(widgets.window, nullptr);
    EXPECT_TRUE(service.requests().empty());
}

} // namespace

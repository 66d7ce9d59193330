// SPDX-License-Identifier: MIT
#include "ui/load_form.h"

#include "link/json_access.h"
#include "support/window_fixture.h"
#include "ui/widgets/setters.h"

namespace {

class LoadForm : public WindowTest {
protected:
    static std::string entry_text(std::string_view key) {
        return gtk_entry_get_text(GTK_ENTRY(field(key)));
    }
    static bool switch_state(std::string_view key) {
        return gtk_switch_get_active(GTK_SWITCH(field(key)));
    }
    static double number(std::string_view key) {
        return gtk_spin_button_get_value(GTK_SPIN_BUTTON(field(key)));
    }
    static std::vector<bool> pressed_modes() {
        std::vector<bool> pressed;
        for (GtkWidget* button : widgets.mode_buttons)
            pressed.push_back(gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button)));
        return pressed;
    }
};

TEST_F(LoadForm, AsksOnceWithAnEmptyBody) {
    load(state_document());
    ASSERT_EQ(service.requests().size(), 1U);
    EXPECT_EQ(service.last_request().line(), "GET /api/state HTTP/1.1");
    EXPECT_EQ(service.last_request().body, "");
}

TEST_F(LoadForm, ShowsEveryField) {
    json::value document = state_document();
    document = with(document, "settings.station.banner", "Down on Sunday.");
    document = with(document, "settings.relay.enabled", true);
    document = with(document, "settings.relay.key", "AAAA-BBBB");
    document = with(document, "settings.directory.url", "https://elsewhere.example/");
    load(document);
    const std::pair<const char*, const char*> texts[] = {
        {"station.name", "Hilltop SDR"},
        {"station.callsign", "K1ABC"},
        {"station.operator", "Ann Operator"},
        {"station.location", "Asheville, North Carolina, USA"},
        {"station.grid", "EM95"},
        {"station.antenna", "80 m end-fed, 12 m up"},
        {"station.contact", "https://hilltop.example/"},
        {"station.banner", "Down on Sunday."},
        {"relay.key", "AAAA-BBBB"},
        {"directory.url", "https://elsewhere.example/"},
    };
    for (const auto& [key, text] : texts)
        EXPECT_EQ(entry_text(key), text) << key;
    const std::pair<const char*, double> numbers[] = {
        {"listeners.max", 8},
        {"listeners.per_address", 2},
        {"listeners.session_minutes", 60},
        {"listeners.cooldown_minutes", 5},
        {"listeners.idle_minutes", 15},
        {"network.port", 8073},
    };
    for (const auto& [key, value] : numbers)
        EXPECT_EQ(number(key), value) << key;
    const std::pair<const char*, bool> switches[] = {
        {"attach", true},
        {"content.block_fm_broadcast", true},
        {"content.block_am_broadcast", false},
        {"relay.enabled", true},
        {"directory.listed", true},
    };
    for (const auto& [key, on] : switches)
        EXPECT_EQ(switch_state(key), on) << key;
    EXPECT_EQ(text_of_view(widgets.description_view), "Two receivers on a quiet hill.");
    EXPECT_EQ(text_of_view(widgets.banned_view), "203.0.113.9\n2001:db8::66\n");
    EXPECT_EQ(pressed_modes(), (std::vector<bool>{true, true, true, true, false}));
}

TEST_F(LoadForm, KeepsBothPartsOfTheDocument) {
    const json::value document = state_document();
    load(document);
    EXPECT_EQ(settings_object, document.at("settings").as_object());
    EXPECT_EQ(status_object, document.at("status").as_object());
}

TEST_F(LoadForm, DrawsTheState) {
    load(state_document());
    EXPECT_EQ(status_class_of(widgets.header_dot), "good");
    EXPECT_NE(text_of(widgets.header_status), "Connecting to the Tarnwave service…");
    EXPECT_FALSE(text_of(widgets.port_status_label).empty());
}

TEST_F(LoadForm, ReadsEachKindOfFieldLeniently) {
    const struct {
        const char* key;
        json::value sent;
        std::string shown;
    } cases[] = {
        {"attach", true, "on"},
        {"attach", false, "off"},
        {"attach", 1, "off"},
        {"attach", "true", "off"},
        {"attach", nullptr, "off"},
        {"attach", json::object{}, "off"},
        {"listeners.max", 20, "20"},
        {"listeners.max", 20U, "20"},
        {"listeners.max", 20.4, "20"},
        {"listeners.max", "20", "1"},
        {"listeners.max", nullptr, "1"},
        {"listeners.max", true, "1"},
        {"listeners.max", 0, "1"},
        {"listeners.max", -5, "1"},
        {"listeners.max", 201, "200"},
        {"listeners.max", 1e300, "200"},
        {"listeners.max", 9223372036854775807, "200"},
        {"listeners.max", 18446744073709551615U, "200"},
        {"network.port", 80, "1024"},
        {"station.name", "Ä <b> & \"", "Ä <b> & \""},
        {"station.name", 5, ""},
        {"station.name", nullptr, ""},
        {"station.name", json::array{"x"}, ""},
        {"station.name", json::string(std::string_view{"a\0b", 3}.data(), 3), "a\uFFFDb"},
        {"station.grid", "EM95abcd", "EM95ab"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string{c.key} + " " + json::serialize(c.sent));
        load(with(state_document(), "settings." + std::string{c.key}, c.sent));
        GtkWidget* widget = field(c.key);
        if (GTK_IS_SWITCH(widget)) {
            EXPECT_EQ(gtk_switch_get_active(GTK_SWITCH(widget)) ? "on" : "off", c.shown);
        } else {
            EXPECT_EQ(gtk_entry_get_text(GTK_ENTRY(widget)), c.shown);
        }
        EXPECT_FALSE(widgets.dirty);
    }
}

TEST_F(LoadForm, LeavesTheWidgetOfAKeyThatWasNotSentAsItIs) {
    load(state_document());
    json::value document = state_document();
    for (const char* key : {"settings.station.name", "settings.listeners.max", "settings.attach",
                            "settings.relay", "settings.network"})
        document = without(document, key);
    type_into("station.name", "Typed");
    type_into("relay.key", "Typed too");
    gtk_spin_button_set_value(GTK_SPIN_BUTTON(field("listeners.max")), 12);
    gtk_switch_set_active(GTK_SWITCH(field("attach")), FALSE);
    load(document);
    EXPECT_EQ(entry_text("station.name"), "Typed");
    EXPECT_EQ(entry_text("relay.key"), "Typed too");
    EXPECT_EQ(number("listeners.max"), 12);
    EXPECT_FALSE(switch_state("attach"));
    EXPECT_EQ(number("network.port"), 8073);
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(LoadForm, EmptiesADescriptionThatIsMissing) {
    load(state_document());
    load(without(state_document(), "settings.station.description"));
    EXPECT_EQ(text_of_view(widgets.description_view), "");
    load(with(state_document(), "settings.station.description", 7));
    EXPECT_EQ(text_of_view(widgets.description_view), "");
}

TEST_F(LoadForm, PressesTheModesOfExactlyThatName) {
    const struct {
        json::array modes;
        std::vector<bool> pressed;
    } cases[] = {
        {{}, {false, false, false, false, false}},
        {{"USB", "LSB", "CW", "AM", "FM"}, {true, true, true, true, true}},
        {{"FM", "USB"}, {true, false, false, false, true}},
        {{"usb", "Lsb", " CW", "AM "}, {false, false, false, false, false}},
        {{"CW", "CW", "NFM"}, {false, false, true, false, false}},
        {{1, nullptr, true, json::array{"USB"}, "AM"}, {false, false, false, true, false}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(json::serialize(c.modes));
        load(with(state_document(), "settings.content.modes", c.modes));
        EXPECT_EQ(pressed_modes(), c.pressed);
    }
}

TEST_F(LoadForm, PutsEachBlockedAddressOnALineOfItsOwn) {
    const struct {
        json::array banned;
        const char* text;
    } cases[] = {
        {{}, ""},
        {{"203.0.113.7"}, "203.0.113.7\n"},
        {{"203.0.113.7", "2001:db8::/32"}, "203.0.113.7\n2001:db8::/32\n"},
        {{"203.0.113.7", 5, "198.51.100.1"}, "203.0.113.7\n\n198.51.100.1\n"},
        {{nullptr}, "\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(json::serialize(c.banned));
        load(with(state_document(), "settings.access.banned", c.banned));
        EXPECT_EQ(text_of_view(widgets.banned_view), c.text);
    }
}

TEST_F(LoadForm, TakesTheReceiversOver) {
    load(with(state_document(), "settings.receivers",
              json::array{
                  {{"backend", "rtl-sdr"}, {"serial", "7"}, {"lo", 144000000}, {"hi", 146e6}},
                  {{"backend", "sdrplay"},
                   {"serial", "8"},
                   {"model", "RSPdx"},
                   {"lo", 1.5},
                   {"hi", "no number"},
                   {"enabled", false}},
                  {{"backend", 5}, {"serial", nullptr}, {"lo", 0}, {"hi", 0}, {"enabled", true}},
              }));
    ASSERT_EQ(widgets.receiver_list.size(), 3U);
    const Receiver& first = widgets.receiver_list[0];
    EXPECT_EQ(first.backend, "rtl-sdr");
    EXPECT_EQ(first.serial, "7");
    EXPECT_EQ(first.model, "rtl-sdr");
    EXPECT_TRUE(first.available);
    EXPECT_TRUE(first.enabled);
    EXPECT_EQ(first.lo, 144e6);
    EXPECT_EQ(first.hi, 146e6);
    const Receiver& second = widgets.receiver_list[1];
    EXPECT_EQ(second.model, "RSPdx");
    EXPECT_FALSE(second.enabled);
    EXPECT_EQ(second.lo, 1.5);
    EXPECT_EQ(second.hi, 0);
    EXPECT_EQ(widgets.receiver_list[2].backend, "");
    EXPECT_EQ(widgets.receiver_list[2].serial, "");
    EXPECT_EQ(children_of(widgets.receiver_rows_box).size(), 3U);
}

TEST_F(LoadForm, ForgetsEarlierReceivers) {
    load(state_document());
    EXPECT_EQ(widgets.receiver_list.size(), 2U);
    load(with(state_document(), "settings.receivers", json::array{}));
    EXPECT_TRUE(widgets.receiver_list.empty());
    EXPECT_NE(find_label(widgets.receiver_rows_box,
                         "No receivers yet. Plug in your SDR and press Find devices."),
              nullptr);
}

TEST_F(LoadForm, ClearsWhatTheLastDiscoverySaid) {
    load(state_document());
    set_label_text(widgets.receivers_status, "3 found, 1 new: switch on the ones to share.");
    load(state_document());
    EXPECT_EQ(text_of(widgets.receivers_status), "");
}

TEST_F(LoadForm, ShowsTheRegistrationOrTheWayToIt) {
    const struct {
        json::value id;
        json::value email;
        const char* text;
        bool registered;
    } cases[] = {
        {"4711", "ann@hilltop.example", "Registered as station 4711 with ann@hilltop.example.",
         true},
        {"4711", "", "Registered as station 4711.", true},
        {"4711", 5, "Registered as station 4711.", true},
        {"<4711>", "a&b@c.example", "Registered as station <4711> with a&b@c.example.", true},
        {"", "ann@hilltop.example", "Registered as station  with ann@hilltop.example.", false},
        {4711, "", "Registered as station .", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        json::value document = with(state_document(), "settings.directory.id", c.id);
        load(with(document, "settings.directory.email", c.email));
        EXPECT_EQ(text_of(widgets.registered_label), c.text);
        EXPECT_EQ(gtk_widget_get_visible(widgets.registered_label), c.registered);
        EXPECT_EQ(gtk_widget_get_visible(widgets.register_box), !c.registered);
    }
}

TEST_F(LoadForm, ShowsNoRegistrationWithoutADirectory) {
    load(without(state_document(), "settings.directory"));
    EXPECT_TRUE(gtk_widget_get_visible(widgets.register_box));
    EXPECT_FALSE(gtk_widget_get_visible(widgets.registered_label));
}

TEST_F(LoadForm, PutsTheStationsNameInTheHeader) {
    const struct {
        const char* name;
        const char* callsign;
        const char* title;
    } cases[] = {
        {"", "", "Your station"},
        {"Hilltop SDR", "", "Hilltop SDR"},
        {"K1ABC Hilltop", "K1ABC", "K1ABC Hilltop"},
        {"Hilltop SDR", "K1ABC", "K1ABC · Hilltop SDR"},
        {"k1abc Hilltop", "K1ABC", "K1ABC · k1abc Hilltop"},
        {"", "K1ABC", "K1ABC"},
        {"R&D <b>", "", "R&D <b>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.title);
        json::value document = with(state_document(), "settings.station.name", c.name);
        load(with(document, "settings.station.callsign", c.callsign));
        EXPECT_EQ(text_of(widgets.header_title), c.title);
    }
}

TEST_F(LoadForm, LeavesTheFormClean) {
    load(state_document());
    type_into("station.name", "Edited");
    ASSERT_TRUE(widgets.dirty);
    load(state_document());
    EXPECT_FALSE(widgets.dirty);
    EXPECT_FALSE(widgets.loading);
    EXPECT_FALSE(gtk_widget_get_sensitive(widgets.save_button));
    EXPECT_FALSE(gtk_widget_get_visible(widgets.unsaved_label));
    EXPECT_EQ(entry_text("station.name"), "Hilltop SDR");
}

TEST_F(LoadForm, NeverMakesSaveSensitiveOnItsWay) {
    load(state_document());
    int times = 0;
    const auto on_sensitive = +[](GtkWidget*, GParamSpec*, int* count) { ++*count; };
    const gulong handler = g_signal_connect(widgets.save_button, "notify::sensitive",
                                            G_CALLBACK(on_sensitive), &times);
    json::value document = with(state_document(), "settings.station.name", "Elsewhere");
    document = with(document, "settings.attach", false);
    document = with(document, "settings.listeners.max", 20);
    document = with(document, "settings.content.modes", json::array{"FM"});
    load(document);
    EXPECT_EQ(times, 0);
    g_signal_handler_disconnect(widgets.save_button, handler);
}

TEST_F(LoadForm, ChangesNothingAndSaysNothingWithoutAnAnswer) {
    load(state_document());
    type_into("station.name", "Edited");
    const json::object settings = settings_object;
    const json::object status = status_object;
    const std::string header = text_of(widgets.header_status);
    const auto expect_untouched = [&] {
        EXPECT_EQ(entry_text("station.name"), "Edited");
        EXPECT_TRUE(widgets.dirty);
        EXPECT_EQ(settings_object, settings);
        EXPECT_EQ(status_object, status);
        EXPECT_EQ(text_of(widgets.header_status), header);
        EXPECT_EQ(text_of(widgets.footer_status), "");
    };
    for (const int status_code : {201, 403, 404, 500}) {
        SCOPED_TRACE(status_code);
        service.will_answer("GET", "/api/state", status_code, json::serialize(state_document()));
        load_form();
        expect_untouched();
    }
    service.stop();
    load_form();
    expect_untouched();
}

TEST_F(LoadForm, AsksTheSystemAboutLingering) {
    commands.set_lingering(true);
    load(state_document());
    drain_events();
    EXPECT_TRUE(gtk_switch_get_active(GTK_SWITCH(widgets.linger_switch)));
    commands.set_lingering(false);
    load(state_document());
    drain_events();
    EXPECT_FALSE(gtk_switch_get_active(GTK_SWITCH(widgets.linger_switch)));
    EXPECT_FALSE(widgets.linger_guard);
    for (const std::string& call : commands.calls())
        EXPECT_TRUE(call.starts_with("loginctl show-user ")) << call;
}

TEST_F(LoadForm, EndsWithTheLibrarysErrorAtABodyThatIsNoDocument) {
    for (const char* body : {"", "<html>", "[]", "null", "1", R"("text")", "{",
                             R"({"settings":{}} trailing)", "{\"settings\":\"\xFF\"}"}) {
        SCOPED_TRACE(body);
        service.will_answer_state(body);
        EXPECT_THROW(load_form(), std::exception);
        EXPECT_FALSE(widgets.loading);
    }
}

/// The loader left off in its middle: as if it had never begun for the tests that follow.
void forget_broken_load() {
    widgets.loading = false;
}

TEST_F(LoadForm, EndsWithTheLibrarysErrorAtAMissingMember) {
    for (const char* path :
         {"settings", "status", "settings.content", "settings.content.modes", "settings.access",
          "settings.access.banned", "settings.receivers", "settings.receivers.0.backend",
          "settings.receivers.0.serial", "settings.receivers.0.lo", "settings.receivers.0.hi",
          "settings.receivers.1.hi"}) {
        SCOPED_TRACE(path);
        service.will_answer_state(json::serialize(without(state_document(), path)));
        EXPECT_THROW(load_form(), std::exception);
        forget_broken_load();
    }
}

TEST_F(LoadForm, EndsWithTheLibrarysErrorAtAMemberOfAnotherKind) {
    const json::value kinds[] = {nullptr, true, 1, 1.5, "text", json::array{}, json::object{}};
    const struct {
        const char* path;
        json::kind kind;
    } cases[] = {
        {"settings", json::kind::object},
        {"status", json::kind::object},
        {"settings.content", json::kind::object},
        {"settings.content.modes", json::kind::array},
        {"settings.access", json::kind::object},
        {"settings.access.banned", json::kind::array},
        {"settings.receivers", json::kind::array},
        {"settings.receivers.0", json::kind::object},
        {"settings.receivers.0.enabled", json::kind::bool_},
    };
    for (const auto& c : cases)
        for (const json::value& value : kinds) {
            // An empty object is of the right kind for a group, but lacks its members.
            if (value.kind() == c.kind)
                continue;
            SCOPED_TRACE(std::string{c.path} + " " + json::serialize(value));
            service.will_answer_state(json::serialize(with(state_document(), c.path, value)));
            EXPECT_THROW(load_form(), std::exception);
            forget_broken_load();
        }
}

TEST_F(LoadForm, KeepsTheOldObjectsWhenADocumentLacksEither) {
    load(state_document());
    const json::object settings = settings_object;
    service.will_answer_state(json::serialize(
        without(with(state_document(), "settings.station.name", "Elsewhere"), "status")));
    EXPECT_THROW(load_form(), std::exception);
    EXPECT_EQ(entry_text("station.name"), "Hilltop SDR");
    EXPECT_EQ(settings_object, settings);
}

TEST_F(LoadForm, LeavesTheCursorOfATextBoxWhereItWas) {
    show_page_at_once("station");
    gtk_widget_grab_focus(widgets.description_view);
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(widgets.description_view));
    const auto cursor = [buffer] {
        GtkTextIter at;
        gtk_text_buffer_get_iter_at_mark(buffer, &at, gtk_text_buffer_get_insert(buffer));
        return gtk_text_iter_get_offset(&at);
    };
    for (const char* next : {"hello world", "hello brave world", "hi"}) {
        SCOPED_TRACE(next);
        load(with(state_document(), "settings.station.description", "hello world"));
        GtkTextIter at;
        gtk_text_buffer_get_iter_at_offset(buffer, &at, 5);
        gtk_text_buffer_place_cursor(buffer, &at);
        load(with(state_document(), "settings.station.description", next));
        EXPECT_EQ(cursor(), std::min<int>(5, static_cast<int>(std::string{next}.size())));
    }
}

} // namespace

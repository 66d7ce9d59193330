// SPDX-License-Identifier: MIT
#include "ui/form.h"

#include "link/json_access.h"
#include "support/window_fixture.h"
#include "ui/widgets/setters.h"

namespace {

class LoadForm : public WindowTest {
protected:
    static std::string entry_text(std::string_view key) {
        return gtk_entry_get_text(GTK_ENTRY(field(key)));
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

/// What a field of the form shows, as a save would send it.
json::value shown_in(const FieldBinding& field) {
    if (GTK_IS_SWITCH(field.widget))
        return gtk_switch_get_active(GTK_SWITCH(field.widget)) == TRUE;
    if (GTK_IS_SPIN_BUTTON(field.widget))
        return gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(field.widget));
    return gtk_entry_get_text(GTK_ENTRY(field.widget));
}

/// Another value of the same kind that the form can show.
json::value another(const json::value& value) {
    if (value.is_bool())
        return !value.get_bool();
    if (value.is_number())
        return value.to_number<int>() + 1;
    return "EM00";
}

TEST_F(LoadForm, ShowsEveryField) {
    json::value document = state_document();
    for (int time = 0; time < 2; ++time) {
        load(document);
        for (const FieldBinding& binding : widgets.field_registry) {
            SCOPED_TRACE(binding.key);
            const json::value* sent = find_path(settings_object, binding.key);
            ASSERT_NE(sent, nullptr) << "the document of the tests lacks this field";
            EXPECT_EQ(shown_in(binding), *sent);
            document = with(document, "settings." + binding.key, another(*sent));
        }
    }
}

TEST_F(LoadForm, ShowsWhatIsNoBoundField) {
    load(state_document());
    EXPECT_EQ(text_of_view(widgets.description_view), "Two receivers on a quiet hill.");
    EXPECT_EQ(text_of_view(widgets.banned_view), "203.0.113.9\n2001:db8::66\n");
    EXPECT_EQ(pressed_modes(), (std::vector<bool>{true, true, true, true, false}));
}

TEST_F(LoadForm, ShowsTheNearestOfWhatAFieldCannotShow) {
    const struct {
        const char* key;
        json::value sent;
        const char* shown;
    } cases[] = {
        {"listeners.max", 20.4, "20"},
        {"listeners.max", 0, "1"},
        {"listeners.max", 201, "200"},
        {"listeners.max", 18446744073709551615U, "200"},
        {"network.port", 80, "1024"},
        {"station.name", json::string(std::string_view{"a\0b", 3}.data(), 3), "a\uFFFDb"},
        {"station.grid", "EM95abcd", "EM95ab"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string{c.key} + " " + json::serialize(c.sent));
        load(with(state_document(), "settings." + std::string{c.key}, c.sent));
        EXPECT_EQ(entry_text(c.key), c.shown);
        EXPECT_FALSE(widgets.dirty);
    }
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

TEST_F(LoadForm, ReplacesTheReceivers) {
    load(state_document());
    ASSERT_EQ(widgets.receiver_list.size(), 2U);
    load(without(state_document(), "settings.receivers.0"));
    ASSERT_EQ(widgets.receiver_list.size(), 1U);
    EXPECT_EQ(widgets.receiver_list[0].serial, "00000001");
    EXPECT_EQ(children_of(widgets.receiver_rows_box).size(), 1U);
}

TEST_F(LoadForm, ClearsWhatTheLastDiscoverySaid) {
    load(state_document());
    set_label_text(widgets.receivers_status, "3 found, 1 new: switch on the ones to share.");
    load(state_document());
    EXPECT_EQ(text_of(widgets.receivers_status), "");
}

TEST_F(LoadForm, ShowsTheRegistrationOrTheWayToIt) {
    for (const char* id : {"<4711>", ""}) {
        SCOPED_TRACE(id);
        const bool registered = *id;
        load(with(state_document(), "settings.directory.id", id));
        EXPECT_EQ(gtk_widget_get_visible(widgets.registered_label), registered);
        EXPECT_EQ(gtk_widget_get_visible(widgets.register_box), !registered);
        if (registered) {
            EXPECT_EQ(text_of(widgets.registered_label),
                      "Registered as station <4711> with ann@hilltop.example.");
        }
    }
}

TEST_F(LoadForm, PutsTheStationsNameInTheHeader) {
    load(with(state_document(), "settings.station.name", "R&D <b>"));
    EXPECT_EQ(text_of(widgets.header_title), "K1ABC · R&D <b>");
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

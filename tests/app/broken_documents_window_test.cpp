// SPDX-License-Identifier: MIT
// Documents that a broken or hostile service sends, one for every member of every document: the
// member missing, of every other kind, and with every content that a text or a number can have.
//
// Where the program has to end, the exception of Boost.JSON must leave the handler; everywhere else
// the window shows the same as with the member's default, and a field without its member what it
// showed. A warning of GTK fails the test.
#include "link/json_access.h"
#include "receivers/find_devices.h"
#include "status/registration.h"
#include "support/document_members.h"
#include "support/widget_outline.h"
#include "support/window_fixture.h"
#include "ui/form.h"
#include "ui/widgets/change_tracking.h"
#include "ui/widgets/setters.h"

#include <set>
#include <sstream>

namespace {

/// Stands for a text in a document until the raw bytes take its place.
constexpr const char* placeholder = "raw-bytes-go-here";

std::string replaced(std::string text, std::string_view what, std::string_view by) {
    const std::size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what << " is not in " << text;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

std::string contents_of_window() {
    return outline_of(widgets.window);
}

/// What drawing the station's state writes. Whether a status line is hidden is left out, since that
/// depends on a switch of the form.
std::string contents_of_status() {
    std::string contents =
        outline_of(gtk_stack_get_child_by_name(GTK_STACK(widgets.stack), "overview"));
    for (GtkWidget* label :
         {widgets.header_status, widgets.header_dot, widgets.reachability_label,
          widgets.port_status_label, widgets.port_hint_label, widgets.listing_status_label})
        contents.append(text_of(label) + " " + status_class_of(label) + "\n");
    return contents;
}

GtkWidget* widget_bound_to(const DocumentMember& member) {
    constexpr std::string_view beginning = "settings.";
    for (const FieldBinding& binding : widgets.field_registry)
        if (member.document == "state" && member.path == std::string{beginning} + binding.key)
            return binding.widget;
    return nullptr;
}

class BrokenDocuments : public WindowTest {
protected:
    BrokenDocuments() {
        commands.remove("loginctl"); // every load would run it
        load(state_document());
        sound_contents_ = contents_of_window();
    }

    /// Makes the service send this in place of the member's document, and the program read it.
    /// True when an exception left the handler.
    bool ends_at(const DocumentMember& member, const std::string& text) {
        bool ended = false;
        try {
            read(member.document, text);
        } catch (const std::exception&) {
            widgets.loading = false;
            ended = true;
        }
        if (member.document != "state")
            drain_events(); // makes the button that was busy sensitive again
        return ended;
    }

    bool ends_at(const DocumentMember& member, const json::value& document) {
        return ends_at(member, json::serialize(document));
    }

    /// What the window shows after reading a sound document and then this one.
    std::string contents_after(const DocumentMember& member, const json::value& document,
                               bool status_only = false) {
        show_sound(member);
        EXPECT_FALSE(ends_at(member, document));
        return status_only ? contents_of_status() : contents_of_window();
    }

    /// Expects that the window shows a valid document as it did at first.
    void expect_recovery() {
        load(state_document());
        clear_what_actions_left();
        EXPECT_EQ(contents_of_window(), sound_contents_);
    }

    void show_sound(const DocumentMember& member) {
        service.will_answer_state(
            json::serialize(member.document == "state" ? document_with(member) : state_document()));
        load_form();
    }

private:
    void read(const std::string& document, const std::string& text) {
        if (document == "state") {
            service.will_answer_state(text);
            load_form();
        } else if (document == "devices") {
            service.will_answer("GET", "/api/devices", 200, text);
            find_devices();
        } else if (document == "saved") {
            service.will_answer("PUT", "/api/settings", 200, text);
            save_settings();
        } else if (document == "save refusal") {
            service.will_answer("PUT", "/api/settings", 409, text);
            save_settings();
        } else if (document == "registration refusal") {
            service.will_answer("POST", "/api/register", 409, text);
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.understand_check), TRUE);
            gtk_entry_set_text(GTK_ENTRY(widgets.register_email), "ann@hilltop.example");
            mark_clean();
            register_station();
        } else {
            FAIL() << "no such document: " << document;
        }
    }

    static void clear_what_actions_left() {
        show_footer({});
        set_label_text(widgets.receivers_status, "");
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.understand_check), FALSE);
        gtk_entry_set_text(GTK_ENTRY(widgets.register_email), "");
    }

    std::string sound_contents_{};
};

TEST_F(BrokenDocuments, AMissingMemberIsItsDefaultOrTheEnd) {
    for (const DocumentMember& member : document_members()) {
        if (member.path.empty())
            continue;
        SCOPED_TRACE(testing::Message() << member);
        const json::value document = document_with(member);
        const json::value lacking = without(document, member.path);
        show_sound(member);
        GtkWidget* bound = widget_bound_to(member);
        const std::string before = bound ? outline_of(bound) : "";
        EXPECT_EQ(ends_at(member, lacking), member.missing.ends);
        if (bound) {
            // A key that the service does not send leaves its widget as it is.
            EXPECT_EQ(outline_of(bound), before);
        }
        if (member.missing.like) {
            const bool status_only = bound != nullptr;
            EXPECT_EQ(contents_after(member, lacking, status_only),
                      contents_after(member, with(document, member.path, *member.missing.like),
                                     status_only));
        }
        if (member.missing.ends)
            expect_recovery();
    }
    expect_recovery();
}

TEST_F(BrokenDocuments, AMemberOfAnotherKindIsItsDefaultOrTheEnd) {
    for (const DocumentMember& member : document_members()) {
        SCOPED_TRACE(testing::Message() << member);
        const json::value document = document_with(member);
        std::string expected;
        if (member.wrong.like)
            expected = contents_after(member, with(document, member.path, *member.wrong.like));
        for (const json::value& value : values_of_other_kinds(member)) {
            SCOPED_TRACE(json::serialize(value));
            const json::value bent =
                member.path.empty() ? value : with(document, member.path, value);
            if (member.document != "state")
                show_sound(member); // these documents add to what is there
            EXPECT_EQ(ends_at(member, bent), member.wrong.ends);
            if (!member.wrong.ends) {
                EXPECT_EQ(contents_of_window(), expected);
            }
        }
    }
    expect_recovery();
}

TEST_F(BrokenDocuments, MarkupInATextIsShownAsItIs) {
    const std::string text = "<b>not-bold</b> & <span foreground='red'>&lt;not-red";
    for (const DocumentMember& member : members_of(json::kind::string)) {
        SCOPED_TRACE(testing::Message() << member);
        std::istringstream contents{
            contents_after(member, with(document_with(member), member.path, json::value(text)))};
        bool shown = false;
        for (std::string line; std::getline(contents, line);) {
            if (line.find("not-bold") == std::string::npos)
                continue;
            shown = true;
            EXPECT_NE(line.find(text), std::string::npos) << line;
        }
        EXPECT_EQ(shown, member.shown);
    }
    expect_recovery();
}

TEST_F(BrokenDocuments, AnyCharactersInATextLeaveTheWindowAlive) {
    // Control characters, a zero byte, bidirectional overrides, and what is no character.
    const std::string escaped = R"(\u0001\b\t\n\u000b\f\r\u001b[31m\u007f\u0085\u009b\u0000)"
                                R"(\u202egnp.exe\u202c\u2066\u2067\u2069\u200f\u061c)"
                                R"(\ufffe\uffff\ufdd0\ud83f\udfff\ufeff)";
    for (const DocumentMember& member : members_of(json::kind::string)) {
        SCOPED_TRACE(testing::Message() << member);
        const std::string document =
            json::serialize(with(document_with(member), member.path, placeholder));
        EXPECT_FALSE(ends_at(member, replaced(document, placeholder, escaped)));
    }
    expect_recovery();
}

TEST_F(BrokenDocuments, ATextOfAMegabyteLeavesTheWindowAlive) {
    const std::string text(1 << 20, 'm');
    for (const DocumentMember& member : members_of(json::kind::string)) {
        SCOPED_TRACE(testing::Message() << member);
        EXPECT_FALSE(ends_at(member, with(document_with(member), member.path, json::value(text))));
    }
    expect_recovery();
}

TEST_F(BrokenDocuments, TextThatIsNoUnicodeIsTheEnd) {
    const struct {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"a first half of a surrogate pair alone", R"(\ud800)"},
        {"a byte that begins nothing", "\xff"},
        {"a raw control character", "\x01"},
    };
    // Such a document is refused as a whole: one text of each is enough.
    std::set<std::string> tried;
    for (const DocumentMember& member : members_of(json::kind::string)) {
        if (!tried.insert(member.document).second)
            continue;
        SCOPED_TRACE(testing::Message() << member);
        const std::string document =
            json::serialize(with(document_with(member), member.path, placeholder));
        for (const auto& c : cases) {
            SCOPED_TRACE(c.what);
            EXPECT_TRUE(ends_at(member, replaced(document, placeholder, c.bytes)));
        }
    }
    expect_recovery();
}

TEST_F(BrokenDocuments, AnyNumberLeavesTheWindowAliveAndAWholeOneStopsAtItsEnds) {
    // Each number as the service writes it, and as it is read into 32 and into 64 bits.
    const struct {
        const char* written;
        std::int64_t in_32_bits;
        std::int64_t in_64_bits;
    } cases[] = {
        {"-0.9", 0, 0},
        {"2147483648", 2147483647, 2147483648},
        {"18446744073709551615", 2147483647, 9223372036854775807},
        {"1e999", 2147483647, 9223372036854775807},
        {"-1e999", -2147483648, INT64_MIN},
    };
    for (const DocumentMember& member : members_of(json::kind::double_)) {
        SCOPED_TRACE(testing::Message() << member);
        const json::value document = document_with(member);
        const std::string with_placeholder =
            json::serialize(with(document, member.path, placeholder));
        const std::string quoted = '"' + std::string{placeholder} + '"';
        for (const auto& c : cases) {
            SCOPED_TRACE(c.written);
            EXPECT_FALSE(ends_at(member, replaced(with_placeholder, quoted, c.written)));
            if (member.whole == 0)
                continue;
            const std::string status = contents_of_status();
            const std::int64_t whole = member.whole == 32 ? c.in_32_bits : c.in_64_bits;
            EXPECT_FALSE(ends_at(member, with(document, member.path, whole)));
            EXPECT_EQ(status, contents_of_status());
        }
    }
    expect_recovery();
}

} // namespace

// SPDX-License-Identifier: MIT
#include "app/shortcuts.h"

#include "link/json_access.h"
#include "support/toplevels.h"
#include "support/window_fixture.h"

namespace {

constexpr GdkModifierType control = GDK_CONTROL_MASK;

class Shortcuts : public WindowTest {
protected:
    Shortcuts() {
        load(state_document());
        service.will_answer("PUT", "/api/settings", 200, R"({"restart":false})");
        service.forget_requests();
    }
    void press(guint key, GdkModifierType modifiers = GdkModifierType{}) {
        press_key(widgets.window, key, modifiers);
        drain_events();
    }
    static std::string page() { return gtk_stack_get_visible_child_name(GTK_STACK(widgets.stack)); }
};

TEST_F(Shortcuts, ControlSSavesAnEditedForm) {
    type_into("station.name", "Edited");
    press(GDK_KEY_s, control);
    ASSERT_EQ(service.requests("PUT", "/api/settings").size(), 1U);
    EXPECT_EQ(
        json::parse(service.requests("PUT", "/api/settings")[0].body).at("station").at("name"),
        json::value("Edited"));
    EXPECT_EQ(text_of(widgets.footer_status), "Saved.");
}

TEST_F(Shortcuts, ControlSSavesFromWithinAField) {
    show_page_at_once("station");
    gtk_widget_grab_focus(field("station.name"));
    type_into("station.name", "Edited");
    press(GDK_KEY_s, control);
    EXPECT_EQ(service.requests("PUT", "/api/settings").size(), 1U);
}

TEST_F(Shortcuts, ControlSCountsWhatIsTypedInASpinButton) {
    show_page_at_once("listeners");
    gtk_widget_grab_focus(field("listeners.max"));
    type_into("listeners.max", "12");
    press(GDK_KEY_s, control);
    ASSERT_EQ(service.requests("PUT", "/api/settings").size(), 1U);
    EXPECT_EQ(json::parse(service.requests("PUT", "/api/settings")[0].body)
                  .at("listeners")
                  .at("max")
                  .to_number<double>(),
              12);
}

TEST_F(Shortcuts, ControlSSendsNothingMoreForAPressWhileItSaves) {
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"The port is taken."})");
    type_into("station.name", "Edited");
    press_key(widgets.window, GDK_KEY_s, control);
    press_key(widgets.window, GDK_KEY_s, control); // handled before anything idle, as a queued key
    EXPECT_EQ(service.requests("PUT", "/api/settings").size(), 1U);
    press(GDK_KEY_s, control);
    EXPECT_EQ(service.requests("PUT", "/api/settings").size(), 1U);
    press(GDK_KEY_s, control);
    EXPECT_EQ(service.requests("PUT", "/api/settings").size(), 2U);
}

TEST_F(Shortcuts, ControlSSendsNothingForACleanForm) {
    press(GDK_KEY_s, control);
    EXPECT_TRUE(service.requests().empty());
    EXPECT_EQ(text_of(widgets.footer_status), "");
}

TEST_F(Shortcuts, PlainLettersAreNoShortcuts) {
    type_into("station.name", "Edited");
    gtk_window_set_focus(GTK_WINDOW(widgets.window), nullptr);
    for (const guint key : {GDK_KEY_s, GDK_KEY_q, GDK_KEY_w, GDK_KEY_1})
        press(key);
    EXPECT_TRUE(service.requests().empty());
    EXPECT_NE(widgets.window, nullptr);
    EXPECT_EQ(page(), "overview");
}

TEST_F(Shortcuts, CloseThroughTheQuestionAboutUnsavedChanges) {
    for (const guint key : {GDK_KEY_w, GDK_KEY_q}) {
        SCOPED_TRACE(gdk_keyval_name(key));
        dialogs.clear();
        type_into("station.name", "Edited");
        answer_next_dialog(GTK_RESPONSE_CANCEL);
        press(key, control);
        ASSERT_TRUE(wait_until([this] { return !dialogs.empty(); }));
        drain_events();
        EXPECT_EQ(dialogs[0].primary, "Save your changes?");
        EXPECT_TRUE(widgets.dirty);
    }
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(Shortcuts, PageKeysTurnPagesAndStayAtBothEnds) {
    const char* pages[] = {"overview", "station", "receivers", "listeners", "internet"};
    const std::pair<guint, guint> keys[] = {{GDK_KEY_Page_Down, GDK_KEY_Page_Up},
                                            {GDK_KEY_KP_Page_Down, GDK_KEY_KP_Page_Up}};
    for (const auto& [down, up] : keys) {
        for (std::size_t i = 0; i < std::size(pages); ++i) {
            EXPECT_EQ(page(), pages[i]);
            press(down, control);
        }
        EXPECT_EQ(page(), "internet");
        for (std::size_t i = std::size(pages); i-- > 0;) {
            EXPECT_EQ(page(), pages[i]);
            press(up, control);
        }
        EXPECT_EQ(page(), "overview");
    }
}

TEST_F(Shortcuts, NumbersShowThePages) {
    const std::pair<guint, const char*> cases[] = {{GDK_KEY_5, "internet"},
                                                   {GDK_KEY_1, "overview"},
                                                   {GDK_KEY_2, "station"},
                                                   {GDK_KEY_3, "receivers"},
                                                   {GDK_KEY_4, "listeners"}};
    for (const auto& [key, name] : cases) {
        press(key, control);
        EXPECT_EQ(page(), name);
    }
}

TEST_F(Shortcuts, NumbersShowThePagesFromWithinATextBox) {
    show_page_at_once("station");
    gtk_widget_grab_focus(widgets.description_view);
    press(GDK_KEY_4, control);
    EXPECT_EQ(page(), "listeners");
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(Shortcuts, F5AsksForTheStateAtOnce) {
    service.will_answer_state(
        json::serialize(with(state_document(), "status.listeners", json::array{})));
    press(GDK_KEY_F5);
    ASSERT_EQ(service.requests().size(), 1U);
    EXPECT_EQ(service.requests()[0].line(), "GET /api/state HTTP/1.1");
    EXPECT_TRUE(gtk_widget_get_visible(widgets.listeners_empty));
}

GtkWidget* open_overlay() {
    for (GtkWidget* window : toplevels())
        if (GTK_IS_SHORTCUTS_WINDOW(window) && gtk_widget_get_visible(window))
            return window;
    return nullptr;
}

TEST_F(Shortcuts, ControlQuestionMarkListsThemAll) {
    press(GDK_KEY_question, GdkModifierType(GDK_CONTROL_MASK | GDK_SHIFT_MASK));
    GtkWidget* overlay = open_overlay();
    ASSERT_NE(overlay, nullptr);
    EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(overlay)), GTK_WINDOW(widgets.window));
    for (const char* title :
         {"Save changes", "Ask the service for news at once", "Close the window",
          "Show these shortcuts", "Show a page by its place", "Next page", "Previous page"})
        EXPECT_NE(find_label(overlay, title), nullptr) << title;
    // Not destroyed: the toolkit would stumble over what is left of it when the next window of
    // these tests adds its style sheet. The overlay ends with its parent.
    gtk_widget_hide(overlay);
}

} // namespace

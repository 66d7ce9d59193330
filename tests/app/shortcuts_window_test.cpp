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
    /// The setting of the only save, read as text; "" when there was none.
    std::string saved(const char* group, const char* member) {
        const std::vector<RecordedRequest> saves = service.requests("PUT", "/api/settings");
        return saves.size() == 1 ? json::serialize(json::parse(saves[0].body).at(group).at(member))
                                 : "";
    }
    static std::string page() { return gtk_stack_get_visible_child_name(GTK_STACK(widgets.stack)); }
};

TEST_F(Shortcuts, ControlSSavesFromWithinAField) {
    show_page_at_once("station");
    gtk_widget_grab_focus(field("station.name"));
    type_into("station.name", "Edited");
    press(GDK_KEY_s, control);
    EXPECT_EQ(saved("station", "name"), "\"Edited\"");
    EXPECT_EQ(text_of(widgets.footer_status), "Saved.");
}

TEST_F(Shortcuts, ControlSSendsNothingMoreForAPressWhileItSaves) {
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"The port is taken."})");
    type_into("station.name", "Edited");
    press_key(widgets.window, GDK_KEY_s, control);
    press(GDK_KEY_s, control); // handled before anything idle, as a queued key
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
    }
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

TEST_F(Shortcuts, NumbersShowThePagesFromWithinATextBox) {
    show_page_at_once("station");
    gtk_widget_grab_focus(widgets.description_view);
    press(GDK_KEY_4, control);
    EXPECT_EQ(page(), "listeners");
    EXPECT_FALSE(widgets.dirty);
    press(GDK_KEY_5, control);
    EXPECT_EQ(page(), "internet");
    press(GDK_KEY_1, control);
    EXPECT_EQ(page(), "overview");
}

TEST_F(Shortcuts, F5AsksForTheStateAtOnce) {
    service.will_answer_state(
        json::serialize(with(state_document(), "status.listeners", json::array{})));
    press(GDK_KEY_F5);
    EXPECT_EQ(service.requests().size(), 1U);
    EXPECT_TRUE(gtk_widget_get_visible(widgets.listeners_empty));
}

TEST_F(Shortcuts, F5AsksOnceForAllPressesThatWaited) {
    // With a service that hangs, each request would block the window for two seconds.
    for (int presses = 0; presses < 3; ++presses)
        press_key(widgets.window, GDK_KEY_F5, GdkModifierType{});
    drain_events();
    EXPECT_EQ(service.requests().size(), 1U);
}

TEST_F(Shortcuts, ControlQuestionMarkListsThemAll) {
    press(GDK_KEY_question, GdkModifierType(GDK_CONTROL_MASK | GDK_SHIFT_MASK));
    GtkWidget* overlay = nullptr;
    for (GtkWidget* window : toplevels())
        if (GTK_IS_SHORTCUTS_WINDOW(window) && gtk_widget_get_visible(window))
            overlay = window;
    ASSERT_NE(overlay, nullptr);
    EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(overlay)), GTK_WINDOW(widgets.window));
    EXPECT_TRUE(gtk_window_get_modal(GTK_WINDOW(overlay)));
    std::vector<std::pair<std::string, std::string>> rows;
    for (GtkWidget* widget : tree_of(overlay)) {
        // The search has rows of its own.
        if (!GTK_IS_SHORTCUTS_SHORTCUT(widget) ||
            !gtk_widget_get_ancestor(widget, GTK_TYPE_SHORTCUTS_GROUP))
            continue;
        char* title = nullptr;
        char* keys = nullptr;
        g_object_get(widget, "title", &title, "accelerator", &keys, nullptr);
        rows.emplace_back(title, keys);
        g_free(title);
        g_free(keys);
    }
    EXPECT_EQ(rows, (std::vector<std::pair<std::string, std::string>>{
                        {"Save changes", "<Primary>s"},
                        {"Ask the service for news at once", "F5"},
                        {"Close the window", "<Primary>w <Primary>q"},
                        {"Show these shortcuts", "<Primary>question"},
                        {"Show a page by its place", "<Primary>1...5"},
                        {"Next page", "<Primary>Page_Down"},
                        {"Previous page", "<Primary>Page_Up"}}));
    // Not destroyed: the toolkit would stumble over what is left of it when the next window of
    // these tests adds its style sheet. The overlay ends with its parent.
    gtk_widget_hide(overlay);
}

} // namespace

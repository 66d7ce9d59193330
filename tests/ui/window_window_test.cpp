// SPDX-License-Identifier: MIT
#include "ui/window.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "support/widget_outline.h"
#include "support/window_fixture.h"

namespace {

using BuildWindow = FreshWindowTest;

std::vector<GtkWidget*> parts() {
    return children_of(gtk_bin_get_child(GTK_BIN(widgets.window)));
}

TEST_F(BuildWindow, NamesAndSizesTheWindow) {
    EXPECT_STREQ(gtk_window_get_title(GTK_WINDOW(widgets.window)), "Tarnwave settings");
    EXPECT_STREQ(gtk_window_get_icon_name(GTK_WINDOW(widgets.window)), "tarnwave");
    int width = 0;
    int height = 0;
    gtk_window_get_default_size(GTK_WINDOW(widgets.window), &width, &height);
    EXPECT_EQ(width, 1000);
    EXPECT_EQ(height, 780);
    EXPECT_TRUE(gtk_widget_get_mapped(widgets.window));
}

TEST_F(BuildWindow, PutsTheHeaderOnTop) {
    ASSERT_EQ(parts().size(), 3U);
    EXPECT_EQ(outline_of(parts()[0]), R"(GtkBox .header .horizontal spacing=12
  GtkBox .vertical spacing=3 expand=TRUE
    GtkLabel "TARNWAVE" .brand
    GtkLabel "Your station" .title ellipsize=end lines=2 (header_title)
    GtkBox .horizontal spacing=7
      GtkLabel "●" .dot wrap=FALSE (header_dot)
      GtkLabel "Connecting to the Tarnwave service…" .muted (header_status)
  GtkBox .horizontal spacing=8 valign=center fill=FALSE pack-type=end
    GtkLabel "Unsaved changes" .warning wrap=FALSE visible=FALSE padding=6 (unsaved_label)
    GtkButton .text-button label="Open station page"
    GtkButton .primary .text-button label="Save changes" sensitive=FALSE (save_button)
)");
}

TEST_F(BuildWindow, PutsTheSidebarBesideThePages) {
    const std::vector<GtkWidget*> body = children_of(parts().at(1));
    ASSERT_EQ(body.size(), 2U);
    EXPECT_EQ(outline_of(body[0]), "GtkStackSidebar .sidebar width-request=190\n");
    EXPECT_EQ(gtk_stack_sidebar_get_stack(GTK_STACK_SIDEBAR(body[0])), GTK_STACK(widgets.stack));
    EXPECT_EQ(body[1], widgets.stack);
    EXPECT_EQ(gtk_stack_get_transition_type(GTK_STACK(widgets.stack)),
              GTK_STACK_TRANSITION_TYPE_CROSSFADE);
    const std::string outline = outline_of(parts()[1]);
    EXPECT_EQ(outline.substr(0, outline.find('\n')), "GtkBox .horizontal expand=TRUE");
}

TEST_F(BuildWindow, PutsTheFooterBelow) {
    EXPECT_EQ(outline_of(parts().at(2)), R"(GtkBox .footer .horizontal spacing=10
  GtkLabel "" .muted wrap=FALSE ellipsize=end expand=TRUE (footer_status)
  GtkLabel "Tarnwave )" + std::string{program_version} +
                                             R"(" .small wrap=FALSE fill=FALSE pack-type=end
)");
}

TEST_F(BuildWindow, SpeaksToNobody) {
    EXPECT_TRUE(service.requests().empty());
    EXPECT_TRUE(commands.calls().empty());
}

using RelayVisibility = WindowTest;

TEST_F(RelayVisibility, ShowsTheRelayOrThePortForward) {
    load(state_document());
    for (const bool relay : {true, false, true}) {
        SCOPED_TRACE(relay);
        gtk_switch_set_active(GTK_SWITCH(widgets.relay_switch), relay);
        EXPECT_EQ(gtk_widget_get_visible(widgets.reachability_label), !relay);
        EXPECT_EQ(gtk_widget_get_visible(widgets.port_box), !relay);
        EXPECT_EQ(gtk_widget_get_visible(widgets.relay_key_row), relay);
        EXPECT_EQ(gtk_widget_get_visible(widgets.relay_note), relay);
        EXPECT_TRUE(gtk_widget_get_visible(widgets.port_status_label));
    }
}

class Closing : public FreshWindowTest {
protected:
    Closing() {
        load(state_document());
        service.forget_requests();
    }
    void edit() { type_into("station.name", "Edited"); }
    /// Closes as a window manager does. Returns whether the window is gone.
    bool close_window() {
        gtk_window_close(GTK_WINDOW(widgets.window));
        drain_events();
        return !widgets.window;
    }
};

TEST_F(Closing, AsksNothingWhenTheFormIsClean) {
    EXPECT_FALSE(confirm_close());
    EXPECT_TRUE(close_window());
    EXPECT_TRUE(dialogs.empty());
}

TEST_F(Closing, AsksWhenTheFormIsEdited) {
    edit();
    answer_next_dialog(GTK_RESPONSE_CANCEL);
    EXPECT_TRUE(confirm_close());
    ASSERT_EQ(dialogs.size(), 1U);
    EXPECT_EQ(dialogs[0].primary, "Save your changes?");
    EXPECT_EQ(dialogs[0].secondary, "Some settings have changed and are not saved yet.");
    EXPECT_EQ(dialogs[0].buttons, (std::vector<std::string>{"Discard", "Cancel", "Save"}));
    EXPECT_EQ(dialogs[0].responses, (std::vector<int>{1, GTK_RESPONSE_CANCEL, 2}));
    EXPECT_EQ(dialogs[0].type, GTK_MESSAGE_QUESTION);
    EXPECT_TRUE(dialogs[0].modal);
    EXPECT_EQ(dialogs[0].parent, GTK_WINDOW(widgets.window));
    EXPECT_EQ(dialogs[0].default_button, "Save");
}

TEST_F(Closing, TakesTheDialogOffTheScreen) {
    edit();
    GtkWidget* question = nullptr;
    handle_next_dialog([&](GtkDialog* dialog) {
        question = GTK_WIDGET(dialog);
        g_object_add_weak_pointer(G_OBJECT(dialog), reinterpret_cast<gpointer*>(&question));
        gtk_dialog_response(dialog, GTK_RESPONSE_CANCEL);
    });
    confirm_close();
    EXPECT_EQ(question, nullptr);
}

TEST_F(Closing, WithoutSavingDiscardsTheEdits) {
    edit();
    answer_next_dialog(1);
    EXPECT_TRUE(close_window());
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(Closing, StaysOpenAtEveryOtherAnswer) {
    for (const int response :
         {int{GTK_RESPONSE_CANCEL}, int{GTK_RESPONSE_DELETE_EVENT}, int{GTK_RESPONSE_NONE}, 0, 3}) {
        SCOPED_TRACE(response);
        edit();
        answer_next_dialog(response);
        EXPECT_FALSE(close_window());
        EXPECT_TRUE(widgets.dirty);
    }
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(Closing, SavesWhenAskedTo) {
    edit();
    service.will_answer("PUT", "/api/settings", 200, R"({"restart":false})");
    answer_next_dialog(2);
    EXPECT_TRUE(close_window());
    ASSERT_EQ(service.requests("PUT", "/api/settings").size(), 1U);
    const json::value body = json::parse(service.requests("PUT", "/api/settings")[0].body);
    EXPECT_EQ(body.at("station").at("name"), "Edited");
}

TEST_F(Closing, StaysOpenWhenTheSaveFails) {
    edit();
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"The port is taken."})");
    answer_next_dialog(2);
    EXPECT_FALSE(close_window());
    EXPECT_EQ(text_of(widgets.footer_status), "Not saved: The port is taken.");
    EXPECT_TRUE(widgets.dirty);
}

TEST_F(Closing, AsksOnceThoughItIsClosedAgainMeanwhile) {
    edit();
    answer_next_dialog(GTK_RESPONSE_CANCEL, [] {
        EXPECT_TRUE(confirm_close());
        gtk_window_close(GTK_WINDOW(widgets.window));
    });
    EXPECT_FALSE(close_window());
    EXPECT_EQ(dialogs.size(), 1U);
}

TEST_F(Closing, EndsTheMainLoop) {
    const auto close = +[](gpointer) -> gboolean {
        gtk_window_close(GTK_WINDOW(widgets.window));
        return G_SOURCE_REMOVE;
    };
    g_idle_add(close, nullptr);
    gtk_main(); // comes back when the window is destroyed
    EXPECT_EQ(widgets.window, nullptr);
}

} // namespace

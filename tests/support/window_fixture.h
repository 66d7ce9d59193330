// SPDX-License-Identifier: MIT
// The program's window for tests: built once, as start-up builds it, and driven in process.
//
// Each test gets a service and system commands of its own and starts by loading:
//     TEST_F(SaveSettings, KeepsTheEditsWhenTheServiceRefuses) {
//         load(state_document());
//         type_into("station.name", "Hilltop");
//         service.will_answer("PUT", "/api/settings", 409, R"({"error":"The port is taken."})");
//         EXPECT_FALSE(save_settings());
//         EXPECT_EQ(text_of(widgets.footer_status), "Not saved: The port is taken.");
//     }
// A dialog that no answer was meant for fails its test and is dismissed, so that nothing hangs.
#pragma once

#include "support/fake_commands.h"
#include "support/fake_service.h"
#include "support/state_document.h"
#include "ui/widgets/widget_record.h"

#include <boost/json.hpp>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// A dialog as it stood on the screen when it was answered.
struct SeenDialog {
    std::string primary{};
    std::string secondary{};
    std::vector<std::string> buttons{}; ///< in their order in the dialog
    std::vector<int> responses{};       ///< of the buttons
    std::string default_button{};       ///< the one that Enter presses
    GtkMessageType type = GTK_MESSAGE_OTHER;
    bool modal = false;
    GtkWindow* parent = nullptr;
};

/// Runs what is pending: events, idle work, timers that are due.
void drain_events();

/// Turns the main loop until the condition holds. False when that takes longer than a minute.
bool wait_until(const std::function<bool()>& condition);

/// Turns the main loop until a frame that begins after this call is on the screen.
bool wait_for_frame_on(GtkWidget* widget);

/// The text a label shows, without its markup.
std::string text_of(GtkWidget* label);
/// The markup or text that was written into a label.
std::string markup_of(GtkWidget* label);
std::string tooltip_of(GtkWidget* widget);
bool has_class(GtkWidget* widget, const char* style_class);
/// The style classes of a widget in alphabetical order.
std::vector<std::string> classes_of(GtkWidget* widget);
/// Which one of "good", "warning" and "error" a widget carries: "" for none, all of them with
/// blanks between them for several.
std::string status_class_of(GtkWidget* widget);

/// What the footer says, and after a "|" the status class it carries.
std::string footer();

/// The children of a container in their order.
std::vector<GtkWidget*> children_of(GtkWidget* container);
/// A widget and all below it, in the order of the tree, internal children included.
std::vector<GtkWidget*> tree_of(GtkWidget* widget);
/// The first label below `root` that shows this text; null when there is none.
GtkWidget* find_label(GtkWidget* root, std::string_view text);
/// The first button below `root` with this text; null when there is none.
GtkWidget* find_button(GtkWidget* root, std::string_view text);

/// The widget bound to a settings key. Fails the test for an unknown key.
GtkWidget* field(std::string_view key);
/// Types into the entry or spin button of a key, in place of what it held. As with a keyboard, a
/// spin button's value stays as it is until something takes the text over.
void type_into(std::string_view key, const std::string& text);
void type_into(GtkWidget* entry, const std::string& text);

/// Clicks a button that has to be sensitive and on a visible page or in a dialog.
void click(GtkWidget* button);
/// The two halves of a mouse click with the first button in the middle of a widget. The pointer
/// leaves the widget afterwards.
void press_mouse(GtkWidget* widget);
void release_mouse(GtkWidget* widget);
/// Turns the mouse wheel by one notch over the middle of a widget, through all that lies below.
void turn_wheel(GtkWidget* widget, GdkScrollDirection direction);
/// Presses and releases a key in a window.
void press_key(GtkWidget* window, guint key, GdkModifierType modifiers = GdkModifierType{});

/// Runs a function as soon as the main loop turns, before anything is drawn.
void run_when_loop_turns(std::function<void()> function);

/// Selects a listener in the table, by its place.
void select_listener(int index);

/// Shows a page of the stack at once.
void show_page_at_once(const char* name);

/// The tests share one window. The constructor puts back all that a test may leave behind and a
/// load does not replace.
class WindowTest : public testing::Test {
protected:
    WindowTest();
    ~WindowTest() override;

    /// The service answers with this document, and the form is loaded from it.
    void load(const boost::json::value& document);
    /// The service answers with this document, and one poll draws it.
    void poll(const boost::json::value& document);

    /// The requests that came, as "GET /api/state". A GET that had a body says so.
    std::vector<std::string> requests_sent() const;

    /// Answers the next dialog that no other answer is meant for with a response. `while_open`
    /// runs first.
    void answer_next_dialog(int response, std::function<void()> while_open = {});
    /// Calls a function with the next dialog, which the function has to end.
    void handle_next_dialog(std::function<void(GtkDialog*)> handler);

    /// The dialogs that were answered in this test.
    std::vector<SeenDialog> dialogs{};

    FakeService service{};
    FakeCommands commands{};

private:
    static gboolean look_for_dialog(gpointer test);
    void handle(GtkDialog* dialog);

    std::deque<std::function<void(GtkDialog*)>> handlers_{};
    guint watch_ = 0;
    std::string socket_path_before_{};
};

/// A test with a window of its own that was just built and never loaded. The other window is
/// there again afterwards.
class FreshWindowTest : public WindowTest {
protected:
    FreshWindowTest();
    ~FreshWindowTest() override;

private:
    WidgetRecord record_before_{};
};

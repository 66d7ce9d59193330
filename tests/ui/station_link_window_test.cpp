// SPDX-License-Identifier: MIT
#include "link/json_access.h"
#include "support/window_fixture.h"

// Functions of the leak sanitizer; null when the program is built without it.
extern "C" [[gnu::weak]] void __lsan_disable();
extern "C" [[gnu::weak]] void __lsan_enable();

namespace {

class StationPage : public WindowTest {
protected:
    // GTK 3 never gives back the window's name that `gtk_show_uri_on_window` makes, and leaves no
    // frame of its own that a suppression could name.
    StationPage() {
        commands.will_run("stub-browser", "");
        if (__lsan_disable)
            __lsan_disable();
    }
    ~StationPage() override {
        if (__lsan_enable)
            __lsan_enable();
    }

    /// The first call of the browser.
    std::string opened() {
        EXPECT_TRUE(wait_until([this] { return !commands.calls("stub-browser").empty(); }));
        return commands.calls("stub-browser").front();
    }
};

TEST_F(StationPage, IsOpenedAtPortZeroBeforeTheFirstLoad) {
    click(find_button(widgets.window, "Open station page"));
    EXPECT_EQ(opened(), "stub-browser http://127.0.0.1:0/");
}

TEST_F(StationPage, IsOpenedAtTheSavedPort) {
    load(state_document());
    type_into("network.port", "9000"); // not saved
    click(find_button(widgets.window, "Open station page"));
    EXPECT_EQ(opened(), "stub-browser http://127.0.0.1:8073/");
}

TEST_F(StationPage, TakesOddPortsAsFarAsTheyAreNumbers) {
    const struct {
        json::value port;
        const char* address;
    } cases[] = {
        {8073.9, "stub-browser http://127.0.0.1:8073/"},
        {-1.5, "stub-browser http://127.0.0.1:-1/"},
        {"8073", "stub-browser http://127.0.0.1:0/"},
        {nullptr, "stub-browser http://127.0.0.1:0/"},
        {1e300, "stub-browser http://127.0.0.1:2147483647/"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(json::serialize(c.port));
        load(with(state_document(), "settings.network.port", c.port));
        commands.forget_calls();
        click(find_button(widgets.window, "Open station page"));
        EXPECT_EQ(opened(), c.address);
    }
}

using StationLink = WindowTest;

std::string clipboard_text() {
    char* text = gtk_clipboard_wait_for_text(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD));
    const std::string copy{text ? text : ""};
    g_free(text);
    return copy;
}

TEST_F(StationLink, GoesToTheClipboard) {
    load(state_document());
    const std::string address = gtk_link_button_get_uri(GTK_LINK_BUTTON(widgets.station_link));
    ASSERT_NE(address, "about:blank");
    click(find_button(widgets.window, "Copy link"));
    EXPECT_EQ(clipboard_text(), address);
    EXPECT_EQ(text_of(widgets.footer_status), "Station link copied.");
    EXPECT_EQ(status_class_of(widgets.footer_status), "good");
}

} // namespace

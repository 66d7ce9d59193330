// SPDX-License-Identifier: MIT
#include "ui/station_link.h"

#include "link/json_access.h"
#include "support/stub_browser.h"
#include "support/window_fixture.h"

namespace {

class StationPage : public WindowTest {
protected:
    std::string opened_address() {
        EXPECT_TRUE(wait_until([this] { return !browser.opened().empty(); }));
        return browser.opened();
    }
    StubBrowser browser{};
};

TEST_F(StationPage, IsOpenedAtPortZeroBeforeTheFirstLoad) {
    click(widgets.open_page_button);
    EXPECT_EQ(opened_address(), "http://127.0.0.1:0/");
}

TEST_F(StationPage, IsOpenedAtTheSavedPort) {
    load(state_document());
    type_into("network.port", "9000"); // not saved
    click(widgets.open_page_button);
    EXPECT_EQ(opened_address(), "http://127.0.0.1:8073/");
}

TEST_F(StationPage, TakesOddPortsAsFarAsTheyAreNumbers) {
    const struct {
        json::value port;
        const char* address;
    } cases[] = {
        {8073.9, "http://127.0.0.1:8073/"},      {-1.5, "http://127.0.0.1:-1/"},
        {"8073", "http://127.0.0.1:0/"},         {nullptr, "http://127.0.0.1:0/"},
        {1e300, "http://127.0.0.1:2147483647/"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(json::serialize(c.port));
        load(with(state_document(), "settings.network.port", c.port));
        browser.forget();
        open_station_page();
        EXPECT_EQ(opened_address(), c.address);
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
    click(widgets.copy_link_button);
    EXPECT_EQ(clipboard_text(), address);
    EXPECT_EQ(text_of(widgets.footer_status), "Station link copied.");
    EXPECT_EQ(status_class_of(widgets.footer_status), "good");
}

} // namespace

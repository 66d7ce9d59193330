// SPDX-License-Identifier: MIT
// Which label shows which line; the sentences are tried beside the functions that make them.
#include "status/refresh_status.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "status/internet_texts.h"
#include "support/user_locale.h"
#include "support/window_fixture.h"

namespace {

const std::string host{directory_host};

using InternetPage = WindowTest;

/// A label's plain text and its colour.
std::string line_of(GtkWidget* label) {
    EXPECT_FALSE(gtk_label_get_use_markup(GTK_LABEL(label)));
    return text_of(label) + "|" + status_class_of(label);
}

TEST_F(InternetPage, TellsHowToForwardThePort) {
    // The address depends on the computer that runs the test.
    const std::string address = lan_address();
    const std::string at = address.empty() ? "" : " (<b>" + address + "</b>)";
    for (const bool relay_wanted : {false, true}) {
        SCOPED_TRACE(relay_wanted);
        load(with(with(state_document(), "settings.network.port", 8081.9), "settings.relay.enabled",
                  relay_wanted));
        EXPECT_EQ(markup_of(widgets.reachability_label),
                  "On your router, forward TCP port <b>8081</b> to this computer" + at +
                      ". Router menus call this port forwarding or a virtual server.");
        EXPECT_TRUE(gtk_label_get_use_markup(GTK_LABEL(widgets.reachability_label)));
        EXPECT_EQ(status_class_of(widgets.reachability_label), "");
    }
}

TEST_F(InternetPage, ShowsTheReachLineWithItsColour) {
    load(state_document());
    EXPECT_EQ(line_of(widgets.port_status_label),
              "✓ " + host + " reached the station at 192.0.2.7:8073.|good");
    json::value relay = with(state_document(), "settings.relay.enabled", true);
    relay = with(relay, "status.relay.state", "refused");
    load(with(relay, "status.relay.error", "No <key> &."));
    EXPECT_EQ(line_of(widgets.port_status_label),
              "✗ The relay refused: No <key> &. Trying again.|error");
}

TEST_F(InternetPage, ShowsTheCertificateLineWithItsColour) {
    const TimeZone utc{"UTC0"};
    const UserLocale german{"de_DE.UTF-8"};
    load(with(state_document(), "status.https.expires", 1772668800));
    EXPECT_EQ(line_of(widgets.port_hint_label),
              "✓ Secure address: https://k1abc.example:8073/ (certificate renews itself; good "
              "until 5 März 2026).|good");
    poll(without(state_document(), "status.https"));
    EXPECT_EQ(line_of(widgets.port_hint_label), "A secure https address comes automatically once " +
                                                    host + " can reach the station.|");
}

TEST_F(InternetPage, ShowsTheListingLineWithItsColour) {
    load(state_document());
    EXPECT_EQ(line_of(widgets.listing_status_label), "✓ Listed at " + host + "/websdr.html.|good");
    poll(with(with(state_document(), "status.directory.state", "check-in failed"),
              "status.directory.error", "R&D <down>"));
    EXPECT_EQ(line_of(widgets.listing_status_label),
              "Cannot reach " + host + ": R&D <down>|warning");
}

} // namespace

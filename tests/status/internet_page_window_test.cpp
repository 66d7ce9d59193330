// SPDX-License-Identifier: MIT
#include "status/internet_page.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "status/lan_address.h"
#include "support/user_locale.h"
#include "support/window_fixture.h"

namespace {

const std::string host{directory_host};

using InternetPage = WindowTest;

struct Line {
    std::string text{};
    std::string status_class{};

    bool operator==(const Line&) const = default;

    friend std::ostream& operator<<(std::ostream& stream, const Line& line) {
        return stream << '"' << line.text << "\" ." << line.status_class;
    }
};

Line line_of(GtkWidget* label) {
    EXPECT_FALSE(gtk_label_get_use_markup(GTK_LABEL(label)));
    return {text_of(label), status_class_of(label)};
}

json::value through_relay(const char* relay_state) {
    return with(with(state_document(), "settings.relay.enabled", true), "status.relay.state",
                relay_state);
}

TEST_F(InternetPage, TellsHowToForwardThePort) {
    // What the computer's own addresses are is its own matter.
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
    const json::value refused = with(through_relay("refused"), "status.relay.error", "No <key> &.");
    const json::value unreachable =
        with(through_relay("unreachable"), "status.relay.error", "Timed out.");
    const struct {
        const char* when;
        json::value document;
        Line line;
    } cases[] = {
        {"not registered",
         with(state_document(), "status.directory.state", "not registered"),
         {"Once the station is registered, Tarnwave checks the port for you.", ""}},
        {"not checked in",
         with(state_document(), "status.directory.state", "checking"),
         {"Checking…", ""}},
        {"the check-in failed",
         with(state_document(), "status.directory.state", "check-in failed"),
         {"Checking…", ""}},
        {"reachable",
         state_document(),
         {"✓ " + host + " reached the station at 192.0.2.7:8073.", "good"}},
        {"not reachable",
         with(state_document(), "status.directory.reachable", false),
         {"✗ " + host + " could not reach the station at 192.0.2.7:8073. Check the port forward.",
          "error"}},
        {"the relay is wanted, the station is not registered",
         with(through_relay("connected"), "status.directory.state", "not registered"),
         {"Register the station below: the relay knows stations by their registration.", "good"}},
        {"no relay key",
         through_relay("no key"),
         {"Enter the relay key Corvane gave you, then press Save.", ""}},
        {"the relay connects",
         through_relay("connecting"),
         {"Connecting to the " + host + " relay…", ""}},
        {"the relay is connected",
         with(through_relay("connected"), "status.relay.listeners", 5),
         {"✓ Connected. Listeners reach your station at https://relay.example/k1abc/ (5 at once "
          "through the relay).",
          "good"}},
        {"the relay refused", refused, {"✗ The relay refused: No <key> &. Trying again.", "error"}},
        {"the relay refused and says nothing",
         without(refused, "status.relay.error"),
         {"✗ The relay refused:  Trying again.", "error"}},
        {"the relay is unreachable",
         unreachable,
         {"✗ Cannot reach the relay: Timed out. Trying again.", "error"}},
        {"the relay is off", through_relay("off"), {"Press Save to connect.", ""}},
        {"the relay says something new", through_relay("sleeping"), {"Press Save to connect.", ""}},
        {"the relay refused an unregistered station",
         with(refused, "status.directory.state", "not registered"),
         {"Register the station below: the relay knows stations by their registration.", "error"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        load(c.document);
        EXPECT_EQ(line_of(widgets.port_status_label), c.line);
    }
}

TEST_F(InternetPage, ShowsTheCertificateLineWithItsColour) {
    const TimeZone utc{"UTC0"};
    const json::value failed = with(with(state_document(), "status.https.state", "failed"),
                                    "status.https.error", "No <answer>.");
    const json::value requesting = with(state_document(), "status.https.state", "requesting");
    const Line none{
        "A secure https address comes automatically once " + host + " can reach the station.", ""};
    const struct {
        const char* when;
        json::value document;
        Line line;
    } cases[] = {
        {"active",
         state_document(),
         {"✓ Secure address: https://k1abc.example:8073/ (certificate renews itself; good until 1 "
          "January 2027).",
          "good"}},
        {"active without an end",
         without(state_document(), "status.https.expires"),
         {"✓ Secure address: https://k1abc.example:8073/ (certificate renews itself; good until ).",
          "good"}},
        {"requesting", requesting, {"Getting a certificate for k1abc.example…", ""}},
        {"requesting without a name",
         without(requesting, "status.https.name"),
         {"Getting a certificate for the station…", ""}},
        {"failed with an older one in use",
         failed,
         {"✗ No certificate yet: No <answer>. The current one stays in use. Trying again later.",
          "warning"}},
        {"failed without a name",
         without(failed, "status.https.name"),
         {"✗ No certificate yet: No <answer>. Trying again later.", "warning"}},
        {"failed without a reason",
         without(failed, "status.https.error"),
         {"✗ No certificate yet:  The current one stays in use. Trying again later.", "warning"}},
        {"something new", with(state_document(), "status.https.state", "idle"), none},
        {"nothing", without(state_document(), "status.https"), none},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        load(c.document);
        EXPECT_EQ(line_of(widgets.port_hint_label), c.line);
    }
}

TEST_F(InternetPage, ShowsTheListingLineWithItsColour) {
    const json::value relay_off = through_relay("connecting");
    const json::value failed =
        with(with(state_document(), "status.directory.state", "check-in failed"),
             "status.directory.error", "R&D <down>");
    const struct {
        const char* when;
        json::value document;
        Line line;
    } cases[] = {
        {"not wanted",
         with(state_document(), "settings.directory.listed", false),
         {"Not listed: switch on “List this station” to appear.", ""}},
        {"not registered",
         with(state_document(), "status.directory.state", "not registered"),
         {"Not registered yet: register below.", ""}},
        {"the check-in failed", failed, {"Cannot reach " + host + ": R&D <down>", "warning"}},
        {"the check-in failed without a reason",
         without(failed, "status.directory.error"),
         {"Cannot reach " + host + ": ", "warning"}},
        {"listed", state_document(), {"✓ Listed at " + host + "/websdr.html.", "good"}},
        {"reachable, not checked in",
         with(state_document(), "status.directory.state", "checking"),
         {"Checking in…", "warning"}},
        {"checked in, the relay is not up",
         relay_off,
         {"Checked in. Listed as soon as the relay connection is up.", "warning"}},
        {"checked in, not reachable",
         with(state_document(), "status.directory.reachable", false),
         {"Checked in. Listed as soon as " + host + " can reach the station.", "warning"}},
        {"neither",
         with(relay_off, "status.directory.state", "checking"),
         {"Checking in…", "warning"}},
        {"the relay is up, not checked in",
         with(through_relay("connected"), "status.directory.state", "checking"),
         {"Checking in…", "warning"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        load(c.document);
        EXPECT_EQ(line_of(widgets.listing_status_label), c.line);
    }
}

TEST_F(InternetPage, NamesTheMonthInTheUsersLanguage) {
    const TimeZone utc{"UTC0"};
    const UserLocale german{"de_DE.UTF-8"};
    load(with(state_document(), "status.https.expires", 1772668800));
    EXPECT_EQ(text_of(widgets.port_hint_label),
              "✓ Secure address: https://k1abc.example:8073/ (certificate renews itself; good "
              "until 5 März 2026).");
}

} // namespace

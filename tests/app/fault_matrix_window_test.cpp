// SPDX-License-Identifier: MIT
// Every kind of request meets every fault of a service. What has to come of it follows from what
// the link makes of the fault and from who asked: a sentence, or the library's error where a reply
// is read that is not what the contract says. Afterwards the edits are there, no descriptor is left
// open and the window works. The first contact of all is in start_up_window_test.cpp.
#include "app/state_poll.h"
#include "app/station_owner.h"
#include "link/build_constants.h"
#include "link/json_access.h"
#include "link/text.h"
#include "receivers/find_devices.h"
#include "status/listener_actions.h"
#include "status/registration.h"
#include "support/bad_connection.h"
#include "support/faults.h"
#include "support/time_limits.h"
#include "support/window_fixture.h"
#include "ui/load_form.h"
#include "ui/save_settings.h"
#include "ui/widgets/change_tracking.h"

#include <filesystem>
#include <iterator>

namespace {

const std::string on_the_air =
    format_text("On the air · 2 receivers · 2 of 8 listening · listed on %s", directory_host);

/// A kind of request, and what its sender says of each sort of answer.
struct Kind {
    const char* name = nullptr;
    std::string good_body{};
    std::function<void()> act{};
    std::function<std::string()> shown{};
    std::string no_answer{};
    std::string refused{};
    std::string well{};
    bool reads_success = false; ///< a success that is not what the contract says is the end
    bool reads_refusal = false; ///< so is a refusal
    bool edited = true;         ///< the form is edited before, and stays so unless it is loaded
    bool loads = false;         ///< a success loads the form
    bool asks_again = false;    ///< until it is answered
};

std::size_t open_descriptors() {
    const std::filesystem::directory_iterator all{"/proc/self/fd"};
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

std::string footer() {
    return text_of(widgets.footer_status);
}

std::string header() {
    return text_of(widgets.header_status);
}

class FaultMatrix : public WindowTest {
protected:
    FaultMatrix() {
        service.will_answer("PUT", "/api/settings", 200, R"({"restart":false})");
        service.will_answer("GET", "/api/devices", 200, devices_);
        for (const char* target : {"/api/register", "/api/kick", "/api/ban"})
            service.will_answer("POST", target, 200, "{}");
        load(state_document());
        drain_events();
        descriptors_ = open_descriptors();
    }
    ~FaultMatrix() override { shorter_time_limit_ms = 0; }

    void expect_every_fault(const Kind& kind) {
        for (const Fault& fault : faults()) {
            SCOPED_TRACE(testing::Message() << kind.name << ": " << fault);
            meet(kind, fault);
            shorter_time_limit_ms = 0;
            expect_a_window_that_works();
        }
    }

    static void select_a_listener() {
        GtkTreePath* first = gtk_tree_path_new_first();
        gtk_tree_selection_select_path(
            gtk_tree_view_get_selection(GTK_TREE_VIEW(widgets.listeners_view)), first);
        gtk_tree_path_free(first);
    }

    std::string state_ = json::serialize(state_document());
    std::string devices_ = R"([{"backend":"sdrplay","serial":"2305012345","model":"RSPdx",)"
                           R"("available":true}])";

private:
    void meet(const Kind& kind, const Fault& fault) {
        if (kind.edited)
            type_into("station.name", "Edited");
        if (fault.connection.empty())
            service.next_connection(steps_of(fault, kind.good_body));
        shorter_time_limit_ms = fault.limit_ms;
        const bool success = fault.status == 200;
        const bool ends = success ? kind.reads_success && fault.body != "own"
                                  : kind.reads_refusal && fault.body == "empty";
        BadConnection bad{service.socket_path(), fault.connection};
        if (kind.asks_again)
            bad.end_once_met();
        if (ends) {
            EXPECT_THROW(kind.act(), std::exception);
            widgets.loading = false;
        } else {
            kind.act();
            EXPECT_EQ(kind.shown(), success             ? kind.well
                                    : fault.status == 0 ? kind.no_answer
                                                        : kind.refused);
        }
        if (kind.edited && !(success && kind.loads)) {
            EXPECT_STREQ(gtk_entry_get_text(GTK_ENTRY(field("station.name"))), "Edited");
            EXPECT_TRUE(widgets.dirty);
        }
    }

    void expect_a_window_that_works() {
        drain_events();
        poll_state(nullptr);
        EXPECT_EQ(header(), on_the_air);
        type_into("station.name", "Usable");
        EXPECT_TRUE(save_settings());
        EXPECT_EQ(footer(), "Saved.");
        EXPECT_FALSE(widgets.dirty);
        drain_events();
        // The service closes its own ends in a moment.
        EXPECT_TRUE(wait_until([this] { return open_descriptors() == descriptors_; }))
            << open_descriptors() << " instead of " << descriptors_;
    }

    std::size_t descriptors_ = 0;
};

TEST_F(FaultMatrix, OfThePoll) {
    expect_every_fault({.name = "poll",
                        .good_body = state_,
                        .act = [] { poll_state(nullptr); },
                        .shown = header,
                        .no_answer = "The Tarnwave service is not answering",
                        .refused = "The Tarnwave service is not answering",
                        .well = on_the_air,
                        .reads_success = true});
}

TEST_F(FaultMatrix, OfLoadingTheForm) {
    expect_every_fault({.name = "load",
                        .good_body = state_,
                        .act = load_form,
                        .shown = header,
                        .no_answer = on_the_air,
                        .refused = on_the_air,
                        .well = on_the_air,
                        .reads_success = true,
                        .loads = true});
}

TEST_F(FaultMatrix, OfASave) {
    expect_every_fault({.name = "save",
                        .good_body = R"({"restart":false})",
                        .act = [] { save_settings(); },
                        .shown = footer,
                        .no_answer = "Not saved: the Tarnwave service did not answer.",
                        .refused = "Not saved: No.",
                        .well = "Saved.",
                        .reads_success = true,
                        .reads_refusal = true,
                        .loads = true});
}

TEST_F(FaultMatrix, OfADiscovery) {
    expect_every_fault({.name = "find",
                        .good_body = devices_,
                        .act = find_devices,
                        .shown = [] { return text_of(widgets.receivers_status); },
                        .no_answer = "The Tarnwave service did not answer.",
                        .refused = "The Tarnwave service did not answer.",
                        .well = "1 found.",
                        .reads_success = true});
}

TEST_F(FaultMatrix, OfARegistration) {
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.understand_check), TRUE);
    type_into(widgets.register_email, "ann@hilltop.example");
    expect_every_fault({.name = "register",
                        .good_body = "{}",
                        .act = register_station,
                        .shown = footer,
                        .no_answer = "Not registered: the service did not answer.",
                        .refused = "Not registered: No.",
                        .well = format_text("Registered. The station appears on the list as soon "
                                            "as %s can reach it.",
                                            directory_host),
                        .reads_refusal = true,
                        .edited = false,
                        .loads = true});
}

/// Something done to a listener: whatever becomes of the request, the sentence is the same.
Kind listener_kind(const char* name, std::function<void()> act, const std::string& sentence) {
    return {.name = name,
            .good_body = "{}",
            .act = std::move(act),
            .shown = footer,
            .no_answer = sentence,
            .refused = sentence,
            .well = sentence};
}

TEST_F(FaultMatrix, OfEndingASession) {
    const auto act = [] {
        select_a_listener();
        listener_action(false);
    };
    expect_every_fault(listener_kind("kick", act, "Ended the session of 198.51.100.4."));
}

TEST_F(FaultMatrix, OfBlockingAnAddress) {
    const auto act = [this] {
        select_a_listener();
        answer_next_dialog(GTK_RESPONSE_OK);
        listener_action(true);
    };
    expect_every_fault(listener_kind("ban", act, "Blocked 198.51.100.4."));
}

TEST_F(FaultMatrix, OfTheWaitForTheNewOwner) {
    bool accepted = false;
    expect_every_fault({.name = "wait",
                        .good_body = state_,
                        .act =
                            [&] {
                                answer_next_dialog(GTK_RESPONSE_ACCEPT);
                                accepted = check_owner();
                            },
                        .shown = [&] { return std::string{accepted ? "accepted" : "refused"}; },
                        .no_answer = "accepted",
                        .refused = "accepted",
                        .well = "accepted",
                        .asks_again = true});
}

} // namespace

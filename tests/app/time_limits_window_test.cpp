// SPDX-License-Identifier: MIT
// How long each request waits for a service that reads the request and does not answer.
#include "app/start_up.h"
#include "app/station_owner.h"
#include "receivers/find_devices.h"
#include "status/listener_actions.h"
#include "status/registration.h"
#include "support/no_waiting.h"
#include "support/window_fixture.h"
#include "ui/form.h"

namespace {

class TimeLimits : public WindowTest {
protected:
    TimeLimits() {
        load(state_document());
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(widgets.understand_check), TRUE);
        type_into(widgets.register_email, "ann@hilltop.example");
        select_listener(0);
    }
    ~TimeLimits() override { drain_events(); }

    /// The time limits, in seconds, of the requests that an action makes.
    template <class Action> std::vector<int> limits_of(Action action) {
        service.stay_silent();
        const NoPatience no_patience;
        action();
        return no_patience.time_limits_s();
    }
};

TEST_F(TimeLimits, AreTwoSecondsForThePoll) {
    EXPECT_EQ(limits_of([] { poll_state(nullptr); }), std::vector<int>{2});
}

TEST_F(TimeLimits, AreThreeSecondsForLoadingAndSaving) {
    EXPECT_EQ(limits_of(load_form), std::vector<int>{3});
    EXPECT_EQ(limits_of([] { save_settings(); }), std::vector<int>{3});
}

TEST_F(TimeLimits, AreThirtySecondsWhereTheServiceAsksSomebodyElse) {
    EXPECT_EQ(limits_of(find_devices), std::vector<int>{30});
    EXPECT_EQ(limits_of(register_station), std::vector<int>{30});
}

TEST_F(TimeLimits, AreThreeSecondsForEachRequestAboutAListener) {
    EXPECT_EQ(limits_of(end_listener_session), (std::vector<int>{3, 2}));
    answer_next_dialog(GTK_RESPONSE_OK);
    EXPECT_EQ(limits_of(block_listener_address), (std::vector<int>{3, 3, 3, 2}));
}

TEST_F(TimeLimits, AreThreeSecondsForEachTryOfANewOwner) {
    const NoSleep no_sleep;
    answer_next_dialog(GTK_RESPONSE_ACCEPT);
    EXPECT_EQ(limits_of(check_owner), std::vector<int>(50, 3));
}

} // namespace

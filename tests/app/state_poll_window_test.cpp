// SPDX-License-Identifier: MIT
#include "app/start_up.h"

#include "support/window_fixture.h"

namespace {

using StatePoll = WindowTest;

TEST_F(StatePoll, KeepsItsTimeoutWhateverTheServiceAnswers) {
    EXPECT_EQ(poll_interval_s, 3U);
    service.will_answer_state(boost::json::serialize(state_document()));
    EXPECT_EQ(poll_state(nullptr), G_SOURCE_CONTINUE);
    EXPECT_EQ(service.requests().size(), 1U);
    service.stop();
    EXPECT_EQ(poll_state(nullptr), G_SOURCE_CONTINUE);
}

TEST_F(StatePoll, AsksForNothingOnceTheWindowIsClosed) {
    GtkWidget* const window = widgets.window;
    widgets.window = nullptr;
    EXPECT_EQ(poll_state(nullptr), G_SOURCE_CONTINUE);
    widgets.window = window;
    EXPECT_TRUE(service.requests().empty());
}

} // namespace

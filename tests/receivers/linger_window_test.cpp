// SPDX-License-Identifier: MIT
#include "receivers/linger.h"

#include "link/json_access.h"
#include "support/window_fixture.h"

namespace {

const std::string question =
    std::string{"loginctl show-user "} + g_get_user_name() + " -p Linger --value";

class Linger : public WindowTest {
protected:
    Linger() {
        load(state_document());
        show_page_at_once("internet");
        commands.forget_calls();
    }

    ~Linger() override { drain_events(); }

    /// Presses the switch like a user, and lets the main loop act on it.
    void press() {
        gtk_widget_activate(widgets.linger_switch);
        drain_events();
    }

    bool is_on() const { return gtk_switch_get_active(GTK_SWITCH(widgets.linger_switch)); }

    std::vector<std::string> changes() const {
        std::vector<std::string> made;
        for (const std::string& call : commands.calls("loginctl"))
            if (!call.starts_with("loginctl show-user"))
                made.push_back(call);
        return made;
    }
};

TEST_F(Linger, IsOnWhenTheAnswerBeginsWithYes) {
    const struct {
        const char* shell_lines;
        bool on;
    } cases[] = {
        {"echo yes", true},
        {"printf yes", true},
        {"printf yesterday", true},
        {"echo no", false},
        {"", false},
        {"echo ' yes'", false},
        {"echo YES", false},
        {"echo yes >&2", false},
        {"exit 1", false},
        {"printf '\\nyes'", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.shell_lines);
        commands.forget_calls();
        commands.will_run("loginctl", c.shell_lines);
        EXPECT_EQ(query_linger(), c.on);
        EXPECT_EQ(commands.calls(), (std::vector<std::string>{question}));
    }
    commands.remove("loginctl");
    EXPECT_FALSE(query_linger());
}

TEST_F(Linger, FollowsTheSystemAtEveryLoadWithoutChangingIt) {
    for (const bool on : {true, false, true}) {
        SCOPED_TRACE(on);
        commands.set_lingering(on);
        commands.forget_calls();
        load(state_document());
        drain_events();
        EXPECT_EQ(is_on(), on);
        EXPECT_EQ(commands.calls(), (std::vector<std::string>{question}));
        EXPECT_FALSE(widgets.dirty);
        EXPECT_FALSE(widgets.linger_guard);
    }
}

TEST_F(Linger, IgnoresPressesUntilTheChangeIsMade) {
    set_linger();
    EXPECT_FALSE(gtk_widget_is_sensitive(widgets.linger_switch));
    drain_events();
    EXPECT_TRUE(gtk_widget_is_sensitive(widgets.linger_switch));
}

TEST_F(Linger, IsSwitchedOnByOneCommand) {
    press();
    EXPECT_EQ(changes(), (std::vector<std::string>{"loginctl enable-linger"}));
    EXPECT_TRUE(commands.lingering());
    EXPECT_TRUE(is_on());
    EXPECT_EQ(footer(),
              "Your receivers now stay shared when you log out and after a restart.|good");
    EXPECT_FALSE(widgets.dirty);
}

TEST_F(Linger, IsSwitchedOffByOneCommand) {
    commands.set_lingering(true);
    load(state_document());
    press();
    EXPECT_EQ(changes(), (std::vector<std::string>{"loginctl disable-linger"}));
    EXPECT_FALSE(commands.lingering());
    EXPECT_FALSE(is_on());
    EXPECT_EQ(footer(), "Your receivers are shared only while you are logged in.|good");
}

TEST_F(Linger, SnapsBackWhenTheSystemRefuses) {
    commands.refuse_to_change_lingering();
    press();
    EXPECT_EQ(changes(), (std::vector<std::string>{"loginctl enable-linger"}));
    EXPECT_FALSE(is_on());
    EXPECT_EQ(footer(), "The system did not allow that change.|error");

    commands.set_lingering(true);
    load(state_document());
    commands.forget_calls();
    press();
    EXPECT_EQ(changes(), (std::vector<std::string>{"loginctl disable-linger"}));
    EXPECT_TRUE(is_on());
    EXPECT_EQ(footer(), "The system did not allow that change.|error");
    EXPECT_FALSE(widgets.linger_guard);
}

TEST_F(Linger, SnapsBackWhenThereIsNoSuchCommand) {
    commands.remove("loginctl");
    press();
    EXPECT_FALSE(is_on());
    EXPECT_EQ(footer(), "The system did not allow that change.|error");
}

TEST_F(Linger, WaitsForTheCommandAndBelievesTheSystemAndNotItsStatus) {
    // It counts far longer than the question for the outcome would take.
    commands.will_run("loginctl", R"(case "$1" in
enable-linger)
    i=0; while [ $i -lt 100000 ]; do i=$((i + 1)); done
    : >"$folder/linger"; echo 'Access denied' >&2; exit 1 ;;
show-user) if [ -f "$folder/linger" ]; then echo yes; else echo no; fi ;;
esac)");
    press();
    EXPECT_TRUE(is_on());
    EXPECT_EQ(footer(),
              "Your receivers now stay shared when you log out and after a restart.|good");
    EXPECT_EQ(changes().size(), 1U);
}

} // namespace

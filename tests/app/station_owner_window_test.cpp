// SPDX-License-Identifier: MIT
#include "app/station_owner.h"

#include "support/no_waiting.h"
#include "support/window_fixture.h"

#include <filesystem>
#include <fstream>

namespace {

const std::string rest =
    " Only the station owner may change Tarnwave's settings and share receivers through it. "
    "Becoming the owner needs an administrator's password.";
const std::string set_owner_call = "pkexec /usr/lib/tarnwave/set-owner";

class StationOwner : public WindowTest {
protected:
    StationOwner() : path_before_{owner_file_path} {
        owner_file_path = (commands.folder() / "owner").string();
    }

    ~StationOwner() override { owner_file_path = path_before_; }

    void write_owner(std::string_view text) const {
        std::ofstream{owner_file_path, std::ios::binary} << text;
    }

    std::size_t tries() const { return service.requests("GET", "/api/state").size(); }

private:
    std::string path_before_;
};

TEST_F(StationOwner, IsTheFirstLineOfTheFile) {
    using namespace std::string_literals;
    const struct {
        const char* when;
        std::string file;
        std::string sentence;
    } cases[] = {
        {"a name", "alice\n", "The station owner is alice."},
        {"two lines", "alice\nbob\n", "The station owner is alice."},
        {"blanks around it", " alice \n", "The station owner is  alice ."},
        {"a carriage return", "alice\r\n", "The station owner is alice\r."},
        {"an empty file", "", "This station has no owner yet."},
        {"an empty first line", "\nalice\n", "This station has no owner yet."},
        {"no UTF-8", "al\xFFice\n", "The station owner is al\uFFFDice."},
        {"U+0000", "al\0ice\n"s, "The station owner is al\uFFFDice."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.when);
        write_owner(c.file);
        EXPECT_EQ(owner_sentence(), c.sentence);
    }
}

TEST_F(StationOwner, IsNobodyWhenTheFileCannotBeRead) {
    EXPECT_EQ(owner_sentence(), "This station has no owner yet.");
    std::filesystem::create_directory(owner_file_path);
    EXPECT_EQ(owner_sentence(), "This station has no owner yet.");
}

TEST_F(StationOwner, IsOfferedInADialog) {
    write_owner("al%s%n<b>\n");
    handle_next_dialog([](GtkDialog* dialog) {
        GtkWidget* accept = gtk_dialog_get_widget_for_response(dialog, GTK_RESPONSE_ACCEPT);
        GtkWidget* close = gtk_dialog_get_widget_for_response(dialog, GTK_RESPONSE_CLOSE);
        EXPECT_TRUE(has_class(accept, "primary"));
        EXPECT_FALSE(has_class(close, "primary"));
        gtk_dialog_response(dialog, GTK_RESPONSE_CLOSE);
    });
    EXPECT_FALSE(check_owner());
    ASSERT_EQ(dialogs.size(), 1U);
    EXPECT_EQ(dialogs[0].primary, std::string{"Make "} + g_get_user_name() + " the station owner?");
    EXPECT_EQ(dialogs[0].secondary, "The station owner is al%s%n<b>." + rest);
    EXPECT_EQ(dialogs[0].buttons, (std::vector<std::string>{"Close", "Make me the owner"}));
    EXPECT_EQ(dialogs[0].responses, (std::vector<int>{GTK_RESPONSE_CLOSE, GTK_RESPONSE_ACCEPT}));
    EXPECT_EQ(dialogs[0].type, GTK_MESSAGE_QUESTION);
    EXPECT_TRUE(dialogs[0].modal);
    EXPECT_EQ(dialogs[0].parent, GTK_WINDOW(widgets.window));
    EXPECT_EQ(dialogs[0].default_button, "Close");
}

TEST_F(StationOwner, StaysWhoItIsUnlessTheOfferIsAccepted) {
    for (const int answer : {GTK_RESPONSE_CLOSE, GTK_RESPONSE_DELETE_EVENT, GTK_RESPONSE_NONE,
                             GTK_RESPONSE_OK, GTK_RESPONSE_CANCEL}) {
        SCOPED_TRACE(answer);
        answer_next_dialog(answer);
        EXPECT_FALSE(check_owner());
    }
    EXPECT_TRUE(commands.calls().empty());
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(StationOwner, IsChangedByTheAdministratorsCommand) {
    service.will_answer_state(boost::json::serialize(state_document()));
    answer_next_dialog(GTK_RESPONSE_ACCEPT);
    EXPECT_TRUE(check_owner());
    EXPECT_EQ(commands.calls(), (std::vector<std::string>{set_owner_call}));
    ASSERT_EQ(service.requests().size(), 1U);
    EXPECT_EQ(service.requests()[0].line(), "GET /api/state HTTP/1.1");
    EXPECT_EQ(service.requests()[0].body, "");
}

TEST_F(StationOwner, StaysWhoItIsWhenTheCommandFails) {
    service.will_answer_state(boost::json::serialize(state_document()));
    for (const char* lines :
         {"exit 1", "exit 126", "exit 127", "kill -KILL $$", "echo done; exit 2"}) {
        SCOPED_TRACE(lines);
        commands.forget_calls();
        commands.will_run("pkexec", lines);
        answer_next_dialog(GTK_RESPONSE_ACCEPT);
        EXPECT_FALSE(check_owner());
        EXPECT_EQ(commands.calls(), (std::vector<std::string>{set_owner_call}));
    }
    commands.remove("pkexec");
    answer_next_dialog(GTK_RESPONSE_ACCEPT);
    EXPECT_FALSE(check_owner());
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(StationOwner, GivesTheServiceTimeToTakeTheNewOwner) {
    service.will_answer_once("GET", "/api/state", 403, "{}");
    service.will_answer_once("GET", "/api/state", 500, "{}");
    service.will_answer_state("not even JSON");
    answer_next_dialog(GTK_RESPONSE_ACCEPT);
    const NoSleep sleep;
    EXPECT_TRUE(check_owner());
    EXPECT_EQ(tries(), 3U);
}

TEST_F(StationOwner, GivesUpAfterFiftyTriesOverTenSeconds) {
    service.will_answer("GET", "/api/state", 403, "{}");
    answer_next_dialog(GTK_RESPONSE_ACCEPT);
    const NoSleep sleep;
    EXPECT_FALSE(check_owner());
    EXPECT_EQ(tries(), 50U);
    EXPECT_EQ(sleep.pauses_ms(), std::vector<long>(50, 200));
}

TEST_F(StationOwner, FinishesAPauseThatASignalCutShort) {
    service.will_answer_once("GET", "/api/state", 403, "{}");
    service.will_answer_state("{}");
    answer_next_dialog(GTK_RESPONSE_ACCEPT);
    const NoSleep sleep{true};
    EXPECT_TRUE(check_owner());
    EXPECT_EQ(sleep.pauses_ms(), (std::vector<long>{200, 100}));
}

} // namespace

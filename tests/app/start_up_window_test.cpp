// SPDX-License-Identifier: MIT
// Start-up in process, from the arguments to the end of the main loop.
#include "app/start_up.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "link/service_link.h"
#include "support/no_waiting.h"
#include "support/toplevels.h"
#include "support/window_fixture.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <functional>

namespace {

/// While one lives, calls a function whenever the next window that is shown draws.
class WatchDrawing {
public:
    explicit WatchDrawing(std::function<void()> drawing) : drawing_{std::move(drawing)} {
        hook_ = g_signal_add_emission_hook(map_, 0, on_map, this, nullptr);
    }
    ~WatchDrawing() { g_signal_remove_emission_hook(map_, hook_); }
    WatchDrawing(const WatchDrawing&) = delete;
    WatchDrawing& operator=(const WatchDrawing&) = delete;

private:
    static gboolean on_map(GSignalInvocationHint*, guint, const GValue* values, gpointer watch) {
        gpointer mapped = g_value_get_object(&values[0]);
        if (mapped == widgets.window)
            g_signal_connect(mapped, "draw", G_CALLBACK(on_draw), watch);
        return TRUE;
    }
    static gboolean on_draw(GtkWidget*, cairo_t*, gpointer watch) {
        static_cast<WatchDrawing*>(watch)->drawing_();
        return FALSE;
    }

    std::function<void()> drawing_;
    guint map_ = g_signal_lookup("map", GTK_TYPE_WIDGET);
    gulong hook_ = 0;
};

gboolean on_close_once_loaded(gpointer) {
    if (!widgets.window || !text_of(widgets.header_status).starts_with("On the air"))
        return G_SOURCE_CONTINUE;
    gtk_widget_destroy(widgets.window);
    return G_SOURCE_REMOVE;
}

class StartUp : public WindowTest {
protected:
    StartUp() : record_before_{widgets}, terminate_before_{std::get_terminate()} {
        widgets = WidgetRecord{};
        service.will_answer_state(json::serialize(state_document()));
        setenv("TARNWAVE_SETTINGS_SOCKET", service.socket_path().c_str(), 1);
        settings_socket_path = "/nonexistent/settings.sock";
    }
    ~StartUp() override {
        unsetenv("TARNWAVE_SETTINGS_SOCKET");
        forget_last_run();
        widgets = record_before_;
        std::set_terminate(terminate_before_);
        std::signal(SIGCHLD, SIG_DFL);
    }

    /// Runs the program; once it is in its main loop, runs `then` and closes the window.
    int run(std::vector<std::string> arguments, std::function<void()> then = {}) {
        forget_last_run();
        in_main_loop_ = std::move(then);
        was_in_main_loop = false;
        arguments.insert(arguments.begin(), "tarnwave-settings");
        std::vector<char*> argv;
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        const guint watch = g_timeout_add(5, on_look, this);
        const int status = start_up(static_cast<int>(arguments.size()), argv.data());
        if (!was_in_main_loop)
            g_source_remove(watch);
        return status;
    }

    bool was_in_main_loop = false;

private:
    /// Removes what would end with the process: the timeout of the poll, and a window that is open.
    static void forget_last_run() {
        while (GSource* poll = g_main_context_find_source_by_funcs_user_data(
                   nullptr, &g_timeout_funcs, nullptr))
            g_source_destroy(poll);
        if (widgets.window)
            gtk_widget_destroy(widgets.window);
        drain_events();
        widgets = WidgetRecord{};
    }

    static gboolean on_look(gpointer test) {
        StartUp* self = static_cast<StartUp*>(test);
        if (gtk_main_level() == 0)
            return G_SOURCE_CONTINUE;
        // gtk_main_level also counts the loop of a dialog.
        for (GtkWidget* window : toplevels())
            if (GTK_IS_DIALOG(window))
                return G_SOURCE_CONTINUE;
        self->was_in_main_loop = true;
        if (self->in_main_loop_)
            self->in_main_loop_();
        gtk_window_close(GTK_WINDOW(widgets.window));
        return G_SOURCE_REMOVE;
    }

    WidgetRecord record_before_;
    std::terminate_handler terminate_before_;
    std::function<void()> in_main_loop_{};
};

TEST_F(StartUp, ShowsTheLoadedFormAndEndsWithTheWindow) {
    EXPECT_EQ(run({},
                  [this] {
                      EXPECT_EQ(text_of(widgets.header_title), "K1ABC · Hilltop SDR");
                      EXPECT_EQ(service.requests().size(), 2U) << "the probe and the form";
                      EXPECT_STREQ(gtk_stack_get_visible_child_name(GTK_STACK(widgets.stack)),
                                   "overview");
                  }),
              0);
    EXPECT_TRUE(was_in_main_loop);
    EXPECT_EQ(widgets.window, nullptr);
    EXPECT_TRUE(dialogs.empty());
}

TEST_F(StartUp, DrawsTheStateBeforeItMeasuresThePagesThatAreHidden) {
    bool state_drawn = false;
    bool pages_were_measured = false;
    const WatchDrawing watch{[&] {
        if (state_drawn || !text_of(widgets.header_status).starts_with("On the air"))
            return;
        state_drawn = true;
        pages_were_measured = gtk_stack_get_homogeneous(GTK_STACK(widgets.stack));
    }};
    EXPECT_EQ(run({},
                  [] {
                      EXPECT_TRUE(wait_until([] {
                          return gtk_stack_get_homogeneous(GTK_STACK(widgets.stack)) == TRUE;
                      }));
                  }),
              0);
    EXPECT_TRUE(state_drawn);
    EXPECT_FALSE(pages_were_measured);
}

TEST_F(StartUp, LetsASmallWindowKeepItsHeightWhicheverPageComesFirst) {
    // A page with nothing on it is the narrowest.
    service.will_answer_state(
        json::serialize(with(state_document(), "settings.receivers", json::array{})));
    for (const char* page : {"overview", "station", "receivers", "listeners", "internet"}) {
        SCOPED_TRACE(page);
        int greatest_least_height = 0;
        const WatchDrawing watch{[&] {
            GtkRequisition least;
            gtk_widget_get_preferred_size(widgets.window, &least, nullptr);
            greatest_least_height = std::max(greatest_least_height, least.height);
        }};
        EXPECT_EQ(run({page}), 0);
        EXPECT_GT(greatest_least_height, 0);
        EXPECT_LE(greatest_least_height, 440) << "a screen of 480 lines has room for no more";
    }
}

TEST_F(StartUp, EndsWhenTheWindowIsClosedBeforeItIsDrawn) {
    const auto close_next =
        +[](GSignalInvocationHint*, guint, const GValue*, gpointer) -> gboolean {
        const auto close = +[](gpointer) -> gboolean {
            gtk_widget_destroy(widgets.window);
            return G_SOURCE_REMOVE;
        };
        g_idle_add_full(G_PRIORITY_HIGH, close, nullptr, nullptr);
        return FALSE; // the window is the first that is shown
    };
    g_signal_add_emission_hook(g_signal_lookup("map", GTK_TYPE_WIDGET), 0, close_next, nullptr,
                               nullptr);
    EXPECT_EQ(run({}), 0);
    EXPECT_FALSE(was_in_main_loop);
    EXPECT_TRUE(service.requests().empty()) << "nobody is there to see the state";
}

TEST_F(StartUp, EndsWhenTheWindowIsClosedBeforeTheStateIsDrawn) {
    // Runs before the frame is drawn, like a press of the close button while the form loads.
    g_timeout_add_full(G_PRIORITY_HIGH, 1, on_close_once_loaded, this, nullptr);
    EXPECT_EQ(run({}), 0);
    EXPECT_FALSE(was_in_main_loop);
    EXPECT_EQ(widgets.window, nullptr);
}

TEST_F(StartUp, TakesTheSocketFromTheEnvironment) {
    EXPECT_EQ(run({}), 0);
    EXPECT_EQ(settings_socket_path, service.socket_path());
}

TEST_F(StartUp, TakesAnEmptyVariableForNone) {
    setenv("TARNWAVE_SETTINGS_SOCKET", "", 1);
    settings_socket_path = service.socket_path();
    EXPECT_EQ(run({}), 0);
    EXPECT_EQ(settings_socket_path, service.socket_path());
}

TEST_F(StartUp, ShowsThePageNamedFirst) {
    const std::pair<const char*, const char*> cases[] = {
        {"internet", "internet"}, {"nowhere", "overview"}, {"", "overview"}};
    for (const auto& [argument, page] : cases) {
        SCOPED_TRACE(argument);
        EXPECT_EQ(run({argument},
                      [page = page] {
                          EXPECT_STREQ(gtk_stack_get_visible_child_name(GTK_STACK(widgets.stack)),
                                       page);
                      }),
                  0);
    }
}

TEST_F(StartUp, SaysThatTheServiceIsNotRunning) {
    service.stop();
    answer_next_dialog(GTK_RESPONSE_CLOSE);
    EXPECT_EQ(run({}), 1);
    EXPECT_FALSE(was_in_main_loop);
    ASSERT_EQ(dialogs.size(), 1U);
    EXPECT_EQ(dialogs[0].primary, "The Tarnwave service is not running.");
    EXPECT_EQ(dialogs[0].secondary, "Start it with: sudo systemctl start tarnwave");
    EXPECT_EQ(dialogs[0].type, GTK_MESSAGE_ERROR);
    EXPECT_EQ(dialogs[0].responses, std::vector<int>{GTK_RESPONSE_CLOSE});
    EXPECT_TRUE(dialogs[0].modal);
    EXPECT_EQ(dialogs[0].parent, GTK_WINDOW(widgets.window));
    EXPECT_TRUE(commands.calls().empty());
}

TEST_F(StartUp, AsksAboutTheOwnerWhenTheServiceRefuses) {
    for (const int status : {201, 403}) {
        SCOPED_TRACE(status);
        service.will_answer("GET", "/api/state", status, json::serialize(state_document()));
        answer_next_dialog(GTK_RESPONSE_CLOSE);
        EXPECT_EQ(run({}), 1);
        EXPECT_FALSE(was_in_main_loop);
    }
    EXPECT_EQ(dialogs.size(), 2U);
    EXPECT_TRUE(commands.calls().empty());
}

TEST_F(StartUp, WaitsThreeSecondsForItsFirstAnswer) {
    service.stay_silent();
    answer_next_dialog(GTK_RESPONSE_CLOSE);
    const NoPatience no_patience;
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(no_patience.time_limits_s(), std::vector<int>{3});
}

TEST_F(StartUp, AsksAboutTheOwnerWhenOnlyTheSocketsFileIsThere) {
    service.crash();
    answer_next_dialog(GTK_RESPONSE_DELETE_EVENT);
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(dialogs.size(), 1U);
}

TEST_F(StartUp, GoesOnWithANewOwner) {
    service.will_answer_once("GET", "/api/state", 403, "{}");
    answer_next_dialog(GTK_RESPONSE_ACCEPT);
    EXPECT_EQ(run({}), 0);
    EXPECT_TRUE(was_in_main_loop);
    EXPECT_EQ(commands.calls("pkexec"),
              std::vector<std::string>{"pkexec /usr/lib/tarnwave/set-owner"});
    EXPECT_EQ(service.requests().size(), 4U) << "refused, the owner check, the probe, the form";
}

TEST_F(StartUp, AsksAboutTheOwnerAsOftenAsTheServiceRefuses) {
    for (int i = 0; i < 3; ++i) {
        service.will_answer_once("GET", "/api/state", 403, "{}"); // the probe
        service.will_answer_once("GET", "/api/state", 200, "{}"); // the owner check
        answer_next_dialog(GTK_RESPONSE_ACCEPT);
    }
    service.will_answer_once("GET", "/api/state", 403, "{}");
    answer_next_dialog(GTK_RESPONSE_CLOSE);
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(dialogs.size(), 4U);
    EXPECT_EQ(commands.calls("pkexec").size(), 3U);
}

TEST_F(StartUp, StartsABrokerThatIsDown) {
    service.will_answer_state(json::serialize(with(state_document(), "status.broker", false)));
    // The form is loaded after the command: before it, the state has been requested once.
    std::size_t requests_by_then = 0;
    service.before_answering("GET", "/api/state", [&] {
        if (commands.calls("systemctl").empty())
            ++requests_by_then;
    });
    EXPECT_EQ(run({}), 0);
    EXPECT_EQ(commands.calls("systemctl"),
              std::vector<std::string>{"systemctl --user enable --now tarnwave-broker.service"});
    EXPECT_EQ(requests_by_then, 1U);
    service.before_answering("GET", "/api/state", {});
}

TEST_F(StartUp, GoesOnWhenTheBrokerCannotBeStarted) {
    service.will_answer_state(json::serialize(with(state_document(), "status.broker", false)));
    commands.will_run("systemctl", "exit 1");
    EXPECT_EQ(run({}), 0);
    commands.remove("systemctl");
    EXPECT_EQ(run({}), 0);
    EXPECT_TRUE(was_in_main_loop);
}

TEST_F(StartUp, StartsNoBrokerUnlessTheServiceSaysThatItIsDown) {
    const json::value document = state_document();
    const std::string probes[] = {
        json::serialize(document),
        json::serialize(without(document, "status")),
        json::serialize(with(document, "status.broker", 0)),
        "[]",
        "no JSON",
    };
    for (const std::string& probe : probes) {
        SCOPED_TRACE(probe);
        service.will_answer_once("GET", "/api/state", 200, probe);
        EXPECT_EQ(run({}), 0);
        EXPECT_TRUE(was_in_main_loop);
    }
    EXPECT_TRUE(commands.calls("systemctl").empty());
}

TEST_F(StartUp, PollsTheStateInTheMainLoop) {
    EXPECT_EQ(run({},
                  [this] {
                      service.will_answer_state(
                          json::serialize(with(state_document(), "status.broker", false)));
                      EXPECT_TRUE(wait_until([] {
                          return text_of(widgets.header_status) ==
                                 "Off the air: your receiver broker is not running "
                                 "(systemctl --user start tarnwave-broker)";
                      }));
                  }),
              0);
}

TEST_F(StartUp, LearnsTheOutcomeOfCommandsWhateverItsParentIgnored) {
    std::signal(SIGCHLD, SIG_IGN);
    commands.set_lingering(true);
    service.will_answer_once("GET", "/api/state", 403, "{}");
    answer_next_dialog(GTK_RESPONSE_ACCEPT);
    EXPECT_EQ(
        run({}, [] { EXPECT_TRUE(gtk_switch_get_active(GTK_SWITCH(widgets.linger_switch))); }), 0);
    EXPECT_EQ(std::signal(SIGCHLD, SIG_DFL), SIG_DFL);
}

TEST_F(StartUp, PrintsItsVersionWithoutAWindow) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(run({"--version"}), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              std::string{"tarnwave-settings "} + program_version + "\n");
    EXPECT_EQ(widgets.window, nullptr);
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(StartUp, PrintsItsHelpWithoutAWindow) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(run({"--help"}), 0);
    const std::string help = testing::internal::GetCapturedStdout();
    for (const char* word : {"Usage: tarnwave-settings [PAGE]", "overview", "station", "receivers",
                             "listeners", "internet", "--version", "TARNWAVE_SETTINGS_SOCKET"})
        EXPECT_NE(help.find(word), std::string::npos) << word;
    EXPECT_EQ(widgets.window, nullptr);
    EXPECT_TRUE(service.requests().empty());
}

} // namespace

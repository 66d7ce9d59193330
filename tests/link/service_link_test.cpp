// SPDX-License-Identifier: MIT
// The descriptors and signals of an exchange, and the line that it writes into a trace.
#include "link/service_link_fixture.h"
#include "support/scarce_memory.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace {

bool no_descriptors = false;

} // namespace

/// Stands in for the C library's function. A limit of the process would bind the sanitizers too.
extern "C" int socket(int family, int type, int protocol) noexcept {
    if (no_descriptors) {
        errno = EMFILE;
        return -1;
    }
    return static_cast<int>(syscall(SYS_socket, family, type, protocol));
}

namespace {

std::size_t open_descriptors() {
    const std::filesystem::directory_iterator all{"/proc/self/fd"};
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

TEST_F(ServiceLink, GivesNoAnswerWithoutADescriptor) {
    service.will_answer_state("{}");
    no_descriptors = true;
    const ServiceReply reply = get_state();
    no_descriptors = false;
    expect_no_answer(reply);
    EXPECT_EQ(get_state().status, 200);
}

TEST_F(ServiceLink, GivesNoAnswerWhenMemoryRunsOut) {
    service.next_connection({read_request(), send(reply_text(200, std::string(100'000, 'x')))});
    memory_is_scarce = true;
    const ServiceReply reply = get_state();
    memory_is_scarce = false;
    expect_no_answer(reply);
    service.will_answer_state("{}");
    EXPECT_EQ(get_state().status, 200);
}

TEST_F(ServiceLink, LeavesNoDescriptorBehind) {
    service.will_answer_state("{}");
    const std::string absent = service.socket_path() + ".absent";
    EXPECT_EQ(get_state().status, 200);
    // A service that starts anew has closed its own ends.
    service.stop();
    service.start();
    const std::size_t before = open_descriptors();
    for (int i = 0; i < 1'000; ++i) {
        settings_socket_path = i % 10 == 9 ? absent : service.socket_path();
        if (i % 10 == 3)
            service.next_connection({read_request(), send("HTTP/1.1 200 OK\r\nConte")});
        if (i % 10 == 6)
            service.next_connection({});
        get_state();
    }
    settings_socket_path = service.socket_path();
    // The service has closed the last of its ends when it answers again.
    EXPECT_EQ(get_state().status, 200);
    service.stop();
    service.start();
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(ServiceLink, HidesItsDescriptorFromCommandsItRuns) {
    // A command started in the middle of an exchange sees no socket but those of the test, and
    // those that were handed down to the test.
    const auto target_of = [](const std::filesystem::path& number) {
        std::error_code gone;
        return std::filesystem::read_symlink("/proc/self/fd" / number, gone).string();
    };
    std::set<std::string> handed_down;
    for (const auto& entry : std::filesystem::directory_iterator{"/proc/self/fd"})
        handed_down.insert(target_of(entry.path().filename()));
    std::string flags;
    service.will_answer_state("{}");
    service.before_answering("GET", "/api/state", [&] {
        for (const auto& entry : std::filesystem::directory_iterator{"/proc/self/fdinfo"}) {
            const std::string target = target_of(entry.path().filename());
            if (!target.starts_with("socket:") || handed_down.contains(target))
                continue;
            std::string name, value;
            for (std::ifstream info{entry.path()}; info >> name >> value;) {
                if (name == "flags:" && (std::stoul(value, nullptr, 8) & O_CLOEXEC) == 0)
                    flags += entry.path().filename().string() + " ";
            }
        }
    });
    EXPECT_EQ(get_state().status, 200);
    EXPECT_EQ(flags, "");
}

class ServiceLinkTrace : public ServiceLink {
protected:
    /// Ends the child process of a death test.
    [[noreturn]] void leave(bool well) {
        service.clear_away();
        std::exit(well ? 0 : 1);
    }
};

TEST_F(ServiceLinkTrace, SaysOneLineForEachExchangeWhenAsked) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setenv("G_MESSAGES_DEBUG", "tarnwave", 1);
            g_log_writer_default_set_use_stderr(TRUE);
            service.will_answer("PUT", "/api/settings", 409, R"({"error":"secret"})");
            service_request(HttpMethod::put, "/api/settings", R"({"key":"secret"})", 5);
            service.stop();
            service_request(HttpMethod::get, "/api/state", "", 5);
            leave(true);
        },
        testing::ExitedWithCode(0),
        testing::ContainsRegex("PUT /api/settings: status 409, 18 bytes, [0-9.]+ ms\n"
                               "(.*\n)?.*GET /api/state: status 0, 0 bytes, [0-9.]+ ms, "
                               "No such file or directory\n$"));
}

TEST_F(ServiceLinkTrace, SaysNothingWhenNotAsked) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setenv("G_MESSAGES_DEBUG", "Gtk GLib", 1);
            g_log_writer_default_set_use_stderr(TRUE);
            service.will_answer_state("{}");
            leave(get_state().status == 200);
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

TEST_F(ServiceLinkTrace, NeverSaysABody) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setenv("G_MESSAGES_DEBUG", "all", 1);
            g_log_writer_default_set_use_stderr(TRUE);
            service.will_answer("PUT", "/api/settings", 200, "confidential");
            testing::internal::CaptureStderr();
            service_request(HttpMethod::put, "/api/settings", "confidential", 5);
            const std::string said = testing::internal::GetCapturedStderr();
            const bool quiet = said.find("confidential") == std::string::npos;
            leave(quiet && said.find("/api/settings") != std::string::npos);
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

} // namespace

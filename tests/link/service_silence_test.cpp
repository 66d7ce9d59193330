// SPDX-License-Identifier: MIT
// Services that are not there, do not answer or answer slowly, and signals that come meanwhile.
#include "link/service_link_fixture.h"
#include "link/stopped_clock.h"
#include "support/waiting_thread.h"

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>

using namespace std::chrono_literals;

namespace {

using TimeOuts = std::vector<std::chrono::milliseconds>;

/// Longer than the kernel's buffer of a socket.
const std::string large_body(4'000'000, 'x');

class SilentService : public ServiceLink {
protected:
    /// Gets the state, or puts a body that is not empty, by a clock that only the steps move.
    ServiceReply request_while(std::vector<ConnectionStep> steps, int time_limit_s,
                               const std::string& body = "") {
        service.next_connection(std::move(steps));
        const StoppedClock clock;
        const ServiceReply reply =
            body.empty() ? get_state(time_limit_s)
                         : service_request(HttpMethod::put, "/api/settings", body, time_limit_s);
        time_outs = clock.time_outs();
        return reply;
    }

    TimeOuts time_outs{}; ///< of the waits in the last request
};

std::atomic<int> signals_seen = 0;
static_assert(std::atomic<int>::is_always_lock_free); // needed in a handler

/// Interrupts the process again and again.
class SignalStorm {
public:
    SignalStorm() {
        struct sigaction action {};
        action.sa_handler = [](int) { ++signals_seen; }; // no SA_RESTART
        sigaction(SIGALRM, &action, &before_);
        set_timer({.tv_sec = 0, .tv_usec = 5'000});
    }
    ~SignalStorm() {
        set_timer({});
        sigaction(SIGALRM, &before_, nullptr);
    }
    SignalStorm(const SignalStorm&) = delete;
    SignalStorm& operator=(const SignalStorm&) = delete;

private:
    static void set_timer(timeval interval) {
        const itimerval timer{.it_interval = interval, .it_value = interval};
        setitimer(ITIMER_REAL, &timer, nullptr);
    }
    struct sigaction before_ {};
};

using AbsentService = ServiceLink;

TEST_F(AbsentService, TakesAPathOf107BytesAndNoLonger) {
    FakeService longest{107};
    ASSERT_EQ(longest.socket_path().size(), 107U);
    longest.will_answer_state("{}");
    settings_socket_path = longest.socket_path();
    EXPECT_EQ(get_state().status, 200);
    for (const std::size_t more : {1U, 2U, 500U}) {
        SCOPED_TRACE(more);
        settings_socket_path = longest.socket_path() + std::string(more, 'x');
        expect_no_answer(get_state());
    }
    EXPECT_EQ(longest.requests().size(), 1U);

    // The kernel would find this one.
    FakeService too_long{108};
    ASSERT_EQ(too_long.socket_path().size(), 108U);
    too_long.will_answer_state("{}");
    settings_socket_path = too_long.socket_path();
    expect_no_answer(get_state());
    EXPECT_TRUE(too_long.requests().empty());
}

TEST_F(AbsentService, IsNoAnswerWhereThereIsAnotherFile) {
    service.stop();
    std::ofstream{service.socket_path()} << "a file";
    expect_no_answer(get_state());
    settings_socket_path = "/";
    expect_no_answer(get_state());
}

TEST_F(AbsentService, IsNoAnswerWhenItHangsUpWhileARequestIsSent) {
    service.next_connection({});
    expect_no_answer(service_request(HttpMethod::put, "/api/settings", large_body, 5));
}

TEST_F(SilentService, IsGivenUpAtTheTimeLimitOfAReceive) {
    expect_no_answer(request_while({read_request(), let_time_pass(30s), stay_silent()}, 30));
    EXPECT_EQ(time_outs, TimeOuts{30s});
    EXPECT_TRUE(service.wait_for_hang_ups(1));
}

TEST_F(SilentService, IsGivenUpAtTheTimeLimitOfASend) {
    expect_no_answer(request_while({let_time_pass(2s), stay_silent()}, 2, large_body));
    EXPECT_EQ(time_outs, TimeOuts{2s});
    EXPECT_TRUE(service.wait_for_hang_ups(1));
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(SilentService, HasTheWholeTimeLimitForEachReceive) {
    const ServiceReply reply = request_while(
        {read_request(), let_time_pass(2999ms), send("HTTP/1.1 200 OK\r\n"), let_time_pass(2999ms),
         send("Content-Length: 6\r\n\r\n"), let_time_pass(2999ms), send("{\"a\":1")},
        3);
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(time_outs, (TimeOuts{3s, 3s, 3s}));
}

TEST_F(SilentService, IsWaitedForAfterASignalWithWhatIsLeftOfTheTimeLimit) {
    expect_no_answer(
        request_while({read_request(), let_time_pass_up_to_a_signal(400ms),
                       let_time_pass_up_to_a_signal(500ms), let_time_pass(100ms), stay_silent()},
                      1));
    EXPECT_EQ(time_outs, (TimeOuts{1s, 600ms, 100ms}));
}

TEST_F(SilentService, IsGivenUpInTimeThoughSignalsKeepComing) {
    expect_no_answer(request_while(
        {let_time_pass_up_to_a_signal(600ms), let_time_pass_up_to_a_signal(400ms), stay_silent()},
        1, large_body));
    EXPECT_EQ(time_outs, (TimeOuts{1s, 400ms}));
}

TEST_F(SilentService, IsHeardAfterASignal) {
    const ServiceReply reply = request_while(
        {read_request(), let_time_pass_up_to_a_signal(400ms), let_time_pass(500ms),
         send("HTTP/1.1 200 OK\r\n"), let_time_pass(900ms), send("Content-Length: 2\r\n\r\n{}")},
        1);
    EXPECT_EQ(reply.body, "{}");
    EXPECT_EQ(time_outs, (TimeOuts{1s, 600ms, 1s}));
}

TEST_F(SilentService, IsWaitedForBeyondTheTimeLimitWhileTheBacklogIsFull) {
    service.will_answer_state("{}");
    StoppedClock clock;
    service.accept_once([&, client = gettid()] {
        if (!is_waiting_in_kernel(client))
            return false;
        clock.advance(10s);
        return true;
    });
    fill_backlog_of(service);
    EXPECT_EQ(get_state(1).body, "{}");
}

TEST_F(SilentService, IsConnectedToInSpiteOfSignals) {
    service.will_answer_state("{}");
    signals_seen = 0;
    service.accept_once([] { return signals_seen >= 10; });
    fill_backlog_of(service);
    const SignalStorm storm;
    EXPECT_EQ(get_state().body, "{}");
    EXPECT_GE(signals_seen, 10);
}

} // namespace

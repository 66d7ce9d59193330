// SPDX-License-Identifier: MIT
#include "link/stopped_clock.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <ctime>
#include <mutex>
#include <stdexcept>
#include <utility>

using namespace std::chrono_literals;

namespace {

thread_local bool has_stopped_clock = false;

std::mutex mutex;
std::condition_variable changed;
std::chrono::nanoseconds now{};
std::vector<std::chrono::milliseconds> asked{};
pollfd awaited{.fd = -1, .events = 0, .revents = 0}; ///< -1 while nothing waits
bool interrupted = false;
int wake_up = -1;

/// Far beyond what a loaded machine needs; a wait that reaches it has failed.
constexpr timespec patience{.tv_sec = 60, .tv_nsec = 0};

void wake_the_wait() {
    eventfd_write(wake_up, 1);
}

void let_pass(std::chrono::milliseconds duration, bool with_signal) {
    std::unique_lock lock{mutex};
    const auto waits_in_vain = [] {
        constexpr timespec at_once{};
        pollfd descriptor = awaited;
        return awaited.fd >= 0 && ::ppoll(&descriptor, 1, &at_once, nullptr) == 0;
    };
    // What has been sent is read within the next moments: look again until it is.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds{patience.tv_sec};
    while (!waits_in_vain()) {
        if (wake_up < 0)
            return; // the stopped clock is gone
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error{"nobody waits for time to pass"};
        changed.wait_for(lock, 1ms);
    }
    now += duration;
    interrupted = with_signal;
    awaited.fd = -1;
    wake_the_wait();
}

} // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (!has_stopped_clock || clock != CLOCK_MONOTONIC)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    const std::scoped_lock lock{mutex};
    const auto seconds = std::chrono::floor<std::chrono::seconds>(now);
    *time = {.tv_sec = seconds.count(), .tv_nsec = (now - seconds).count()};
    return 0;
}

extern "C" int poll(pollfd* descriptors, nfds_t count, int time_out_ms) {
    if (!has_stopped_clock || count != 1) {
        const timespec limit{.tv_sec = time_out_ms / 1'000,
                             .tv_nsec = time_out_ms % 1'000 * 1'000'000};
        return ::ppoll(descriptors, count, time_out_ms < 0 ? nullptr : &limit, nullptr);
    }
    std::unique_lock lock{mutex};
    asked.emplace_back(time_out_ms);
    const std::chrono::nanoseconds end = now + asked.back();
    for (;;) {
        awaited = *descriptors;
        changed.notify_all();
        lock.unlock();
        pollfd both[2] = {*descriptors, {.fd = wake_up, .events = POLLIN, .revents = 0}};
        const int ready = ::ppoll(both, 2, &patience, nullptr);
        lock.lock();
        awaited.fd = -1;
        eventfd_t ignored = 0;
        if (both[1].revents != 0)
            eventfd_read(wake_up, &ignored);
        // The signal came before anything else was sent.
        if (std::exchange(interrupted, false)) {
            errno = EINTR;
            return -1;
        }
        if (now >= end || ready <= 0)
            return 0;
        descriptors->revents = both[0].revents;
        if (both[0].revents != 0)
            return 1;
    }
}

StoppedClock::StoppedClock() {
    wake_up = eventfd(0, EFD_CLOEXEC);
    now = std::chrono::steady_clock::now().time_since_epoch();
    asked.clear();
    has_stopped_clock = true;
}

StoppedClock::~StoppedClock() {
    has_stopped_clock = false;
    const std::scoped_lock lock{mutex};
    close(std::exchange(wake_up, -1));
}

void StoppedClock::advance(std::chrono::milliseconds duration) {
    const std::scoped_lock lock{mutex};
    now += duration;
    wake_the_wait();
}

std::vector<std::chrono::milliseconds> StoppedClock::time_outs() const {
    const std::scoped_lock lock{mutex};
    return asked;
}

ConnectionStep let_time_pass(std::chrono::milliseconds duration) {
    return run([duration] { let_pass(duration, false); });
}

ConnectionStep let_time_pass_up_to_a_signal(std::chrono::milliseconds duration) {
    return run([duration] { let_pass(duration, true); });
}

// SPDX-License-Identifier: MIT
#include "support/no_waiting.h"

#include <poll.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

namespace {

/// On the main thread alone: the service of the test waits too, on a thread of its own.
thread_local bool no_patience = false;
bool no_sleep = false;
bool cut_next = false;
std::vector<int> time_limits;
std::vector<long> pauses;
std::atomic<long> skipped_s = 0;

} // namespace

extern "C" int poll(pollfd* descriptors, nfds_t count, int time_limit_ms) {
    // The main loop waits for several descriptors, the display's library without a limit.
    if (!no_patience || count != 1 || time_limit_ms <= 0)
        return static_cast<int>(syscall(SYS_poll, descriptors, count, time_limit_ms));
    time_limits.push_back((time_limit_ms + 999) / 1'000);
    return 0;
}

extern "C" int nanosleep(const timespec* requested, timespec* left) {
    if (!no_sleep)
        return static_cast<int>(syscall(SYS_nanosleep, requested, left));
    pauses.push_back(requested->tv_sec * 1'000 + requested->tv_nsec / 1'000'000);
    if (!std::exchange(cut_next, false))
        return 0;
    *left = {.tv_sec = requested->tv_sec / 2, .tv_nsec = requested->tv_nsec / 2};
    errno = EINTR;
    return -1;
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const int outcome = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    if (outcome == 0 && clock == CLOCK_MONOTONIC)
        time->tv_sec += skipped_s;
    return outcome;
}

NoPatience::NoPatience() {
    no_patience = true;
    time_limits.clear();
}

NoPatience::~NoPatience() {
    no_patience = false;
}

const std::vector<int>& NoPatience::time_limits_s() const {
    return time_limits;
}

NoSleep::NoSleep(bool interrupted) {
    no_sleep = true;
    cut_next = interrupted;
    pauses.clear();
}

NoSleep::~NoSleep() {
    no_sleep = false;
}

const std::vector<long>& NoSleep::pauses_ms() const {
    return pauses;
}

void skip_time(long seconds) {
    skipped_s += seconds;
}

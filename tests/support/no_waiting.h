// SPDX-License-Identifier: MIT
// Stand-ins for poll(2), nanosleep(2) and clock_gettime(2) in the test program, so that no test
// waits for a time to pass.
#pragma once

#include <vector>

/// While one exists, a wait for a reply on this thread ends at once as if its time limit had
/// passed.
class NoPatience {
public:
    NoPatience();
    ~NoPatience();
    NoPatience(const NoPatience&) = delete;
    NoPatience& operator=(const NoPatience&) = delete;

    /// The time limits so far, in seconds. Part of a limit may have passed before the wait began,
    /// so each is rounded up.
    const std::vector<int>& time_limits_s() const;
};

/// While one exists, pauses end at once.
class NoSleep {
public:
    /// The first pause is cut short half-way by a signal when `interrupted`.
    explicit NoSleep(bool interrupted = false);
    ~NoSleep();
    NoSleep(const NoSleep&) = delete;
    NoSleep& operator=(const NoSleep&) = delete;

    /// The lengths of the pauses that were asked for, in milliseconds.
    const std::vector<long>& pauses_ms() const;
};

/// Moves the monotonic clock of the whole process forward.
void skip_time(long seconds);

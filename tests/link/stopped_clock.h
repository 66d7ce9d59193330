// SPDX-License-Identifier: MIT
// A clock that only a test moves, for what depends on time: nothing waits for a time to pass.
//
// Stands in for clock_gettime(2) and poll(2).
#pragma once

#include "support/fake_service.h"

#include <chrono>
#include <vector>

/// While one exists, the steady clock of the thread that made it stands still, and a poll(2) on
/// that thread, of one descriptor, ends when the descriptor is ready or by this clock. One at a
/// time.
class StoppedClock {
public:
    StoppedClock();
    ~StoppedClock();
    StoppedClock(const StoppedClock&) = delete;
    StoppedClock& operator=(const StoppedClock&) = delete;

    void advance(std::chrono::milliseconds duration);

    /// The time-outs of the calls of poll(2).
    std::vector<std::chrono::milliseconds> time_outs() const;
};

/// A step of a service, while there is a stopped clock: advances it once the client waits and all
/// that was sent to it has been read.
ConnectionStep let_time_pass(std::chrono::milliseconds duration);

/// The same, and a signal interrupts the wait then.
ConnectionStep let_time_pass_up_to_a_signal(std::chrono::milliseconds duration);

// SPDX-License-Identifier: MIT
// A stand-in for nanosleep(2) in the test program: pauses end at once and are recorded.
#pragma once

#include <vector>

class NoSleep {
public:
    /// The first call is cut short half-way by a signal when `interrupted`.
    explicit NoSleep(bool interrupted = false);
    ~NoSleep();
    NoSleep(const NoSleep&) = delete;
    NoSleep& operator=(const NoSleep&) = delete;

    /// The lengths that were asked for, in milliseconds.
    const std::vector<long>& pauses_ms() const;
};

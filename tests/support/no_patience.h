// SPDX-License-Identifier: MIT
// A stand-in for poll(2) in the test program: a wait for a reply ends at once as if its time limit
// had passed, and the limit is recorded.
#pragma once

#include <vector>

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

// SPDX-License-Identifier: MIT
#include "support/no_patience.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// On the main thread alone: the service of the test waits too, on a thread of its own.
thread_local bool stands_in = false;
std::vector<int> time_limits;

} // namespace

extern "C" int poll(pollfd* descriptors, nfds_t count, int time_limit_ms) {
    // The main loop waits for several descriptors, the display's library without a limit.
    if (!stands_in || count != 1 || time_limit_ms <= 0)
        return static_cast<int>(syscall(SYS_poll, descriptors, count, time_limit_ms));
    time_limits.push_back((time_limit_ms + 999) / 1'000);
    return 0;
}

NoPatience::NoPatience() {
    stands_in = true;
    time_limits.clear();
}

NoPatience::~NoPatience() {
    stands_in = false;
}

const std::vector<int>& NoPatience::time_limits_s() const {
    return time_limits;
}

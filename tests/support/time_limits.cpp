// SPDX-License-Identifier: MIT
#include "support/time_limits.h"

#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

long shorter_time_limit_ms = 0;

extern "C" int setsockopt(int descriptor, int level, int option, const void* value,
                          socklen_t size) noexcept {
    timeval shorter{};
    if (shorter_time_limit_ms > 0 && level == SOL_SOCKET &&
        (option == SO_RCVTIMEO || option == SO_SNDTIMEO)) {
        shorter.tv_sec = shorter_time_limit_ms / 1'000;
        shorter.tv_usec = shorter_time_limit_ms % 1'000 * 1'000;
        value = &shorter;
        size = sizeof shorter;
    }
    return static_cast<int>(syscall(SYS_setsockopt, descriptor, level, option, value, size));
}

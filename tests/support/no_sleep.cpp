// SPDX-License-Identifier: MIT
#include "support/no_sleep.h"

#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

namespace {

bool stands_in = false;
bool cut_next = false;
std::vector<long> pauses;

} // namespace

extern "C" int nanosleep(const timespec* requested, timespec* left) {
    if (!stands_in)
        return static_cast<int>(syscall(SYS_nanosleep, requested, left));
    pauses.push_back(requested->tv_sec * 1'000 + requested->tv_nsec / 1'000'000);
    if (!cut_next)
        return 0;
    cut_next = false;
    *left = {.tv_sec = requested->tv_sec / 2, .tv_nsec = requested->tv_nsec / 2};
    errno = EINTR;
    return -1;
}

NoSleep::NoSleep(bool interrupted) {
    stands_in = true;
    cut_next = interrupted;
    pauses.clear();
}

NoSleep::~NoSleep() {
    stands_in = false;
}

const std::vector<long>& NoSleep::pauses_ms() const {
    return pauses;
}

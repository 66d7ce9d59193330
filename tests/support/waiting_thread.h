// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <fstream>
#include <iterator>
#include <string>

/// Whether a thread of this process waits in the kernel, for a connection or a reply say.
inline bool is_waiting_in_kernel(pid_t thread) {
    std::ifstream file{"/proc/self/task/" + std::to_string(thread) + "/stat"};
    const std::string stat{std::istreambuf_iterator<char>{file}, {}};
    // Its state stands behind its name, which is in brackets.
    const std::size_t name_end = stat.rfind(')');
    return name_end != std::string::npos && stat.compare(name_end + 2, 1, "S") == 0;
}

// SPDX-License-Identifier: MIT
// How a failed comparison of status lines is printed.
#pragma once

#include "status/status_line.h"

#include <ostream>

inline std::ostream& operator<<(std::ostream& out, const StatusLine& line) {
    constexpr const char* names[] = {"none", "good", "warning", "error"};
    return out << '"' << line.text << "\" (" << names[static_cast<int>(line.status_class)] << ')';
}

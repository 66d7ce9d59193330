// SPDX-License-Identifier: MIT
// A service that cannot be connected to, while its socket is somewhere else.
#pragma once

#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// While one lives, the threads of this program that connect to a socket find it
///     "absent"   the file is not there
///     "refused"  nobody listens on it
///     "queued"   they wait in a full queue until the service dies
/// from the moment that the first of them begins to connect. "" changes nothing. One at a time.
class BadConnection {
public:
    /// @param fine_before how many may connect well before that
    BadConnection(std::string socket_path, std::string_view way, int fine_before = 0);
    /// All is well again.
    ~BadConnection();
    BadConnection(const BadConnection&) = delete;
    BadConnection& operator=(const BadConnection&) = delete;

    /// Makes it well by itself once somebody has met it, for who asks again and again.
    void end_once_met();

private:
    std::jthread end_of_queue_{};
    std::jthread end_once_met_{};
};

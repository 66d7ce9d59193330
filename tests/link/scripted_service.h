// SPDX-License-Identifier: MIT
// A service that answers the link on the link's own thread, as its script says, by a clock that
// only the script moves: nothing waits for a time to pass.
//
// Stands in for socket(2), connect(2), poll(2) and clock_gettime(2).
#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

/// What comes while the link waits: bytes, or a signal that interrupts the wait.
struct Moment {
    std::chrono::milliseconds after{}; ///< since the wait began
    std::string bytes{};
    bool signal = false;
};

enum class ScriptEnd { hang_up, silence };

/// While one exists, the link connects to it and not to a socket file. One at a time, for one
/// exchange.
class ScriptedService {
public:
    explicit ScriptedService(std::vector<Moment> script, ScriptEnd end = ScriptEnd::hang_up);
    ~ScriptedService();
    ScriptedService(const ScriptedService&) = delete;
    ScriptedService& operator=(const ScriptedService&) = delete;

    // What the stand-ins call.
    int open();
    int connect(std::string_view path);
    int wait(std::chrono::milliseconds time_out);

    int interrupted_connects = 0; ///< how often a signal interrupts connect(2) from now on
    int socket_error = 0;         ///< with which socket(2) fails; 0: it does not

    std::string path{};                                 ///< that was connected to
    bool connect_blocked = false;                       ///< connect(2) waits, without a time limit
    bool closed_on_exec = false;                        ///< the descriptor has FD_CLOEXEC
    std::vector<std::chrono::milliseconds> time_outs{}; ///< of the calls of poll(2)

private:
    std::vector<Moment> script_;
    ScriptEnd end_;
    std::size_t next_ = 0;
    std::string_view pending_{}; ///< what the kernel's buffer had no room for
    int near_end_ = -1;
    int far_end_ = -1;
};

// SPDX-License-Identifier: MIT
// The other end of the service link for benchmarks: a process of its own, so that the CPU time
// measured is the client's.
#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>

/// Answers every request with 200 and the same body, until it is destroyed.
class ReplyingProcess {
public:
    explicit ReplyingProcess(std::string_view body);
    ~ReplyingProcess();
    ReplyingProcess(const ReplyingProcess&) = delete;
    ReplyingProcess& operator=(const ReplyingProcess&) = delete;

    /// What `settings_socket_path` has to be set to.
    const std::string& path() const { return path_; }

private:
    std::string folder_{};
    std::string path_{};
    pid_t process_ = -1;
};

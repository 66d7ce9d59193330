// SPDX-License-Identifier: MIT
// Carries requests and replies over a local stream socket; what they mean is the caller's matter.
#pragma once

#include "service_api.h"

#include <chrono>
#include <functional>
#include <string>

struct ServerTasks {
    std::function<ApiReply(const ApiRequest&)> answer{};
    std::function<void(std::chrono::duration<double>)> pass_time{}; ///< empty: no timer runs
    std::function<void()> on_user_signal{};                         ///< SIGUSR1
    std::function<void()> on_ready{}; ///< clients can connect from now on
};

/// Listens on a new socket that only this user may use, and serves until SIGTERM or SIGINT. Each
/// connection is served on its own: one that stalls delays no other. Every reply waits for
/// `delay` first. The socket is removed at the end. A socket that nobody listens on any more is
/// replaced; anything else at `path` stays and is an error.
///
/// Returns "" after a clean end, otherwise in words why it could not listen.
std::string serve(const std::string& path, std::chrono::milliseconds delay,
                  const ServerTasks& tasks);

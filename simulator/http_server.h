// SPDX-License-Identifier: MIT
// Receives requests and sends replies over a local stream socket; the caller makes the replies.
#pragma once

#include "service_api.h"

#include <chrono>
#include <functional>
#include <string>

struct ServerTasks {
    std::function<ApiReply(const ApiRequest&)> answer{};
    std::function<void(std::chrono::duration<double>)> pass_time{}; ///< when empty, no timer runs
    std::function<void()> on_user_signal{};                         ///< SIGUSR1
    std::function<void()> on_ready{}; ///< called when clients can connect
};

/// Listens on a new socket that only this user may use, and serves until SIGTERM or SIGINT. Each
/// connection has a coroutine of its own, so that a stalled one delays no other. Every reply is
/// sent after `delay`. The socket is removed at the end. A socket that nobody listens on any more
/// is replaced; anything else at `path` stays and is an error.
///
/// Returns "" after a clean end, otherwise a sentence that says why it could not listen.
std::string serve(const std::string& path, std::chrono::milliseconds delay,
                  const ServerTasks& tasks);

// SPDX-License-Identifier: MIT
#include "link/scripted_service.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>
#include <stdexcept>
#include <utility>

namespace {

thread_local ScriptedService* service = nullptr;
thread_local std::chrono::nanoseconds now{};

int fail(int error) {
    errno = error;
    return -1;
}

} // namespace

extern "C" int socket(int family, int type, int protocol) noexcept {
    return service ? service->open()
                   : static_cast<int>(syscall(SYS_socket, family, type, protocol));
}

extern "C" int connect(int descriptor, const sockaddr* address, socklen_t size) {
    return service ? service->connect(reinterpret_cast<const sockaddr_un*>(address)->sun_path)
                   : static_cast<int>(syscall(SYS_connect, descriptor, address, size));
}

/// The link does not ask for the events that came.
extern "C" int poll(pollfd* descriptors, nfds_t count, int time_out_ms) {
    return service ? service->wait(std::chrono::milliseconds{time_out_ms})
                   : static_cast<int>(syscall(SYS_poll, descriptors, count, time_out_ms));
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    if (!service || clock != CLOCK_MONOTONIC)
        return static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    const auto seconds = std::chrono::floor<std::chrono::seconds>(now);
    *time = {.tv_sec = seconds.count(), .tv_nsec = (now - seconds).count()};
    return 0;
}

ScriptedService::ScriptedService(std::vector<Moment> script, ScriptEnd end)
    : script_{std::move(script)}, end_{end} {
    now = std::chrono::steady_clock::now().time_since_epoch();
    service = this;
}

ScriptedService::~ScriptedService() {
    service = nullptr;
    ::close(far_end_);
}

int ScriptedService::open() {
    if (socket_error != 0)
        return fail(socket_error);
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw std::runtime_error{"no pair of sockets"};
    near_end_ = ends[0];
    far_end_ = ends[1];
    fcntl(near_end_, F_SETFD, 0); // as socket(2) leaves it
    return near_end_;
}

int ScriptedService::connect(std::string_view path_of_socket) {
    if (interrupted_connects > 0) {
        --interrupted_connects;
        return fail(EINTR);
    }
    path = path_of_socket;
    timeval limit{};
    socklen_t size = sizeof limit;
    getsockopt(near_end_, SOL_SOCKET, SO_SNDTIMEO, &limit, &size);
    connect_blocked = (fcntl(near_end_, F_GETFL) & O_NONBLOCK) == 0 && limit.tv_sec == 0;
    closed_on_exec = (fcntl(near_end_, F_GETFD) & FD_CLOEXEC) != 0;
    return 0;
}

int ScriptedService::wait(std::chrono::milliseconds time_out) {
    time_outs.push_back(time_out);
    if (pending_.empty()) {
        if (next_ == script_.size() && end_ == ScriptEnd::hang_up) {
            ::shutdown(far_end_, SHUT_RDWR);
            return 1;
        }
        if (next_ == script_.size() || script_[next_].after > time_out) {
            now += time_out;
            return 0;
        }
        const Moment& moment = script_[next_++];
        now += moment.after;
        if (moment.signal)
            return fail(EINTR);
        pending_ = moment.bytes;
    }
    const ssize_t sent =
        ::send(far_end_, pending_.data(), pending_.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent < 0)
        throw std::runtime_error{"what was sent is not read"};
    pending_.remove_prefix(static_cast<std::size_t>(sent));
    return 1;
}

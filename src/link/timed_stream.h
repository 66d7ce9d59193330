// SPDX-License-Identifier: MIT
// A local socket as a stream whose every send and receive is bounded in time.
//
// It stands in for Asio's own: that takes the EAGAIN of a time-out as "would block" and waits again
// without limit, so the socket's time-outs would bound nothing. It needs no I/O context either.
#pragma once

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/system/errc.hpp>
#include <boost/system/error_code.hpp>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>

inline boost::system::error_code last_socket_error() {
    return {errno, boost::system::system_category()};
}

/// Owns a socket; closed without a shutdown first.
class Socket {
public:
    Socket() : descriptor_{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)} {}
    ~Socket() {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    int descriptor() const { return descriptor_; }

    /// Waits as long as the kernel does: with a full backlog, until the service accepts.
    boost::system::error_code connect_to(const std::string& path) const {
        sockaddr_un address{};
        if (path.size() >= sizeof address.sun_path)
            return {ENAMETOOLONG, boost::system::system_category()};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
        // The one cast that the sockets API asks for.
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        // A local connect that a signal interrupted has left nothing behind and starts anew.
        while (::connect(descriptor_, generic, sizeof address) != 0) {
            if (errno != EINTR)
                return last_socket_error();
        }
        return {};
    }

private:
    int descriptor_;
};

/// What Beast reads from and writes to: every call is one send or receive, bounded by the time
/// limit. A send may end short of its buffers; Beast then sends the rest.
class TimedStream {
public:
    TimedStream(int descriptor, std::chrono::seconds time_limit)
        : descriptor_{descriptor}, time_limit_{time_limit} {}

    boost::system::error_code apply_time_limit() const {
        if (set_time_out(SO_RCVTIMEO, time_limit_) && set_time_out(SO_SNDTIMEO, time_limit_))
            return {};
        return last_socket_error();
    }

    template <class Buffers>
    std::size_t read_some(const Buffers& buffers, boost::system::error_code& error) {
        const boost::asio::mutable_buffer room = *boost::asio::buffer_sequence_begin(buffers);
        const ssize_t received =
            bounded(SO_RCVTIMEO, [&] { return ::recv(descriptor_, room.data(), room.size(), 0); });
        if (received > 0)
            return static_cast<std::size_t>(received);
        error = received == 0 ? boost::system::error_code{boost::asio::error::eof}
                              : last_socket_error();
        return 0;
    }

    template <class Buffers>
    std::size_t write_some(const Buffers& buffers, boost::system::error_code& error) {
        // The parts of a request, from its method to its body, are nine.
        std::array<iovec, 16> parts;
        msghdr message{};
        message.msg_iov = parts.data();
        const auto end = boost::asio::buffer_sequence_end(buffers);
        for (auto i = boost::asio::buffer_sequence_begin(buffers);
             i != end && message.msg_iovlen < parts.size(); ++i) {
            const boost::asio::const_buffer part = *i;
            parts[message.msg_iovlen++] = {const_cast<void*>(part.data()), part.size()};
        }
        // Without MSG_NOSIGNAL a service that hangs up would end the program.
        const ssize_t sent =
            bounded(SO_SNDTIMEO, [&] { return ::sendmsg(descriptor_, &message, MSG_NOSIGNAL); });
        if (sent >= 0)
            return static_cast<std::size_t>(sent);
        error = last_socket_error();
        return 0;
    }

    // Beast asks a stream for these too, and calls neither.
    template <class Buffers> std::size_t read_some(const Buffers& buffers);
    template <class Buffers> std::size_t write_some(const Buffers& buffers);

private:
    bool set_time_out(int option, std::chrono::microseconds time_out) const {
        const auto whole_seconds = std::chrono::duration_cast<std::chrono::seconds>(time_out);
        const timeval value{.tv_sec = whole_seconds.count(),
                            .tv_usec = (time_out - whole_seconds).count()};
        return ::setsockopt(descriptor_, SOL_SOCKET, option, &value, sizeof value) == 0;
    }

    /// Repeats `call` when a signal interrupts it, with what is left of the time limit: signals
    /// that keep coming do not make the wait longer.
    template <class Call> ssize_t bounded(int option, Call call) const {
        const std::chrono::steady_clock::time_point deadline =
            std::chrono::steady_clock::now() + time_limit_;
        ssize_t moved = call();
        if (moved >= 0 || errno != EINTR)
            return moved;
        do {
            const auto left = std::chrono::floor<std::chrono::microseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0) { // a time-out of 0 would mean none
                errno = EAGAIN;
                return -1;
            }
            if (!set_time_out(option, left))
                return -1;
            moved = call();
        } while (moved < 0 && errno == EINTR);
        if (moved >= 0 && !set_time_out(option, time_limit_))
            return -1;
        return moved;
    }

    int descriptor_;
    std::chrono::seconds time_limit_;
};

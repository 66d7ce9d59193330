// SPDX-License-Identifier: MIT
// The one unit with Boost.Beast in it.
//
// Beast writes the request and reads the reply over a stream of our own: an Asio socket takes
// the EAGAIN of a time-out as "would block" and waits again without limit, so the socket's
// time-outs would bound nothing. The stream needs no I/O context either.
#define G_LOG_DOMAIN "tarnwave"
#include "link/service_link.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/span_body.hpp>
#include <boost/beast/http/write.hpp>
#include <boost/optional/optional.hpp>
#include <boost/system/errc.hpp>
#include <boost/system/error_code.hpp>
#include <glib.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <utility>

namespace net = boost::asio;
namespace http = boost::beast::http;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;

std::string settings_socket_path = "/run/tarnwave/settings.sock";

namespace {

/// Largest status line and header accepted, together, in bytes. Ours.
constexpr std::size_t header_limit = 8'192;

/// Largest reply body accepted, in bytes (8 MiB). Ours.
constexpr std::size_t body_limit = 8'388'608;

/// Most bytes that wait undecoded, and first room for them. A header never needs more, nor
/// does a body; only the extension of a chunk or a trailer could. Ours.
constexpr std::size_t buffer_limit = 65'536;
constexpr std::size_t buffer_start = 32'768;

error_code last_error() {
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
    error_code connect_to(const std::string& path) const {
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
                return last_error();
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

    error_code apply_time_limit() const {
        if (set_time_out(SO_RCVTIMEO, time_limit_) && set_time_out(SO_SNDTIMEO, time_limit_))
            return {};
        return last_error();
    }

    template <class Buffers> std::size_t read_some(const Buffers& buffers, error_code& error) {
        const net::mutable_buffer room = *net::buffer_sequence_begin(buffers);
        const ssize_t received =
            bounded(SO_RCVTIMEO, [&] { return ::recv(descriptor_, room.data(), room.size(), 0); });
        if (received > 0)
            return static_cast<std::size_t>(received);
        error = received == 0 ? error_code{net::error::eof} : last_error();
        return 0;
    }

    template <class Buffers> std::size_t write_some(const Buffers& buffers, error_code& error) {
        // The parts of a request, from its method to its body, are nine.
        std::array<iovec, 16> parts;
        msghdr message{};
        message.msg_iov = parts.data();
        const auto end = net::buffer_sequence_end(buffers);
        for (auto i = net::buffer_sequence_begin(buffers);
             i != end && message.msg_iovlen < parts.size(); ++i) {
            const net::const_buffer part = *i;
            parts[message.msg_iovlen++] = {const_cast<void*>(part.data()), part.size()};
        }
        // Without MSG_NOSIGNAL a service that hangs up would end the program.
        const ssize_t sent =
            bounded(SO_SNDTIMEO, [&] { return ::sendmsg(descriptor_, &message, MSG_NOSIGNAL); });
        if (sent >= 0)
            return static_cast<std::size_t>(sent);
        error = last_error();
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
        const Clock::time_point deadline = Clock::now() + time_limit_;
        ssize_t moved = call();
        if (moved >= 0 || errno != EINTR)
            return moved;
        do {
            const auto left =
                std::chrono::floor<std::chrono::microseconds>(deadline - Clock::now());
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

/// A reply's body as a string. Beast's own string body does the same, but writes zeros before
/// the bytes: a quarter of what an exchange costs.
struct ReplyBody {
    using value_type = std::string;

    class reader {
    public:
        template <bool is_request, class Fields>
        reader(http::header<is_request, Fields>&, value_type& body) : body_{body} {}

        /// The parser has held the length against its limit.
        void init(const boost::optional<std::uint64_t>& length, error_code& error) {
            if (length)
                body_.reserve(static_cast<std::size_t>(*length));
            error = {};
        }

        template <class Buffers> std::size_t put(const Buffers& buffers, error_code& error) {
            const net::const_buffer piece = *net::buffer_sequence_begin(buffers);
            body_.append(static_cast<const char*>(piece.data()), piece.size());
            error = {};
            return piece.size();
        }

        void finish(error_code& error) { error = {}; }

    private:
        value_type& body_;
    };
};

constexpr http::verb verb_of(HttpMethod method) {
    switch (method) {
    case HttpMethod::post:
        return http::verb::post;
    case HttpMethod::put:
        return http::verb::put;
    default:
        return http::verb::get;
    }
}

/// The service answers a request that has exactly these fields; a body sent with GET is framed
/// too, an empty one is not.
error_code write_request(TimedStream& stream, HttpMethod method, std::string_view target,
                         std::string_view body) {
    http::request<http::span_body<const char>> request;
    request.version(11);
    request.method(verb_of(method));
    request.target({target.data(), target.size()});
    request.insert(http::field::host, "tarnwave");
    request.insert(http::field::unknown, "X-Tarnwave", "1");
    request.insert(http::field::content_type, "application/json");
    request.body() = {body.data(), body.size()};
    request.prepare_payload();
    error_code error;
    http::write(stream, request, error);
    return error;
}

error_code read_reply(TimedStream& stream, ServiceReply& reply) {
    boost::beast::flat_buffer buffer{buffer_limit};
    buffer.reserve(buffer_start);
    http::response_parser<ReplyBody> parser;
    parser.header_limit(header_limit);
    parser.body_limit(body_limit);
    error_code error;
    // The parser applies its limit to the status line and to the fields each by itself.
    const std::size_t header_size = http::read_header(stream, buffer, parser, error);
    if (!error && header_size > header_limit)
        error = http::error::header_limit;
    if (!error)
        http::read(stream, buffer, parser, error);
    // A code of "000" is no answer either.
    if (!error && parser.get().result_int() != 0)
        reply = {static_cast<int>(parser.get().result_int()), std::move(parser.get().body())};
    return error;
}

error_code exchange(HttpMethod method, std::string_view target, std::string_view body,
                    int time_limit_s, ServiceReply& reply) {
    const Socket socket;
    if (socket.descriptor() < 0)
        return last_error();
    error_code error = socket.connect_to(settings_socket_path);
    if (error)
        return error;
    TimedStream stream{socket.descriptor(), std::chrono::seconds{time_limit_s}};
    error = stream.apply_time_limit();
    if (!error)
        error = write_request(stream, method, target, body);
    if (!error)
        error = read_reply(stream, reply);
    return error;
}

/// One line for whoever sets G_MESSAGES_DEBUG=tarnwave. Never a body: it may hold a relay key.
void trace(HttpMethod method, std::string_view target, const ServiceReply& reply,
           const error_code& error, Clock::duration duration) {
    std::array<char, 128> reason{};
    g_debug("%s %.*s: status %d, %zu bytes, %.1f ms%s%s", http::to_string(verb_of(method)).data(),
            static_cast<int>(target.size()), target.data(), reply.status, reply.body.size(),
            std::chrono::duration<double, std::milli>{duration}.count(), error ? ", " : "",
            error ? error.message(reason.data(), reason.size()) : "");
}

} // namespace

ServiceReply service_request(HttpMethod method, std::string_view target, std::string_view body,
                             int time_limit_s) {
    // Asked once: the answer lies in the environment.
    static const bool traced = !g_log_writer_default_would_drop(G_LOG_LEVEL_DEBUG, G_LOG_DOMAIN);
    const Clock::time_point start = traced ? Clock::now() : Clock::time_point{};
    ServiceReply reply;
    error_code error;
    try {
        error = exchange(method, target, body, time_limit_s, reply);
    } catch (...) {
        // Memory ran out: no answer, like every other failure.
        reply = {};
        error = boost::system::errc::make_error_code(boost::system::errc::not_enough_memory);
    }
    if (traced)
        trace(method, target, reply, error, Clock::now() - start);
    return reply;
}

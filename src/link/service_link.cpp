// SPDX-License-Identifier: MIT
// The program's only translation unit that includes Asio and Beast.
#define G_LOG_DOMAIN "tarnwave"
// Beast asserts that its buffer holds at least five bytes when it parses the last chunk again. It
// holds four when a reply of that chunk alone arrives a byte at a time, which parses correctly.
#define BOOST_DISABLE_ASSERTS
#include "link/service_link.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>
#include <boost/system/system_error.hpp>
#include <fcntl.h>
#include <glib.h>
#include <poll.h>

#include <array>
#include <chrono>
#include <utility>

namespace net = boost::asio;
namespace http = boost::beast::http;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;
using Socket = net::local::stream_protocol::socket;

std::string settings_socket_path = "/run/tarnwave/settings.sock";

namespace {

/// Largest status line and header accepted, together, in bytes.
constexpr std::size_t header_limit = 8'192;

/// Largest reply body accepted, in bytes (8 MiB).
constexpr std::size_t body_limit = 8'388'608;

/// Most bytes in the read buffer. Only the extension of a chunk or a trailer could need more.
constexpr std::size_t buffer_limit = 65'536;

/// The synchronous stream that Beast reads from and writes to: a non-blocking socket, on which each
/// read and write polls until its time limit.
///
/// SO_RCVTIMEO and SO_SNDTIMEO would have no effect: Asio takes their error for `would_block` and
/// waits without limit.
class TimedStream {
public:
    TimedStream(Socket& socket, std::chrono::seconds time_limit)
        : socket_{socket}, time_limit_{time_limit} {}

    template <class Buffers> std::size_t read_some(const Buffers& buffers, error_code& error) {
        return repeat_when_ready(POLLIN, error, [&] { return socket_.read_some(buffers, error); });
    }

    template <class Buffers> std::size_t write_some(const Buffers& buffers, error_code& error) {
        return repeat_when_ready(POLLOUT, error,
                                 [&] { return socket_.write_some(buffers, error); });
    }

    // SyncReadStream and SyncWriteStream require these overloads, which are never called.
    template <class Buffers> std::size_t read_some(const Buffers& buffers);
    template <class Buffers> std::size_t write_some(const Buffers& buffers);

private:
    template <class Transfer>
    std::size_t repeat_when_ready(short event, error_code& error, Transfer transfer) {
        const Clock::time_point deadline = Clock::now() + time_limit_;
        for (;;) {
            const std::size_t size = transfer();
            if (error != net::error::would_block)
                return size;
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            pollfd descriptor{.fd = socket_.native_handle(), .events = event, .revents = 0};
            // When a signal interrupts poll, the next poll waits for the rest of the time limit.
            if (left.count() <= 0 || ::poll(&descriptor, 1, static_cast<int>(left.count())) == 0) {
                error = net::error::timed_out;
                return 0;
            }
        }
    }

    Socket& socket_;
    std::chrono::seconds time_limit_;
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

Socket connected_socket(net::io_context& context) {
    const net::local::stream_protocol::endpoint service{settings_socket_path};
    Socket socket{context, service.protocol()};
    // The commands that the program runs must not inherit the socket.
    ::fcntl(socket.native_handle(), F_SETFD, FD_CLOEXEC);
    error_code error;
    do // a local connect that a signal interrupted can be repeated
        socket.connect(service, error);
    while (error == net::error::interrupted);
    if (error)
        throw boost::system::system_error{error};
    socket.non_blocking(true);
    return socket;
}

/// The service answers only requests with exactly these fields.
void write_request(TimedStream& stream, HttpMethod method, std::string_view target,
                   std::string_view body) {
    http::request<http::empty_body> request{verb_of(method), {target.data(), target.size()}, 11};
    request.insert(http::field::host, "tarnwave");
    request.insert("X-Tarnwave", "1");
    request.insert(http::field::content_type, "application/json");
    if (!body.empty() || method != HttpMethod::get)
        request.content_length(body.size());
    // http::write would bring the code for every kind of body, a tenth of the program.
    http::fields::writer header{request, request.version(), request.method()};
    std::string text = boost::beast::buffers_to_string(header.get());
    net::write(stream, net::buffer(text.append(body)));
}

ServiceReply read_reply(TimedStream& stream) {
    boost::beast::flat_buffer buffer{buffer_limit};
    buffer.reserve(buffer_limit); // so that one receive is enough for most replies
    http::response_parser<http::string_body> parser;
    parser.header_limit(header_limit);
    parser.body_limit(body_limit);
    // The parser applies its limit to the status line and to the fields separately.
    if (http::read_header(stream, buffer, parser) > header_limit)
        throw boost::system::system_error{http::error::header_limit};
    http::read(stream, buffer, parser);
    const int status = static_cast<int>(parser.get().result_int());
    if (status == 0) // "000" is no answer either
        throw boost::system::system_error{http::error::bad_status};
    return {status, std::move(parser.get().body())};
}

ServiceReply exchange(HttpMethod method, std::string_view target, std::string_view body,
                      std::chrono::seconds time_limit) {
    static net::io_context context;
    Socket socket = connected_socket(context);
    TimedStream stream{socket, time_limit};
    write_request(stream, method, target, body);
    return read_reply(stream);
}

} // namespace

ServiceReply service_request(HttpMethod method, std::string_view target, std::string_view body,
                             int time_limit_s) {
    const Clock::time_point start = Clock::now();
    ServiceReply reply;
    error_code error;
    try {
        reply = exchange(method, target, body, std::chrono::seconds{time_limit_s});
    } catch (const boost::system::system_error& failure) {
        error = failure.code();
    } catch (...) {
        error = net::error::no_memory;
    }
    // Printed with G_MESSAGES_DEBUG=tarnwave. Never a body: it may contain a relay key.
    std::array<char, 128> reason{};
    g_debug("%s %.*s: status %d, %zu bytes, %.1f ms%s%s", http::to_string(verb_of(method)).data(),
            static_cast<int>(target.size()), target.data(), reply.status, reply.body.size(),
            std::chrono::duration<double, std::milli>{Clock::now() - start}.count(),
            error ? ", " : "", error ? error.message(reason.data(), reason.size()) : "");
    return reply;
}

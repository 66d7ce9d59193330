// SPDX-License-Identifier: MIT
#include "http_server.h"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/basic_stream.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <utility>

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;

namespace {

using Protocol = net::local::stream_protocol;
using Stream = beast::basic_stream<Protocol>;
using Clock = std::chrono::steady_clock;

// The longest path that fits into sockaddr_un (unix(7)), without its zero byte.
constexpr std::size_t longest_path = 107;
constexpr std::size_t largest_body = std::size_t{8} * 1024 * 1024; // bytes
constexpr std::chrono::minutes stalled_connection_ends_after{5};
constexpr std::chrono::milliseconds time_passes_every{50};

ApiRequest as_api_request(const http::request<http::string_body>& request) {
    const auto text = [](beast::string_view view) { return std::string{view.data(), view.size()}; };
    return {.method = text(request.method_string()),
            .target = text(request.target()),
            .host = text(request[http::field::host]),
            .x_tarnwave = text(request["X-Tarnwave"]),
            .content_type = text(request[http::field::content_type]),
            .body = request.body()};
}

http::response<http::string_body> as_response(const ApiReply& reply, bool keep_alive) {
    http::response<http::string_body> response;
    response.version(11);
    response.result(static_cast<unsigned>(reply.status));
    response.set(http::field::content_type, "application/json");
    if (!reply.allow.empty())
        response.set(http::field::allow, reply.allow);
    response.keep_alive(keep_alive);
    response.body() = reply.body;
    response.prepare_payload();
    return response;
}

/// The reply to bytes that are no HTTP request; with status 0 nothing is sent, since the client has
/// hung up.
ApiReply reply_to_broken_request(const boost::system::error_code& error) {
    if (error == http::error::body_limit)
        return refusal(413, "The body is larger than 8 MiB.");
    if (error.category() == http::make_error_code(http::error::bad_method).category() &&
        error != http::error::end_of_stream && error != http::error::partial_message)
        return refusal(400, "This is not an HTTP request: " + error.message() + ".");
    return {};
}

net::awaitable<void> serve_connection(Stream stream, std::chrono::milliseconds delay,
                                      const ServerTasks& tasks) {
    boost::system::error_code error;
    beast::flat_buffer buffer;
    net::steady_timer delay_timer{stream.get_executor()};
    bool keep_alive = true;
    while (keep_alive) {
        http::request_parser<http::string_body> parser;
        parser.body_limit(largest_body);
        stream.expires_after(stalled_connection_ends_after);
        co_await http::async_read(stream, buffer, parser,
                                  net::redirect_error(net::use_awaitable, error));
        ApiReply reply;
        if (error) {
            reply = reply_to_broken_request(error);
            keep_alive = false;
            if (reply.status == 0)
                co_return;
        } else {
            keep_alive = parser.get().keep_alive();
            reply = tasks.answer(as_api_request(parser.get()));
        }
        if (delay.count() > 0) {
            stream.expires_never();
            delay_timer.expires_after(delay);
            co_await delay_timer.async_wait(net::redirect_error(net::use_awaitable, error));
        }
        const http::response<http::string_body> response = as_response(reply, keep_alive);
        stream.expires_after(stalled_connection_ends_after);
        co_await http::async_write(stream, response,
                                   net::redirect_error(net::use_awaitable, error));
        if (error)
            co_return;
    }
}

net::awaitable<void> accept_connections(Protocol::acceptor& acceptor,
                                        std::chrono::milliseconds delay, const ServerTasks& tasks) {
    boost::system::error_code error;
    net::steady_timer rest{acceptor.get_executor()};
    for (;;) {
        Protocol::socket socket{acceptor.get_executor()};
        co_await acceptor.async_accept(socket, net::redirect_error(net::use_awaitable, error));
        if (error) {
            // Most likely no descriptor is free: wait before the next try.
            rest.expires_after(time_passes_every);
            co_await rest.async_wait(net::redirect_error(net::use_awaitable, error));
            continue;
        }
        net::co_spawn(acceptor.get_executor(),
                      serve_connection(Stream{std::move(socket)}, delay, tasks), net::detached);
    }
}

net::awaitable<void> let_time_pass(const ServerTasks& tasks) {
    net::steady_timer timer{co_await net::this_coro::executor};
    Clock::time_point last = Clock::now();
    for (;;) {
        timer.expires_after(time_passes_every);
        co_await timer.async_wait(net::use_awaitable);
        const Clock::time_point now = Clock::now();
        tasks.pass_time(now - std::exchange(last, now));
    }
}

net::awaitable<void> heed_user_signals(net::signal_set& signals, const ServerTasks& tasks) {
    for (;;) {
        co_await signals.async_wait(net::use_awaitable);
        tasks.on_user_signal();
    }
}

std::string path_fault(const std::string& path) {
    return path + ": " + std::strerror(errno) + ".";
}

/// Removes a socket file that a crashed service left behind.
std::string remove_stale_socket(net::io_context& context, const std::string& path) {
    struct stat found {};
    if (lstat(path.c_str(), &found) != 0)
        return errno == ENOENT ? "" : path_fault(path);
    if (!S_ISSOCK(found.st_mode))
        return path + " is there already and is no socket.";
    boost::system::error_code error;
    Protocol::socket probe{context};
    probe.connect(Protocol::endpoint{path}, error);
    if (error != net::error::connection_refused)
        return "Somebody else listens on " + path + " already.";
    return unlink(path.c_str()) == 0 ? "" : path_fault(path);
}

/// The socket gets its final name only after listen(2), so that a client that waits for the file
/// can connect as soon as it is there.
std::string open_acceptor(Protocol::acceptor& acceptor, const std::string& path) {
    const bool has_room = path.size() < longest_path;
    const std::string unfinished = has_room ? path + "~" : path;
    if (has_room)
        unlink(unfinished.c_str());
    boost::system::error_code error;
    acceptor.open(Protocol{}, error);
    if (!error) {
        // The socket never exists with a wider mode than 0600.
        const mode_t former = umask(0177);
        acceptor.bind(Protocol::endpoint{unfinished}, error);
        umask(former);
    }
    if (!error)
        acceptor.listen(net::socket_base::max_listen_connections, error);
    if (error)
        return path + ": " + error.message() + ".";
    if (has_room && std::rename(unfinished.c_str(), path.c_str()) != 0)
        return path_fault(path);
    return "";
}

} // namespace

std::string serve(const std::string& path, std::chrono::milliseconds delay,
                  const ServerTasks& tasks) {
    if (path.size() > longest_path)
        return "The socket's path is longer than 107 bytes.";
    net::io_context context;
    // Before the socket file is there, since a signal may come as soon as it is.
    net::signal_set end_signals{context, SIGTERM, SIGINT};
    net::signal_set user_signals{context, SIGUSR1};
    Protocol::acceptor acceptor{context};
    if (std::string fault = remove_stale_socket(context, path); !fault.empty())
        return fault;
    if (std::string fault = open_acceptor(acceptor, path); !fault.empty())
        return fault;

    end_signals.async_wait([&](const boost::system::error_code& error, int) {
        if (!error)
            context.stop();
    });
    net::co_spawn(context, heed_user_signals(user_signals, tasks), net::detached);
    net::co_spawn(context, accept_connections(acceptor, delay, tasks), net::detached);
    if (tasks.pass_time)
        net::co_spawn(context, let_time_pass(tasks), net::detached);
    if (tasks.on_ready)
        tasks.on_ready();
    context.run();
    unlink(path.c_str());
    return "";
}

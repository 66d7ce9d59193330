// SPDX-License-Identifier: MIT
// The one unit with Boost.Beast in it.
#define G_LOG_DOMAIN "tarnwave"
// Beast asserts that at least five bytes wait when it looks at the last chunk again. A reply
// without any other chunk that comes a byte at a time has four then; the parser copes with them.
#define BOOST_DISABLE_ASSERTS
#include "link/service_link.h"

#include "link/timed_stream.h"

#include <boost/asio/buffer.hpp>
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

#include <array>
#include <chrono>
#include <cstdint>
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
        return last_socket_error();
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

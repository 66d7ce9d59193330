// SPDX-License-Identifier: MIT
// One exchange over the local socket, beside the same in plain C.
//
// The argument is the size of the reply's body: about that of a state document with one, 20, 200
// and 2,000 listeners. The other end is a process of its own, so that CPU time is the client's.
#include "link/service_link.h"
#include "support/replying_process.h"

#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr int time_limit_s = 3;

/// The least that one exchange takes: no checks but the length, no library. Returns the status.
int exchange_in_plain_c(const char* path, std::size_t* body_size) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    const timeval limit{.tv_sec = time_limit_s, .tv_usec = 0};
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(connection);
        return 0;
    }
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    setsockopt(connection, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    char request[512];
    const int request_size = std::snprintf(request, sizeof request,
                                           "%s %s HTTP/1.1\r\nHost: tarnwave\r\nX-Tarnwave: 1\r\n"
                                           "Content-Type: application/json\r\n\r\n",
                                           "GET", "/api/state");
    send(connection, request, static_cast<std::size_t>(request_size), MSG_NOSIGNAL);

    // The header and what comes with it lands here, the rest of the body where it stays.
    char start[16'384];
    std::size_t size = 0;
    std::size_t body_length = 0;
    const char* end_of_header = nullptr;
    while (!end_of_header && size + 1 < sizeof start) {
        const ssize_t received = recv(connection, start + size, sizeof start - 1 - size, 0);
        if (received < 0 && errno == EINTR)
            continue;
        if (received <= 0)
            break;
        size += static_cast<std::size_t>(received);
        start[size] = '\0';
        end_of_header = std::strstr(start, "\r\n\r\n");
    }
    int status = 0;
    if (const char* length = strcasestr(start, "\r\ncontent-length:"); end_of_header && length) {
        body_length = std::strtoul(length + 17, nullptr, 10);
        char* body = static_cast<char*>(std::malloc(body_length + 1));
        std::size_t filled = size - static_cast<std::size_t>(end_of_header + 4 - start);
        std::memcpy(body, end_of_header + 4, filled);
        while (filled < body_length) {
            const ssize_t received = recv(connection, body + filled, body_length - filled, 0);
            if (received < 0 && errno == EINTR)
                continue;
            if (received <= 0)
                break;
            filled += static_cast<std::size_t>(received);
        }
        body[filled] = '\0';
        benchmark::DoNotOptimize(body);
        std::free(body);
        status = filled == body_length ? std::atoi(start + 9) : 0;
    }
    *body_size = body_length;
    close(connection);
    return status;
}

void FloorExchange(benchmark::State& state) {
    const auto expected = static_cast<std::size_t>(state.range(0));
    const ReplyingProcess service{std::string(expected, 'x')};
    for (auto _ : state) {
        std::size_t size = 0;
        if (exchange_in_plain_c(service.path().c_str(), &size) != 200 || size != expected)
            state.SkipWithError("no answer");
    }
}

void Exchange(benchmark::State& state) {
    const auto expected = static_cast<std::size_t>(state.range(0));
    const ReplyingProcess service{std::string(expected, 'x')};
    settings_socket_path = service.path();
    for (auto _ : state) {
        const ServiceReply reply = service_request(HttpMethod::get, "/api/state", "", time_limit_s);
        if (reply.status != 200 || reply.body.size() != expected)
            state.SkipWithError("no answer");
    }
}

void body_sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1'500)->Arg(4'096)->Arg(30'000)->Arg(300'000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(FloorExchange)->Apply(body_sizes);
BENCHMARK(Exchange)->Apply(body_sizes);

} // namespace

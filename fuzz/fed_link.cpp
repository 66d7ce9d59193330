// SPDX-License-Identifier: MIT
#include "fed_link.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace {

std::string reply;
std::size_t most_at_once = 0;
int far_end = -1;

/// Closes the service's end of the last exchange. It stays open until the next exchange begins,
/// since the link may send until then.
void drop_far_end() {
    if (far_end >= 0)
        ::close(far_end);
    far_end = -1;
}

} // namespace

void feed_reply(std::string bytes, std::size_t piece) {
    reply = std::move(bytes);
    most_at_once = piece;
}

std::string reply_with_body(const std::string& body) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

// With --wrap the linker binds the program's calls to these functions; the system's own functions
// are those whose names begin with `__real_`.
extern "C" {

int __real_connect(int, const sockaddr*, socklen_t);
ssize_t __real_recv(int, void*, std::size_t, int);

int __wrap_socket(int family, int type, int protocol) {
    drop_far_end();
    int ends[2];
    if (socketpair(family, type, protocol, ends) != 0)
        std::abort();
    far_end = ends[1];
    return ends[0];
}

int __wrap_connect(int, const sockaddr*, socklen_t) {
    std::size_t sent = 0;
    while (sent < reply.size()) {
        const ssize_t moved =
            ::send(far_end, reply.data() + sent, reply.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (moved <= 0)
            std::abort(); // the reply is longer than the kernel's buffer
        sent += static_cast<std::size_t>(moved);
    }
    return ::shutdown(far_end, SHUT_WR);
}

ssize_t __wrap_recv(int descriptor, void* room, std::size_t size, int flags) {
    return __real_recv(descriptor, room, most_at_once ? std::min(size, most_at_once) : size, flags);
}
}

// SPDX-License-Identifier: MIT
#include "support/replying_process.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

constexpr std::string_view length_field = "\r\nContent-Length: ";

bool send_all(int connection, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

/// Reads a request up to the end of its body, or as much of it as comes.
void receive_request(int connection) {
    std::string request;
    for (;;) {
        char piece[16'384];
        const ssize_t received = recv(connection, piece, sizeof piece, 0);
        if (received <= 0)
            return;
        request.append(piece, static_cast<std::size_t>(received));
        const std::size_t end_of_header = request.find("\r\n\r\n");
        if (end_of_header == std::string::npos)
            continue;
        const std::size_t length = request.find(length_field);
        const std::size_t body =
            length < end_of_header
                ? std::strtoul(&request[length + length_field.size()], nullptr, 10)
                : 0;
        if (request.size() >= end_of_header + 4 + body)
            return;
    }
}

[[noreturn]] void answer_for_ever(int listener, const std::string& reply) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (;;) {
        const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        receive_request(connection);
        send_all(connection, reply);
        close(connection);
    }
}

} // namespace

ReplyingProcess::ReplyingProcess(std::string_view body) {
    char folder[] = "/tmp/tarnwave-bench-XXXXXX";
    if (!mkdtemp(folder))
        throw std::runtime_error{"no temporary folder"};
    folder_ = folder;
    path_ = folder_ + "/s";
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 64) != 0)
        throw std::runtime_error{"cannot listen"};
    const std::string reply = "HTTP/1.1 200 OK\r\nContent-Type: application/json" +
                              std::string{length_field} + std::to_string(body.size()) + "\r\n\r\n" +
                              std::string{body};
    process_ = fork();
    if (process_ == 0)
        answer_for_ever(listener, reply);
    close(listener);
}

ReplyingProcess::~ReplyingProcess() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    unlink(path_.c_str());
    rmdir(folder_.c_str());
}

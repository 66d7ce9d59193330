// SPDX-License-Identifier: MIT
#include "support/fake_service.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace {

/// How long anything here waits before it gives up.
constexpr int patience_ms = 60'000;

constexpr std::string_view end_of_header = "\r\n\r\n";

[[noreturn]] void fail(const char* what) {
    throw std::system_error{errno, std::generic_category(), what};
}

std::string next_line(std::string_view& text) {
    const std::size_t end = text.find("\r\n");
    std::string line{text.substr(0, end)};
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 2);
    return line;
}

/// Reads the request line and the fields; `text` ends after the header.
void read_header(std::string_view text, RecordedRequest& request) {
    const std::string line = next_line(text);
    const std::size_t first = line.find(' ');
    const std::size_t last = line.rfind(' ');
    request.method = line.substr(0, first);
    request.target = first < last ? line.substr(first + 1, last - first - 1) : "";
    request.version = last == std::string::npos ? "" : line.substr(last + 1);
    for (std::string field = next_line(text); !field.empty(); field = next_line(text)) {
        const std::size_t colon = field.find(": ");
        request.fields.emplace_back(field.substr(0, colon),
                                    colon == std::string::npos ? "" : field.substr(colon + 2));
    }
}

} // namespace

std::string reply_text(int status, std::string_view body) {
    return "HTTP/1.1 " + std::to_string(status) +
           " Reason\r\nContent-Type: application/json\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + std::string{body};
}

FakeService::FakeService() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tarnwave-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        fail("mkdtemp");
    folder_ = pattern;
    socket_path_ = (folder_ / "s").string();
    wake_up_ = eventfd(0, EFD_CLOEXEC);
    if (wake_up_ < 0)
        fail("eventfd");
    start();
}

FakeService::~FakeService() {
    stop();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
    ::close(wake_up_);
}

void FakeService::will_answer(const std::string& method, const std::string& target, int status,
                              std::string body) {
    const std::scoped_lock lock{mutex_};
    standing_[{method, target}] = {status, std::move(body)};
}

void FakeService::will_answer_once(const std::string& method, const std::string& target, int status,
                                   std::string body) {
    const std::scoped_lock lock{mutex_};
    once_[{method, target}].push_back({status, std::move(body)});
}

void FakeService::will_answer_state(std::string document) {
    will_answer("GET", "/api/state", 200, std::move(document));
}

void FakeService::before_answering(const std::string& method, const std::string& target,
                                   std::function<void()> step) {
    const std::scoped_lock lock{mutex_};
    before_[{method, target}] = std::move(step);
}

void FakeService::stay_silent() {
    const std::scoped_lock lock{mutex_};
    silent_ = true;
}

void FakeService::stop() {
    end();
    ::unlink(socket_path_.c_str());
}

void FakeService::crash() {
    end();
}

void FakeService::start() {
    end();
    ::unlink(socket_path_.c_str());
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socket_path_.c_str(), sizeof address.sun_path - 1);
    listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener_ < 0)
        fail("socket");
    if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        fail("bind");
    if (::listen(listener_, SOMAXCONN) != 0)
        fail("listen");
    thread_ = std::jthread{[this](std::stop_token stopping) { run(std::move(stopping)); }};
}

void FakeService::end() {
    if (!thread_.joinable())
        return;
    thread_.request_stop();
    eventfd_write(wake_up_, 1);
    thread_.join();
    eventfd_t ignored = 0;
    eventfd_read(wake_up_, &ignored);
    ::close(listener_);
    listener_ = -1;
}

std::vector<RecordedRequest> FakeService::requests() const {
    const std::scoped_lock lock{mutex_};
    return requests_;
}

std::vector<RecordedRequest> FakeService::requests(std::string_view method,
                                                   std::string_view target) const {
    std::vector<RecordedRequest> alike = requests();
    std::erase_if(alike, [&](const RecordedRequest& request) {
        return request.method != method || request.target != target;
    });
    return alike;
}

RecordedRequest FakeService::last_request() const {
    const std::scoped_lock lock{mutex_};
    return requests_.empty() ? RecordedRequest{} : requests_.back();
}

void FakeService::forget_requests() {
    const std::scoped_lock lock{mutex_};
    requests_.clear();
}

void FakeService::run(std::stop_token stopping) {
    while (!stopping.stop_requested()) {
        if (!wait_for(listener_, POLLIN))
            continue;
        const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0)
            continue;
        serve(connection);
        ::close(connection);
    }
}

void FakeService::serve(int connection) {
    bool silent = false;
    {
        const std::scoped_lock lock{mutex_};
        silent = silent_;
    }
    if (silent)
        wait_for(connection, 0); // no event but a hang-up
    else if (receive_request(connection))
        send_all(connection, answer_to_last_request());
}

bool FakeService::receive_request(int connection) {
    RecordedRequest request;
    std::string text;
    std::size_t header_size = 0;
    std::size_t size = std::string::npos;
    std::vector<char> room(1 << 16);
    while (text.size() < size) {
        if (!wait_for(connection, POLLIN))
            return false;
        const ssize_t received = ::recv(connection, room.data(), room.size(), 0);
        if (received <= 0)
            return false;
        text.append(room.data(), static_cast<std::size_t>(received));
        if (const std::size_t end = text.find(end_of_header);
            header_size == 0 && end != std::string::npos) {
            size = header_size = end + end_of_header.size();
            read_header(std::string_view{text}.substr(0, size), request);
            for (const auto& [name, value] : request.fields)
                if (name == "Content-Length")
                    size += std::stoul(value);
        }
    }
    request.body = text.substr(header_size);
    const std::scoped_lock lock{mutex_};
    requests_.push_back(std::move(request));
    return true;
}

std::string FakeService::answer_to_last_request() {
    std::function<void()> before;
    Way way;
    {
        const std::scoped_lock lock{mutex_};
        way = {requests_.back().method, requests_.back().target};
        if (const auto found = before_.find(way); found != before_.end())
            before = found->second;
    }
    if (before)
        before();
    const std::scoped_lock lock{mutex_};
    if (const auto found = once_.find(way); found != once_.end() && !found->second.empty()) {
        const Answer answer = std::move(found->second.front());
        found->second.pop_front();
        return reply_text(answer.status, answer.body);
    }
    if (const auto found = standing_.find(way); found != standing_.end())
        return reply_text(found->second.status, found->second.body);
    return reply_text(404, R"({"error":"Nothing here."})");
}

void FakeService::send_all(int connection, std::string_view bytes) const {
    while (!bytes.empty() && wait_for(connection, POLLOUT)) {
        const ssize_t sent =
            ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno != EAGAIN)
            return;
        bytes.remove_prefix(sent < 0 ? 0 : static_cast<std::size_t>(sent));
    }
}

bool FakeService::wait_for(int descriptor, short events) const {
    std::array<pollfd, 2> ends{{{descriptor, events, 0}, {wake_up_, POLLIN, 0}}};
    const int ready = ::poll(ends.data(), ends.size(), patience_ms);
    return ready > 0 && ends[0].revents != 0;
}

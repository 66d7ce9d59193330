// SPDX-License-Identifier: MIT
#include "support/fake_service.h"

#include <linux/sockios.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <system_error>

using namespace std::chrono_literals;

namespace {

/// How long anything here waits before it gives up.
constexpr std::chrono::milliseconds patience = 60s;

/// How often a look is taken at a condition.
constexpr std::chrono::milliseconds look_interval = 1ms;

/// Connections that the kernel queues before a further one waits.
constexpr int backlog = 16;

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

std::string RecordedRequest::field(std::string_view name) const {
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&](const auto& f) { return f.first == name; });
    return found == fields.end() ? "" : found->second;
}

ConnectionStep read_request() {
    return {.kind = ConnectionStep::Kind::read_request};
}

ConnectionStep send(std::string bytes) {
    return {.kind = ConnectionStep::Kind::send, .bytes = std::move(bytes)};
}

ConnectionStep send_bytewise(std::string bytes) {
    return {.kind = ConnectionStep::Kind::send_bytewise, .bytes = std::move(bytes)};
}

ConnectionStep run(std::function<void()> function) {
    return {.kind = ConnectionStep::Kind::run, .function = std::move(function)};
}

ConnectionStep stay_silent() {
    return {.kind = ConnectionStep::Kind::stay_silent};
}

std::string reply_text(int status, std::string_view body) {
    return "HTTP/1.1 " + std::to_string(status) +
           " Reason\r\nContent-Type: application/json\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\n\r\n" + std::string{body};
}

FakeService::FakeService(std::size_t path_size) {
    std::string pattern = (std::filesystem::temp_directory_path() / "tarnwave-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        fail("mkdtemp");
    folder_ = pattern;
    socket_path_ = (folder_ / "s").string();
    if (path_size > socket_path_.size())
        socket_path_.append(path_size - socket_path_.size(), 'x');
    wake_up_ = eventfd(0, EFD_CLOEXEC);
    if (wake_up_ < 0)
        fail("eventfd");
    start();
}

FakeService::~FakeService() {
    clear_away();
    ::close(wake_up_);
}

void FakeService::clear_away() {
    stop();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
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

void FakeService::next_connection(std::vector<ConnectionStep> steps) {
    const std::scoped_lock lock{mutex_};
    scripts_.push_back(std::move(steps));
}

void FakeService::accept_once(std::function<bool()> condition) {
    const std::scoped_lock lock{mutex_};
    accept_condition_ = std::move(condition);
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
    // The kernel takes a path that fills its field, without a zero byte at the end.
    if (socket_path_.size() > sizeof address.sun_path)
        throw std::length_error{"the socket's path is too long: " + socket_path_};
    std::memcpy(address.sun_path, socket_path_.c_str(), socket_path_.size());
    listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener_ < 0)
        fail("socket");
    if (::bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        fail("bind");
    if (::listen(listener_, backlog) != 0)
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

bool FakeService::wait_for_connections(std::size_t count) const {
    std::unique_lock lock{mutex_};
    return changed_.wait_for(lock, patience, [&] { return connections_ >= count; });
}

bool FakeService::wait_for_hang_ups(std::size_t count) const {
    std::unique_lock lock{mutex_};
    return changed_.wait_for(lock, patience, [&] { return hang_ups_ >= count; });
}

void FakeService::run(std::stop_token stopping) {
    // A test's signals are for the thread that makes the requests.
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);

    while (!stopping.stop_requested()) {
        if (!wait_for(listener_, POLLIN, patience))
            continue;
        std::function<bool()> condition;
        {
            const std::scoped_lock lock{mutex_};
            std::swap(condition, accept_condition_);
        }
        const auto deadline = std::chrono::steady_clock::now() + patience;
        while (condition && !condition() && !stopping.stop_requested() &&
               std::chrono::steady_clock::now() < deadline)
            wait_for(-1, 0, look_interval);
        const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0)
            continue;
        serve(connection, stopping);
        ::close(connection);
    }
}

void FakeService::serve(int connection, std::stop_token stopping) {
    std::vector<ConnectionStep> steps;
    bool scripted = false;
    {
        const std::scoped_lock lock{mutex_};
        ++connections_;
        scripted = !scripts_.empty();
        if (scripted) {
            steps = std::move(scripts_.front());
            scripts_.pop_front();
        }
    }
    changed_.notify_all();
    if (!scripted) {
        if (receive_request(connection))
            send_all(connection, answer_to_last_request());
        return;
    }
    for (const ConnectionStep& step : steps) {
        bool alive = true;
        switch (step.kind) {
        case ConnectionStep::Kind::read_request:
            alive = receive_request(connection);
            break;
        case ConnectionStep::Kind::send:
            alive = send_all(connection, step.bytes);
            break;
        case ConnectionStep::Kind::send_bytewise:
            alive = send_one_by_one(connection, step.bytes, stopping);
            break;
        case ConnectionStep::Kind::run:
            step.function();
            break;
        case ConnectionStep::Kind::stay_silent:
            if (wait_for(connection, 0, patience)) { // no event but a hang-up
                const std::scoped_lock lock{mutex_};
                ++hang_ups_;
            }
            changed_.notify_all();
            break;
        }
        if (!alive || stopping.stop_requested())
            return;
    }
}

bool FakeService::receive_request(int connection) {
    RecordedRequest request;
    std::size_t size = std::string::npos;
    std::vector<char> room(1 << 16);
    while (request.text.size() < size) {
        if (!wait_for(connection, POLLIN, patience))
            return false;
        const ssize_t received = ::recv(connection, room.data(), room.size(), 0);
        if (received <= 0)
            return false;
        request.pieces.push_back(static_cast<std::size_t>(received));
        request.text.append(room.data(), static_cast<std::size_t>(received));
        if (const std::size_t end = request.text.find(end_of_header);
            size == std::string::npos && end != std::string::npos) {
            size = end + end_of_header.size();
            read_header(std::string_view{request.text}.substr(0, size), request);
            const std::string length = request.field("Content-Length");
            request.body.reserve(length.empty() ? 0 : std::stoul(length));
            size += length.empty() ? 0 : std::stoul(length);
        }
    }
    request.body = request.text.substr(request.text.find(end_of_header) + end_of_header.size());
    {
        const std::scoped_lock lock{mutex_};
        requests_.push_back(std::move(request));
    }
    changed_.notify_all();
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

bool FakeService::send_all(int connection, std::string_view bytes) const {
    while (!bytes.empty()) {
        if (!wait_for(connection, POLLOUT, patience))
            return false;
        const ssize_t sent =
            ::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno != EAGAIN)
            return false;
        bytes.remove_prefix(sent < 0 ? 0 : static_cast<std::size_t>(sent));
    }
    return true;
}

bool FakeService::send_one_by_one(int connection, std::string_view bytes,
                                  std::stop_token stopping) const {
    for (const char& byte : bytes) {
        if (!send_all(connection, {&byte, 1}))
            return false;
        // The kernel hands over what it has as one piece: wait until it has nothing. The patience
        // is for each byte: all of them may take long where the two threads share a core with
        // others.
        const auto deadline = std::chrono::steady_clock::now() + patience;
        int waiting = 1;
        while (ioctl(connection, SIOCOUTQ, &waiting) == 0 && waiting > 0) {
            if (stopping.stop_requested() || std::chrono::steady_clock::now() > deadline)
                return false;
            wait_for(-1, 0, look_interval);
        }
    }
    return true;
}

bool FakeService::wait_for(int descriptor, short events, std::chrono::milliseconds limit) const {
    std::array<pollfd, 2> ends{{{descriptor, events, 0}, {wake_up_, POLLIN, 0}}};
    const int ready = ::poll(ends.data(), ends.size(), static_cast<int>(limit.count()));
    return ready > 0 && ends[0].revents != 0;
}

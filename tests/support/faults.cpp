// SPDX-License-Identifier: MIT
// Stands in for connect(2), hence one definition of it here: a bad connection changes when somebody
// has met it, not after a time.
#include "support/faults.h"

#include <boost/json.hpp>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <mutex>
#include <ostream>
#include <sstream>
#include <stdexcept>

using namespace std::chrono_literals;
namespace json = boost::json;

namespace {

/// Far beyond what a loaded machine needs; a wait that reaches it has failed.
constexpr auto deadline = 60s;

/// Who connects to the socket of a bad connection, and how far they got.
struct ConnectWatch {
    std::mutex mutex{};
    std::condition_variable changed{};
    std::string path{}; ///< of the socket; "": none is watched
    pid_t thread = 0;   ///< that began to connect last
    int begun = 0;
    int ended = 0;

    bool is_for(const sockaddr* address) {
        const std::scoped_lock lock{mutex};
        return !path.empty() && address->sa_family == AF_UNIX &&
               reinterpret_cast<const sockaddr_un*>(address)->sun_path == path;
    }

    void count(int ConnectWatch::*counter) {
        const std::scoped_lock lock{mutex};
        thread = gettid();
        ++(this->*counter);
        changed.notify_all();
    }

    void begin(const std::string& socket_path) {
        const std::scoped_lock lock{mutex};
        path = socket_path;
        begun = ended = 0;
    }

    void wait_for(int ConnectWatch::*counter) {
        std::unique_lock lock{mutex};
        if (!changed.wait_for(lock, deadline, [&] { return this->*counter > 0; }))
            throw std::runtime_error{"nobody connected to " + path};
    }

    /// Whether the kernel lets the thread wait: its connect found the queue full.
    bool is_waiting() {
        const std::scoped_lock lock{mutex};
        std::ifstream file{"/proc/self/task/" + std::to_string(thread) + "/stat"};
        const std::string stat{std::istreambuf_iterator<char>{file}, {}};
        return ended > 0 || stat.compare(stat.rfind(')') + 2, 1, "S") == 0;
    }
};
ConnectWatch connects;

/// Returns once somebody waits in the full queue.
void wait_for_a_waiting_connect() {
    connects.wait_for(&ConnectWatch::begun);
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (!connects.is_waiting()) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error{"nobody waits in the full queue"};
        std::this_thread::yield();
    }
}

std::vector<Fault> read_faults() {
    std::ifstream file{FAULTS_FILE};
    const std::string text{std::istreambuf_iterator<char>{file}, {}};
    const json::value table = json::parse(text);
    std::vector<Fault> all;
    for (const json::value& row : table.as_array()) {
        Fault fault;
        for (const auto& [key, value] : row.as_object()) {
            if (key == "fault")
                fault.name = value.as_string();
            else if (key == "connection")
                fault.connection = value.as_string();
            else if (key == "send")
                fault.sent = value.as_string();
            else if (key == "silent")
                fault.silent = value.as_bool();
            else if (key == "gap_ms")
                fault.gap = std::chrono::milliseconds{value.as_int64()};
            else if (key == "limit_ms")
                fault.limit_ms = value.as_int64();
            else if (key == "header_size")
                fault.header_size = value.to_number<std::size_t>();
            else if (key == "body_size")
                fault.body_size = value.to_number<std::size_t>();
            else if (key == "status")
                fault.status = value.to_number<int>();
            else if (key == "body")
                fault.body = value.as_string();
            else
                throw std::invalid_argument{"unknown in the table of faults: " + std::string{key}};
        }
        all.push_back(std::move(fault));
    }
    return all;
}

void replace_all(std::string& text, std::string_view place, std::string_view by) {
    for (std::size_t at = text.find(place); at != std::string::npos;
         at = text.find(place, at + by.size()))
        text.replace(at, place.size(), by);
}

std::string reply_of(const Fault& fault, std::string body) {
    if (fault.body_size > 0)
        body.resize(fault.body_size, ' ');
    std::ostringstream hexadecimal;
    hexadecimal << std::hex << body.size();
    std::string reply = fault.sent;
    replace_all(reply, "{size}", std::to_string(body.size()));
    replace_all(reply, "{hex}", hexadecimal.str());
    if (fault.header_size > 0) {
        std::string header = reply.substr(0, reply.find("{body}"));
        replace_all(header, "{filler}", "");
        replace_all(reply, "{filler}", std::string(fault.header_size - header.size(), 'x'));
    }
    replace_all(reply, "{half}", std::string_view{body}.substr(0, body.size() / 2));
    replace_all(reply, "{body}", body);
    return reply;
}

int bound_socket(const sockaddr_un& address) {
    const int end = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(end, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::system_error{errno, std::generic_category(), "bind"};
    return end;
}

} // namespace

extern "C" int connect(int descriptor, const sockaddr* address, socklen_t size) {
    const bool watched = connects.is_for(address);
    if (watched)
        connects.count(&ConnectWatch::begun);
    const long result = syscall(SYS_connect, descriptor, address, size);
    const int error = errno;
    if (watched)
        connects.count(&ConnectWatch::ended);
    errno = error;
    return static_cast<int>(result);
}

std::ostream& operator<<(std::ostream& out, const Fault& fault) {
    return out << fault.name;
}

const std::vector<Fault>& faults() {
    static const std::vector<Fault> all = read_faults();
    return all;
}

std::vector<ConnectionStep> steps_of(const Fault& fault, std::string_view good_body) {
    const std::string reply = reply_of(fault, std::string{good_body});
    std::vector<ConnectionStep> steps{read_request()};
    if (fault.gap > 0ms) {
        // Single bytes at both ends, where they matter.
        const std::size_t last = reply.size() - 2;
        for (const auto& [begin, size] : std::array<std::pair<std::size_t, std::size_t>, 5>{
                 {{0, 1}, {1, 1}, {2, last - 2}, {last, 1}, {last + 1, 1}}}) {
            steps.push_back(send(reply.substr(begin, size)));
            if (begin <= last)
                steps.push_back(pause(fault.gap));
        }
    } else if (!reply.empty()) {
        steps.push_back(send(reply));
    }
    if (fault.silent)
        steps.push_back(stay_silent());
    return steps;
}

BadConnection::BadConnection(const std::string& socket_path, const Fault& fault) {
    if (fault.connection.empty())
        return;
    path_ = socket_path;
    std::rename(path_.c_str(), (path_ + ".away").c_str());
    connects.begin(path_);
    if (fault.connection == "absent")
        return;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
    std::vector<int> ends{bound_socket(address)};
    if (fault.connection == "queued") {
        ::listen(ends[0], 0);
        for (bool full = false; !full;) {
            ends.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            full = ::connect(ends.back(), reinterpret_cast<const sockaddr*>(&address),
                             sizeof address) != 0;
        }
    }
    const auto close_all = [ends] {
        for (const int end : ends)
            ::close(end);
    };
    if (fault.connection == "refused") {
        close_all();
        return;
    }
    // The queue was filled through the same call.
    connects.begin(path_);
    end_of_queue_ = std::jthread{[close_all] {
        wait_for_a_waiting_connect();
        close_all();
    }};
}

BadConnection::~BadConnection() {
    if (end_.joinable())
        end_.join();
    else
        end();
}

void BadConnection::end_once_met() {
    if (path_.empty())
        return;
    end_ = std::jthread{[this] {
        connects.wait_for(&ConnectWatch::ended);
        end();
    }};
}

void BadConnection::end() {
    if (path_.empty())
        return;
    if (end_of_queue_.joinable())
        end_of_queue_.join();
    connects.begin("");
    ::unlink(path_.c_str());
    std::rename((path_ + ".away").c_str(), path_.c_str());
}

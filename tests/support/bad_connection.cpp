// SPDX-License-Identifier: MIT
// Stands in for connect(2): a bad connection changes when somebody meets it, not after a time.
#include "support/bad_connection.h"

#include "support/waiting_thread.h"

#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// Far beyond what a loaded machine needs; a wait that reaches it has failed.
constexpr auto deadline = 60s;

/// Past the program's own connect(2), which is the one below.
int plain_connect(int descriptor, const sockaddr* address, socklen_t size) {
    return static_cast<int>(syscall(SYS_connect, descriptor, address, size));
}

int bound_socket(const sockaddr_un& address) {
    const int end = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(end, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::system_error{errno, std::generic_category(), "bind"};
    return end;
}

/// The socket of the bad connection, who connects to it, and how far they got.
class ConnectWatch {
public:
    void watch(std::string path, std::string_view way, int fine_before) {
        const std::scoped_lock lock{mutex_};
        path_ = std::move(path);
        way_ = way;
        fine_left_ = fine_before;
        begun_ = ended_ = 0;
    }

    /// False when this is none of the watched ones.
    bool begin(const sockaddr* address) {
        const std::scoped_lock lock{mutex_};
        if (path_.empty() || address->sa_family != AF_UNIX ||
            reinterpret_cast<const sockaddr_un*>(address)->sun_path != path_)
            return false;
        if (fine_left_ > 0) {
            --fine_left_;
            return false;
        }
        if (begun_ == 0)
            spoil();
        thread_ = gettid();
        ++begun_;
        changed_.notify_all();
        return true;
    }

    void end() {
        const std::scoped_lock lock{mutex_};
        ++ended_;
        changed_.notify_all();
    }

    /// Returns once somebody waits in the full queue, or nobody will any more.
    void wait_until_queued() {
        wait_until([this] { return begun_ > 0 || path_.empty(); });
        const auto end = std::chrono::steady_clock::now() + deadline;
        while (!is_waiting()) {
            if (std::chrono::steady_clock::now() > end)
                throw std::runtime_error{"nobody waits in the full queue"};
            std::this_thread::yield();
        }
    }

    /// Returns once somebody has met the bad connection, or nobody will any more.
    void wait_until_met() {
        wait_until([this] { return ended_ > 0 || path_.empty(); });
    }

    void close_queue() {
        const std::scoped_lock lock{mutex_};
        for (const int end : std::exchange(queue_, {}))
            ::close(end);
    }

    void mend() {
        const std::scoped_lock lock{mutex_};
        if (begun_ > 0 && !path_.empty()) {
            ::unlink(path_.c_str());
            std::rename((path_ + ".away").c_str(), path_.c_str());
        }
        path_.clear();
        changed_.notify_all();
    }

private:
    void spoil() {
        std::rename(path_.c_str(), (path_ + ".away").c_str());
        if (way_ == "absent")
            return;
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path_.c_str(), sizeof address.sun_path - 1);
        queue_ = {bound_socket(address)};
        if (way_ == "refused") {
            ::close(std::exchange(queue_, {})[0]);
            return;
        }
        ::listen(queue_[0], 0);
        for (bool full = false; !full;) {
            queue_.push_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            full = plain_connect(queue_.back(), reinterpret_cast<const sockaddr*>(&address),
                                 sizeof address) != 0;
        }
    }

    template <class Condition> void wait_until(Condition holds) {
        std::unique_lock lock{mutex_};
        if (!changed_.wait_for(lock, deadline, holds))
            throw std::runtime_error{"nobody connected to " + path_};
    }

    /// Whether somebody's connect found the queue full, or nobody's will any more.
    bool is_waiting() {
        const std::scoped_lock lock{mutex_};
        return ended_ > 0 || path_.empty() || is_waiting_in_kernel(thread_);
    }

    std::mutex mutex_{};
    std::condition_variable changed_{};
    std::string path_{}; ///< of the socket; "": none is watched
    std::string way_{};
    int fine_left_ = 0;
    int begun_ = 0;
    int ended_ = 0;
    pid_t thread_ = 0; ///< that began to connect last
    std::vector<int> queue_{};
};

/// Made when first asked for and never destroyed: a preloaded library's function is called before
/// its globals are there, and after they are gone.
ConnectWatch& connects() {
    static ConnectWatch& watch = *new ConnectWatch;
    return watch;
}

} // namespace

extern "C" int connect(int descriptor, const sockaddr* address, socklen_t size) {
    const bool watched = connects().begin(address);
    const int result = plain_connect(descriptor, address, size);
    const int error = errno;
    if (watched)
        connects().end();
    errno = error;
    return result;
}

BadConnection::BadConnection(std::string socket_path, std::string_view way, int fine_before) {
    if (way.empty())
        return;
    connects().watch(std::move(socket_path), way, fine_before);
    if (way == "queued")
        end_of_queue_ = std::jthread{[] {
            connects().wait_until_queued();
            connects().close_queue();
        }};
}

void BadConnection::end_once_met() {
    end_once_met_ = std::jthread{[] {
        connects().wait_until_met();
        connects().mend();
    }};
}

BadConnection::~BadConnection() {
    connects().mend();
}

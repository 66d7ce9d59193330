// SPDX-License-Identifier: MIT
// The scriptable other end of the service link: a thread on a Unix socket in a temporary folder.
//
// Ordinary answers are standing orders by method and target:
//     FakeService service;
//     service.will_answer("PUT", "/api/settings", 409, R"({"error":"The port is taken."})");
//     service.will_answer_state(text_of_a_state_document);
// A script, which is a list of steps, makes one connection behave as no proper service would:
//     service.next_connection({read_request(), send("HTTP/1.1 200 OK\r\n"), stay_silent()});
// A connection is closed after its last step. Connections take the scripts in order, then the
// answers meant for one request, then the standing ones; what nothing answers gets a 404.
//
// Everything that came in is recorded. All members may be called while the service runs.
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

/// A request as it came in; `pieces` holds the sizes of the receives that brought it.
struct RecordedRequest {
    std::string method{};
    std::string target{};
    std::string version{};                                     ///< "HTTP/1.1"
    std::vector<std::pair<std::string, std::string>> fields{}; ///< in the order they came
    std::string body{};
    std::string text{}; ///< all of it, byte for byte
    std::vector<std::size_t> pieces{};

    std::string line() const { return method + " " + target + " " + version; }
    /// The value of the first field of that name, in this spelling; "" when there is none.
    std::string field(std::string_view name) const;
};

/// One step of a scripted connection; made by the functions below.
struct ConnectionStep {
    enum class Kind { read_request, send, send_bytewise, run, stay_silent };
    Kind kind = Kind::stay_silent;
    std::string bytes{};
    std::function<void()> function{};
};

/// Reads one request and records it.
ConnectionStep read_request();
/// Sends raw bytes. A client that has hung up ends the connection.
ConnectionStep send(std::string bytes);
/// Sends raw bytes, each one only after the client has taken the one before.
ConnectionStep send_bytewise(std::string bytes);
/// Runs a function on the service's thread, before the next step.
ConnectionStep run(std::function<void()> function);
/// Neither reads nor sends until the client hangs up. As the first step: a service that never
/// reads.
ConnectionStep stay_silent();

/// A well-formed reply, to send as it is or in parts.
std::string reply_text(int status, std::string_view body);

class FakeService {
public:
    /// Listens from now on. `path_size` lengthens the path of the socket to that many bytes, at
    /// most 108; 0 leaves it short.
    explicit FakeService(std::size_t path_size = 0);
    ~FakeService();
    FakeService(const FakeService&) = delete;
    FakeService& operator=(const FakeService&) = delete;

    /// What `settings_socket_path` has to be set to.
    const std::string& socket_path() const { return socket_path_; }

    /// Answers every request of this method and target, from now on.
    void will_answer(const std::string& method, const std::string& target, int status,
                     std::string body);
    /// Answers the next request of this method and target, instead of the standing answer.
    void will_answer_once(const std::string& method, const std::string& target, int status,
                          std::string body);
    /// Answers GET "/api/state" with 200 and this document, from now on.
    void will_answer_state(std::string document);
    /// Runs `step` on the service's thread before each answer to this method and target is
    /// sent: there a test changes what comes next.
    void before_answering(const std::string& method, const std::string& target,
                          std::function<void()> step);
    /// The next connection that has no script yet follows this one.
    void next_connection(std::vector<ConnectionStep> steps);

    /// From now on takes no connection, though the kernel queues them, until the condition holds
    /// or a minute has passed. It is asked on the service's thread, again and again.
    void accept_once(std::function<bool()> condition);

    /// Ends like a service that was stopped: connections are closed, the socket file is removed.
    void stop();

    /// Stops and removes the folder with the socket: for a process that ends without destructors.
    void clear_away();
    /// Ends like a service that crashed: the socket file stays, connecting is refused.
    void crash();
    /// Listens again, on the same path, with the same answers.
    void start();

    /// The requests so far, in the order they came; `requests(method, target)` those alike.
    std::vector<RecordedRequest> requests() const;
    std::vector<RecordedRequest> requests(std::string_view method, std::string_view target) const;
    RecordedRequest last_request() const;
    void forget_requests();

    /// Waits until so many connections were accepted since the service was made. False when that
    /// takes more than a minute.
    bool wait_for_connections(std::size_t count) const;
    /// Waits until the client has hung up in so many `stay_silent` steps. False when a silence
    /// lasted longer than a minute, after which the service itself hangs up.
    bool wait_for_hang_ups(std::size_t count) const;

private:
    using Way = std::pair<std::string, std::string>; // method, target
    struct Answer {
        int status = 200;
        std::string body{};
    };

    void end();
    void run(std::stop_token stopping);
    void serve(int connection, std::stop_token stopping);
    bool receive_request(int connection);
    std::string answer_to_last_request();
    bool send_all(int connection, std::string_view bytes) const;
    bool send_one_by_one(int connection, std::string_view bytes, std::stop_token stopping) const;
    bool wait_for(int descriptor, short events, std::chrono::milliseconds limit) const;

    std::filesystem::path folder_{};
    std::string socket_path_{};
    int listener_ = -1;
    int wake_up_ = -1; ///< an eventfd that ends every wait of the thread
    std::jthread thread_{};

    mutable std::mutex mutex_{};
    mutable std::condition_variable changed_{};
    std::map<Way, Answer> standing_{};
    std::map<Way, std::deque<Answer>> once_{};
    std::map<Way, std::function<void()>> before_{};
    std::deque<std::vector<ConnectionStep>> scripts_{};
    std::function<bool()> accept_condition_{};
    std::vector<RecordedRequest> requests_{};
    std::size_t connections_ = 0;
    std::size_t hang_ups_ = 0;
};

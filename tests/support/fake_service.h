// SPDX-License-Identifier: MIT
// The scriptable other end of the service link: a thread on a Unix socket in a temporary folder.
//
// Answers are standing orders by method and target:
//     FakeService service;
//     service.will_answer("PUT", "/api/settings", 409, R"({"error":"The port is taken."})");
//     service.will_answer_state(text_of_a_state_document);
// A connection is closed after its answer; what nothing answers gets a 404.
//
// Every request is recorded. All members may be called while the service runs.
#pragma once

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

struct RecordedRequest {
    std::string method{};
    std::string target{};
    std::string version{};                                     ///< "HTTP/1.1"
    std::vector<std::pair<std::string, std::string>> fields{}; ///< in the order they came
    std::string body{};

    std::string line() const { return method + " " + target + " " + version; }
};

/// A well-formed reply.
std::string reply_text(int status, std::string_view body);

class FakeService {
public:
    /// Listens from now on.
    FakeService();
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
    /// From now on neither reads nor sends until the client hangs up.
    void stay_silent();

    /// Ends like a service that was stopped: connections are closed, the socket file is removed.
    void stop();

    /// Ends like a service that crashed: the socket file stays, connecting is refused.
    void crash();
    /// Listens again, on the same path, with the same answers.
    void start();

    /// The requests so far, in the order they came; `requests(method, target)` those alike.
    std::vector<RecordedRequest> requests() const;
    std::vector<RecordedRequest> requests(std::string_view method, std::string_view target) const;
    RecordedRequest last_request() const;
    void forget_requests();

private:
    using Way = std::pair<std::string, std::string>; // method, target
    struct Answer {
        int status = 200;
        std::string body{};
    };

    void end();
    void run(std::stop_token stopping);
    void serve(int connection);
    bool receive_request(int connection);
    std::string answer_to_last_request();
    void send_all(int connection, std::string_view bytes) const;
    bool wait_for(int descriptor, short events) const;

    std::filesystem::path folder_{};
    std::string socket_path_{};
    int listener_ = -1;
    int wake_up_ = -1; ///< an eventfd that ends every wait of the thread
    std::jthread thread_{};

    mutable std::mutex mutex_{};
    std::map<Way, Answer> standing_{};
    std::map<Way, std::deque<Answer>> once_{};
    std::map<Way, std::function<void()>> before_{};
    bool silent_ = false;
    std::vector<RecordedRequest> requests_{};
};

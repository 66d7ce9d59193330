// SPDX-License-Identifier: MIT
// The link against a service that does everything a service may, and much that none should.
//
// Stands in for some of the system's functions, hence one definition of them here: counts the
// sends, and refuses sockets, time limits and memory where a test says so.
#include "link/service_link.h"

#include "support/fake_service.h"
#include "support/scarce_memory.h"
#include "support/waiting_thread.h"

#include <fcntl.h>
#include <glib.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using namespace std::chrono_literals;
using namespace std::string_literals;

namespace {

int sends = 0;

int time_limits = 0;        ///< that were set, or were to be
int failing_time_limit = 0; ///< 0: none
std::vector<std::chrono::microseconds> limits_of_receives{};

bool no_descriptors = false;

} // namespace

/// Stands in for the C library's function: the one call of this number fails.
extern "C" int setsockopt(int descriptor, int level, int option, const void* value,
                          socklen_t size) noexcept {
    if (level == SOL_SOCKET && (option == SO_RCVTIMEO || option == SO_SNDTIMEO) &&
        ++time_limits == failing_time_limit) {
        errno = EDOM;
        return -1;
    }
    if (level == SOL_SOCKET && option == SO_RCVTIMEO) {
        const timeval& limit = *static_cast<const timeval*>(value);
        limits_of_receives.push_back(std::chrono::seconds{limit.tv_sec} +
                                     std::chrono::microseconds{limit.tv_usec});
    }
    return static_cast<int>(syscall(SYS_setsockopt, descriptor, level, option, value, size));
}

extern "C" int socket(int family, int type, int protocol) noexcept {
    if (no_descriptors) {
        errno = EMFILE;
        return -1;
    }
    return static_cast<int>(syscall(SYS_socket, family, type, protocol));
}

extern "C" ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
    ++sends;
    return syscall(SYS_sendmsg, descriptor, message, flags);
}

namespace {

constexpr std::size_t largest_header = 8'192;
constexpr std::size_t largest_body = 8'388'608;

using Fields = std::vector<std::pair<std::string, std::string>>;

class ServiceLink : public testing::Test {
protected:
    ServiceLink() { settings_socket_path = service.socket_path(); }
    ~ServiceLink() override { settings_socket_path = "/run/tarnwave/settings.sock"; }

    static ServiceReply get_state(int time_limit_s = 5) {
        return service_request(HttpMethod::get, "/api/state", "", time_limit_s);
    }

    /// What the link makes of a reply, byte for byte, after which the service hangs up.
    ServiceReply reply_to(std::string raw) {
        service.next_connection({read_request(), send(std::move(raw))});
        return get_state();
    }

    /// No answer, and it was the link that ended a silence of the service.
    void expect_it_gave_up(const ServiceReply& reply) {
        EXPECT_EQ(reply.status, 0);
        EXPECT_EQ(reply.body, "");
        EXPECT_TRUE(service.wait_for_hang_ups(++silences_));
    }

    FakeService service{};

private:
    std::size_t silences_ = 0;
};

void expect_no_answer(const ServiceReply& reply) {
    EXPECT_EQ(reply.status, 0);
    EXPECT_EQ(reply.body, "");
}

/// A status line and header of exactly `size` bytes, for a body of two.
std::string header_of(std::size_t size) {
    const std::string start = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nX-Padding: ";
    const std::string end = "\r\n\r\n";
    return start + std::string(size - start.size() - end.size(), 'x') + end;
}

std::string header_of_many_fields(std::size_t size) {
    std::string text = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n";
    const std::string field = "X-Padding: x\r\n";
    const std::size_t last = std::string{"X: \r\n\r\n"}.size();
    while (text.size() + field.size() + last <= size)
        text += field;
    return text + "X: " + std::string(size - text.size() - last, 'x') + "\r\n\r\n";
}

std::string header_of_a_long_reason(std::size_t size) {
    const std::string start = "HTTP/1.1 200 ";
    const std::string end = "\r\nContent-Length: 2\r\n\r\n";
    return start + std::string(size - start.size() - end.size(), 'x') + end;
}

std::string in_chunks(std::string_view body, std::size_t chunk_size) {
    std::string text = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    while (!body.empty()) {
        const std::string_view chunk = body.substr(0, chunk_size);
        char length[32];
        std::snprintf(length, sizeof length, "%zx\r\n", chunk.size());
        text.append(length).append(chunk).append("\r\n");
        body.remove_prefix(chunk.size());
    }
    return text + "0\r\n\r\n";
}

std::size_t open_descriptors() {
    const std::filesystem::directory_iterator all{"/proc/self/fd"};
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

sockaddr_un address_of(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    return address;
}

std::atomic<int> signals_seen = 0;
static_assert(std::atomic<int>::is_always_lock_free); // needed in a handler

/// While one lives, a signal interrupts what the process does and is counted.
class CountedSignals {
public:
    CountedSignals() {
        signals_seen = 0;
        struct sigaction action {};
        action.sa_handler = [](int) { ++signals_seen; }; // no SA_RESTART
        sigaction(SIGALRM, &action, &before_);
    }
    ~CountedSignals() { sigaction(SIGALRM, &before_, nullptr); }
    CountedSignals(const CountedSignals&) = delete;
    CountedSignals& operator=(const CountedSignals&) = delete;

private:
    struct sigaction before_ {};
};

/// Interrupts the process again and again.
class SignalStorm {
public:
    SignalStorm() { set_timer({.tv_sec = 0, .tv_usec = 5'000}); }
    ~SignalStorm() { set_timer({}); }
    SignalStorm(const SignalStorm&) = delete;
    SignalStorm& operator=(const SignalStorm&) = delete;

private:
    static void set_timer(timeval interval) {
        const itimerval timer{.it_interval = interval, .it_value = interval};
        setitimer(ITIMER_REAL, &timer, nullptr);
    }
    CountedSignals counted_{};
};

/// Waits on the service's thread, far longer than a loaded machine needs.
void wait_on_service_until(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + 60s;
    while (!condition()) {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline);
        std::this_thread::yield();
    }
}

/// A step: goes on when some more signals have come.
ConnectionStep let_signals_come() {
    return run([] {
        const int before = signals_seen;
        wait_on_service_until([before] { return signals_seen >= before + 5; });
    });
}

/// A step, when the request has been read: interrupts the thread that asks, once it waits for the
/// reply.
ConnectionStep interrupt_the_receive() {
    return run([client = gettid()] {
        wait_on_service_until([client] { return is_waiting_in_kernel(client); });
        EXPECT_EQ(syscall(SYS_tgkill, getpid(), client, SIGALRM), 0);
    });
}

/// Fills the queue of a service that accepts nothing meanwhile.
void fill_backlog_of(const FakeService& service) {
    const sockaddr_un address = address_of(service.socket_path());
    int connected = 0;
    for (bool full = false; !full; ++connected) {
        const int filler = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        ASSERT_GE(filler, 0);
        full = connect(filler, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0;
        close(filler);
        ASSERT_LT(connected, 1'000);
    }
}

// --- The request ---

TEST_F(ServiceLink, SendsExactlyTheseFieldsInThisOrder) {
    struct Case {
        HttpMethod method;
        std::string target;
        std::string body;
        std::string line;
        Fields fields;
    };
    const Fields common = {
        {"Host", "tarnwave"}, {"X-Tarnwave", "1"}, {"Content-Type", "application/json"}};
    const auto common_and_length = [&](const char* length) {
        Fields fields = common;
        fields.emplace_back("Content-Length", length);
        return fields;
    };
    const std::vector<Case> cases = {
        {HttpMethod::get, "/api/state", "", "GET /api/state HTTP/1.1", common},
        {HttpMethod::get, "/api/devices", "", "GET /api/devices HTTP/1.1", common},
        {HttpMethod::post, "/api/kick", "", "POST /api/kick HTTP/1.1", common_and_length("0")},
        {HttpMethod::put, "/api/settings", "", "PUT /api/settings HTTP/1.1",
         common_and_length("0")},
        {HttpMethod::post, "/api/kick", R"({"number":17})", "POST /api/kick HTTP/1.1",
         common_and_length("13")},
        {HttpMethod::put, "/api/settings", R"({"name":"Hügel"})", "PUT /api/settings HTTP/1.1",
         common_and_length("17")},
        {HttpMethod::get, "/api/state", "{}", "GET /api/state HTTP/1.1", common_and_length("2")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line + " with the body '" + c.body + "'");
        service.will_answer_once(c.line.substr(0, c.line.find(' ')), c.target, 200, "{}");
        const ServiceReply reply = service_request(c.method, c.target, c.body, 5);
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(service.last_request().line(), c.line);
        EXPECT_EQ(service.last_request().fields, c.fields);
        EXPECT_EQ(service.last_request().body, c.body);
    }
    EXPECT_EQ(service.requests().size(), cases.size());
}

TEST_F(ServiceLink, SendsARequestInOnePiece) {
    const std::string body(20'000, 'x');
    service.will_answer("PUT", "/api/settings", 200, "{}");
    sends = 0;
    EXPECT_EQ(service_request(HttpMethod::put, "/api/settings", body, 5).status, 200);
    EXPECT_EQ(sends, 1);
    EXPECT_EQ(service.last_request().pieces.front(), service.last_request().text.size());
    EXPECT_EQ(service.last_request().body, body);
}

TEST_F(ServiceLink, SendsAnyBytesOfABodyUnchanged) {
    std::string body;
    for (int byte = 0; byte < 256; ++byte)
        body.push_back(static_cast<char>(byte));
    service.will_answer("PUT", "/api/settings", 200, "{}");
    EXPECT_EQ(service_request(HttpMethod::put, "/api/settings", body, 5).status, 200);
    EXPECT_EQ(service.last_request().body, body);
}

TEST_F(ServiceLink, SendsALargeBodyWhole) {
    std::string body(4'000'000, 'x');
    for (std::size_t i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>('a' + i % 23);
    service.will_answer("PUT", "/api/settings", 200, "{}");
    EXPECT_EQ(service_request(HttpMethod::put, "/api/settings", body, 5).status, 200);
    EXPECT_TRUE(service.last_request().body == body);
}

TEST_F(ServiceLink, OpensAConnectionForEachRequest) {
    service.will_answer_state("{}");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(get_state().status, 200);
    EXPECT_TRUE(service.wait_for_connections(3));
}

// --- Replies ---

TEST_F(ServiceLink, ReturnsTheReplyOfTheService) {
    service.will_answer("PUT", "/api/settings", 409, R"({"error":"The port is taken."})");
    const ServiceReply reply = service_request(HttpMethod::put, "/api/settings", "{}", 5);
    EXPECT_EQ(reply.status, 409);
    EXPECT_EQ(reply.body, R"({"error":"The port is taken."})");
}

TEST_F(ServiceLink, ReturnsWhateverStatusTheServiceSends) {
    struct Case {
        std::string code;
        int status;
        std::string body;
    };
    const std::vector<Case> cases = {
        {"099", 99, "{}"},  {"100", 100, ""},   {"199", 199, ""},   {"200", 200, "{}"},
        {"204", 204, ""},   {"301", 301, "{}"}, {"304", 304, ""},   {"404", 404, "{}"},
        {"500", 500, "{}"}, {"599", 599, "{}"}, {"999", 999, "{}"}, {"000", 0, ""},
        {"1000", 0, ""},    {"20", 0, ""},      {"-20", 0, ""},     {"2 0", 0, ""},
        {"abc", 0, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("status " + c.code);
        const ServiceReply reply =
            reply_to("HTTP/1.1 " + c.code + " Reason\r\nContent-Length: 2\r\n\r\n{}");
        EXPECT_EQ(reply.status, c.status);
        EXPECT_EQ(reply.body, c.body);
    }
}

TEST_F(ServiceLink, ReadsAReplyAsHttpFramesIt) {
    struct Case {
        const char* when;
        std::string raw;
        int status;
        std::string body;
    };
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    const std::vector<Case> cases = {
        {"the body is empty", ok + "Content-Length: 0\r\n\r\n", 200, ""},
        {"the body ends with the stream", ok + "\r\n{\"a\":1}", 200, "{\"a\":1}"},
        {"an empty body ends with the stream", ok + "\r\n", 200, ""},
        {"HTTP/1.0 with a length", "HTTP/1.0 200 OK\r\nContent-Length: 2\r\n\r\n{}", 200, "{}"},
        {"HTTP/1.0 up to the end of the stream", "HTTP/1.0 200 OK\r\n\r\n{}", 200, "{}"},
        {"there is no reason", "HTTP/1.1 200 \r\nContent-Length: 2\r\n\r\n{}", 200, "{}"},
        {"field names are in other cases", ok + "content-LENGTH: 2\r\n\r\n{}", 200, "{}"},
        {"the service closes the connection",
         ok + "Connection: close\r\nContent-Length: 2\r\n\r\n{}", 200, "{}"},
        {"the body holds a zero byte", ok + "Content-Length: 3\r\n\r\na\0b"s, 200, "a\0b"s},
        {"the length is said twice alike", ok + "Content-Length: 2\r\nContent-Length: 2\r\n\r\n{}",
         200, "{}"},
        {"more comes than the length says", ok + "Content-Length: 2\r\n\r\n{}{}", 200, "{}"},
        {"a second reply follows", ok + "Content-Length: 2\r\n\r\n{}" + ok + "\r\n[]", 200, "{}"},
        {"one chunk", chunked + "2\r\n{}\r\n0\r\n\r\n", 200, "{}"},
        {"no chunk", chunked + "0\r\n\r\n", 200, ""},
        {"several chunks", chunked + "1\r\n{\r\nA\r\n\"a\":12345}\r\n1\r\n\n\r\n0\r\n\r\n", 200,
         "{\"a\":12345}\n"},
        {"a chunk has an extension", chunked + "2;quick=yes\r\n{}\r\n0\r\n\r\n", 200, "{}"},
        {"a trailer follows the chunks", chunked + "2\r\n{}\r\n0\r\nX-Sum: 7\r\n\r\n", 200, "{}"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.when);
        const ServiceReply reply = reply_to(c.raw);
        EXPECT_EQ(reply.status, c.status);
        EXPECT_EQ(reply.body, c.body);
    }
}

TEST_F(ServiceLink, ReadsALastChunkThatComesAByteAtATime) {
    const std::pair<const char*, const char*> cases[] = {
        {"0\r\n\r\n", ""},
        {"0\r\nX: y\r\n\r\n", ""},
        {"2\r\n{}\r\n0\r\n\r\n", "{}"},
    };
    for (const auto& [chunks, body] : cases) {
        SCOPED_TRACE(chunks);
        std::vector<ConnectionStep> steps = {
            read_request(), send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n")};
        for (const char* byte = chunks; *byte; ++byte) {
            steps.push_back(pause(5ms));
            steps.push_back(send(std::string(1, *byte)));
        }
        service.next_connection(std::move(steps));
        const ServiceReply reply = get_state();
        EXPECT_EQ(reply.status, 200);
        EXPECT_EQ(reply.body, body);
    }
}

TEST_F(ServiceLink, TakesAReplyThatIsNotHttpForNoAnswer) {
    struct Case {
        const char* when;
        std::string raw;
    };
    const std::string ok = "HTTP/1.1 200 OK\r\n";
    const std::string chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
    const std::vector<Case> cases = {
        {"nothing comes", ""},
        {"not HTTP", "SSH-2.0-OpenSSH_9.2\r\n"},
        {"HTTP/2.0", "HTTP/2.0 200 OK\r\nContent-Length: 2\r\n\r\n{}"},
        {"HTTP/0.9", "HTTP/0.9 200 OK\r\nContent-Length: 2\r\n\r\n{}"},
        {"bare line feeds", "HTTP/1.1 200 OK\nContent-Length: 2\n\n{}"},
        {"a bare line feed after a field", ok + "Content-Length: 2\n\r\n{}"},
        {"a zero byte in the status line", "HTTP/1.1 200 O\0K\r\nContent-Length: 2\r\n\r\n{}"s},
        {"a field without a colon", ok + "Content-Length\r\n\r\n{}"},
        {"a field without a name", ok + ": 2\r\n\r\n{}"},
        {"the length is negative", ok + "Content-Length: -2\r\n\r\n{}"},
        {"the length is no number", ok + "Content-Length: two\r\n\r\n{}"},
        {"the length is empty", ok + "Content-Length: \r\n\r\n{}"},
        {"the length is hexadecimal", ok + "Content-Length: 0x2\r\n\r\n{}"},
        {"the length is said twice", ok + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}}"},
        {"the length is a list that differs", ok + "Content-Length: 2, 3\r\n\r\n{}}"},
        {"the length exceeds 64 bits", ok + "Content-Length: 18446744073709551618\r\n\r\n{}"},
        {"the length is the largest of 64 bits",
         ok + "Content-Length: 18446744073709551615\r\n\r\n{}"},
        {"the length is too large by one", ok + "Content-Length: 3\r\n\r\n{}"},
        {"both a length and chunks",
         ok + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n"},
        {"a chunk's length is no number", chunked + "two\r\n{}\r\n0\r\n\r\n"},
        {"a chunk's length is negative", chunked + "-2\r\n{}\r\n0\r\n\r\n"},
        {"a chunk's length exceeds 64 bits", chunked + "10000000000000000\r\n{}\r\n0\r\n\r\n"},
        {"a chunk is longer than its length", chunked + "1\r\n{}\r\n0\r\n\r\n"},
        {"a chunk is shorter than its length", chunked + "3\r\n{}\r\n0\r\n\r\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.when);
        expect_no_answer(reply_to(c.raw));
    }
}

TEST_F(ServiceLink, TakesAReplyThatEndsEarlyForNoAnswer) {
    const std::string whole = in_chunks("{\"a\":1}", 4);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE("'" + whole.substr(0, size) + "'");
        expect_no_answer(reply_to(whole.substr(0, size)));
    }
    EXPECT_EQ(reply_to(whole).body, "{\"a\":1}");

    const std::string with_length = reply_text(200, "{\"a\":1}");
    for (std::size_t size = 0; size < with_length.size(); ++size) {
        SCOPED_TRACE("'" + with_length.substr(0, size) + "'");
        expect_no_answer(reply_to(with_length.substr(0, size)));
    }
    EXPECT_EQ(reply_to(with_length).body, "{\"a\":1}");
}

// --- Limits ---

TEST_F(ServiceLink, TakesAHeaderOf8192BytesAndNoneOf8193) {
    struct Case {
        const char* shape;
        std::string (*header)(std::size_t size);
    };
    const std::vector<Case> cases = {
        {"one long field", header_of},
        {"many fields", header_of_many_fields},
        {"a long reason", header_of_a_long_reason},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.shape);
        ASSERT_EQ(c.header(largest_header).size(), largest_header);
        ASSERT_EQ(c.header(largest_header + 1).size(), largest_header + 1);
        EXPECT_EQ(reply_to(c.header(largest_header) + "{}").body, "{}");
        expect_no_answer(reply_to(c.header(largest_header + 1) + "{}"));
        expect_no_answer(reply_to(c.header(largest_header + 200) + "{}"));
        expect_no_answer(reply_to(c.header(100'000) + "{}"));
    }
}

TEST_F(ServiceLink, CountsAHeaderThatComesByteByByte) {
    // The filler in the middle comes whole: thousands of bytes by themselves would take minutes
    // where the cores are busy.
    const auto reply_bytewise_to_header_of = [this](std::size_t size) {
        const std::string raw = header_of(size) + "{}";
        constexpr std::size_t end = 80;
        service.next_connection({read_request(), send_bytewise(raw.substr(0, end)),
                                 send(raw.substr(end, raw.size() - 2 * end)),
                                 send_bytewise(raw.substr(raw.size() - end))});
        return get_state();
    };
    EXPECT_EQ(reply_bytewise_to_header_of(largest_header).body, "{}");
    expect_no_answer(reply_bytewise_to_header_of(largest_header + 1));
}

TEST_F(ServiceLink, CountsNoByteOfTheBodyAsHeader) {
    const std::string body(200'000, 'x');
    const std::string start = "HTTP/1.1 200 OK\r\nContent-Length: 200000\r\nX: ";
    const std::string header =
        start + std::string(largest_header - start.size() - 4, 'x') + "\r\n\r\n";
    EXPECT_TRUE(reply_to(header + body).body == body);
}

TEST_F(ServiceLink, TakesABodyOf8388608BytesAndNoneOf8388609) {
    struct Case {
        const char* framing;
        std::string (*reply)(std::string_view body);
    };
    const std::vector<Case> cases = {
        {"a length", [](std::string_view body) { return reply_text(200, body); }},
        {"the end of the stream",
         [](std::string_view body) { return "HTTP/1.1 200 OK\r\n\r\n" + std::string{body}; }},
        {"one chunk", [](std::string_view body) { return in_chunks(body, body.size()); }},
        {"many chunks", [](std::string_view body) { return in_chunks(body, 5'000); }},
    };
    std::string body(largest_body + 1, 'x');
    for (std::size_t i = 0; i < body.size(); ++i)
        body[i] = static_cast<char>('a' + i % 23);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.framing);
        const ServiceReply reply = reply_to(c.reply(std::string_view{body}.substr(1)));
        EXPECT_EQ(reply.status, 200);
        EXPECT_TRUE(reply.body == std::string_view{body}.substr(1));
        expect_no_answer(reply_to(c.reply(body)));
    }
}

TEST_F(ServiceLink, HoldsNoMoreThan64KiBOfAChunkExtensionOrATrailer) {
    const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    const auto extended = [&](std::size_t size) {
        return chunked + "2;" + std::string(size, 'x') + "\r\n{}\r\n0\r\n\r\n";
    };
    const auto with_trailer = [&](std::size_t size) {
        return chunked + "2\r\n{}\r\n0\r\nX: " + std::string(size, 'x') + "\r\n\r\n";
    };
    EXPECT_EQ(reply_to(extended(60'000)).body, "{}");
    expect_no_answer(reply_to(extended(70'000)));
    EXPECT_EQ(reply_to(with_trailer(60'000)).body, "{}");
    expect_no_answer(reply_to(with_trailer(70'000)));
}

TEST_F(ServiceLink, TakesAPathOf107BytesAndNoLonger) {
    FakeService longest{107};
    ASSERT_EQ(longest.socket_path().size(), 107U);
    longest.will_answer_state("{}");
    settings_socket_path = longest.socket_path();
    EXPECT_EQ(get_state().status, 200);
    for (const std::size_t more : {1U, 2U, 500U}) {
        SCOPED_TRACE(more);
        settings_socket_path = longest.socket_path() + std::string(more, 'x');
        expect_no_answer(get_state());
    }
    EXPECT_EQ(longest.requests().size(), 1U);

    // The kernel would find this one.
    FakeService too_long{108};
    ASSERT_EQ(too_long.socket_path().size(), 108U);
    too_long.will_answer_state("{}");
    settings_socket_path = too_long.socket_path();
    expect_no_answer(get_state());
    EXPECT_TRUE(too_long.requests().empty());
}

// --- Services that are not there, or fall silent ---

TEST_F(ServiceLink, GivesNoAnswerWhenNobodyListens) {
    service.crash();
    ASSERT_TRUE(std::filesystem::exists(service.socket_path()));
    expect_no_answer(get_state()); // refused
    service.stop();
    ASSERT_FALSE(std::filesystem::exists(service.socket_path()));
    expect_no_answer(get_state()); // absent
    std::ofstream{service.socket_path()} << "a file";
    expect_no_answer(get_state()); // not a socket
    settings_socket_path = "/";
    expect_no_answer(get_state());
}

TEST_F(ServiceLink, AnswersAgainAfterTheServiceDiedBetweenAnyTwoRequests) {
    service.will_answer_state("{}");
    service.will_answer("PUT", "/api/settings", 200, R"({"restart":false})");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(get_state().status, 200);
        service.crash();
        expect_no_answer(service_request(HttpMethod::put, "/api/settings", "{}", 5));
        service.start();
        EXPECT_EQ(service_request(HttpMethod::put, "/api/settings", "{}", 5).status, 200);
        service.stop();
        expect_no_answer(get_state());
        service.start();
    }
    EXPECT_EQ(get_state().body, "{}");
}

TEST_F(ServiceLink, GivesNoAnswerWhenTheServiceHangsUpAtOnce) {
    service.next_connection({});
    expect_no_answer(get_state());
    service.next_connection({});
    expect_no_answer(
        service_request(HttpMethod::put, "/api/settings", std::string(4'000'000, 'x'), 5));
}

TEST_F(ServiceLink, GivesUpOnAServiceThatStaysSilent) {
    service.next_connection({read_request(), stay_silent()});
    expect_it_gave_up(get_state(1));
    EXPECT_EQ(service.requests().size(), 1U);
}

TEST_F(ServiceLink, GivesUpOnAServiceThatStopsAfterTheStatusLine) {
    service.next_connection({read_request(), send("HTTP/1.1 200 OK\r\n"), stay_silent()});
    expect_it_gave_up(get_state(1));
}

TEST_F(ServiceLink, GivesUpOnAServiceThatStopsInTheHeader) {
    service.next_connection(
        {read_request(), send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\nX-Mo"), stay_silent()});
    expect_it_gave_up(get_state(1));
}

TEST_F(ServiceLink, GivesUpOnAServiceThatStopsInTheBody) {
    service.next_connection({read_request(),
                             send("HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n{\"a\""),
                             stay_silent()});
    expect_it_gave_up(get_state(1));
}

TEST_F(ServiceLink, GivesUpOnAServiceThatStopsInAChunk) {
    service.next_connection(
        {read_request(), send("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n7\r\n{\"a\""),
         stay_silent()});
    expect_it_gave_up(get_state(1));
}

TEST_F(ServiceLink, GivesUpOnABodyWhoseEndNeverComes) {
    service.next_connection({read_request(), send("HTTP/1.1 200 OK\r\n\r\n{}"), stay_silent()});
    expect_it_gave_up(get_state(1));
}

TEST_F(ServiceLink, GivesUpOnAServiceThatNeverReadsALargeBody) {
    service.next_connection({stay_silent()});
    expect_it_gave_up(
        service_request(HttpMethod::put, "/api/settings", std::string(4'000'000, 'x'), 1));
    EXPECT_TRUE(service.wait_for_connections(1));
    EXPECT_TRUE(service.requests().empty());
}

TEST_F(ServiceLink, DoesNotWaitForTheEndOfTheStreamAfterAWholeReply) {
    service.next_connection({read_request(), send(reply_text(200, "{}")), stay_silent()});
    EXPECT_EQ(get_state().body, "{}");
    service.next_connection({read_request(), send(in_chunks("{}", 1)), stay_silent()});
    EXPECT_EQ(get_state().body, "{}");
    service.next_connection({read_request(), send("HTTP/1.1 204 None\r\n\r\n"), stay_silent()});
    EXPECT_EQ(get_state().status, 204);
}

TEST_F(ServiceLink, BoundsEachReceiveAndNotTheExchange) {
    // Four pauses of 0.8 s: longer than the limit together, never singly.
    service.next_connection({read_request(), pause(800ms), send("HTTP/1.1 200 OK\r\n"),
                             pause(800ms), send("Content-Length: 6\r\n\r\n"), pause(800ms),
                             send("{\"a\":"), pause(800ms), send("1")});
    EXPECT_EQ(get_state(3).status, 200);
    service.next_connection({read_request(), send("HTTP/1.1 200 OK\r\n"), stay_silent(),
                             send("Content-Length: 2\r\n\r\n{}")});
    expect_it_gave_up(get_state(1));
}

TEST_F(ServiceLink, ReadsAReplyThatComesByteByByte) {
    const std::string body = R"({"name":"Hilltop SDR"})";
    service.next_connection({read_request(), send_bytewise(reply_text(200, body))});
    EXPECT_EQ(get_state().body, body);
    service.next_connection({read_request(), send_bytewise(in_chunks(body, 5))});
    EXPECT_EQ(get_state().body, body);
    service.next_connection({read_request(), send_bytewise("HTTP/1.0 500 Oh\r\n\r\n" + body)});
    EXPECT_EQ(get_state().body, body);
}

TEST_F(ServiceLink, WaitsToConnectBeyondTheTimeLimitWhenTheBacklogIsFull) {
    using Clock = std::chrono::steady_clock;
    std::atomic<Clock::time_point> may_accept = Clock::time_point::max();
    service.will_answer_state("{}");
    service.accept_once([&] { return Clock::now() >= may_accept.load(); });
    fill_backlog_of(service);
    may_accept = Clock::now() + 1'500ms;
    EXPECT_EQ(get_state(1).body, "{}");
}

// --- Signals, descriptors and the debug line ---

TEST_F(ServiceLink, ReadsOnAfterASignal) {
    const SignalStorm storm;
    service.next_connection({read_request(), let_signals_come(), send("HTTP/1.1 200 OK\r\n"),
                             let_signals_come(), send("Content-Length: 2\r\n\r\n{}")});
    EXPECT_EQ(get_state().body, "{}");
}

TEST_F(ServiceLink, SendsOnAfterASignal) {
    const SignalStorm storm;
    const std::string body(4'000'000, 'x');
    service.next_connection({let_signals_come(), read_request(), send(reply_text(200, "{}"))});
    EXPECT_EQ(service_request(HttpMethod::put, "/api/settings", body, 5).status, 200);
    EXPECT_TRUE(service.last_request().body == body);
}

TEST_F(ServiceLink, ConnectsInSpiteOfSignals) {
    service.will_answer_state("{}");
    service.accept_once([] { return signals_seen >= 10; });
    fill_backlog_of(service);
    const SignalStorm storm;
    EXPECT_EQ(get_state().body, "{}");
    EXPECT_GE(signals_seen, 10);
}

TEST_F(ServiceLink, GivesUpInTimeThoughSignalsKeepComing) {
    const SignalStorm storm;
    service.next_connection({read_request(), stay_silent()});
    expect_it_gave_up(get_state(1));
    service.next_connection({stay_silent()});
    expect_it_gave_up(
        service_request(HttpMethod::put, "/api/settings", std::string(4'000'000, 'x'), 1));
    EXPECT_GT(signals_seen, 10);
}

TEST_F(ServiceLink, DoesNotStartTheTimeLimitAnewAfterASignal) {
    const CountedSignals counted;
    service.next_connection({read_request(), interrupt_the_receive(), stay_silent()});
    limits_of_receives.clear();
    expect_it_gave_up(get_state(1));
    EXPECT_EQ(signals_seen, 1);
    ASSERT_EQ(limits_of_receives.size(), 2U);
    EXPECT_EQ(limits_of_receives[0], 1s);
    EXPECT_LT(limits_of_receives[1], 1s) << "what is left of it";
}

TEST_F(ServiceLink, GivesTheReceiveAfterAnInterruptedOneItsWholeTimeLimit) {
    const CountedSignals counted;
    service.next_connection({read_request(), interrupt_the_receive(),
                             send("HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}")});
    limits_of_receives.clear();
    EXPECT_EQ(get_state(5).body, "{}");
    EXPECT_EQ(signals_seen, 1);
    ASSERT_EQ(limits_of_receives.size(), 3U);
    EXPECT_EQ(limits_of_receives[0], 5s);
    EXPECT_LT(limits_of_receives[1], 5s);
    EXPECT_EQ(limits_of_receives[2], 5s);
}

TEST_F(ServiceLink, GivesNoAnswerWhenATimeLimitCannotBeSet) {
    const auto with_failing = [this](int number) {
        const CountedSignals counted;
        service.next_connection(
            {read_request(), interrupt_the_receive(), send(reply_text(200, "{}"))});
        time_limits = 0;
        failing_time_limit = number;
        const ServiceReply reply = get_state();
        failing_time_limit = 0;
        EXPECT_EQ(signals_seen, 1);
        return reply;
    };
    service.will_answer_state("{}");
    for (const int of_receives_or_sends : {1, 2}) {
        time_limits = 0;
        failing_time_limit = of_receives_or_sends;
        expect_no_answer(get_state());
        failing_time_limit = 0;
    }
    ASSERT_TRUE(service.wait_for_connections(2)); // they take no script
    for (const int shortened_or_whole_again : {3, 4})
        expect_no_answer(with_failing(shortened_or_whole_again));
    EXPECT_EQ(with_failing(5).status, 200);
}

TEST_F(ServiceLink, GivesNoAnswerWithoutADescriptor) {
    service.will_answer_state("{}");
    // Not by a limit of the process: the sanitizers need descriptors too.
    no_descriptors = true;
    const ServiceReply reply = get_state();
    no_descriptors = false;
    expect_no_answer(reply);
    EXPECT_EQ(get_state().status, 200);
}

TEST_F(ServiceLink, GivesNoAnswerWhenMemoryRunsOut) {
    service.next_connection({}); // hangs up on whoever has no room for a reply
    memory_is_scarce = true;
    const ServiceReply reply = get_state();
    memory_is_scarce = false;
    expect_no_answer(reply);
    service.will_answer_state("{}");
    EXPECT_EQ(get_state().status, 200);
}

TEST_F(ServiceLink, LeavesNoDescriptorBehind) {
    service.will_answer_state("{}");
    const std::string absent = service.socket_path() + ".absent";
    EXPECT_EQ(get_state().status, 200);
    // A service that starts anew has closed its own ends.
    service.stop();
    service.start();
    const std::size_t before = open_descriptors();
    for (int i = 0; i < 10'000; ++i) {
        settings_socket_path = i % 10 == 9 ? absent : service.socket_path();
        if (i % 10 == 3)
            service.next_connection({read_request(), send("HTTP/1.1 200 OK\r\nConte")});
        if (i % 10 == 6)
            service.next_connection({});
        get_state();
    }
    settings_socket_path = service.socket_path();
    // The service has closed the last of its ends when it answers again.
    EXPECT_EQ(get_state().status, 200);
    service.stop();
    service.start();
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(ServiceLink, HidesItsDescriptorFromCommandsItRuns) {
    // A command started in the middle of an exchange sees no socket but those of the test, and
    // those that were handed down to the test.
    const auto target_of = [](const std::filesystem::path& number) {
        std::error_code gone;
        return std::filesystem::read_symlink("/proc/self/fd" / number, gone).string();
    };
    std::set<std::string> handed_down;
    for (const auto& entry : std::filesystem::directory_iterator{"/proc/self/fd"})
        handed_down.insert(target_of(entry.path().filename()));
    std::string flags;
    service.will_answer_state("{}");
    service.before_answering("GET", "/api/state", [&] {
        for (const auto& entry : std::filesystem::directory_iterator{"/proc/self/fdinfo"}) {
            const std::string target = target_of(entry.path().filename());
            if (!target.starts_with("socket:") || handed_down.contains(target))
                continue;
            std::string name, value;
            for (std::ifstream info{entry.path()}; info >> name >> value;) {
                if (name == "flags:" && (std::stoul(value, nullptr, 8) & O_CLOEXEC) == 0)
                    flags += entry.path().filename().string() + " ";
            }
        }
    });
    EXPECT_EQ(get_state().status, 200);
    EXPECT_EQ(flags, "");
}

class ServiceLinkTrace : public ServiceLink {
protected:
    /// Ends the child process of a death test.
    [[noreturn]] void leave(bool well) {
        service.clear_away();
        std::exit(well ? 0 : 1);
    }
};

TEST_F(ServiceLinkTrace, SaysOneLineForEachExchangeWhenAsked) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setenv("G_MESSAGES_DEBUG", "tarnwave", 1);
            g_log_writer_default_set_use_stderr(TRUE);
            service.will_answer("PUT", "/api/settings", 409, R"({"error":"secret"})");
            service_request(HttpMethod::put, "/api/settings", R"({"key":"secret"})", 5);
            service.stop();
            service_request(HttpMethod::get, "/api/state", "", 5);
            leave(true);
        },
        testing::ExitedWithCode(0),
        testing::ContainsRegex("PUT /api/settings: status 409, 18 bytes, [0-9.]+ ms\n"
                               "(.*\n)?.*GET /api/state: status 0, 0 bytes, [0-9.]+ ms, "
                               "No such file or directory\n$"));
}

TEST_F(ServiceLinkTrace, SaysNothingWhenNotAsked) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setenv("G_MESSAGES_DEBUG", "Gtk GLib", 1);
            g_log_writer_default_set_use_stderr(TRUE);
            service.will_answer_state("{}");
            leave(get_state().status == 200);
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

TEST_F(ServiceLinkTrace, NeverSaysABody) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            setenv("G_MESSAGES_DEBUG", "all", 1);
            g_log_writer_default_set_use_stderr(TRUE);
            service.will_answer("PUT", "/api/settings", 200, "confidential");
            testing::internal::CaptureStderr();
            service_request(HttpMethod::put, "/api/settings", "confidential", 5);
            const std::string said = testing::internal::GetCapturedStderr();
            const bool quiet = said.find("confidential") == std::string::npos;
            leave(quiet && said.find("/api/settings") != std::string::npos);
        },
        testing::ExitedWithCode(0), testing::Eq(""));
}

} // namespace

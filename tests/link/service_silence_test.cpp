// SPDX-License-Identifier: MIT
// Services that are not there, do not answer or answer slowly, and signals that come meanwhile.
#include "link/scripted_service.h"
#include "link/service_link_fixture.h"

#include <fstream>

using namespace std::chrono_literals;

namespace {

using TimeOuts = std::vector<std::chrono::milliseconds>;

/// Longer than the kernel's buffer of a socket.
const std::string large_body(4'000'000, 'x');

ServiceReply get_state(int time_limit_s = 5) {
    return service_request(HttpMethod::get, "/api/state", "", time_limit_s);
}

ServiceReply put_large_body(int time_limit_s = 5) {
    return service_request(HttpMethod::put, "/api/settings", large_body, time_limit_s);
}

using AbsentService = ServiceLink;

TEST_F(AbsentService, TakesAPathOf107BytesAndNoLonger) {
    for (const std::size_t size : {107U, 108U, 500U}) {
        SCOPED_TRACE(size);
        settings_socket_path = std::string(size, 'x');
        const ScriptedService scripted{{{.bytes = reply_text(200, "{}")}}};
        EXPECT_EQ(get_state().status, size == 107 ? 200 : 0);
        EXPECT_EQ(scripted.path, size == 107 ? settings_socket_path : "");
    }
}

TEST_F(AbsentService, IsNoAnswerWhereThereIsAnotherFile) {
    service.stop();
    std::ofstream{service.socket_path()} << "a file";
    expect_no_answer(get_state());
    settings_socket_path = "/";
    expect_no_answer(get_state());
}

TEST(SilentService, IsNoAnswerWhenItHangsUpWhileARequestIsSent) {
    const ScriptedService scripted{{}};
    expect_no_answer(put_large_body());
}

TEST(SilentService, IsGivenUpAtTheTimeLimitOfAReceive) {
    const ScriptedService scripted{{}, ScriptEnd::silence};
    expect_no_answer(get_state(30));
    EXPECT_EQ(scripted.time_outs, TimeOuts{30s});
}

TEST(SilentService, IsGivenUpAtTheTimeLimitOfASend) {
    const ScriptedService scripted{{}, ScriptEnd::silence};
    expect_no_answer(put_large_body(2));
    EXPECT_EQ(scripted.time_outs, TimeOuts{2s});
}

TEST(SilentService, HasTheWholeTimeLimitForEachReceive) {
    const ScriptedService scripted{{{2999ms, "HTTP/1.1 200 OK\r\n"},
                                    {2999ms, "Content-Length: 7\r\n\r\n"},
                                    {2999ms, "{\"a\":1}"}}};
    EXPECT_EQ(get_state(3).body, "{\"a\":1}");
    EXPECT_EQ(scripted.time_outs, (TimeOuts{3s, 3s, 3s}));
}

TEST(SilentService, IsWaitedForAfterASignalWithWhatIsLeftOfTheTimeLimit) {
    const Moment signal{.after = 400ms, .signal = true};
    const ScriptedService scripted{{signal, signal}, ScriptEnd::silence};
    expect_no_answer(get_state(1));
    EXPECT_EQ(scripted.time_outs, (TimeOuts{1s, 600ms, 200ms}));
}

TEST(SilentService, IsGivenUpInTimeThoughSignalsKeepComing) {
    const Moment signal{.after = 500ms, .signal = true};
    const ScriptedService scripted{{signal, signal, signal}, ScriptEnd::silence};
    expect_no_answer(put_large_body(1));
    EXPECT_EQ(scripted.time_outs, (TimeOuts{1s, 500ms}));
}

TEST(SilentService, IsHeardAfterASignal) {
    const ScriptedService scripted{{{.after = 400ms, .signal = true},
                                    {500ms, "HTTP/1.1 200 OK\r\n"},
                                    {900ms, "Content-Length: 2\r\n\r\n{}"}}};
    EXPECT_EQ(get_state(1).body, "{}");
    EXPECT_EQ(scripted.time_outs, (TimeOuts{1s, 600ms, 1s}));
}

TEST(SilentService, IsConnectedToWithoutATimeLimitAndInSpiteOfSignals) {
    ScriptedService scripted{{{.bytes = reply_text(200, "{}")}}};
    scripted.interrupted_connects = 10;
    EXPECT_EQ(get_state().body, "{}");
    EXPECT_TRUE(scripted.connect_blocked);
}

} // namespace

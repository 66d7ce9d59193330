// SPDX-License-Identifier: MIT
// One request to the station service and its reply, over a connection of their own.
#pragma once

#include <string>
#include <string_view>

/// Path of the service's Unix domain socket: at most 107 bytes, the room in `sockaddr_un`
/// (unix(7)). Start-up may replace it before the first request.
extern std::string settings_socket_path;

/// The service's methods: GET reads, PUT saves the settings, POST is every other change.
enum class HttpMethod { get, post, put };

/// Time limit of the requests that the service answers at once, in seconds.
inline constexpr int usual_time_limit_s = 3;

struct ServiceReply {
    int status = 0;     ///< HTTP status code; 0 when no complete reply came
    std::string body{}; ///< after transfer decoding; empty when `status` is 0
};

/// Sends one request and waits for its reply, which blocks the main loop. `target` is an absolute
/// path such as "/api/state". `time_limit_s` bounds each send and each receive, not the exchange as
/// a whole. Never throws: every failure is a reply of status 0. For the main thread only.
ServiceReply service_request(HttpMethod method, std::string_view target, std::string_view body,
                             int time_limit_s = usual_time_limit_s);

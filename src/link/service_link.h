// SPDX-License-Identifier: MIT
// One request to the station service and its reply, over the service's local socket.
//
// Each request opens its own connection. Bodies are plain text here; the callers parse the JSON and
// decide what a failure means.
#pragma once

#include <string>
#include <string_view>

/// Path of the service's Unix domain socket. Start-up may replace it, once, before the first
/// request. At most 107 bytes, the room for a path in `sockaddr_un` (unix(7)).
extern std::string settings_socket_path;

/// The service's methods: GET reads, PUT saves the settings, POST is every other change.
enum class HttpMethod { get, post, put };

/// Time limit of the requests that the service answers at once, in seconds.
inline constexpr int usual_time_limit_s = 3;

struct ServiceReply {
    int status = 0;     ///< HTTP status code; 0 when no complete reply came
    std::string body{}; ///< after transfer decoding; empty when `status` is 0
};

/// Sends one request and waits for its reply. `target` is an absolute path such as "/api/state";
/// `body` is sent as it is. `time_limit_s` (whole seconds, above 0) bounds each send and each
/// receive, not the exchange as a whole; the main loop is blocked meanwhile. Never throws: every
/// failure is a reply of status 0. Not reentrant, and called on the main thread only.
ServiceReply service_request(HttpMethod method, std::string_view target, std::string_view body,
                             int time_limit_s = usual_time_limit_s);

// SPDX-License-Identifier: MIT
// The service's requests and their replies, apart from how they travel.
#pragma once

#include "station.h"

#include <string>

struct ApiRequest {
    std::string method{};
    std::string target{};
    std::string host{}; ///< header fields; empty when missing
    std::string x_tarnwave{};
    std::string content_type{};
    std::string body{};
};

struct ApiReply {
    int status = 0;
    std::string body{};  ///< one JSON document
    std::string allow{}; ///< the method that the target allows, when the request's is another
};

/// Does what the request asks of the station. Every refusal is an object with `error`, in words
/// for a person.
ApiReply answer(Station& station, const ApiRequest& request);

/// A refusal with its reason.
ApiReply refusal(int status, const std::string& reason);

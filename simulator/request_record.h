// SPDX-License-Identifier: MIT
// Keeps the bodies of requests, one file each, for whoever wants to check them later.
#pragma once

#include "service_api.h"

#include <string>

struct RequestRecord {
    std::string folder{}; ///< empty: nothing is kept
    int count = 0;        ///< of the files written
};

/// Writes the request's body, as it came, to a file such as "0001-PUT-settings.json"; a request
/// without one leaves none. The folder is made when it is missing. Returns in words what went
/// wrong, "" when nothing did.
std::string record_body(RequestRecord& record, const ApiRequest& request);

// SPDX-License-Identifier: MIT
// Gives the bytes of a reply to the link's own parser and limits.
//
// Each reply is received twice: first in pieces of the kernel's choice, then in pieces whose size
// the first byte of the input gives. Both results must be equal.
#include "fed_link.h"
#include "link/service_link.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

ServiceReply answer_to(const std::string& bytes, std::size_t piece) {
    feed_reply(bytes, piece);
    return service_request(HttpMethod::get, "/api/state", "", 1);
}

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string bytes{reinterpret_cast<const char*>(data) + 1, size - 1};
    const ServiceReply whole = answer_to(bytes, 0);
    require(whole.status >= 0 && whole.status <= 999, "a status has three digits");
    require(whole.status != 0 || whole.body.empty(), "no answer has no body");
    require(whole.body.size() < bytes.size() || whole.body.empty(), "a body is part of the reply");

    const ServiceReply pieces = answer_to(bytes, 1U + data[0]);
    require(pieces.status == whole.status, "the status is the same in pieces");
    require(pieces.body == whole.body, "the body is the same in pieces");
    return 0;
}

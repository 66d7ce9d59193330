// SPDX-License-Identifier: MIT
// Replies of a service as a fuzzer wants them, without a socket file and without a thread.
//
// Each socket that the link opens is one end of a socket pair. The reply is written into the other
// end when the link connects, and the stream ends after it. Everything above the system's calls is
// the program's own code.
#pragma once

#include <cstddef>
#include <string>

/// Answers every exchange from now on with these bytes, at most 128 KiB, which fit into the
/// kernel's buffer. `piece` is the most that one receive returns; 0 sets no limit.
void feed_reply(std::string bytes, std::size_t piece = 0);

/// A reply of status 200 with this body, for `feed_reply`.
std::string reply_with_body(const std::string& body);

// SPDX-License-Identifier: MIT
// A service that says what a fuzzer wants, without a socket file and without a thread.
//
// Sockets that the link opens are one end of a pair; the reply already lies in it when the link
// connects, and the stream ends after it. What lies above the system's calls is the program's own.
#pragma once

#include <cstddef>
#include <string>

/// Every exchange from now on is answered with these bytes. `piece` is the most that one receive
/// returns; 0 leaves that to the kernel. At most 128 KiB, which the kernel holds for a reader.
void feed_reply(std::string bytes, std::size_t piece = 0);

/// A reply of status 200 with this body, to be fed.
std::string reply_with_body(const std::string& body);

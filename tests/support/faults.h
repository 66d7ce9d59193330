// SPDX-License-Identifier: MIT
// What a service may do in the place of a good answer: the table in tests/faults/faults.json, which
// the test of the real program reads too.
#pragma once

#include "support/fake_service.h"

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

struct Fault {
    std::string name{};
    std::string connection{};        ///< a way of BadConnection; "": it is fine
    std::string sent{};              ///< with places for the good answer's body
    bool silent = false;             ///< does not hang up after that
    std::chrono::milliseconds gap{}; ///< between single bytes; 0: all at once
    long limit_ms = 0;               ///< time limit to meet it with; 0: the program's own
    std::size_t header_size = 0;     ///< 0: as it comes
    std::size_t body_size = 0;

    // What the link makes of it.
    int status = 0;     ///< 0: no answer
    std::string body{}; ///< "own": the good one; "empty"; "cut": its first byte; "refusal"
    /// What that is to every sender: "no answer", "good answer", "broken document", "refusal with a
    /// reason" or "refusal without a reason".
    std::string outcome{};
};
std::ostream& operator<<(std::ostream& out, const Fault& fault);

const std::vector<Fault>& faults();

/// The reason in a body that is a "refusal".
constexpr const char* reason_of_refusal = "No.";

/// The script of a connection that meets the fault in the place of an answer with this body.
std::vector<ConnectionStep> steps_of(const Fault& fault, std::string_view good_body);

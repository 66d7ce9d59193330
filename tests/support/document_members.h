// SPDX-License-Identifier: MIT
// Every member of every document that the service sends and the program reads, and what the program
// does when the member is missing or of another kind.
//
// The table is document_members.json; document_members_test.py compares it with the description of
// the service's documents and with the names that the sources look up.
#pragma once

#include <boost/json.hpp>

#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

/// What a document does that lacks a member, or holds another kind in its place.
struct Breach {
    bool ends = false;                        ///< the program ends, by an exception
    std::optional<boost::json::value> like{}; ///< the window shows the same as with this value
};

struct DocumentMember {
    std::string document{}; ///< "state", "devices", "saved", "save refusal", "registration refusal"
    std::string path{};     ///< as for `with`; "": the document itself
    boost::json::kind kind = boost::json::kind::null; ///< a number is kind::double_
    Breach missing{};
    Breach wrong{};
    bool shown = false; ///< a string that is shown somewhere in the window
    int whole = 0;      ///< bits of the whole number that a number becomes; 0: stays as it is
    /// What else the document has to say for the member to be read.
    std::vector<std::pair<std::string, boost::json::value>> when{};
};

/// For failure messages.
std::ostream& operator<<(std::ostream& out, const DocumentMember& member);

const std::vector<DocumentMember>& document_members();
std::vector<DocumentMember> members_of(boost::json::kind kind);

/// The whole and valid document that a member belongs to, bent so that the member is read.
boost::json::value document_with(const DocumentMember& member);

/// Values of every kind but the member's own.
std::vector<boost::json::value> values_of_other_kinds(const DocumentMember& member);

// SPDX-License-Identifier: MIT
#include "support/document_members.h"

#include "support/state_document.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace json = boost::json;

namespace {

json::kind kind_named(const json::string& name) {
    if (name == "string")
        return json::kind::string;
    if (name == "number")
        return json::kind::double_;
    if (name == "boolean")
        return json::kind::bool_;
    if (name == "array")
        return json::kind::array;
    if (name == "object")
        return json::kind::object;
    throw std::invalid_argument{"no such kind: " + std::string{name}};
}

Breach breach_from(const json::value& value) {
    if (const json::object* object = value.if_object())
        return {.ends = false, .like = object->at("like")};
    if (value == "ends")
        return {.ends = true};
    if (value == "accepted")
        return {};
    throw std::invalid_argument{"no such outcome: " + json::serialize(value)};
}

DocumentMember member_from(const json::object& row) {
    DocumentMember member;
    member.document = row.at("document").as_string();
    member.path = row.at("path").as_string();
    member.kind = kind_named(row.at("kind").as_string());
    member.missing = breach_from(row.at("missing"));
    member.wrong = breach_from(row.at("wrong"));
    if (const json::value* shown = row.if_contains("shown"))
        member.shown = shown->as_bool();
    if (const json::value* whole = row.if_contains("whole"))
        member.whole = static_cast<int>(whole->as_int64());
    if (const json::value* when = row.if_contains("when"))
        for (const auto& [path, value] : when->as_object())
            member.when.emplace_back(path, value);
    return member;
}

std::vector<DocumentMember> members_from_file() {
    std::ifstream file{DOCUMENT_MEMBERS_FILE};
    const std::string text{std::istreambuf_iterator<char>{file}, {}};
    std::vector<DocumentMember> members;
    const json::value table = json::parse(text);
    for (const json::value& row : table.as_array())
        members.push_back(member_from(row.as_object()));
    return members;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const DocumentMember& member) {
    return out << member.document << ": " << (member.path.empty() ? "the whole" : member.path);
}

const std::vector<DocumentMember>& document_members() {
    static const std::vector<DocumentMember> members = members_from_file();
    return members;
}

std::vector<DocumentMember> members_of(json::kind kind) {
    std::vector<DocumentMember> chosen = document_members();
    std::erase_if(chosen, [&](const DocumentMember& member) { return member.kind != kind; });
    return chosen;
}

json::value document_with(const DocumentMember& member) {
    json::value document;
    if (member.document == "state")
        document = state_document();
    else if (member.document == "devices")
        document = {{{"backend", "rtl-sdr"},
                     {"serial", "00000077"},
                     {"model", "V4"},
                     {"available", false}}};
    else if (member.document == "saved")
        document = {{"restart", false}};
    else
        document = {{"error", "The port is taken."}};
    for (const auto& [path, value] : member.when)
        document = with(std::move(document), path, value);
    return document;
}

std::vector<json::value> values_of_other_kinds(const DocumentMember& member) {
    std::vector<json::value> values = {nullptr, 5, "text", json::array{"text", 5},
                                       json::object{{"name", 5}}};
    std::erase_if(values, [&](const json::value& value) {
        return value.is_number() ? member.kind == json::kind::double_ : value.kind() == member.kind;
    });
    return values;
}

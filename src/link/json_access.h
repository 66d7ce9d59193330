// SPDX-License-Identifier: MIT
// The JSON that the station service sends. Lenient accessors never fail; strict ones throw the JSON
// library's errors, which nothing but the look at `broker` at the start catches.
#pragma once

#include <boost/json/fwd.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace json = boost::json;

/// The `settings` member of the last document that the form was loaded from; empty before.
/// Replaced whole, by `load_form` only.
extern json::object settings_object;

/// The `status` member of the last state document; empty before the first. Replaced whole, by
/// `load_form` and `refresh_status` only.
extern json::object status_object;

/// Finds the value at a dotted key such as "station.name"; null when there is none. A full stop at
/// the end is ignored, an empty segment matches only a member with an empty name.
const json::value* find_path(const json::object& root, std::string_view dotted_key);
json::value* find_path(json::object& root, std::string_view dotted_key);

/// `string_or_empty` and `number_or_zero` of what `find_path` finds.
std::string member_string(const json::object& object, std::string_view dotted_key);
double member_number(const json::object& object, std::string_view dotted_key);

/// The same for the settings object.
std::string setting_string(std::string_view dotted_key);
double setting_number(std::string_view dotted_key);

/// Returns the text of a string, "" for any other kind.
std::string string_or_empty(const json::value& value);

/// Returns the value of a signed or unsigned integer or a double, 0 for any other kind.
double number_or_zero(const json::value& value);

/// Truncates toward zero and clamps to the type's range.
std::int32_t clamped_int32(double number);
std::int64_t clamped_int64(double number);

/// Parses a whole reply body: standard JSON, valid UTF-8, at most 32 levels deep. Throws on
/// anything else, the empty text included.
json::value parse_reply(std::string_view body);

/// Strict access. Each throws when the member is missing or has another kind. `name` must outlive
/// the call: `contract_error_message` reads it after a failure.
const json::value& required_member(const json::object& object, const char* name);
const json::object& required_object(const json::object& object, const char* name);
const json::array& required_array(const json::object& object, const char* name);
bool required_bool(const json::object& object, const char* name);

/// Returns `otherwise` when the member is missing.
bool optional_bool(const json::object& object, const char* dotted_key, bool otherwise);

/// Moves an object out of the root of a state document.
json::object take_object(json::value& document, const char* name);

/// For the root of a document or an element of an array. `what` names it in words.
const json::object& as_object(const json::value& value, const char* what);
const json::array& as_array(const json::value& value, const char* what);

/// While it exists, `contract_error_message` says that the program was doing `step`. Of nested
/// objects the innermost counts.
class ReadingStep {
public:
    explicit ReadingStep(const char* step);
    ~ReadingStep();
    ReadingStep(const ReadingStep&) = delete;
    ReadingStep& operator=(const ReadingStep&) = delete;

private:
    const char* outer_;
};

/// The sentence to print when an error ends the program.
std::string contract_error_message(const char* library_message);

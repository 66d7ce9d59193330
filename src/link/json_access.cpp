// SPDX-License-Identifier: MIT
#include "link/json_access.h"

#include <boost/json/parse.hpp>
#include <boost/json/value.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

json::object settings_object;
json::object status_object;

namespace {

/// The current step, and the strict read that failed in it, for `contract_error_message`.
struct {
    const char* step = nullptr;
    const char* failed_read = nullptr;
} reading;

/// Runs a strict read. Its name is kept only when it throws.
template <class Read> decltype(auto) read_strictly(const char* name, Read read) {
    reading.failed_read = name;
    decltype(auto) result = read();
    reading.failed_read = nullptr;
    return result;
}

template <class Integer> Integer clamped(double number) {
    // The highest double below 2^63 is less than the type's maximum, so compare with >=.
    constexpr double lowest = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr double highest = static_cast<double>(std::numeric_limits<Integer>::max());
    if (std::isnan(number))
        return 0;
    if (number <= lowest)
        return std::numeric_limits<Integer>::min();
    if (number >= highest)
        return std::numeric_limits<Integer>::max();
    return static_cast<Integer>(number);
}

bool as_bool(const json::value& value, const char* what) {
    return read_strictly(what, [&] { return value.as_bool(); });
}

} // namespace

const json::value* find_path(const json::object& root, std::string_view dotted_key) {
    const json::object* object = &root;
    const json::value* found = nullptr;
    // A full stop at the end of the key begins no further segment.
    while (!dotted_key.empty()) {
        const std::size_t end = std::min(dotted_key.find('.'), dotted_key.size());
        found = object ? object->if_contains(dotted_key.substr(0, end)) : nullptr;
        if (!found)
            return nullptr;
        object = found->if_object();
        dotted_key.remove_prefix(std::min(end + 1, dotted_key.size()));
    }
    return found;
}

json::value* find_path(json::object& root, std::string_view dotted_key) {
    return const_cast<json::value*>(find_path(std::as_const(root), dotted_key));
}

std::string string_or_empty(const json::value& value) {
    const json::string* text = value.if_string();
    return text ? std::string{text->data(), text->size()} : std::string{};
}

double number_or_zero(const json::value& value) {
    if (const std::int64_t* number = value.if_int64())
        return static_cast<double>(*number);
    if (const std::uint64_t* number = value.if_uint64())
        return static_cast<double>(*number);
    if (const double* number = value.if_double())
        return *number;
    return 0;
}

std::string member_string(const json::object& object, std::string_view dotted_key) {
    const json::value* found = find_path(object, dotted_key);
    return found ? string_or_empty(*found) : std::string{};
}

double member_number(const json::object& object, std::string_view dotted_key) {
    const json::value* found = find_path(object, dotted_key);
    return found ? number_or_zero(*found) : 0;
}

std::string setting_string(std::string_view dotted_key) {
    return member_string(settings_object, dotted_key);
}

double setting_number(std::string_view dotted_key) {
    return member_number(settings_object, dotted_key);
}

std::int32_t clamped_int32(double number) {
    return clamped<std::int32_t>(number);
}

std::int64_t clamped_int64(double number) {
    return clamped<std::int64_t>(number);
}

json::value parse_reply(std::string_view body) {
    return read_strictly("the text as JSON", [&] {
        return json::parse({body.data(), body.size()});
    });
}

const json::value& required_member(const json::object& object, const char* name) {
    return read_strictly(
        name, [&]() -> auto& { return object.at(name); });
}

const json::object& required_object(const json::object& object, const char* name) {
    return as_object(required_member(object, name), name);
}

const json::array& required_array(const json::object& object, const char* name) {
    return as_array(required_member(object, name), name);
}

bool required_bool(const json::object& object, const char* name) {
    return as_bool(required_member(object, name), name);
}

bool optional_bool(const json::object& object, const char* dotted_key, bool otherwise) {
    const json::value* found = find_path(object, dotted_key);
    return found ? as_bool(*found, dotted_key) : otherwise;
}

json::object take_object(json::value& document, const char* name) {
    required_object(as_object(document, "the state document"), name);
    return std::move(document.get_object().at(name).get_object());
}

const json::object& as_object(const json::value& value, const char* what) {
    return read_strictly(
        what, [&]() -> auto& { return value.as_object(); });
}

const json::array& as_array(const json::value& value, const char* what) {
    return read_strictly(
        what, [&]() -> auto& { return value.as_array(); });
}

ReadingStep::ReadingStep(const char* step) : outer_{reading.step} {
    reading = {step, nullptr};
}

ReadingStep::~ReadingStep() {
    reading = {outer_, nullptr};
}

std::string contract_error_message(const char* library_message) {
    // When no strict read failed, the service's document is not at fault.
    if (!reading.step || !reading.failed_read)
        return std::string{"stopped by an unexpected error ("} + library_message + ").";
    return std::string{"the Tarnwave service sent a reply that this program cannot use, while "} +
           reading.step + ": cannot read " + reading.failed_read + " (" + library_message + ").";
}

// SPDX-License-Identifier: MIT
#include "support/state_document.h"

#include <charconv>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>

namespace json = boost::json;

namespace {

[[noreturn]] void refuse(std::string_view path) {
    throw std::invalid_argument{"no such place in the document: " + std::string{path}};
}

std::size_t index_in(const json::array& array, std::string_view segment, std::string_view path) {
    std::size_t index = 0;
    const char* end = segment.data() + segment.size();
    const auto [stopped, problem] = std::from_chars(segment.data(), end, index);
    if (problem != std::errc{} || stopped != end || index > array.size())
        refuse(path);
    return index;
}

/// The object or array that holds the last segment of `path`, and that segment.
std::pair<json::value*, std::string_view> holder_of(json::value& document, std::string_view path) {
    json::value* holder = &document;
    std::string_view rest = path;
    for (std::size_t stop = rest.find('.'); stop != std::string_view::npos; stop = rest.find('.')) {
        const std::string_view segment = rest.substr(0, stop);
        if (json::object* object = holder->if_object()) {
            holder = object->if_contains(segment);
        } else if (json::array* array = holder->if_array()) {
            const std::size_t index = index_in(*array, segment, path);
            holder = index < array->size() ? &(*array)[index] : nullptr;
        } else {
            holder = nullptr;
        }
        if (!holder)
            refuse(path);
        rest.remove_prefix(stop + 1);
    }
    if (!holder->is_object() && !holder->is_array())
        refuse(path);
    return {holder, rest};
}

} // namespace

json::value state_document() {
    static const json::value whole = [] {
        std::ifstream file{STATE_FILE};
        return json::parse(std::string{std::istreambuf_iterator<char>{file}, {}});
    }();
    return whole;
}

json::value with(json::value document, std::string_view path, json::value value) {
    const auto [holder, last] = holder_of(document, path);
    if (json::object* object = holder->if_object()) {
        (*object)[last] = std::move(value);
        return document;
    }
    json::array& array = holder->get_array();
    const std::size_t index = index_in(array, last, path);
    if (index == array.size())
        array.push_back(std::move(value));
    else
        array[index] = std::move(value);
    return document;
}

json::value without(json::value document, std::string_view path) {
    const auto [holder, last] = holder_of(document, path);
    if (json::object* object = holder->if_object()) {
        if (!object->contains(last))
            refuse(path);
        // Not `erase`: it would put the last member into the gap.
        json::object kept;
        for (json::key_value_pair& member : *object) {
            if (member.key() != last)
                kept.emplace(member.key(), std::move(member.value()));
        }
        *object = std::move(kept);
        return document;
    }
    json::array& array = holder->get_array();
    const std::size_t index = index_in(array, last, path);
    if (index == array.size())
        refuse(path);
    array.erase(array.begin() + static_cast<std::ptrdiff_t>(index));
    return document;
}

// SPDX-License-Identifier: MIT
#include "support/state_document.h"

#include <charconv>
#include <stdexcept>
#include <string>
#include <utility>

namespace json = boost::json;

namespace {

constexpr std::string_view whole_document = R"({
  "settings": {
    "station": {
      "name": "Hilltop SDR",
      "callsign": "K1ABC",
      "operator": "Ann Operator",
      "location": "Asheville, North Carolina, USA",
      "grid": "EM95",
      "antenna": "80 m end-fed, 12 m up",
      "contact": "https://hilltop.example/",
      "description": "Two receivers on a quiet hill.",
      "banner": ""
    },
    "attach": true,
    "receivers": [
      {"backend": "sdrplay", "serial": "2305012345", "model": "RSPdx",
       "lo": 7000000, "hi": 7300000, "enabled": true},
      {"backend": "rtl-sdr", "serial": "00000001", "model": "RTL-SDR Blog V4",
       "lo": 144000000, "hi": 146000000, "enabled": true}
    ],
    "listeners": {
      "max": 8,
      "per_address": 2,
      "session_minutes": 60,
      "cooldown_minutes": 5,
      "idle_minutes": 15
    },
    "content": {
      "modes": ["USB", "LSB", "CW", "AM"],
      "block_fm_broadcast": true,
      "block_am_broadcast": false
    },
    "access": {"banned": ["203.0.113.9", "2001:db8::66"]},
    "relay": {"enabled": false, "key": ""},
    "network": {"port": 8073},
    "directory": {
      "listed": true,
      "url": "https://stations.example/",
      "id": "4711",
      "email": "ann@hilltop.example"
    }
  },
  "status": {
    "broker": true,
    "receivers": [
      {"device": "RSPdx", "attached": false, "lo": 7000000, "hi": 7300000},
      {"device": "RTL-SDR Blog V4", "attached": true, "lo": 144000000, "hi": 146000000}
    ],
    "started": [{"running": true, "serial": "2305012345", "log": ""}],
    "listeners": [
      {"number": 17, "address": "198.51.100.4", "seconds": 754, "f": 7074000, "mode": "USB",
       "listening": true, "relayed": false},
      {"number": 18, "address": "2001:db8::17", "seconds": 12}
    ],
    "directory": {"state": "checked in", "reachable": true, "address": "192.0.2.7:8073",
                  "error": ""},
    "relay": {"state": "off", "url": "https://relay.example/k1abc/", "listeners": 0, "error": ""},
    "https": {"state": "active", "name": "k1abc.example", "expires": 1798761600, "error": ""}
  }
})";

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
    return json::parse(whole_document);
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

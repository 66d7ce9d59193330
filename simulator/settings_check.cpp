// SPDX-License-Identifier: MIT
#include "settings_check.h"

#include "address_range.h"
#include "settings_paths.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <set>
#include <span>
#include <string_view>
#include <utility>

namespace {

enum class Kind { text, boolean, whole_number, list };

/// A setting that the owner may change.
struct Rule {
    std::string_view path;
    std::string_view words; ///< as the owner knows it
    Kind kind = Kind::text;
    int low = 0; ///< of a whole number
    int high = 0;
};

constexpr std::array rules = {
    Rule{"station.name", "station name"},
    Rule{"station.callsign", "callsign"},
    Rule{"station.operator", "operator"},
    Rule{"station.location", "location"},
    Rule{"station.grid", "grid square"},
    Rule{"station.antenna", "antenna"},
    Rule{"station.contact", "contact"},
    Rule{"station.description", "description"},
    Rule{"station.banner", "message on the station page"},
    Rule{"attach", "sharing of Dialhouse's receivers", Kind::boolean},
    Rule{"receivers", "list of receivers", Kind::list},
    Rule{"listeners.max", "number of listeners at once", Kind::whole_number, 1, 200},
    Rule{"listeners.per_address", "number of listeners from one address", Kind::whole_number, 1,
         20},
    Rule{"listeners.session_minutes", "session length", Kind::whole_number, 0, 1440},
    Rule{"listeners.cooldown_minutes", "wait before listening again", Kind::whole_number, 0, 1440},
    Rule{"listeners.idle_minutes", "time before asking “Still listening?”", Kind::whole_number, 1,
         1440},
    Rule{"content.modes", "list of modes", Kind::list},
    Rule{"content.block_fm_broadcast", "block on FM broadcast audio", Kind::boolean},
    Rule{"content.block_am_broadcast", "block on AM broadcast audio", Kind::boolean},
    Rule{"access.banned", "list of blocked addresses", Kind::list},
    Rule{"relay.enabled", "relay switch", Kind::boolean},
    Rule{"relay.key", "relay key"},
    Rule{"network.port", "public port", Kind::whole_number, 1024, 65535},
    Rule{"directory.listed", "listing switch", Kind::boolean},
    Rule{"directory.url", "station list address"},
};

constexpr std::array<std::string_view, 5> known_modes = {"USB", "LSB", "CW", "AM", "FM"};

// Far above what any of the receivers tunes to, in Hz (6 GHz). Ours.
constexpr double highest_frequency = 6e9;

std::string_view text_of(const json::value& value) {
    const json::string* text = value.if_string();
    return text ? std::string_view{text->data(), text->size()} : std::string_view{};
}

bool is_whole_number(const json::value& value, double low, double high) {
    if (!value.is_number())
        return false;
    const double number = as_double(value);
    return number >= low && number <= high && number == std::trunc(number);
}

std::string quoted(std::string_view text) {
    return "“" + std::string{text} + "”";
}

std::string kind_fault(const Rule& rule, const json::value& value) {
    const std::string subject = "The " + std::string{rule.words};
    const std::string where = " (" + std::string{rule.path} + ").";
    switch (rule.kind) {
    case Kind::text:
        return value.is_string() ? "" : subject + " must be a text" + where;
    case Kind::boolean:
        return value.is_bool() ? "" : subject + " must be on or off" + where;
    case Kind::list:
        return value.is_array() ? "" : subject + " must be a list" + where;
    case Kind::whole_number:
        if (is_whole_number(value, rule.low, rule.high))
            return "";
        return subject + " must be a whole number from " + std::to_string(rule.low) + " to " +
               std::to_string(rule.high) + where;
    }
    return "";
}

/// Compares member by member, so that the first fault names the member it is about.
std::string members_fault(const json::object& stored, const json::object& proposed,
                          const std::string& prefix) {
    for (const auto& [key, stored_value] : stored) {
        const std::string path = prefix + std::string{key.data(), key.size()};
        const json::value* value = proposed.if_contains(key);
        if (!value)
            return "The setting " + path + " is missing.";
        const auto* rule =
            std::find_if(rules.begin(), rules.end(), [&](const Rule& r) { return r.path == path; });
        if (rule != rules.end()) {
            if (std::string fault = kind_fault(*rule, *value); !fault.empty())
                return fault;
        } else if (stored_value.is_object()) {
            if (!value->is_object())
                return "The setting " + path + " must be a group of settings.";
            std::string fault =
                members_fault(stored_value.get_object(), value->get_object(), path + ".");
            if (!fault.empty())
                return fault;
        } else if (*value != stored_value) {
            return "The setting " + path + " must come back as it was read. Load it again.";
        }
    }
    for (const auto& member : proposed)
        if (!stored.contains(member.key()))
            return "There is no setting " + prefix +
                   std::string{member.key().data(), member.key().size()} + ".";
    return "";
}

std::string modes_fault(const json::array& modes) {
    std::set<std::string_view> seen;
    for (const json::value& mode : modes) {
        const std::string_view name = text_of(mode);
        if (std::find(known_modes.begin(), known_modes.end(), name) == known_modes.end())
            return "The mode " + (mode.is_string() ? quoted(name) : json::serialize(mode)) +
                   " is unknown: choose from USB, LSB, CW, AM and FM.";
        if (!seen.insert(name).second)
            return "The mode " + quoted(name) + " is listed twice.";
    }
    return "";
}

std::string banned_fault(const json::array& banned) {
    for (const json::value& entry : banned)
        if (!entry.is_string() || !is_address_or_range(text_of(entry)))
            return (entry.is_string() ? quoted(text_of(entry)) : json::serialize(entry)) +
                   " is neither an address nor a range of addresses such as 198.51.100.0/24.";
    return "";
}

std::string receiver_members_fault(const json::object& receiver, const std::string& subject) {
    for (const char* name : {"backend", "serial", "model"}) {
        const json::value* value = receiver.if_contains(name);
        if (!value || !value->is_string())
            return subject + " needs a " + name + ".";
    }
    for (const char* name : {"lo", "hi"}) {
        const json::value* value = receiver.if_contains(name);
        if (!value || !is_whole_number(*value, 0, highest_frequency))
            return subject + " needs " + name +
                   ", a whole number of hertz from 0 to 6,000,000,000.";
    }
    const json::value* enabled = receiver.if_contains("enabled");
    if (!enabled || !enabled->is_bool())
        return subject + " must say whether it is enabled.";
    if (receiver.size() != 6)
        return subject + " has a member that no receiver has.";
    return "";
}

std::string receivers_fault(const json::array& receivers) {
    std::set<std::pair<std::string_view, std::string_view>> seen;
    int number = 0;
    for (const json::value& element : receivers) {
        const std::string subject = "Receiver " + std::to_string(++number);
        if (!element.is_object())
            return subject + " must be a group of settings.";
        const json::object& receiver = element.get_object();
        if (std::string fault = receiver_members_fault(receiver, subject); !fault.empty())
            return fault;
        const std::string_view backend = text_of(receiver.at("backend"));
        const std::string_view serial = text_of(receiver.at("serial"));
        if (backend.empty() || serial.empty())
            return subject + " needs a backend and a serial number.";
        if (as_double(receiver.at("lo")) >= as_double(receiver.at("hi")))
            return "The range of receiver " + quoted(serial) + " ends where it begins or below.";
        if (!seen.insert({backend, serial}).second)
            return "The receiver " + quoted(serial) + " is listed twice.";
    }
    return "";
}

std::string list_address_fault(std::string_view url) {
    if (url.empty() || url.starts_with("https://") || url.starts_with("http://"))
        return "";
    return "The station list address must begin with https:// or http://.";
}

} // namespace

std::string settings_fault(const json::object& stored, const json::object& proposed) {
    if (std::string fault = members_fault(stored, proposed, ""); !fault.empty())
        return fault;
    for (const std::string& fault : {
             modes_fault(setting(proposed, "content", "modes").as_array()),
             banned_fault(setting(proposed, "access", "banned").as_array()),
             receivers_fault(proposed.at("receivers").as_array()),
             list_address_fault(text_of(setting(proposed, "directory", "url"))),
         })
        if (!fault.empty())
            return fault;
    return "";
}

void settle_numbers(json::object& settings) {
    for (const char* name :
         {"max", "per_address", "session_minutes", "cooldown_minutes", "idle_minutes"}) {
        json::value& number = settings.at("listeners").as_object().at(name);
        number = std::llround(as_double(number));
    }
    json::value& port = settings.at("network").as_object().at("port");
    port = std::llround(as_double(port));
    for (json::value& receiver : settings.at("receivers").as_array())
        for (const char* name : {"lo", "hi"}) {
            json::value& frequency = receiver.as_object().at(name);
            frequency = std::llround(as_double(frequency));
        }
}

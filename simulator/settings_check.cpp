// SPDX-License-Identifier: MIT
#include "settings_check.h"

#include "address_range.h"
#include "settings_paths.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <span>
#include <string_view>
#include <utility>

namespace {

// Settings that no form edits: those of the service alone, and those that a registration sets.
constexpr std::array<std::string_view, 6> not_edited = {
    "format",       "station.timezone", "listeners.greeting",
    "network.bind", "directory.id",     "directory.email"};

/// A setting that has limits, or a name in the form. Its kind is that of the stored value.
struct Rule {
    std::string_view path;
    std::string_view words; ///< its name in a refusal
    int low = 0;            ///< of a number
    int high = 0;
};

constexpr std::array rules = {
    Rule{"attach", "sharing of Dialhouse's receivers"},
    Rule{"receivers", "list of receivers"},
    Rule{"listeners.max", "number of listeners at once", 1, 200},
    Rule{"listeners.per_address", "number of listeners from one address", 1, 20},
    Rule{"listeners.session_minutes", "session length", 0, 1440},
    Rule{"listeners.cooldown_minutes", "wait before listening again", 0, 1440},
    Rule{"listeners.idle_minutes", "time before asking “Still listening?”", 1, 1440},
    Rule{"content.modes", "list of modes"},
    Rule{"content.block_fm_broadcast", "block on FM broadcast audio"},
    Rule{"content.block_am_broadcast", "block on AM broadcast audio"},
    Rule{"access.banned", "list of blocked addresses"},
    Rule{"relay.enabled", "relay switch"},
    Rule{"network.port", "public port", 1024, 65535},
    Rule{"directory.listed", "listing switch"},
};

constexpr std::array<std::string_view, 5> known_modes = {"USB", "LSB", "CW", "AM", "FM"};

// In Hz: far above the range of every receiver.
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

/// Says what is wrong with a value that is to replace a stored one; "" when nothing is.
std::string kind_fault(const std::string& path, const json::value& stored,
                       const json::value& value) {
    const auto* found = std::find_if(rules.begin(), rules.end(),
                                     [&](const Rule& rule) { return rule.path == path; });
    const bool known = found != rules.end();
    const std::string subject = known ? "The " + std::string{found->words} : "The setting " + path;
    const std::string where = known ? " (" + path + ")." : ".";
    if (stored.is_string())
        return value.is_string() ? "" : subject + " must be a text" + where;
    if (stored.is_bool())
        return value.is_bool() ? "" : subject + " must be on or off" + where;
    if (stored.is_array())
        return value.is_array() ? "" : subject + " must be a list" + where;
    if (!known || is_whole_number(value, found->low, found->high))
        return "";
    return subject + " must be a whole number from " + std::to_string(found->low) + " to " +
           std::to_string(found->high) + where;
}

/// Compares member by member, so that the fault names its member.
std::string members_fault(const json::object& stored, const json::object& proposed,
                          const std::string& prefix) {
    for (const auto& [key, stored_value] : stored) {
        const std::string path = prefix + std::string{key.data(), key.size()};
        const json::value* value = proposed.if_contains(key);
        if (!value)
            return "The setting " + path + " is missing.";
        std::string fault;
        if (std::find(not_edited.begin(), not_edited.end(), path) != not_edited.end()) {
            if (*value != stored_value)
                fault = "The setting " + path + " must come back as it was read. Load it again.";
        } else if (!stored_value.is_object()) {
            fault = kind_fault(path, stored_value, *value);
        } else if (value->is_object()) {
            fault = members_fault(stored_value.get_object(), value->get_object(), path + ".");
        } else {
            fault = "The setting " + path + " must be a group of settings.";
        }
        if (!fault.empty())
            return fault;
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

void settle(json::value& value) {
    if (value.is_number())
        value = std::llround(as_double(value));
    else if (json::object* members = value.if_object())
        settle_numbers(*members);
    else if (json::array* elements = value.if_array())
        for (json::value& element : *elements)
            settle(element);
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
    for (json::key_value_pair& member : settings)
        settle(member.value());
}

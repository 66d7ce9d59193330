// SPDX-License-Identifier: MIT
// What a save sends: a copy of the loaded settings, overwritten with the form's values. Keys that
// the service did not send are never added, except for the list of receivers.
#pragma once

#include "receivers/receiver_list.h"

#include <boost/json/value.hpp>

#include <string>
#include <vector>

/// The key of a bound field and the value of its widget: a switch, a spin button or an entry.
struct FieldValue {
    std::string key{}; ///< dotted, such as "station.name"
    boost::json::value value{};
};

struct FormValues {
    std::vector<FieldValue> fields{}; ///< in the order in which they are written
    std::string description{};
    std::vector<std::string> modes{}; ///< the pressed ones, in button order
    std::string blocked_text{};       ///< addresses between any white space
};

/// Returns the settings object to send. Throws the JSON library's error when `loaded` lacks
/// `station.description`, `station.callsign`, `content.modes` or `access.banned`.
boost::json::object settings_body(const boost::json::object& loaded, const FormValues& form,
                                  const std::vector<Receiver>& receivers);

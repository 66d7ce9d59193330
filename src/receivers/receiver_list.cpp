// SPDX-License-Identifier: MIT
#include "receivers/receiver_list.h"

#include "link/json_access.h"
#include "receivers/coverage.h"

#include <boost/json/value.hpp>

#include <algorithm>
#include <cmath>

Receiver receiver_from_settings(const json::value& element) {
    const json::object& object = as_object(element, "an element of receivers");
    Receiver receiver;
    receiver.backend = string_or_empty(required_member(object, "backend"));
    receiver.serial = string_or_empty(required_member(object, "serial"));
    receiver.model = object.contains("model") ? member_string(object, "model") : receiver.backend;
    receiver.enabled = optional_bool(object, "enabled", true);
    receiver.lo = number_or_zero(required_member(object, "lo"));
    receiver.hi = number_or_zero(required_member(object, "hi"));
    return receiver;
}

std::size_t merge_devices(std::vector<Receiver>& list, const json::array& devices) {
    const std::size_t known_before = list.size();
    for (const json::value& element : devices) {
        const json::object& device = as_object(element, "a device");
        const std::string backend = string_or_empty(required_member(device, "backend"));
        const std::string serial = string_or_empty(required_member(device, "serial"));
        const std::string model = string_or_empty(required_member(device, "model"));
        const bool available = required_bool(device, "available");

        auto known = std::find_if(list.begin(), list.end(), [&](const Receiver& each) {
            return each.serial == serial && each.backend == backend;
        });
        if (known == list.end()) {
            const ReceiverKind& kind = receiver_kind(backend);
            known = list.insert(list.end(), Receiver{.backend = backend,
                                                     .serial = serial,
                                                     .lo = kind.default_lo,
                                                     .hi = kind.default_hi});
        }
        known->model = model;
        known->available = available;
    }
    return list.size() - known_before;
}

std::string discovery_text(std::size_t found, std::size_t added) {
    if (found == 0)
        return "No receivers found. Is the device plugged in, and for SDRplay, is SDRplay's API "
               "installed?";
    const std::string text = std::to_string(found) + " found";
    if (added == 0)
        return text + ".";
    return text + ", " + std::to_string(added) + " new: switch on the ones to share.";
}

std::string spoken_name(const std::vector<Receiver>& list, const Receiver& receiver) {
    const auto of_this_model = std::count_if(list.begin(), list.end(), [&](const Receiver& each) {
        return each.model == receiver.model;
    });
    if (of_this_model < 2)
        return receiver.model;
    return receiver.model + " (serial " + receiver.serial + ")";
}

json::array receivers_to_save(const std::vector<Receiver>& list) {
    json::array saved;
    for (const Receiver& receiver : list)
        if (receiver.enabled)
            saved.push_back(json::object{{"backend", receiver.backend},
                                         {"serial", receiver.serial},
                                         {"model", receiver.model},
                                         {"lo", std::round(receiver.lo)},
                                         {"hi", std::round(receiver.hi)},
                                         {"enabled", true}});
    return saved;
}

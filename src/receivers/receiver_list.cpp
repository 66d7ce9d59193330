// SPDX-License-Identifier: MIT
#include "receivers/receiver_list.h"

#include "link/json_access.h"

#include <boost/json/value.hpp>

#include <algorithm>
#include <cmath>

namespace {

Receiver* find_receiver(std::vector<Receiver>& list, const std::string& backend,
                        const std::string& serial) {
    const auto found = std::find_if(list.begin(), list.end(), [&](const Receiver& each) {
        return each.serial == serial && each.backend == backend;
    });
    return found == list.end() ? nullptr : &*found;
}

json::object receiver_to_save(const Receiver& receiver) {
    json::object saved;
    saved["backend"] = receiver.backend;
    saved["serial"] = receiver.serial;
    saved["model"] = receiver.model;
    saved["lo"] = std::round(receiver.lo);
    saved["hi"] = std::round(receiver.hi);
    saved["enabled"] = true;
    return saved;
}

} // namespace

FrequencyRange default_range(std::string_view backend) {
    if (backend == "rtl-sdr")
        return {144'000'000, 146'000'000};
    if (backend == "rx888")
        return {0, 30'000'000};
    return {7'000'000, 7'300'000};
}

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

Discovery merge_devices(std::vector<Receiver>& list, const json::array& devices) {
    Discovery discovery{.found = devices.size(), .added = 0};
    for (const json::value& element : devices) {
        const json::object& device = as_object(element, "a device");
        const std::string backend = string_or_empty(required_member(device, "backend"));
        const std::string serial = string_or_empty(required_member(device, "serial"));
        const std::string model = string_or_empty(required_member(device, "model"));
        const bool available = required_bool(device, "available");

        Receiver* known = find_receiver(list, backend, serial);
        if (!known) {
            const FrequencyRange range = default_range(backend);
            known = &list.emplace_back();
            known->backend = backend;
            known->serial = serial;
            known->lo = range.lo;
            known->hi = range.hi;
            ++discovery.added;
        }
        known->model = model;
        known->available = available;
    }
    return discovery;
}

std::string discovery_text(const Discovery& discovery) {
    if (discovery.found == 0)
        return "No receivers found. Is the device plugged in, and for SDRplay, is SDRplay's API "
               "installed?";
    const std::string found = std::to_string(discovery.found) + " found";
    if (discovery.added == 0)
        return found + ".";
    return found + ", " + std::to_string(discovery.added) + " new: switch on the ones to share.";
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
            saved.push_back(receiver_to_save(receiver));
    return saved;
}

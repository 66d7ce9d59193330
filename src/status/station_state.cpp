// SPDX-License-Identifier: MIT
#include "status/station_state.h"

#include "link/json_access.h"

#include <boost/json/value.hpp>

namespace {

const json::object& object_or_empty(const json::object& parent, std::string_view name) {
    static const json::object empty;
    const json::value* found = parent.if_contains(name);
    const json::object* object = found ? found->if_object() : nullptr;
    return object ? *object : empty;
}

/// Lenient, unlike `directory.listed`: any value but a boolean reads as false.
bool relay_wanted(const json::object& settings) {
    const json::value* enabled = find_path(settings, "relay.enabled");
    const bool* wanted = enabled ? enabled->if_bool() : nullptr;
    return wanted && *wanted;
}

std::string station_link(const StationState& state, const json::object& relay) {
    if (state.relay_wanted)
        return state.relay_connected ? member_string(relay, "url") : "";
    if (!state.secure_address.empty())
        return state.secure_address;
    if (!state.directory_address.empty())
        return "http://" + state.directory_address + "/";
    return "";
}

} // namespace

StationState derive_station_state(const json::object& settings, const json::object& status) {
    const json::object& directory = required_object(status, "directory");
    const json::object& relay = object_or_empty(status, "relay");
    const json::object& https = object_or_empty(status, "https");

    StationState state;
    state.identified = (!member_string(settings, "station.name").empty() ||
                        !member_string(settings, "station.callsign").empty()) &&
                       !member_string(settings, "station.grid").empty();
    state.directory_state = string_or_empty(required_member(directory, "state"));
    state.directory_address = member_string(directory, "address");
    state.directory_error = member_string(directory, "error");
    state.registered = state.directory_state != "not registered";
    state.checked_in = state.directory_state == "checked in";
    state.listed_wanted = optional_bool(settings, "directory.listed", true);

    state.relay_wanted = relay_wanted(settings);
    state.relay_state = relay.contains("state") ? member_string(relay, "state") : "off";
    state.relay_error = member_string(relay, "error");
    state.relay_listeners = clamped_int32(member_number(relay, "listeners"));
    state.relay_connected = state.relay_state == "connected";

    // Read even when the relay is wanted: a value of another kind breaks the contract in any case.
    const bool port_reachable = optional_bool(directory, "reachable", false);
    state.reachable = state.relay_wanted ? state.relay_connected : port_reachable;

    state.receiver_count = required_array(status, "receivers").size();
    state.listener_count = required_array(status, "listeners").size();
    state.listeners_allowed = clamped_int32(member_number(settings, "listeners.max"));

    state.port = clamped_int32(member_number(settings, "network.port"));
    if (https.contains("name"))
        state.secure_address =
            "https://" + member_string(https, "name") + ":" + std::to_string(state.port) + "/";
    state.station_link = station_link(state, relay);
    return state;
}

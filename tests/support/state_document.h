// SPDX-License-Identifier: MIT
// A state document as the station service sends it, and functions to change one value in it.
//
// Tests start from the whole and valid document and name only what matters to them:
//     with(state_document(), "status.relay.state", "connected")
//     with(state_document(), "status.listeners.0.relayed", true)
//     without(state_document(), "settings.directory.listed")
#pragma once

#include <boost/json.hpp>

#include <string_view>

/// The document in docs/state.json: a registered, checked-in and reachable station with two
/// receivers and two listeners, the second of whom has not tuned yet. Every member that the service
/// may send is there.
boost::json::value state_document();

/// Returns `document` with the value at a dotted path replaced or added. A segment names a
/// member, in an array an element by its index; the index one past the end appends. Throws
/// std::invalid_argument when the way to the last segment is not there.
boost::json::value with(boost::json::value document, std::string_view path,
                        boost::json::value value);

/// Returns `document` without the member or element at a dotted path. Throws
/// std::invalid_argument when it was not there in the first place.
boost::json::value without(boost::json::value document, std::string_view path);

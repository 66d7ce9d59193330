// SPDX-License-Identifier: MIT
// Stations for the tests, and requests to them.
#pragma once

#include "service_api.h"
#include "station.h"

#include <boost/json.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace json = boost::json;

/// 2026-11-21, midnight UTC.
inline constexpr std::int64_t birth = 1'795'219'200;

Station station_in(std::string_view scenario, std::uint64_t seed = 1);

/// A request with the header fields that the service asks for.
ApiRequest request(std::string_view method, std::string_view target, std::string_view body = "");

/// The `status` member of the state document.
json::object status_of(const Station& station);

/// Lets time pass, half a second at a time, until the condition holds or `limit_s` are over.
/// Returns whether it holds.
bool advance_until(Station& station, double limit_s, const std::function<bool()>& condition);

/// Reads a reply that is an object.
json::object object_in(const ApiReply& reply);

/// The `error` of a refusal.
std::string error_in(const ApiReply& reply);

// SPDX-License-Identifier: MIT
// Reading the station's own settings, which are known to be whole, by group and member.
#pragma once

#include <boost/json.hpp>

#include <string>
#include <string_view>

namespace json = boost::json;

/// The member of a group, such as "network" and "port". Throws when there is none.
const json::value& setting(const json::object& settings, std::string_view group,
                           std::string_view member);

bool setting_is_on(const json::object& settings, std::string_view group, std::string_view member);
std::string setting_text(const json::object& settings, std::string_view group,
                         std::string_view member);
double setting_value(const json::object& settings, std::string_view group, std::string_view member);

/// The number that an integer of either kind or a double stands for.
double as_double(const json::value& number);

// SPDX-License-Identifier: MIT
// Reading the simulator's own settings, which are always complete, by group and member.
#pragma once

#include <boost/json.hpp>

#include <string>
#include <string_view>

namespace json = boost::json;

/// The number that an integer of either kind or a double stands for.
inline double as_double(const json::value& number) {
    return number.to_number<double>();
}

/// The member of a group, such as "network" and "port". Throws when there is none.
inline const json::value& setting(const json::object& settings, std::string_view group,
                                  std::string_view member) {
    return settings.at(group).as_object().at(member);
}

inline bool setting_is_on(const json::object& settings, std::string_view group,
                          std::string_view member) {
    return setting(settings, group, member).as_bool();
}

inline std::string setting_text(const json::object& settings, std::string_view group,
                                std::string_view member) {
    const json::string& text = setting(settings, group, member).as_string();
    return {text.data(), text.size()};
}

inline double setting_value(const json::object& settings, std::string_view group,
                            std::string_view member) {
    return as_double(setting(settings, group, member));
}

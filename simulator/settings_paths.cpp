// SPDX-License-Identifier: MIT
#include "settings_paths.h"

const json::value& setting(const json::object& settings, std::string_view group,
                           std::string_view member) {
    return settings.at(group).as_object().at(member);
}

bool setting_is_on(const json::object& settings, std::string_view group, std::string_view member) {
    return setting(settings, group, member).as_bool();
}

std::string setting_text(const json::object& settings, std::string_view group,
                         std::string_view member) {
    const json::string& text = setting(settings, group, member).as_string();
    return {text.data(), text.size()};
}

double setting_value(const json::object& settings, std::string_view group,
                     std::string_view member) {
    return as_double(setting(settings, group, member));
}

double as_double(const json::value& number) {
    return number.to_number<double>();
}

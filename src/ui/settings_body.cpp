// SPDX-License-Identifier: MIT
#include "ui/settings_body.h"

#include "link/json_access.h"
#include "ui/field_rules.h"

#include <boost/json/value_from.hpp>
#include <glib.h>

#include <algorithm>
#include <limits>

namespace {

/// The member `inner` of the member `outer`, to be overwritten. Throws when one is missing.
json::value& required_place(json::object& root, const char* outer, const char* inner) {
    required_member(required_object(root, outer), inner);
    return root.at(outer).get_object().at(inner);
}

std::string ascii_upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), g_ascii_toupper);
    return text;
}

/// Clamps infinities to the range of a double. Numbers beyond that range parse as infinities, which
/// the library would write as a word that is not valid JSON.
void make_finite(json::value& value) {
    constexpr double highest = std::numeric_limits<double>::max();
    if (double* number = value.if_double())
        *number = std::clamp(*number, -highest, highest);
    else if (json::array* array = value.if_array())
        for (json::value& element : *array)
            make_finite(element);
    else if (json::object* object = value.if_object())
        for (auto& member : *object)
            make_finite(member.value());
}

} // namespace

json::object settings_body(const json::object& loaded, const FormValues& form,
                           const std::vector<Receiver>& receivers) {
    json::object body = loaded;
    for (const FieldValue& field : form.fields)
        if (json::value* found = find_path(body, field.key))
            *found = field.value;
    required_place(body, "station", "description") = json::string{form.description};
    json::value& callsign = required_place(body, "station", "callsign");
    callsign = json::string{ascii_upper(string_or_empty(callsign))};
    required_place(body, "content", "modes") = json::value_from(form.modes);
    required_place(body, "access", "banned") = json::value_from(words_of(form.blocked_text));
    body["receivers"] = receivers_to_save(receivers);
    for (auto& member : body)
        make_finite(member.value());
    return body;
}

// SPDX-License-Identifier: MIT
// Makes the body of a save from values that a person can enter into the form, and loads it again.
//
// The loaded values are those that were entered, but for the callsign's case and the spaces between
// blocked addresses; saving them gives the same body again.
#include "link/json_access.h"
#include "receivers/receiver_list.h"
#include "ui/field_rules.h"
#include "ui/settings_body.h"

#include <boost/json.hpp>
#include <fuzzer/FuzzedDataProvider.h>
#include <glib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

void require(bool holds, const char* what, const std::string& body) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n%s\n", what, body.c_str());
    std::abort();
}

/// Text as a GtkEntry can hold it: UTF-8 without a zero byte.
std::string text_of(FuzzedDataProvider& data) {
    std::string bytes = data.ConsumeRandomLengthString(300);
    std::erase(bytes, '\0');
    char* valid = g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size()));
    std::string text{valid};
    g_free(valid);
    return text;
}

/// A number as a GtkSpinButton can hold it: with at most three decimals.
double number_of(FuzzedDataProvider& data) {
    const double number = data.ConsumeFloatingPointInRange<double>(0, 65'535);
    return std::round(number * 1000) / 1000;
}

json::object loaded_settings() {
    return json::parse(R"({
        "station": {"name": "", "callsign": "", "description": "", "timezone": "Europe/Berlin"},
        "listeners": {"max": 1},
        "content": {"modes": [], "block_fm_broadcast": true},
        "access": {"banned": []},
        "future": [1, {"a": null}]})")
        .as_object();
}

/// The values that the form has after this body was loaded into it.
FormValues loaded_again(const json::object& body) {
    FormValues form;
    const auto text_at = [&](const char* key) { return string_or_empty(*find_path(body, key)); };
    form.fields = {
        {"station.name", text_at("station.name")},
        {"station.callsign", text_at("station.callsign")},
        {"listeners.max", number_or_zero(*find_path(body, "listeners.max"))},
        {"content.block_fm_broadcast", find_path(body, "content.block_fm_broadcast")->as_bool()},
        {"station.missing", std::string{"never added"}}};
    form.description = text_at("station.description");
    for (const json::value& mode : find_path(body, "content.modes")->as_array())
        form.modes.push_back(string_or_empty(mode));
    for (const json::value& address : find_path(body, "access.banned")->as_array())
        form.blocked_text.append(string_or_empty(address)).append("\n");
    return form;
}

std::string upper_case(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), g_ascii_toupper);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    FuzzedDataProvider data{bytes, size};
    const json::object loaded = loaded_settings();
    FormValues form;
    const std::string name = text_of(data);
    const std::string callsign = text_of(data);
    const double listeners = number_of(data);
    const bool blocks_fm = data.ConsumeBool();
    form.fields = {{"station.name", name},
                   {"station.callsign", callsign},
                   {"listeners.max", listeners},
                   {"content.block_fm_broadcast", blocks_fm},
                   {"station.missing", std::string{"never added"}}};
    form.description = text_of(data);
    for (const char* mode : {"USB", "LSB", "CW", "AM", "FM"})
        if (data.ConsumeBool())
            form.modes.emplace_back(mode);
    form.blocked_text = text_of(data);
    std::vector<Receiver> receivers(data.ConsumeIntegralInRange<std::size_t>(0, 4));
    for (Receiver& receiver : receivers) {
        receiver.backend = text_of(data);
        receiver.serial = text_of(data);
        receiver.model = text_of(data);
        receiver.enabled = data.ConsumeBool();
        receiver.lo = number_of(data) * 1e6;
        receiver.hi = number_of(data) * 1e6;
    }

    const std::string sent = json::serialize(settings_body(loaded, form, receivers));
    const json::value document = parse_reply(sent);
    const json::object& body = document.as_object();
    const FormValues back = loaded_again(body);
    require(std::get<std::string>(back.fields[0].value) == name, "the name comes back", sent);
    require(std::get<std::string>(back.fields[1].value) == upper_case(callsign),
            "the callsign comes back in upper case", sent);
    require(std::get<double>(back.fields[2].value) == listeners, "the number comes back", sent);
    require(std::get<bool>(back.fields[3].value) == blocks_fm, "the switch comes back", sent);
    require(back.description == form.description, "the description comes back", sent);
    require(back.modes == form.modes, "the modes come back", sent);
    require(words_of(back.blocked_text) == words_of(form.blocked_text),
            "the blocked addresses come back", sent);
    require(!find_path(body, "station.missing"), "no key is added", sent);
    require(*find_path(body, "future") == *find_path(loaded, "future") &&
                *find_path(body, "station.timezone") == *find_path(loaded, "station.timezone"),
            "what the form does not know comes back", sent);

    std::vector<Receiver> shared;
    for (const json::value& element : body.at("receivers").as_array())
        shared.push_back(receiver_from_settings(element));
    std::size_t at = 0;
    for (const Receiver& receiver : receivers) {
        if (!receiver.enabled)
            continue;
        require(at < shared.size() && shared[at].backend == receiver.backend &&
                    shared[at].serial == receiver.serial && shared[at].model == receiver.model &&
                    shared[at].enabled && shared[at].lo == std::round(receiver.lo) &&
                    shared[at].hi == std::round(receiver.hi),
                "a shared receiver comes back", sent);
        ++at;
    }
    require(at == shared.size(), "only shared receivers are sent", sent);

    require(json::serialize(settings_body(body, back, shared)) == sent,
            "saved again it is the same", sent);
    return 0;
}

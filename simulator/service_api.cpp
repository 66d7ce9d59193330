// SPDX-License-Identifier: MIT
#include "service_api.h"

#include "address_range.h"
#include "internet_life.h"
#include "listener_life.h"
#include "settings_check.h"
#include "settings_paths.h"
#include "state_document.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

namespace {

ApiReply success(const json::value& document) {
    return {200, json::serialize(document), ""};
}

/// Says what is wrong with the header fields by which a request of the window differs from one of a
/// web page in the owner's browser; "" when nothing is.
std::string header_fault(const ApiRequest& request) {
    if (request.host != "tarnwave")
        return "The header field Host must be tarnwave.";
    if (request.x_tarnwave != "1")
        return "The header field X-Tarnwave must be 1.";
    if (request.content_type != "application/json")
        return "The header field Content-Type must be application/json.";
    return "";
}

ApiReply get_state(Station& station, const json::object&) {
    return success(state_document(station));
}

ApiReply get_devices(Station& station, const json::object&) {
    return success(devices_document(station.devices, station.clock_s));
}

ApiReply put_settings(Station& station, const json::object& body) {
    if (const std::string fault = settings_fault(station.settings, body); !fault.empty())
        return refusal(422, fault);
    if (const std::string_view reason = station.scenario.texts.save_refusal; !reason.empty())
        return refusal(409, std::string{reason});
    json::object settings = body;
    settle_numbers(settings);
    return success(json::object{{"restart", replace_settings(station, std::move(settings))}});
}

/// The text of the body's only member; null when the body has another member or more than one.
const json::string* only_text(const json::object& body, const char* name) {
    const json::value* value = body.if_contains(name);
    return value && body.size() == 1 ? value->if_string() : nullptr;
}

/// Whether the text has something before an "@", and behind it a domain with a full stop inside.
bool is_email(std::string_view text) {
    const std::size_t at = text.find('@');
    if (at == 0 || at == std::string_view::npos || text.find('@', at + 1) != std::string_view::npos)
        return false;
    const std::size_t stop = text.rfind('.');
    return stop != std::string_view::npos && stop > at + 1 && stop + 1 < text.size() &&
           text.find_first_of(" \t\r\n\f\v") == std::string_view::npos;
}

ApiReply post_register(Station& station, const json::object& body) {
    const json::string* text = only_text(body, "email");
    if (!text)
        return refusal(400, "The request needs one member: email, a text.");
    const std::string email{text->data(), text->size()};
    if (!is_email(email))
        return refusal(422, "This is not an email address.");
    const std::string id = setting_text(station.settings, "directory", "id");
    if (!id.empty())
        return refusal(409, "The station is registered already, as station " + id + ".");
    if (const std::string_view reason = station.scenario.texts.registration_refusal;
        !reason.empty())
        return refusal(409, std::string{reason});
    if (email.ends_with("@refused.example"))
        return refusal(409, "The station list accepts no addresses at refused.example.");
    json::object& directory = station.settings.at("directory").as_object();
    directory["id"] = "1042";
    directory["email"] = email;
    follow_internet_settings(station);
    return success(json::object{{"id", "1042"}});
}

ApiReply post_kick(Station& station, const json::object& body) {
    const json::value* number = body.if_contains("number");
    if (!number || body.size() != 1 || !number->is_number())
        return refusal(400, "The request needs one member: number, a session's number.");
    const double wanted = as_double(*number);
    if (wanted < 1 || wanted > std::numeric_limits<int>::max() || wanted != std::trunc(wanted))
        return refusal(422, "A session's number is a whole number above 0.");
    if (!end_session(station, static_cast<int>(wanted)))
        return refusal(404, "There is no session " + json::serialize(*number) + ".");
    return success(json::object{});
}

ApiReply post_ban(Station& station, const json::object& body) {
    const json::string* text = only_text(body, "address");
    if (!text)
        return refusal(400, "The request needs one member: address, a text.");
    const std::string address{text->data(), text->size()};
    if (!is_address(address))
        return refusal(422, "“" + address + "” is not an address.");
    json::array& banned = station.settings.at("access").at("banned").as_array();
    if (std::find(banned.begin(), banned.end(), json::value(*text)) == banned.end())
        banned.push_back(json::value(*text));
    end_banned_sessions(station);
    return success(json::object{});
}

struct Route {
    std::string_view target;
    std::string_view method;
    bool has_body;
    ApiReply (*reply)(Station& station, const json::object& body);
};

constexpr std::array routes = {
    Route{"/api/state", "GET", false, get_state},
    Route{"/api/settings", "PUT", true, put_settings},
    Route{"/api/devices", "GET", false, get_devices},
    Route{"/api/register", "POST", true, post_register},
    Route{"/api/kick", "POST", true, post_kick},
    Route{"/api/ban", "POST", true, post_ban},
};

} // namespace

ApiReply answer(Station& station, const ApiRequest& request) {
    if (const std::string fault = header_fault(request); !fault.empty())
        return refusal(400, fault);
    if (!station.owner_accepted)
        return refusal(403, "Only the station owner may use this station.");
    const auto* route = std::find_if(routes.begin(), routes.end(),
                                     [&](const Route& r) { return r.target == request.target; });
    if (route == routes.end())
        return refusal(404, "There is nothing at " + request.target + ".");
    if (route->method != request.method) {
        ApiReply reply = refusal(405, std::string{route->target} + " knows " +
                                          std::string{route->method} + " only.");
        reply.allow = route->method;
        return reply;
    }
    if (!route->has_body)
        return route->reply(station, {});
    boost::system::error_code error;
    const json::value body = json::parse(request.body, error);
    if (error || !body.is_object())
        return refusal(400, "The body must be one JSON object.");
    return route->reply(station, body.get_object());
}

ApiReply refusal(int status, const std::string& reason) {
    return {status, json::serialize(json::object{{"error", reason}}), ""};
}

// SPDX-License-Identifier: MIT
#include "status/internet_texts.h"

#include "link/build_constants.h"
#include "link/json_access.h"
#include "link/text.h"

#include <arpa/inet.h>
#include <boost/json/value.hpp>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <cstring>
#include <ctime>
#include <iterator>
#include <memory>
#include <type_traits>

static_assert(sizeof(std::time_t) == sizeof(std::int64_t) && std::is_signed_v<std::time_t>);

namespace {

/// The private ranges 10.0.0.0/8, 172.16.0.0/12 and 192.168.0.0/16 (RFC 1918, section 3). `address`
/// is in host byte order.
bool is_private_ipv4(std::uint32_t address) {
    return address >> 24U == 10 || address >> 20U == 0xAC1 || address >> 16U == 0xC0A8;
}

StatusLine port_check_line(const StationState& state) {
    const std::string host{directory_host};
    if (!state.registered)
        return {"Once the station is registered, Tarnwave checks the port for you."};
    if (!state.checked_in)
        return {"Checking…"};
    if (state.reachable)
        return {"✓ " + host + " reached the station at " + state.directory_address + ".",
                StatusClass::good};
    return {"✗ " + host + " could not reach the station at " + state.directory_address +
                ". Check the port forward.",
            StatusClass::error};
}

std::string relay_text(const StationState& state) {
    if (!state.registered)
        return "Register the station below: the relay knows stations by their registration.";
    if (state.relay_state == "no key")
        return "Enter the relay key Corvane gave you, then press Save.";
    if (state.relay_state == "connecting")
        return "Connecting to the " + std::string{directory_host} + " relay…";
    if (state.relay_connected)
        return "✓ Connected. Listeners reach your station at " + state.station_link + " (" +
               std::to_string(state.relay_listeners) + " at once through the relay).";
    if (state.relay_state == "refused")
        return "✗ The relay refused: " + state.relay_error + " Trying again.";
    if (state.relay_state == "unreachable")
        return "✗ Cannot reach the relay: " + state.relay_error + " Trying again.";
    return "Press Save to connect.";
}

/// Green while the relay is connected, even when the sentence asks for the registration.
StatusClass relay_class(const StationState& state) {
    if (state.relay_connected)
        return StatusClass::good;
    const bool failed = state.relay_state == "refused" || state.relay_state == "unreachable";
    return failed ? StatusClass::error : StatusClass::none;
}

} // namespace

std::string first_private_ipv4(const ifaddrs* interfaces) {
    for (const ifaddrs* each = interfaces; each; each = each->ifa_next) {
        if (!each->ifa_addr || each->ifa_addr->sa_family != AF_INET)
            continue;
        sockaddr_in address;
        std::memcpy(&address, each->ifa_addr, sizeof address);
        if (!is_private_ipv4(ntohl(address.sin_addr.s_addr)))
            continue;
        char text[INET_ADDRSTRLEN];
        if (inet_ntop(AF_INET, &address.sin_addr, text, sizeof text))
            return text;
    }
    return "";
}

std::string lan_address() {
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0)
        return "";
    const std::unique_ptr<ifaddrs, decltype(&freeifaddrs)> interfaces{first, freeifaddrs};
    return first_private_ipv4(interfaces.get());
}

std::string port_instructions_markup(std::int32_t port, std::string_view lan_address) {
    std::string text =
        "On your router, forward TCP port <b>" + std::to_string(port) + "</b> to this computer";
    if (!lan_address.empty())
        text.append(" (<b>").append(lan_address).append("</b>)");
    return text + ". Router menus call this port forwarding or a virtual server.";
}

StatusLine reach_line(const StationState& state) {
    if (state.relay_wanted)
        return {relay_text(state), relay_class(state)};
    return port_check_line(state);
}

StatusLine certificate_line(const json::object& https, const StationState& state) {
    const std::string certificate = member_string(https, "state");
    if (certificate == "active") {
        const std::string date = https.contains("expires")
                                     ? expiry_date(clamped_int64(member_number(https, "expires")))
                                     : "";
        return {"✓ Secure address: " + state.secure_address +
                    " (certificate renews itself; good until " + date + ").",
                StatusClass::good};
    }
    if (certificate == "requesting") {
        const std::string name =
            https.contains("name") ? member_string(https, "name") : "the station";
        return {"Getting a certificate for " + name + "…", StatusClass::none};
    }
    if (certificate == "failed")
        return {"✗ No certificate yet: " + member_string(https, "error") +
                    (state.secure_address.empty() ? "" : " The current one stays in use.") +
                    " Trying again later.",
                StatusClass::warning};
    return {"A secure https address comes automatically once " + std::string{directory_host} +
                " can reach the station.",
            StatusClass::none};
}

StatusLine listing_line(const StationState& state) {
    const std::string host{directory_host};
    if (!state.listed_wanted)
        return {"Not listed: switch on “List this station” to appear.", StatusClass::none};
    if (!state.registered)
        return {"Not registered yet: register below.", StatusClass::none};
    if (state.directory_state == "check-in failed")
        return {"Cannot reach " + host + ": " + state.directory_error, StatusClass::warning};
    if (state.reachable && state.checked_in)
        return {"✓ Listed at " + host + "/websdr.html.", StatusClass::good};
    if (!state.checked_in)
        return {"Checking in…", StatusClass::warning};
    if (state.relay_wanted)
        return {"Checked in. Listed as soon as the relay connection is up.", StatusClass::warning};
    return {"Checked in. Listed as soon as " + host + " can reach the station.",
            StatusClass::warning};
}

std::string expiry_date(std::int64_t seconds_since_epoch) {
    const std::time_t seconds = seconds_since_epoch;
    const std::tm* date = std::localtime(&seconds); // null: no calendar date has that year
    char text[32];
    if (!date || std::strftime(text, std::size(text), "%e %B %Y", date) == 0)
        return "";
    // "%e" pads the days 1 to 9 with a blank.
    const char* start = text[0] == ' ' ? text + 1 : text;
    const GlibText utf8{g_locale_to_utf8(start, -1, nullptr, nullptr, nullptr)};
    return utf8 ? utf8.get() : "";
}

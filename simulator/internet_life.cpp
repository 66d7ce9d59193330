// SPDX-License-Identifier: MIT
#include "internet_life.h"

#include "settings_paths.h"

#include "link/build_constants.h"

#include <cstdint>

namespace {

constexpr double check_in_takes_s = 3;
constexpr double probe_takes_s = 4;
constexpr double connecting_takes_s = 3;
constexpr double certificate_takes_s = 5;
constexpr double next_try_s = 20;

// 90 days.
constexpr std::int64_t certificate_holds_s = std::int64_t{90} * 86400;

bool relay_wanted(const Station& station) {
    return setting_is_on(station.settings, "relay", "enabled");
}

bool is_registered(const Station& station) {
    return !setting_text(station.settings, "directory", "id").empty();
}

/// Six groups of four capitals or digits.
bool is_relay_key(const std::string& key) {
    if (key.size() != 29)
        return false;
    for (std::size_t i = 0; i < key.size(); ++i) {
        const char c = key[i];
        const bool separator = i % 5 == 4;
        if (separator ? c != '-' : !((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')))
            return false;
    }
    return true;
}

/// Whether the next try fails, and counts down the failures that are left; below 0 every try fails.
bool fails(int& failures_left) {
    if (failures_left > 0)
        return failures_left-- > 0;
    return failures_left < 0;
}

void begin_check_in(Station& station) {
    station.directory.state = "checking in";
    station.directory.due_s = station.clock_s + check_in_takes_s;
}

void finish_check_in(Station& station) {
    DirectoryLife& directory = station.directory;
    directory.due_s = station.clock_s + next_try_s;
    if (fails(directory.failures_left)) {
        directory.state = "check-in failed";
        directory.error = station.scenario.texts.check_in_error;
        return;
    }
    directory.state = "checked in";
    directory.error.clear();
    // From a block that is reserved for examples (RFC 5737).
    directory.address = "203.0.113.17:" + std::to_string(station.port_in_use);
    directory.next_probe_s = station.clock_s + probe_takes_s;
}

void advance_directory(Station& station) {
    DirectoryLife& directory = station.directory;
    if (directory.state == "checking in") {
        if (station.clock_s >= directory.due_s)
            finish_check_in(station);
    } else if (directory.state == "check-in failed") {
        if (station.clock_s >= directory.due_s)
            begin_check_in(station);
    } else if (directory.state == "checked in" && !relay_wanted(station) &&
               station.clock_s >= directory.next_probe_s) {
        directory.reachable = station.port_forwarded;
        directory.next_probe_s = station.clock_s + probe_takes_s;
    }
}

void finish_connecting(Station& station) {
    RelayLife& relay = station.relay;
    relay.due_s = station.clock_s + next_try_s;
    if (!is_relay_key(setting_text(station.settings, "relay", "key"))) {
        relay.state = "refused";
        relay.error = "This relay key is not known.";
    } else if (fails(relay.refusals_left)) {
        relay.state = "refused";
        relay.error = station.scenario.texts.relay_refusal;
    } else if (fails(relay.absences_left)) {
        relay.state = "unreachable";
        relay.error = "No route to host.";
    } else {
        relay.state = "connected";
        relay.error.clear();
        relay.url = "https://" + std::string{directory_host} + "/r/" +
                    setting_text(station.settings, "directory", "id") + "/";
    }
}

void advance_relay(Station& station) {
    RelayLife& relay = station.relay;
    if (relay.state == "connecting" && station.clock_s >= relay.due_s) {
        finish_connecting(station);
    } else if ((relay.state == "refused" || relay.state == "unreachable") &&
               station.clock_s >= relay.due_s) {
        relay.state = "connecting";
        relay.due_s = station.clock_s + connecting_takes_s;
    }
}

void finish_certificate(Station& station) {
    CertificateLife& certificate = station.certificate;
    certificate.due_s = station.clock_s + next_try_s;
    if (fails(certificate.failures_left)) {
        certificate.state = "failed";
        certificate.error = station.scenario.texts.certificate_error;
        return;
    }
    certificate.state = "active";
    certificate.error.clear();
    certificate.expires = station.born_at + certificate_holds_s;
}

void advance_certificate(Station& station) {
    CertificateLife& certificate = station.certificate;
    if (certificate.state == "none"
            ? station.directory.reachable
            : certificate.state == "failed" && station.clock_s >= certificate.due_s) {
        certificate.state = "requesting";
        certificate.due_s = station.clock_s + certificate_takes_s;
        certificate.name =
            setting_text(station.settings, "directory", "id") + ".stations." + directory_host;
    } else if (certificate.state == "requesting" && station.clock_s >= certificate.due_s) {
        finish_certificate(station);
    }
}

} // namespace

void follow_internet_settings(Station& station) {
    if (is_registered(station) && station.directory.state == "not registered")
        begin_check_in(station);
    if (relay_wanted(station))
        station.directory.reachable = false;
    RelayLife& relay = station.relay;
    if (!relay_wanted(station) || !is_registered(station)) {
        reconnect_relay(station);
    } else if (relay.state == "off" || relay.state == "no key") {
        const bool has_key = !setting_text(station.settings, "relay", "key").empty();
        relay.state = has_key ? "connecting" : "no key";
        relay.due_s = station.clock_s + connecting_takes_s;
    }
}

void reconnect_relay(Station& station) {
    station.relay.state = "off";
    station.relay.url.clear();
    station.relay.error.clear();
}

void check_in_again(Station& station) {
    if (is_registered(station))
        begin_check_in(station);
}

void advance_internet(Station& station) {
    advance_directory(station);
    advance_relay(station);
    advance_certificate(station);
}

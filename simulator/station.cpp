// SPDX-License-Identifier: MIT
#include "station.h"

#include "default_settings.h"
#include "internet_life.h"
#include "listener_life.h"
#include "receiver_life.h"
#include "settings_paths.h"

#include <cmath>
#include <utility>

namespace {

// A power of two, so that adding up ticks has no rounding error.
constexpr double tick_s = 0.5;

void tick(Station& station) {
    station.clock_s += tick_s;
    advance_receivers(station);
    advance_internet(station);
    advance_listeners(station);
}

void pass(Station& station, double seconds) {
    station.unspent_s += seconds;
    while (station.unspent_s >= tick_s) {
        station.unspent_s -= tick_s;
        tick(station);
    }
}

} // namespace

Station make_station(const Scenario& scenario, std::uint64_t seed, std::int64_t born_at,
                     json::object settings) {
    Station station;
    station.scenario = scenario;
    station.random.state = seed;
    station.born_at = born_at;
    station.settings = settings.empty() ? default_settings(scenario) : std::move(settings);
    station.port_in_use = static_cast<int>(setting_value(station.settings, "network", "port"));
    station.clock_s = -scenario.warm_up_s;
    station.owner_accepted = !scenario.owner_waits;
    station.broker = !scenario.broker_waits;
    station.port_forwarded = !scenario.port_waits;
    station.devices = scenario_devices(scenario);
    station.directory.failures_left = scenario.failed_check_ins;
    station.relay.refusals_left = scenario.relay_refusals;
    station.relay.absences_left = scenario.relay_absences;
    station.certificate.failures_left = scenario.failed_certificates;
    if (scenario.failed_certificates < 0)
        station.certificate = {
            .state = "failed",
            .due_s = HUGE_VAL,
            .error = std::string{scenario.texts.certificate_error},
        };
    start_receivers(station);
    follow_internet_settings(station);
    pass(station, scenario.warm_up_s);
    seat_first_listeners(station);
    return station;
}

void advance(Station& station, double seconds) {
    if (!station.scenario.frozen && seconds > 0)
        pass(station, seconds);
}

bool replace_settings(Station& station, json::object settings) {
    const json::object former = std::exchange(station.settings, std::move(settings));
    const bool port_changed = setting_value(former, "network", "port") !=
                              setting_value(station.settings, "network", "port");
    start_receivers(station);
    if (former.at("relay") != station.settings.at("relay"))
        reconnect_relay(station);
    if (!setting_is_on(former, "directory", "listed") &&
        setting_is_on(station.settings, "directory", "listed"))
        check_in_again(station);
    follow_internet_settings(station);
    end_banned_sessions(station);
    return port_changed;
}

void end_banned_sessions(Station& station) {
    std::erase_if(station.listeners,
                  [&](const Listener& listener) { return is_banned(station, listener.address); });
}

void remove_obstacle(Station& station) {
    station.owner_accepted = true;
    station.port_forwarded = true;
    if (!std::exchange(station.broker, true))
        start_receivers(station);
}

std::vector<ReceiverOnAir> receivers_on_air(const Station& station) {
    std::vector<ReceiverOnAir> receivers;
    if (station.scenario.dialhouse_runs && station.settings.at("attach").as_bool())
        receivers.push_back({"Dialhouse: SDRplay RSPdx", true, 3'500'000, 7'300'000});
    for (const StartedReceiver& receiver : station.started)
        if (receiver.progress == StartedReceiver::Progress::on_air)
            receivers.push_back({receiver.model, false, receiver.lo, receiver.hi});
    return receivers;
}

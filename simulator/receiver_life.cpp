// SPDX-License-Identifier: MIT
#include "receiver_life.h"

#include "settings_paths.h"

#include <algorithm>
#include <string>
#include <utility>

namespace {

using Progress = StartedReceiver::Progress;

constexpr double start_takes_s = 2;
constexpr double next_one_later_s = 0.5;
constexpr double retry_after_s = 30;

// The widest ranges, in Hz, that the receivers can cover; the RX-888 covers all of HF.
constexpr double dongle_span = 2e6;
constexpr double sdrplay_span = 8e6;

std::string text_member(const json::object& object, std::string_view name) {
    const json::string& text = object.at(name).as_string();
    return {text.data(), text.size()};
}

StartedReceiver configured(const json::object& settings) {
    return {.backend = text_member(settings, "backend"),
            .serial = text_member(settings, "serial"),
            .model = text_member(settings, "model"),
            .lo = as_double(settings.at("lo")),
            .hi = as_double(settings.at("hi"))};
}

/// The last lines of the log, which say why this receiver's process ended; "" when it runs.
std::string failure_log(const Station& station, const StartedReceiver& receiver) {
    const auto device =
        std::find_if(station.devices.begin(), station.devices.end(), [&](const Device& candidate) {
            return candidate.backend == receiver.backend && candidate.serial == receiver.serial;
        });
    if (device == station.devices.end() || !is_attached(*device, station.clock_s))
        return "open: no device with serial " + receiver.serial + " is plugged in\nexit status 1";
    if (is_held(*device, station.clock_s))
        return "open: device " + receiver.serial +
               " is claimed by another program (EBUSY)\nexit status 1";
    if (receiver.backend == "rtl-sdr" && station.scenario.receiver_fails)
        return std::string{station.scenario.texts.receiver_log};
    const double widest = receiver.backend == "rtl-sdr" ? dongle_span : sdrplay_span;
    if (receiver.backend != "rx888" && receiver.hi - receiver.lo > widest)
        return "range: wider than the receiver takes at once\nexit status 2";
    return "";
}

void fail(const Station& station, StartedReceiver& receiver, std::string log) {
    receiver.progress = Progress::failed;
    receiver.log = std::move(log);
    receiver.due_s = station.clock_s + retry_after_s;
}

void advance_receiver(const Station& station, StartedReceiver& receiver) {
    const bool due = station.clock_s >= receiver.due_s;
    if (receiver.progress == Progress::failed) {
        if (due) {
            receiver.progress = Progress::starting;
            receiver.due_s = station.clock_s + start_takes_s;
        }
        return;
    }
    if (receiver.progress == Progress::starting && !due)
        return;
    std::string log = failure_log(station, receiver);
    if (log.empty())
        receiver.progress = Progress::on_air;
    else
        fail(station, receiver, std::move(log));
}

} // namespace

void start_receivers(Station& station) {
    std::vector<StartedReceiver> former = std::exchange(station.started, {});
    if (!station.broker)
        return;
    double due_s = station.clock_s + start_takes_s;
    for (const json::value& element : station.settings.at("receivers").as_array()) {
        const json::object& settings = element.as_object();
        if (!settings.at("enabled").as_bool())
            continue;
        StartedReceiver receiver = configured(settings);
        const auto same =
            std::find_if(former.begin(), former.end(), [&](const StartedReceiver& other) {
                return other.backend == receiver.backend && other.serial == receiver.serial &&
                       other.lo == receiver.lo && other.hi == receiver.hi;
            });
        if (same != former.end()) {
            same->model = receiver.model;
            station.started.push_back(std::move(*same));
            continue;
        }
        receiver.due_s = due_s;
        due_s += next_one_later_s;
        station.started.push_back(std::move(receiver));
    }
}

void advance_receivers(Station& station) {
    for (StartedReceiver& receiver : station.started)
        advance_receiver(station, receiver);
}

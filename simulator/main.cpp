// SPDX-License-Identifier: MIT
// A stand-in for the station service, for demonstrations and tests of the settings window.
#include "default_settings.h"
#include "http_server.h"
#include "options.h"
#include "station_files.h"

#include "link/build_constants.h"

#include <csignal>
#include <cstdio>
#include <ctime>
#include <exception>
#include <span>
#include <string>
#include <utility>

namespace {

constexpr int usage_fault = 2;

// Always the same, so that each run is alike.
constexpr std::uint64_t seed = 1;

// The start is rounded to a day, so that two runs on one day show the same date.
constexpr std::int64_t day_s = 86400;

void say(const std::string& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
}

int print(const std::string& text) {
    return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0 ? 0 : 1;
}

/// Answers a request, stores the settings when it changed them, and logs it.
ApiReply serve_request(Station& station, const Options& options, HandOver& hand_over,
                       RequestRecord& record, const ApiRequest& request) {
    watch_files(hand_over, station);
    advance(station, options.step_s);
    if (const std::string fault = record_body(record, request); !fault.empty())
        say(fault);
    const boost::json::object former = station.settings;
    ApiReply reply = answer(station, request);
    if (!options.state_file.empty() && station.settings != former) {
        const std::string fault = write_settings_file(options.state_file, station.settings);
        if (!fault.empty())
            reply = refusal(500, "The settings could not be stored: " + fault);
    }
    say(request.method + " " + request.target + " " + std::to_string(reply.status));
    return reply;
}

int run(const Options& options) {
    const Scenario& scenario = *options.scenario;
    boost::json::object settings;
    if (!options.state_file.empty()) {
        const std::string fault =
            read_settings_file(options.state_file, default_settings(scenario), settings);
        if (!fault.empty()) {
            say(fault);
            return 1;
        }
    }
    const std::int64_t today = std::time(nullptr) / day_s * day_s;
    Station station = make_station(scenario, seed, today, std::move(settings));
    HandOver hand_over = make_hand_over(options.owner_file, options.broker_file);
    RequestRecord record{options.record_folder};

    ServerTasks tasks;
    tasks.answer = [&](const ApiRequest& request) {
        return serve_request(station, options, hand_over, record, request);
    };
    if (!scenario.frozen && options.speed > 0)
        tasks.pass_time = [&](std::chrono::duration<double> passed) {
            watch_files(hand_over, station);
            advance(station, passed.count() * options.speed);
        };
    tasks.on_user_signal = [&] { remove_obstacle(station); };
    tasks.on_ready = [&] {
        say("Playing " + std::string{scenario.name} + " on " + options.socket);
    };
    const int delay_ms = options.delay_ms < 0 ? scenario.delay_ms : options.delay_ms;
    const std::string fault = serve(options.socket, std::chrono::milliseconds{delay_ms}, tasks);
    if (fault.empty())
        return 0;
    say(fault);
    return 1;
}

} // namespace

int main(int count, char** arguments) {
    // The reader of the log may end before the simulator.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const std::span<char* const> all{arguments, static_cast<std::size_t>(count)};
        const Options options = parse_options(all.subspan(count > 0 ? 1 : 0));
        if (!options.fault.empty()) {
            say(options.fault);
            return usage_fault;
        }
        if (options.help)
            return print(help_text());
        if (options.version)
            return print("tarnwave-station-simulator " + std::string{program_version} + "\n");
        if (options.list_scenarios)
            return print(scenario_list());
        return run(options);
    } catch (const std::exception& error) {
        say(error.what());
        return 1;
    }
}

// SPDX-License-Identifier: MIT
#include "options.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

namespace {

// Above this the simulator spends all of its time on ticks.
constexpr double highest_speed = 10'000;
constexpr double longest_step_s = 3'600;
constexpr int longest_delay_ms = 600'000;

struct Flag {
    std::string_view name;
    bool Options::*target;
    std::string_view words;
};

constexpr std::array flags = {
    Flag{"--list-scenarios", &Options::list_scenarios, "print the scenarios and end"},
    Flag{"--help", &Options::help, "print this text and end"},
    Flag{"--version", &Options::version, "print the version and end"},
};

template <typename Number>
std::optional<Number> parse_number(std::string_view text, Number low, Number high) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, number);
    // The comparison is also false for NaN.
    if (parsed.ec != std::errc{} || parsed.ptr != end || !(number >= low && number <= high))
        return std::nullopt;
    return number;
}

std::string store_path(std::string& target, std::string_view name, std::string_view value) {
    target = value;
    return value.empty() ? std::string{name} + " needs a path." : "";
}

template <typename Number, typename Limit>
std::string store_number(Number& target, std::string_view value, Limit low, Limit high,
                         const char* fault) {
    const std::optional<Number> number =
        parse_number<Number>(value, static_cast<Number>(low), static_cast<Number>(high));
    if (!number)
        return fault;
    target = *number;
    return "";
}

std::string store_scenario(Options& options, std::string_view value) {
    options.scenario = find_scenario(value);
    if (options.scenario)
        return "";
    return "There is no scenario “" + std::string{value} + "”: see --list-scenarios.";
}

/// `store` returns a sentence that says what is wrong with the value, "" when nothing is.
struct Setting {
    std::string_view name;
    std::string_view value_name;
    std::string_view words;
    std::string (*store)(Options& options, std::string_view name, std::string_view value);
};

constexpr std::array settings = {
    Setting{"--socket", "PATH", "where to listen (needed)",
            [](Options& o, std::string_view n, std::string_view v) {
                return store_path(o.socket, n, v);
            }},
    Setting{"--scenario", "NAME", "what to play (on-air)",
            [](Options& o, std::string_view, std::string_view v) { return store_scenario(o, v); }},
    Setting{"--state", "FILE", "keep the settings there from run to run",
            [](Options& o, std::string_view n, std::string_view v) {
                return store_path(o.state_file, n, v);
            }},
    Setting{"--speed", "X", "station seconds in a second, 0 to 10000 (1)",
            [](Options& o, std::string_view, std::string_view v) {
                return store_number(o.speed, v, 0.0, highest_speed,
                                    "--speed needs a number from 0 to 10000.");
            }},
    Setting{"--step", "X", "station seconds that pass at each request, 0 to 3600 (0)",
            [](Options& o, std::string_view, std::string_view v) {
                return store_number(o.step_s, v, 0.0, longest_step_s,
                                    "--step needs a number from 0 to 3600.");
            }},
    Setting{"--delay-ms", "N", "wait so long before every reply",
            [](Options& o, std::string_view, std::string_view v) {
                return store_number(o.delay_ms, v, 0, longest_delay_ms,
                                    "--delay-ms needs a whole number from 0 to 600000.");
            }},
    Setting{"--owner-file", "FILE", "not-owner: hand over when it appears or names this user",
            [](Options& o, std::string_view n, std::string_view v) {
                return store_path(o.owner_file, n, v);
            }},
    Setting{"--broker-file", "FILE", "broker-down: the broker runs when it appears",
            [](Options& o, std::string_view n, std::string_view v) {
                return store_path(o.broker_file, n, v);
            }},
    Setting{"--record", "FOLDER", "write every request body there, one file each",
            [](Options& o, std::string_view n, std::string_view v) {
                return store_path(o.record_folder, n, v);
            }},
};

std::string help_line(std::string_view option, std::string_view words) {
    std::string line = "  " + std::string{option};
    line.resize(std::max<std::size_t>(line.size() + 2, 24), ' ');
    return line + std::string{words} + "\n";
}

} // namespace

Options parse_options(std::span<const char* const> arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size() && options.fault.empty(); ++i) {
        const std::string_view argument = arguments[i];
        const std::string_view name = argument.substr(0, argument.find('='));
        const auto* flag = std::find_if(flags.begin(), flags.end(),
                                        [&](const Flag& f) { return f.name == argument; });
        if (flag != flags.end()) {
            options.*(flag->target) = true;
            continue;
        }
        const auto* setting = std::find_if(settings.begin(), settings.end(),
                                           [&](const Setting& s) { return s.name == name; });
        if (setting == settings.end())
            options.fault = "The option “" + std::string{argument} + "” is unknown: see --help.";
        else if (name.size() < argument.size())
            options.fault = setting->store(options, name, argument.substr(name.size() + 1));
        else if (i + 1 < arguments.size())
            options.fault = setting->store(options, name, arguments[++i]);
        else
            options.fault = std::string{name} + " needs a value.";
    }
    const bool only_prints = options.help || options.version || options.list_scenarios;
    if (options.fault.empty() && !only_prints && options.socket.empty())
        options.fault = "--socket PATH is needed: see --help.";
    return options;
}

std::string help_text() {
    std::string text = "Usage: tarnwave-station-simulator --socket PATH [OPTION]…\n\n"
                       "Plays a station service on a local socket.\n\n";
    for (const Setting& setting : settings)
        text += help_line(std::string{setting.name} + " " + std::string{setting.value_name},
                          setting.words);
    for (const Flag& flag : flags)
        text += help_line(flag.name, flag.words);
    return text + "\nSIGUSR1 removes what a scenario waits for. SIGTERM and SIGINT end the "
                  "program.\n";
}

std::string scenario_list() {
    std::string text;
    for (const Scenario& scenario : all_scenarios())
        text += help_line(scenario.name, scenario.description);
    return text;
}

// SPDX-License-Identifier: MIT
#include "station_files.h"

#include "receiver_life.h"
#include "settings_check.h"

#include <pwd.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

namespace json = boost::json;

namespace {

std::string system_fault(const std::string& path) {
    return path + ": " + std::strerror(errno);
}

/// `settings` with the registration of `pattern`, which may differ from run to run.
json::object with_registration_of(const json::object& pattern, json::object settings) {
    const json::value* from = pattern.if_contains("directory");
    json::value* to = settings.if_contains("directory");
    if (!from || !to || !to->is_object())
        return settings;
    for (const char* name : {"id", "email"})
        if (json::value* member = to->get_object().if_contains(name); member && member->is_string())
            *member = from->as_object().at(name);
    return settings;
}

/// The letters of the target's last part, so that the file cannot lie outside of the folder.
std::string plain_name(std::string_view target) {
    std::string name;
    for (const char c : target.substr(target.rfind('/') + 1))
        if (std::isalpha(static_cast<unsigned char>(c)) != 0)
            name += c;
    return name;
}

bool exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

std::string login_name() {
    const passwd* entry = getpwuid(getuid());
    return entry ? entry->pw_name : "";
}

bool is_handed_over(const HandOver& hand_over) {
    std::ifstream file{hand_over.owner_file};
    if (!file)
        return false;
    std::string owner;
    std::getline(file, owner);
    return owner.empty() ? !hand_over.owner_file_was_there : owner == hand_over.user;
}

} // namespace

std::string read_settings_file(const std::string& path, const json::object& pattern,
                               json::object& settings) {
    std::ifstream file{path, std::ios::binary};
    if (!file)
        return access(path.c_str(), F_OK) == 0 ? system_fault(path) : "";
    const std::string text{std::istreambuf_iterator<char>{file}, {}};
    boost::system::error_code error;
    const json::value document = json::parse(text, error);
    if (error || !document.is_object())
        return path + " does not hold one JSON object.";
    const json::object& stored = document.get_object();
    if (const std::string fault = settings_fault(pattern, with_registration_of(pattern, stored));
        !fault.empty())
        return path + ": " + fault;
    settings = stored;
    return "";
}

std::string write_settings_file(const std::string& path, const json::object& settings) {
    std::ofstream file{path, std::ios::binary};
    file << json::serialize(settings) << '\n' << std::flush;
    return file ? "" : system_fault(path);
}

std::string record_body(RequestRecord& record, const ApiRequest& request) {
    if (record.folder.empty() || request.body.empty())
        return "";
    std::error_code error;
    std::filesystem::create_directories(record.folder, error);
    char number[16];
    std::snprintf(number, sizeof number, "%04d", ++record.count);
    const std::filesystem::path path = std::filesystem::path{record.folder} /
                                       (std::string{number} + "-" + plain_name(request.method) +
                                        "-" + plain_name(request.target) + ".json");
    std::ofstream file{path, std::ios::binary};
    file << request.body << std::flush;
    return file ? "" : "Could not write " + path.string() + ".";
}

HandOver make_hand_over(const std::string& owner_file, const std::string& broker_file) {
    return {owner_file, broker_file, login_name(), !owner_file.empty() && exists(owner_file)};
}

void watch_files(const HandOver& hand_over, Station& station) {
    if (!station.owner_accepted && !hand_over.owner_file.empty() && is_handed_over(hand_over))
        station.owner_accepted = true;
    if (!station.broker && !hand_over.broker_file.empty() && exists(hand_over.broker_file)) {
        station.broker = true;
        start_receivers(station);
    }
}

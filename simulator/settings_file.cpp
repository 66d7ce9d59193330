// SPDX-License-Identifier: MIT
#include "settings_file.h"

#include "settings_check.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string_view>
#include <utility>

namespace json = boost::json;

namespace {

std::string system_fault(const std::string& path) {
    return path + ": " + std::strerror(errno);
}

bool write_whole(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return fsync(file) == 0;
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
    const std::string unfinished = path + ".new";
    const int file = open(unfinished.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0)
        return system_fault(unfinished);
    const bool written = write_whole(file, json::serialize(settings) + "\n");
    if (!written || close(file) != 0) {
        std::string fault = system_fault(unfinished);
        if (!written)
            close(file);
        unlink(unfinished.c_str());
        return fault;
    }
    return std::rename(unfinished.c_str(), path.c_str()) == 0 ? "" : system_fault(path);
}

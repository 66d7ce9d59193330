// SPDX-License-Identifier: MIT
#include "request_record.h"

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace {

/// The last part of the target, letters only: no target leads out of the folder.
std::string plain_name(std::string_view target) {
    std::string name;
    for (const char c : target.substr(target.rfind('/') + 1))
        if (std::isalpha(static_cast<unsigned char>(c)) != 0)
            name += c;
    return name;
}

} // namespace

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

// SPDX-License-Identifier: MIT
#include "hand_over.h"

#include "receiver_life.h"

#include <pwd.h>
#include <unistd.h>

#include <fstream>

namespace {

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

// SPDX-License-Identifier: MIT
#include "support/fake_commands.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace {

constexpr char question[] =
    R"(show-user) if [ -f "$folder/linger" ]; then echo yes; else echo no; fi ;;)";

std::string loginctl_lines(const char* changes) {
    return std::string{"case \"$1\" in\n"} + changes + question + "\n*) exit 1 ;;\nesac\n";
}

} // namespace

FakeCommands::FakeCommands() {
    std::string pattern = (fs::temp_directory_path() / "tarnwave-commands-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::system_error{errno, std::generic_category(), "mkdtemp"};
    folder_ = pattern;
    will_run("systemctl", "");
    will_run("pkexec", "");
    will_run("loginctl", loginctl_lines("enable-linger) : >\"$folder/linger\" ;;\n"
                                        "disable-linger) /bin/rm -f \"$folder/linger\" ;;\n"));
    if (const char* path = std::getenv("PATH"))
        path_before_ = path;
    setenv("PATH", folder_.c_str(), 1);
}

FakeCommands::~FakeCommands() {
    setenv("PATH", path_before_.c_str(), 1);
    std::error_code ignored;
    fs::remove_all(folder_, ignored);
}

void FakeCommands::will_run(const std::string& command, const std::string& shell_lines) {
    // A new file in place of the old one: a script that still runs keeps reading its own.
    const fs::path script = folder_ / command;
    const fs::path draft = folder_ / (command + ".draft");
    std::ofstream{draft} << "#!/bin/sh\nfolder='" << folder_.string() << "'\necho \"" << command
                         << "${*:+ $*}\" >>\"$folder/calls\"\n"
                         << shell_lines << '\n';
    fs::permissions(draft, fs::perms::owner_all);
    fs::rename(draft, script);
}

void FakeCommands::remove(const std::string& command) {
    fs::remove(folder_ / command);
}

void FakeCommands::set_lingering(bool on) {
    if (on)
        std::ofstream{folder_ / "linger"};
    else
        fs::remove(folder_ / "linger");
}

bool FakeCommands::lingering() const {
    return fs::exists(folder_ / "linger");
}

void FakeCommands::refuse_to_change_lingering() {
    will_run("loginctl", loginctl_lines("enable-linger | disable-linger) exit 1 ;;\n"));
}

std::vector<std::string> FakeCommands::calls() const {
    std::vector<std::string> lines;
    std::ifstream file{folder_ / "calls"};
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> FakeCommands::calls(std::string_view beginning) const {
    std::vector<std::string> lines = calls();
    std::erase_if(lines, [&](const std::string& line) { return !line.starts_with(beginning); });
    return lines;
}

void FakeCommands::forget_calls() {
    fs::remove(folder_ / "calls");
}

// SPDX-License-Identifier: MIT
// Stand-ins for the system commands that the program runs, on a search path of their own.
//
// While one lives, `systemctl`, `pkexec` and `loginctl` are scripts in a temporary folder, and no
// other command is found. Each call is written down before the script does what a test asked for:
//     FakeCommands commands;
//     commands.will_run("pkexec", "exit 126");
//     EXPECT_EQ(commands.calls("pkexec"), std::vector<std::string>{"pkexec /usr/lib/…"});
// Without being told otherwise all succeed and print nothing, but for `loginctl`: it remembers
// lingering like the real one, and starts with it off.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

class FakeCommands {
public:
    FakeCommands();
    ~FakeCommands();
    FakeCommands(const FakeCommands&) = delete;
    FakeCommands& operator=(const FakeCommands&) = delete;

    /// From now on the command runs these lines of shell, in place of what it did. The folder of
    /// the stand-ins is "$folder" in there; commands outside need their whole path.
    void will_run(const std::string& command, const std::string& shell_lines);
    /// From now on the command does not exist.
    void remove(const std::string& command);

    /// What the stand-in for `loginctl` says about lingering.
    void set_lingering(bool on);
    bool lingering() const;
    /// From now on `loginctl` fails to change lingering, but still answers whether it is on.
    void refuse_to_change_lingering();

    /// The calls so far in the order they came, each as one line: the command and its arguments,
    /// with a blank between them. The second gives those that begin with a text.
    std::vector<std::string> calls() const;
    std::vector<std::string> calls(std::string_view beginning) const;
    void forget_calls();

    const std::filesystem::path& folder() const { return folder_; }

private:
    std::filesystem::path folder_{};
    std::string path_before_{};
};

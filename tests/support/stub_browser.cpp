// SPDX-License-Identifier: MIT
#include "support/stub_browser.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace {

/// A folder that ends with the program.
class Home {
public:
    Home() {
        std::string pattern = (fs::temp_directory_path() / "tarnwave-home-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            throw std::system_error{errno, std::generic_category(), "mkdtemp"};
        folder_ = pattern;
    }
    ~Home() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;
    const fs::path& folder() const { return folder_; }

private:
    fs::path folder_{};
};

const fs::path& home() {
    static const Home only;
    return only.folder();
}

} // namespace

void set_up_stub_browser() {
    fs::create_directories(home() / "applications");
    // The address is written into a new file that replaces the old one, so that it is read whole.
    std::ofstream{home() / "browser"} << "#!/bin/sh\nprintf '%s' \"$1\" >'" << home().string()
                                      << "/draft'\n/bin/mv '" << home().string() << "/draft' '"
                                      << home().string() << "/opened'\n";
    fs::permissions(home() / "browser", fs::perms::owner_all);
    std::ofstream{home() / "applications" / "stub-browser.desktop"}
        << "[Desktop Entry]\nType=Application\nName=Stub browser\nExec=" << home().string()
        << "/browser %u\nMimeType=x-scheme-handler/http;\n";
    std::ofstream{home() / "applications" / "mimeapps.list"}
        << "[Default Applications]\nx-scheme-handler/http=stub-browser.desktop\n";
    setenv("XDG_DATA_HOME", home().c_str(), 1);
}

std::string StubBrowser::opened() const {
    std::ifstream file{home() / "opened"};
    return {std::istreambuf_iterator<char>{file}, {}};
}

void StubBrowser::forget() {
    fs::remove(home() / "opened");
}

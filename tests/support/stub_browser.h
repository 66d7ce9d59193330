// SPDX-License-Identifier: MIT
// A web browser for tests: the desktop's handler of http addresses while the test program runs.
#pragma once

#include <string>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

/// Sets the browser up for the whole process, in a home folder of its own. Called once, before any
/// function of GLib.
void set_up_stub_browser();

class StubBrowser {
public:
    StubBrowser() { forget(); }
    /// The last address that was opened; "" when there was none.
    std::string opened() const;
    void forget();

#ifdef __SANITIZE_ADDRESS__
private:
    // GTK 3 never gives back the window's name that `gtk_show_uri_on_window` makes, and leaves no
    // frame of its own that a suppression could name.
    __lsan::ScopedDisabler gtk_leaks_{};
#endif
};

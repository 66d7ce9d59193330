// SPDX-License-Identifier: MIT
// A user's locale and time zone for the length of a test.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

/// Takes over a locale as start-up does: everything the user's, numbers with a dot. Puts back
/// what was there. Fails the test when the system lacks the locale.
class UserLocale {
public:
    explicit UserLocale(const char* name) : before_{std::setlocale(LC_ALL, nullptr)} {
        EXPECT_NE(std::setlocale(LC_ALL, name), nullptr) << name << " is not installed";
        std::setlocale(LC_NUMERIC, "C");
    }
    ~UserLocale() { std::setlocale(LC_ALL, before_.c_str()); }
    UserLocale(const UserLocale&) = delete;
    UserLocale& operator=(const UserLocale&) = delete;

private:
    std::string before_;
};

/// Sets the time zone, in the form of tzset(3), and puts back what was there.
class TimeZone {
public:
    explicit TimeZone(const char* zone) {
        if (const char* before = std::getenv("TZ"))
            before_ = before;
        setenv("TZ", zone, 1);
        tzset();
    }
    ~TimeZone() {
        if (before_)
            setenv("TZ", before_->c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::optional<std::string> before_{};
};

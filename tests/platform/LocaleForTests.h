// SPDX-License-Identifier: MIT

// A locale in which numbers have a decimal comma.
#ifndef TRAMMEL_TESTS_LOCALEFORTESTS_H
#define TRAMMEL_TESTS_LOCALEFORTESTS_H

#include <clocale>
#include <cstdio>
#include <string>

/// Gives the process the locale de_DE.UTF-8, with a decimal comma, for its lifetime. The build
/// makes that locale, and ctest tells the C library where it is.
class CommaLocale {
public:
    CommaLocale() : mFormer(std::setlocale(LC_ALL, nullptr)) {
        // A thread's own locale would hide the process's.
        uselocale(LC_GLOBAL_LOCALE);
        if (std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr) {
            char text[8];
            std::snprintf(text, sizeof text, "%.1f", 1.5);
            mAvailable = std::string(text) == "1,5";
        }
    }
    ~CommaLocale() { std::setlocale(LC_ALL, mFormer.c_str()); }
    CommaLocale(CommaLocale const&) = delete;
    CommaLocale& operator=(CommaLocale const&) = delete;

    /// True when the locale could be made. Otherwise the test is to be skipped.
    bool Available() const { return mAvailable; }

private:
    std::string mFormer;
    bool mAvailable = false;
};

#endif

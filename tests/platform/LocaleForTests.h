// SPDX-License-Identifier: MIT
//
// A locale in which numbers have a decimal comma.
#ifndef TRAMMEL_TESTS_LOCALEFORTESTS_H
#define TRAMMEL_TESTS_LOCALEFORTESTS_H

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

/// Gives the process a locale with a decimal comma for its lifetime, where the machine has one or
/// can compile one.
class CommaLocale {
public:
    CommaLocale() : mFormer(std::setlocale(LC_ALL, nullptr)) {
        // A thread locale that someone left behind would hide the process locale.
        uselocale(LC_GLOBAL_LOCALE);
        for (char const* const name :
             {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "es_ES.UTF-8", "it_IT.UTF-8"}) {
            if (Works(name)) {
                return;
            }
        }
        Compile();
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, mFormer.c_str());
        if (!mFolder.empty()) {
            unsetenv("LOCPATH");
            std::error_code ignored;
            std::filesystem::remove_all(mFolder, ignored);
        }
    }
    CommaLocale(CommaLocale const&) = delete;
    CommaLocale& operator=(CommaLocale const&) = delete;

    /// False where there is no such locale; the test is then to be skipped.
    bool Available() const { return mAvailable; }

private:
    bool Works(char const* name) {
        if (std::setlocale(LC_ALL, name) == nullptr) {
            return false;
        }
        char text[8];
        std::snprintf(text, sizeof text, "%.1f", 1.5);
        mAvailable = std::string(text) == "1,5";
        return mAvailable;
    }

    void Compile() {
        char folder[] = "/tmp/trammel-locale-XXXXXX";
        if (mkdtemp(folder) == nullptr) {
            return;
        }
        mFolder = folder;
        std::string const command =
            "localedef -i de_DE -f UTF-8 " + mFolder + "/de_DE.UTF-8 >/dev/null 2>&1";
        if (std::system(command.c_str()) == 0 && setenv("LOCPATH", folder, 1) == 0) {
            Works("de_DE.UTF-8");
        }
    }

    std::string mFormer;
    std::string mFolder;
    bool mAvailable = false;
};

#endif

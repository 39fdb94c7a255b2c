// SPDX-License-Identifier: MIT

#include "Warning.h"

#include "Error.h"

#include <cstdio>

#include <unistd.h>

namespace tool {

namespace {

WarningMode& Mode() {
    static WarningMode mode = WarningMode::kPrint;
    return mode;
}

/// What keeps the diagnostics of this thread; null: nothing.
HeldDiagnostics*& Held() {
    static thread_local HeldDiagnostics* held = nullptr;
    return held;
}

} // namespace

HeldDiagnostics::HeldDiagnostics() { Held() = this; }

HeldDiagnostics::~HeldDiagnostics() { Held() = nullptr; }

bool HeldDiagnostics::AreThere() { return Held() != nullptr; }

void SetWarningMode(WarningMode mode) { Mode() = mode; }

bool Silent() { return Mode() == WarningMode::kSilent; }

void Warn(std::string const& file, std::string const& place, std::string const& message) {
    if (Mode() == WarningMode::kError) {
        throw Error(file, place, message);
    }
    if (Mode() == WarningMode::kPrint) {
        PrintDiagnostic(std::string("warning: ") + Error(file, place, message).what());
    }
}

void PrintDiagnostic(std::string const& line) {
    if (HeldDiagnostics* const held = Held()) {
        held->mLines.push_back(line);
        return;
    }
    // A terminal may show the progress of the work in the line where this one goes.
    std::string const text =
        (isatty(STDERR_FILENO) == 1 ? "\r\x1B[K" : "") + ("trammel: " + line) + "\n";
    std::fwrite(text.data(), 1, text.size(), stderr);
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "Progress.h"

#include "Error.h"
#include "Warning.h"

#include <cstdio>

#include <unistd.h>

namespace tool {

namespace {

constexpr std::chrono::milliseconds kPatience(200);
constexpr std::chrono::milliseconds kInterval(100);

} // namespace

Progress::Progress(std::string const& what, std::size_t total)
    : mWhat(OneLine(what)), mTotal(total),
      mTerminal(!Silent() && !HeldDiagnostics::AreThere() && isatty(STDERR_FILENO) == 1),
      mNext(std::chrono::steady_clock::now() + kPatience) {}

Progress::~Progress() {
    if (mShown) {
        std::fputs("\r\x1B[K", stderr);
        std::fflush(stderr);
    }
}

void Progress::Update(std::size_t done) {
    if (!mTerminal) {
        return;
    }
    auto const now = std::chrono::steady_clock::now();
    if (now < mNext) {
        return;
    }
    mNext = now + kInterval;
    mShown = true;
    std::fprintf(stderr, "\r\x1B[K%s: %zu of %zu", mWhat.c_str(), done, mTotal);
    std::fflush(stderr);
}

} // namespace tool

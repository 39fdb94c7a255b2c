// SPDX-License-Identifier: MIT

// Progress of long work: one line on standard error that is written over and over, and wiped at the
// end. Nothing is written if standard error is no terminal, if warnings are silent, or in the first
// fifth of a second.

#ifndef TRAMMEL_APP_PROGRESS_H
#define TRAMMEL_APP_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

namespace tool {

/// The progress of `total` steps.
class Progress {
public:
    Progress(std::string const& what, std::size_t total);
    ~Progress();
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;

    /// Takes note that `done` steps are finished. A call is cheap: it writes to the terminal at
    /// most ten times a second.
    void Update(std::size_t done);

private:
    std::string mWhat;
    std::size_t mTotal;
    bool mTerminal;
    bool mShown = false;
    std::chrono::steady_clock::time_point mNext;
};

} // namespace tool

#endif

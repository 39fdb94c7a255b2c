// SPDX-License-Identifier: MIT

// Warnings: what a run passes over and the user should know, with the file and the place there. The
// run goes on after a warning, unless it is strict.

#ifndef TRAMMEL_APP_WARNING_H
#define TRAMMEL_APP_WARNING_H

#include <string>
#include <utility>
#include <vector>

namespace tool {

/// What becomes of warnings in this run.
enum class WarningMode {
    kPrint,  ///< a line on standard error each
    kSilent, ///< nothing
    kError,  ///< the first one is an error
};

/// Sets the mode of the whole run. It is kPrint at the beginning.
void SetWarningMode(WarningMode mode);
/// True in the mode kSilent.
bool Silent();

/// Warns of something at a place in a file, either of which may be empty. In the mode kError it
/// throws an Error with the same words instead.
void Warn(std::string const& file, std::string const& place, std::string const& message);

/// Writes "trammel: `line`" to standard error, in place of the line that shows the progress.
void PrintDiagnostic(std::string const& line);

/// While it lives, what PrintDiagnostic gets in its thread is kept, and the thread shows no
/// progress.
class HeldDiagnostics {
public:
    HeldDiagnostics();
    ~HeldDiagnostics();
    HeldDiagnostics(HeldDiagnostics const&) = delete;
    HeldDiagnostics& operator=(HeldDiagnostics const&) = delete;

    /// True in a thread that keeps them.
    static bool AreThere();
    /// Returns the lines so far, and keeps none of them.
    std::vector<std::string> Take() { return std::move(mLines); }

private:
    friend void PrintDiagnostic(std::string const& line);
    std::vector<std::string> mLines;
};

} // namespace tool

#endif

// SPDX-License-Identifier: MIT

// The one kind of failure that the tool reports: the mistake, its file and its place there. It ends
// the run with one line on standard error and exit status 2.

#ifndef TRAMMEL_APP_ERROR_H
#define TRAMMEL_APP_ERROR_H

#include <exception>
#include <string>

namespace tool {

/// A failure with its file (or option) and the place in it; either may be empty.
class Error : public std::exception {
public:
    Error(std::string const& file, std::string const& place, std::string const& message);

    /// "FILE: PLACE: message", without the parts that are empty, and always one line: control
    /// characters, which file names may contain, are written as \xNN.
    char const* what() const noexcept override { return mLine.c_str(); }

private:
    std::string mLine;
};

/// Returns the text with every control character written as \xNN.
std::string OneLine(std::string const& text);

/// Returns the system's message for an error number.
std::string SystemMessage(int errorNumber);

} // namespace tool

#endif

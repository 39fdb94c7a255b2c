// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_APP_INPUT_H
#define TRAMMEL_APP_INPUT_H

#include <cstddef>
#include <string>

namespace tool {

/// No drawing or font in use is larger, and memory holds a file of this size a few times over.
inline constexpr std::size_t kLargestFile = std::size_t{128} << 20;

/// The name that stands for standard input, and for standard output where a file is written.
inline constexpr char const* kStandardStream = "-";

/// Returns the content of a file of at most kLargestFile bytes, unpacked if it is a gzip file. The
/// name "-" stands for standard input. Throws Error when the file is missing, a folder, unreadable,
/// empty, larger or damaged.
std::string ReadFile(std::string const& file);

} // namespace tool

#endif

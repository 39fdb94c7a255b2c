// SPDX-License-Identifier: MIT

#ifndef TRAMMEL_APP_INPUT_H
#define TRAMMEL_APP_INPUT_H

#include <string>

namespace tool {

/// Returns the content of a file of at most 128 MiB. Throws Error when the file is missing, a
/// folder, unreadable, empty or larger.
std::string ReadFile(std::string const& file);

} // namespace tool

#endif

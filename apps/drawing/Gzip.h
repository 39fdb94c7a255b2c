// SPDX-License-Identifier: MIT

// Gzip: packed files, as drawings named .svgz are.

#ifndef TRAMMEL_APP_GZIP_H
#define TRAMMEL_APP_GZIP_H

#include <string>
#include <string_view>

namespace tool {

/// True when the content begins like a gzip file.
bool LooksZipped(std::string_view content);

/// Returns the unpacked content of a gzip file, all its members one after the other. `file` is for
/// messages. Throws Error when the content is damaged, or unpacks to more than ReadFile reads.
std::string Unzipped(std::string const& file, std::string_view content);

/// Returns the text as a gzip file. The same text gives the same bytes.
std::string Zipped(std::string_view text);

} // namespace tool

#endif

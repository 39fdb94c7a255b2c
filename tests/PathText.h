// SPDX-License-Identifier: MIT

// Paths of tests, written as SVG path text.

#ifndef TRAMMEL_PATHTEXT_H
#define TRAMMEL_PATHTEXT_H

#include "CPath.h"
#include "SvgPath.h"

#include <gtest/gtest.h>

#include <string_view>

namespace trammel_test {

/// Returns the path of a text that has no error.
inline CPath Path(std::string_view text) {
    trammel::SvgPathResult const result = trammel::ReadSvgPath(text);
    EXPECT_FALSE(result.error) << text.substr(0, 200) << ": " << result.error->Message();
    return result.path;
}

} // namespace trammel_test

#endif

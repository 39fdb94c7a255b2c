// SPDX-License-Identifier: MIT

#include "Assertion_p.h"

#include <cstdio>
#include <cstdlib>

namespace trammel_detail {

void trammel_assert_rtn(char const* function, char const* file, long line,
                        char const* condition) noexcept {
    auto const text = [](char const* given) { return given != nullptr ? given : ""; };
    std::fprintf(stderr, "Assertion failed: (%s), function %s, file %s, line %ld.\n",
                 text(condition), text(function), text(file), line);
    std::fflush(stderr);
    std::abort();
}

} // namespace trammel_detail

// SPDX-License-Identifier: MIT

// The report of a broken precondition. Not installed.

#ifndef TRAMMEL_ASSERTION_P_H
#define TRAMMEL_ASSERTION_P_H

#include "TrammelExport.h"

namespace trammel_detail {

/// Prints "Assertion failed: (CONDITION), function NAME, file FILE, line N." and a line end to
/// standard error, then aborts the process. It does so in every build type: callers test the
/// condition themselves, and NDEBUG has no influence.
///
/// Null texts print as "".
/// \param function the function's bare name.
/// \param file the path below the source tree, such as "Sources/TPoly.cpp".
/// \param line the line of the test.
/// \param condition the text of the condition.
[[noreturn]] TRAMMEL_API void trammel_assert_rtn(char const* function, char const* file, long line,
                                                 char const* condition) noexcept;

} // namespace trammel_detail

#endif

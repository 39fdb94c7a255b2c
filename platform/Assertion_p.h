// SPDX-License-Identifier: MIT

// Report of a broken precondition.
#ifndef TRAMMEL_ASSERTION_P_H
#define TRAMMEL_ASSERTION_P_H

#include "TrammelExport.h"

namespace trammel_detail {

/// Prints "Assertion failed: (CONDITION), function NAME, file FILE, line N." and a line end to
/// standard error, then aborts the process. In every build type: callers test the condition
/// themselves, and NDEBUG has no influence.
///
/// Parameters: function - its bare name; file - the path below the source tree, such as
/// "Sources/TPoly.cpp"; line - the line of the test; condition - its text. Null texts print as "".
[[noreturn]] TRAMMEL_API void trammel_assert_rtn(const char* function, const char* file, long line,
                                                 const char* condition) noexcept;

} // namespace trammel_detail

#endif

// SPDX-License-Identifier: MIT

// Has the process one thread only? Not installed.

#ifndef TRAMMEL_SINGLETHREADED_P_H
#define TRAMMEL_SINGLETHREADED_P_H

#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

namespace trammel_detail {

/// True when the C library knows that there is no other thread. Then a plain addition does for an
/// atomic one, and nothing needs a lock.
inline bool SingleThreaded() noexcept {
#if __has_include(<sys/single_threaded.h>)
    return __libc_single_threaded != 0;
#else
    return false;
#endif
}

} // namespace trammel_detail

#endif

// SPDX-License-Identifier: MIT

// Counts what a test program allocates, so that a test can judge a cost without a clock, and lets
// memory run out when a test says so. Each program that includes this header is linked with
// ShortMemory.cpp, whose functions count and refuse. Memory for handles has a switch of its own in
// the library, trammel_detail::FailNextAllocations.

#ifndef TRAMMEL_SHORTMEMORY_H
#define TRAMMEL_SHORTMEMORY_H

#include <cstddef>
#include <limits>

namespace trammel_test {

/// How many requests the program has made to operator new.
std::size_t AllocationCount();
/// How many bytes these requests were for.
std::size_t AllocatedBytes();

/// While it lives, operator new grants `allocations` more requests of at most `largest` bytes, and
/// fails from there on. There is one at a time.
class ShortMemory {
public:
    explicit ShortMemory(long allocations, std::size_t largest = std::size_t{1} << 24U);
    ~ShortMemory();
    ShortMemory(ShortMemory const&) = delete;
    ShortMemory& operator=(ShortMemory const&) = delete;

    /// How many more requests will be granted; negative after a failure.
    static long Left();
};

/// While it lives, malloc, calloc and realloc grant `calls` more requests. They refuse the
/// `failures` requests that follow, all if nothing is said. operator new needs malloc. There is one
/// at a time.
class ShortMalloc {
public:
    /// False where malloc belongs to a sanitizer or to another C library than GNU's. Then nothing
    /// runs out.
    static bool Works();

    explicit ShortMalloc(long calls, long failures = std::numeric_limits<long>::max());
    ~ShortMalloc();
    ShortMalloc(ShortMalloc const&) = delete;
    ShortMalloc& operator=(ShortMalloc const&) = delete;

    /// True after a refusal, and until the next one is made.
    static bool Refused();
};

/// How many blocks of operator new and malloc the program holds. Only those of operator new where
/// ShortMalloc does not work.
long LiveBlockCount();

} // namespace trammel_test

#endif

// SPDX-License-Identifier: MIT

// What a test program allocates, counted, so that a cost can be tested without a clock; and memory
// that runs out when a test says so. The functions that count and refuse are in ShortMemory.cpp,
// which is part of each program that includes this header. Memory for handles has a switch of its
// own in the library, trammel_detail::FailNextAllocations.

#ifndef TRAMMEL_SHORTMEMORY_H
#define TRAMMEL_SHORTMEMORY_H

#include <cstddef>

namespace trammel_test {

/// How many requests the program has made to operator new.
std::size_t AllocationCount();
/// How many bytes these requests were for.
std::size_t AllocatedBytes();

/// While it lives, operator new grants `allocations` more requests of at most `largest` bytes, and
/// fails from there on. One at a time.
class ShortMemory {
public:
    explicit ShortMemory(long allocations, std::size_t largest = std::size_t{1} << 24U);
    ~ShortMemory();
    ShortMemory(ShortMemory const&) = delete;
    ShortMemory& operator=(ShortMemory const&) = delete;

    /// How many more requests will be granted; negative after a failure.
    static long Left();
};

/// While it lives, malloc grants `calls` more requests and fails from there on; operator new needs
/// malloc. One at a time.
class ShortMalloc {
public:
    /// False where malloc belongs to a sanitizer or to another C library than GNU's. Then nothing
    /// runs out.
    static bool Works();

    explicit ShortMalloc(long calls);
    ~ShortMalloc();
    ShortMalloc(ShortMalloc const&) = delete;
    ShortMalloc& operator=(ShortMalloc const&) = delete;
};

} // namespace trammel_test

#endif

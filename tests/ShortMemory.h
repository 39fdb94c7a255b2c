// SPDX-License-Identifier: MIT
//
// Memory that runs out when a test says so. The program's operator new, which obeys it, is in
// CPath_test.cpp; in a program without that file nothing runs out.
#ifndef TRAMMEL_SHORTMEMORY_H
#define TRAMMEL_SHORTMEMORY_H

#include <cstddef>

namespace trammel_test {

inline bool gMemoryIsShort = false;        // NOLINT: operator new knows no object to keep it in
inline long gAllocationsLeft = 0;          // NOLINT: as above
inline std::size_t gLargestAllocation = 0; // NOLINT: as above

/// While it lives, memory suffices for `allocations` more requests of at most `largest` bytes.
class ShortMemory {
public:
    explicit ShortMemory(long allocations, std::size_t largest = std::size_t{1} << 24U) {
        gAllocationsLeft = allocations;
        gLargestAllocation = largest;
        gMemoryIsShort = true;
    }
    ~ShortMemory() { gMemoryIsShort = false; }
    ShortMemory(ShortMemory const&) = delete;
    ShortMemory& operator=(ShortMemory const&) = delete;
};

} // namespace trammel_test

#endif

// SPDX-License-Identifier: MIT
//
// The operators that count, and obey, for the programs that this file is part of.
#include "CountedMemory.h"

#include <cstdlib>
#include <new>

#if TRAMMEL_TEST_COUNTS_MEMORY

using trammel_test::gAllocatedBytes;

// Not inline: the compiler would see blocks of `new` being freed, and warn.
[[gnu::noinline]] void* operator new(std::size_t size) {
    gAllocatedBytes += size;
    ++trammel_test::gAllocations;
    if (trammel_test::gAllocationsLeft >= 0 && trammel_test::gAllocationsLeft-- == 0) {
        trammel_test::gAllocationsLeft = 0; // stays short until the test says otherwise
        throw std::bad_alloc();
    }
    if (void* const block = std::malloc(size > 0 ? size : 1)) {
        return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }

#endif

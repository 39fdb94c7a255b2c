// SPDX-License-Identifier: MIT
//
// What this program allocates, so that a cost can be tested without a clock, and memory that runs
// out when a test says so. The operators that count and obey are in CountedMemory.cpp.
#ifndef TRAMMEL_COUNTEDMEMORY_H
#define TRAMMEL_COUNTEDMEMORY_H

#include <atomic>
#include <cstddef>

// The address sanitizer has its own memory operators, and checks them.
#if defined(__SANITIZE_ADDRESS__)
#define TRAMMEL_TEST_COUNTS_MEMORY 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TRAMMEL_TEST_COUNTS_MEMORY 0
#endif
#endif
#ifndef TRAMMEL_TEST_COUNTS_MEMORY
#define TRAMMEL_TEST_COUNTS_MEMORY 1
#endif

#if TRAMMEL_TEST_COUNTS_MEMORY

namespace trammel_test {

// NOLINTBEGIN: operator new knows no object to keep them in
inline std::atomic<std::size_t> gAllocatedBytes{0};
inline std::atomic<std::size_t> gAllocations{0};
inline std::atomic<long> gAllocationsLeft{-1}; // negative: as many as there is memory for
// NOLINTEND

} // namespace trammel_test

#endif

#endif

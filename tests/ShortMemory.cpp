// SPDX-License-Identifier: MIT

// The program's operator new, which counts and may refuse, and a malloc that may refuse. Otherwise
// both allocate as they always do.

#include "ShortMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

// A sanitizer keeps malloc to itself; the name below that reaches the real one is GNU's.
#if !defined(__GLIBC__) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TRAMMEL_TEST_OWN_MALLOC 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) ||                         \
    __has_feature(memory_sanitizer)
#define TRAMMEL_TEST_OWN_MALLOC 0
#endif
#endif
#ifndef TRAMMEL_TEST_OWN_MALLOC
#define TRAMMEL_TEST_OWN_MALLOC 1
#endif

namespace {

// operator new and malloc know no object to keep these in. Threads of a test allocate, too.
std::atomic<std::size_t> gCount{0};
std::atomic<std::size_t> gBytes{0};
std::atomic<bool> gNewIsShort{false};
std::atomic<long> gNewLeft{0};
std::atomic<std::size_t> gLargest{0};
std::atomic<bool> gMallocIsShort{false};
std::atomic<long> gMallocLeft{0};

void* AllocateOrNull(std::size_t size) noexcept {
    ++gCount;
    gBytes += size;
    if (gNewIsShort && (size > gLargest || --gNewLeft < 0)) {
        return nullptr;
    }
    return std::malloc(size != 0 ? size : 1);
}

} // namespace

// None of these is inline: the compiler would see a block of operator new handed to free, and warn.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const block = AllocateOrNull(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
[[gnu::noinline]] void* operator new[](std::size_t size) { return operator new(size); }
[[gnu::noinline]] void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return AllocateOrNull(size);
}
[[gnu::noinline]] void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    return AllocateOrNull(size);
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete[](void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::nothrow_t const&) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete[](void* block, std::nothrow_t const&) noexcept {
    std::free(block);
}

#if TRAMMEL_TEST_OWN_MALLOC

extern "C" void* __libc_malloc(std::size_t size); // NOLINT: GNU's own name for its malloc

extern "C" void* malloc(std::size_t size) noexcept { // NOLINT: replaces the C library's
    return gMallocIsShort && --gMallocLeft < 0 ? nullptr : __libc_malloc(size);
}

#endif

namespace trammel_test {

std::size_t AllocationCount() { return gCount; }

std::size_t AllocatedBytes() { return gBytes; }

ShortMemory::ShortMemory(long allocations, std::size_t largest) {
    gNewLeft = allocations;
    gLargest = largest;
    gNewIsShort = true;
}

ShortMemory::~ShortMemory() { gNewIsShort = false; }

long ShortMemory::Left() { return gNewLeft; }

bool ShortMalloc::Works() { return TRAMMEL_TEST_OWN_MALLOC != 0; }

ShortMalloc::ShortMalloc(long calls) {
    gMallocLeft = calls;
    gMallocIsShort = true;
}

ShortMalloc::~ShortMalloc() { gMallocIsShort = false; }

} // namespace trammel_test

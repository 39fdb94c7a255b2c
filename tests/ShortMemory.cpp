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
std::atomic<long> gMallocFailures{0};
std::atomic<bool> gMallocRefused{false};
std::atomic<long> gLive{0};

/// Counts a block of operator new where malloc cannot.
void CountLive(void const* block, long change) noexcept {
    if (TRAMMEL_TEST_OWN_MALLOC == 0 && block != nullptr) {
        gLive += change;
    }
}

void* AllocateOrNull(std::size_t size) noexcept {
    ++gCount;
    gBytes += size;
    if (gNewIsShort && (size > gLargest || --gNewLeft < 0)) {
        return nullptr;
    }
    void* const block = std::malloc(size != 0 ? size : 1);
    CountLive(block, 1);
    return block;
}

void Release(void* block) noexcept {
    CountLive(block, -1);
    std::free(block);
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
[[gnu::noinline]] void operator delete(void* block) noexcept { Release(block); }
[[gnu::noinline]] void operator delete[](void* block) noexcept { Release(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { Release(block); }
[[gnu::noinline]] void operator delete[](void* block, std::size_t) noexcept { Release(block); }
[[gnu::noinline]] void operator delete(void* block, std::nothrow_t const&) noexcept {
    Release(block);
}
[[gnu::noinline]] void operator delete[](void* block, std::nothrow_t const&) noexcept {
    Release(block);
}

#if TRAMMEL_TEST_OWN_MALLOC

extern "C" {

// GNU's own names for its functions
void* __libc_malloc(std::size_t size);               // NOLINT
void* __libc_calloc(std::size_t n, std::size_t s);   // NOLINT
void* __libc_realloc(void* block, std::size_t size); // NOLINT
void __libc_free(void* block);                       // NOLINT

/// True when this request must fail.
static bool Refuses() noexcept {
    if (!gMallocIsShort || --gMallocLeft >= 0 || --gMallocFailures < 0) {
        return false;
    }
    gMallocRefused = true;
    return true;
}

static void* Counted(void* block) noexcept {
    gLive += block != nullptr ? 1 : 0;
    return block;
}

void* malloc(std::size_t size) noexcept { // NOLINT: these replace the C library's
    return Refuses() ? nullptr : Counted(__libc_malloc(size));
}
void* calloc(std::size_t n, std::size_t size) noexcept { // NOLINT
    return Refuses() ? nullptr : Counted(__libc_calloc(n, size));
}
void* realloc(void* block, std::size_t size) noexcept { // NOLINT
    if (Refuses()) {
        return nullptr;
    }
    void* const moved = __libc_realloc(block, size);
    gLive += (moved != nullptr && block == nullptr) ? 1 : 0;
    gLive -= (moved == nullptr && block != nullptr && size == 0) ? 1 : 0;
    return moved;
}
void free(void* block) noexcept { // NOLINT
    gLive -= block != nullptr ? 1 : 0;
    __libc_free(block);
}
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

ShortMalloc::ShortMalloc(long calls, long failures) {
    gMallocLeft = calls;
    gMallocFailures = failures;
    gMallocRefused = false;
    gMallocIsShort = true;
}

ShortMalloc::~ShortMalloc() { gMallocIsShort = false; }

bool ShortMalloc::Refused() { return gMallocRefused; }

long LiveBlockCount() { return gLive; }

} // namespace trammel_test

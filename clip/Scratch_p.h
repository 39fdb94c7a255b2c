// SPDX-License-Identifier: MIT

// Working memory of one operation: on the stack for small operands, on the heap beyond. Not
// installed.
#ifndef TRAMMEL_SCRATCH_P_H
#define TRAMMEL_SCRATCH_P_H

#include <cstddef>
#include <functional>
#include <limits>
#include <new>
#include <type_traits>
#include <vector>

namespace trammel_detail {

/// A block of memory for one operation. It outlives all vectors in it. Small operands fit in it and
/// so save calls of the heap, which take most of their time otherwise.
class Scratch {
public:
    Scratch() : mFree(mBlock) {}
    Scratch(Scratch const&) = delete;
    Scratch& operator=(Scratch const&) = delete;

    /// Returns `size` bytes of the block, or of the heap where the block has fewer left. Throws
    /// std::bad_alloc.
    void* Take(std::size_t size) {
        std::size_t const whole = Rounded(size);
        if (whole < size || whole > static_cast<std::size_t>(mBlock + kSize - mFree)) {
            return ::operator new(size);
        }
        void* const taken = mFree;
        mFree += whole;
        return taken;
    }
    /// Takes back `size` bytes that Take() gave. Bytes of the block can be given again only if they
    /// were the last ones that it gave.
    void TakeBack(void* given, std::size_t size) {
        auto* const begin = static_cast<unsigned char*>(given);
        // std::less orders pointers into different arrays, too. The end counts as part of the
        // block: a full block gives its end to a call for 0 bytes.
        if (std::less<>()(begin, mBlock) || std::less<>()(mBlock + kSize, begin)) {
            ::operator delete(given);
        } else if (begin + Rounded(size) == mFree) {
            mFree = begin;
        }
    }

private:
    static constexpr std::size_t kSize = 24576;
    static constexpr std::size_t kUnit = 16;

    static std::size_t Rounded(std::size_t size) { return (size + kUnit - 1) / kUnit * kUnit; }

    alignas(kUnit) unsigned char mBlock[kSize];
    unsigned char* mFree;
};

/// Allocates from a Scratch, or from the heap without one. Elements that are added without a value
/// stay uninitialised if their type has no constructor.
template <class T> class ScratchAllocator {
public:
    typedef T value_type;
    typedef std::true_type propagate_on_container_copy_assignment;
    typedef std::true_type propagate_on_container_move_assignment;
    typedef std::true_type propagate_on_container_swap;

    ScratchAllocator(Scratch* scratch = nullptr) : mScratch(scratch) {}
    template <class U>
    ScratchAllocator(ScratchAllocator<U> const& other) : mScratch(other.GetScratch()) {}

    T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_alloc();
        }
        std::size_t const size = count * sizeof(T);
        return static_cast<T*>(mScratch != nullptr ? mScratch->Take(size) : ::operator new(size));
    }
    void deallocate(T* given, std::size_t count) {
        if (mScratch != nullptr) {
            mScratch->TakeBack(given, count * sizeof(T));
        } else {
            ::operator delete(given);
        }
    }
    template <class U> void construct(U* at) { ::new (static_cast<void*>(at)) U; }
    template <class U, class... Values> void construct(U* at, Values&&... values) {
        ::new (static_cast<void*>(at)) U{static_cast<Values&&>(values)...};
    }
    Scratch* GetScratch() const { return mScratch; }

    friend bool operator==(ScratchAllocator const& a, ScratchAllocator const& b) {
        return a.mScratch == b.mScratch;
    }
    friend bool operator!=(ScratchAllocator const& a, ScratchAllocator const& b) {
        return !(a == b);
    }

private:
    Scratch* mScratch;
};

/// A vector in a Scratch. The alignment of T is at most that of Scratch.
template <class T> using ScratchVector = std::vector<T, ScratchAllocator<T>>;

} // namespace trammel_detail

#endif

// SPDX-License-Identifier: MIT

// Working memory of one operation: on the stack for small operands, on the heap beyond. Not
// installed.
#ifndef TRAMMEL_SCRATCH_P_H
#define TRAMMEL_SCRATCH_P_H

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <new>
#include <type_traits>
#include <vector>

namespace trammel_detail {

/// The memory of one operation. It outlives all vectors in it. Small operands fit in a block on the
/// stack and so save calls of the heap, which take most of their time otherwise.
///
/// Large vectors are in chunks of the heap. Each chunk has at least twice the size of all before,
/// unless memory is short. What one vector leaves serves the next. The C library keeps freed memory
/// for the next operation if most of it was one chunk, and gives much of it back to the system if
/// not. New pages of the system took up to 40 % of the time.
class Scratch {
public:
    Scratch() : mFree(mBlock) {}
    Scratch(Scratch const&) = delete;
    Scratch& operator=(Scratch const&) = delete;
    ~Scratch() {
        for (std::size_t i = 0; i < mChunkCount; ++i) {
            ::operator delete(mChunks[i]);
        }
    }

    /// Returns `size` bytes of the block, or of the heap where the block has fewer left. Throws
    /// std::bad_alloc.
    void* Take(std::size_t size) {
        std::size_t const whole = Rounded(size);
        if (whole < size) {
            throw std::bad_alloc();
        }
        if (whole > static_cast<std::size_t>(mBlock + kSize - mFree)) {
            return IsLarge(size) ? TakeRange(whole) : ::operator new(size);
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
            if (IsLarge(size)) {
                Keep({begin, Rounded(size)});
            } else {
                ::operator delete(given);
            }
        } else if (begin + Rounded(size) == mFree) {
            mFree = begin;
        }
    }

private:
    static constexpr std::size_t kSize = 24576;
    static constexpr std::size_t kUnit = 16;
    static constexpr std::size_t kLarge = 32768; // more than the block has
    static constexpr std::size_t kFirstChunk = 262144;
    static constexpr std::size_t kMostChunks = 48; // as their sizes double, enough for all memory
    static constexpr std::size_t kMostRanges = 32;

    /// Bytes of a chunk that are free.
    struct Range {
        unsigned char* begin;
        std::size_t size;

        unsigned char* End() const { return begin + size; }
    };

    static std::size_t Rounded(std::size_t size) { return (size + kUnit - 1) / kUnit * kUnit; }

    static bool IsLarge(std::size_t size) { return size >= kLarge; }

    /// Returns the beginning of the smallest free range that is large enough.
    void* TakeRange(std::size_t size) {
        std::size_t best = FindRange(size);
        if (best == mRangeCount) {
            AddChunk(size);
            best = FindRange(size);
        }
        Range& range = mRanges[best];
        unsigned char* const taken = range.begin;
        range.begin += size;
        range.size -= size;
        if (range.size == 0) {
            Remove(best);
        }
        return taken;
    }
    /// Returns the number of that range, or mRangeCount for none.
    std::size_t FindRange(std::size_t size) const {
        std::size_t best = mRangeCount;
        for (std::size_t i = 0; i < mRangeCount; ++i) {
            if (mRanges[i].size >= size &&
                (best == mRangeCount || mRanges[i].size < mRanges[best].size)) {
                best = i;
            }
        }
        return best;
    }
    void AddChunk(std::size_t size) {
        if (mChunkCount == kMostChunks) {
            throw std::bad_alloc();
        }
        std::size_t whole = std::max({size, kFirstChunk, 2 * mChunkTotal});
        void* chunk = ::operator new(whole, std::nothrow);
        if (chunk == nullptr) {
            whole = size;
            chunk = ::operator new(whole);
        }
        mChunks[mChunkCount++] = chunk;
        mChunkTotal += whole;
        Keep({static_cast<unsigned char*>(chunk), whole});
    }
    /// Adds a range to the free ones, which are in the order of their addresses. Where there are
    /// too many, the smallest is lost until the end of the operation.
    void Keep(Range range) {
        std::size_t i = 0;
        while (i < mRangeCount && std::less<>()(mRanges[i].begin, range.begin)) {
            ++i;
        }
        if (i < mRangeCount && range.End() == mRanges[i].begin) {
            range.size += mRanges[i].size;
            Remove(i);
        }
        if (i > 0 && mRanges[i - 1].End() == range.begin) {
            mRanges[i - 1].size += range.size;
            return;
        }
        std::copy_backward(mRanges + i, mRanges + mRangeCount, mRanges + mRangeCount + 1);
        mRanges[i] = range;
        if (++mRangeCount > kMostRanges) {
            Remove(static_cast<std::size_t>(
                std::min_element(mRanges, mRanges + mRangeCount,
                                 [](Range a, Range b) { return a.size < b.size; }) -
                mRanges));
        }
    }
    void Remove(std::size_t range) {
        std::copy(mRanges + range + 1, mRanges + mRangeCount, mRanges + range);
        --mRangeCount;
    }

    alignas(kUnit) unsigned char mBlock[kSize];
    unsigned char* mFree;
    Range mRanges[kMostRanges + 1];
    std::size_t mRangeCount = 0;
    void* mChunks[kMostChunks];
    std::size_t mChunkCount = 0;
    std::size_t mChunkTotal = 0;
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

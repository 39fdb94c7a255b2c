// SPDX-License-Identifier: MIT

// Relocatable memory blocks behind handles.
#ifndef TRAMMEL_HANDLES_H
#define TRAMMEL_HANDLES_H

#include "TrammelExport.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>

// A handle points to a master pointer, and the master pointer points to the block:
//
//     Handle ---> master pointer ---> block: | bytes in use | spare bytes |
//                 (never moves)      (moves)  0              size          capacity
//
// The handle stays valid until DisposeHandle; the block may move whenever its size changes, so a
// pointer into it is good only until the next call that resizes it. Blocks begin at an address
// divisible by 16. Spare bytes make repeated appending cheap and are never visible: sizes count the
// bytes in use, and bytes that come into use by growing are zero.
//
// No function here throws. Functions that take a handle accept a null one. Different handles may be
// used in different threads at the same time, one handle only in one thread at a time.

/// Address of a block.
typedef char* Ptr;
/// Address of a master pointer; null stands for "no storage".
typedef Ptr* Handle;
/// Number of bytes. Sizes below 0 and above 1 TiB (2^40 bytes) are treated as "memory is short".
typedef long Size;
/// Result code: `noErr`, or a negative number.
typedef int16_t OSErr;

/// The call did what it says.
inline constexpr OSErr noErr = 0;
/// Memory is short, or the size asked for is negative or larger than any block can be.
inline constexpr OSErr memFullErr = -108;
/// A null handle, or a null pointer where data or a handle variable is needed.
inline constexpr OSErr nilHandleErr = -109;

namespace trammel_detail {

/// What a handle points to. Applications see only `block`, the master pointer.
struct BlockRecord {
    Ptr block;
    Size size;     ///< bytes in use
    Size capacity; ///< bytes that `block` has room for, at least `size`
};
static_assert(offsetof(BlockRecord, block) == 0, "a handle is the address of the record");

/// The record behind a handle that is not null: its first member is what the handle points to.
inline BlockRecord* RecordOf(Handle h) noexcept { return reinterpret_cast<BlockRecord*>(h); }

/// How many of the coming requests for memory fail, see FailNextAllocations.
extern TRAMMEL_API std::atomic<long> gFailingRequests;

/// The general form of PtrAndHand: room is made when there is none, every argument is checked.
TRAMMEL_API OSErr AppendToBlock(const void* source, Handle h, Size count) noexcept;

/// Takes `count` (at least 1) of the block's spare bytes into use and returns where they begin, for
/// the caller to fill; null, with nothing changed, when AppendToBlock has to be called instead.
inline char* TakeSpareBytes(Handle h, Size count) noexcept {
    if (h == nullptr || gFailingRequests.load(std::memory_order_relaxed) != 0) {
        return nullptr;
    }
    BlockRecord* const record = RecordOf(h);
    if (count > record->capacity - record->size) {
        return nullptr;
    }
    char* const place = record->block + record->size;
    record->size += count;
    return place;
}

/// Makes room in the block for `count` bytes beyond those in use, for a caller who is about to
/// append as many; when memory is short, nothing changes.
void ReserveBytes(Handle h, Size count) noexcept;

/// Makes the next `count` requests for memory fail, for tests of what follows from that. A request
/// is a call that makes a handle or a path object, stores a path under a token, or grows a block by
/// at least one byte (also where spare bytes would have served). 0 or less switches the failures
/// off. For one thread at a time.
TRAMMEL_API void FailNextAllocations(long count) noexcept;

/// Uses up one of the failures that FailNextAllocations ordered: true when this request must fail.
TRAMMEL_API bool TakeInjectedFailure() noexcept;

/// The number of handles that were made and not yet disposed, for tests that look for leaks.
TRAMMEL_API long LiveHandleCount() noexcept;

/// The number of times since the program's start that a block's memory was reallocated, for tests
/// of what growing and shrinking cost.
TRAMMEL_API long BlockReallocationCount() noexcept;

} // namespace trammel_detail

/// Makes a block of `size` zero bytes; null when memory is short or the size is negative.
/// Size 0 makes a block that can grow.
TRAMMEL_API Handle NewHandle(Size size) noexcept;

/// The same as NewHandle, which clears its blocks too.
TRAMMEL_API Handle NewHandleClear(Size size) noexcept;

/// The bytes in use; 0 for a null handle.
inline Size GetHandleSize(Handle h) noexcept {
    return h != nullptr ? trammel_detail::RecordOf(h)->size : 0;
}

/// Makes the block `size` bytes long: keeps what was there as far as it fits, and fills the grown
/// part with zero. May move the block.
///
/// Growing reserves room for more of it, so a series of small steps costs time linear in the final
/// size; shrinking below a quarter of the room gives memory back.
///
/// Returns noErr; nilHandleErr for a null handle; memFullErr when memory is short or the size is
/// negative, and then the block is as it was. Shrinking does not fail.
TRAMMEL_API OSErr SetHandleSize(Handle h, Size size) noexcept;

/// Frees the block and its master pointer; nothing for null. The handle must not be used again.
TRAMMEL_API void DisposeHandle(Handle h) noexcept;

/// Replaces the handle at `*h` by one to a copy of its block; the first block stays as it is, and
/// the caller keeps a copy of its handle if it is to be disposed later.
///
/// Returns noErr; memFullErr when memory is short, and then `*h` is null; nilHandleErr when `h` or
/// `*h` is null.
TRAMMEL_API OSErr HandToHand(Handle* h) noexcept;

/// Makes a new block that holds a copy of the `size` bytes at `source`, and stores its handle in
/// `*h` (whose former value is not looked at). `source` may be null when the size is 0.
///
/// Returns noErr; memFullErr when memory is short or the size is negative, nilHandleErr when
/// `source` is null; `*h` is null after a failure. nilHandleErr also when `h` itself is null.
TRAMMEL_API OSErr PtrToHand(const void* source, Handle* h, Size size) noexcept;

/// Appends a copy of the `count` bytes at `source` to the block. The source may lie inside the same
/// block. May move the block; n appends of a few bytes cost O(n) together.
///
/// Returns noErr; nilHandleErr for a null handle, and for a null source unless the count is 0;
/// memFullErr when memory is short or the count is negative. After a failure the block is as it
/// was.
inline OSErr PtrAndHand(const void* source, Handle h, Size count) noexcept {
    if (source != nullptr && count > 0) {
        if (char* const place = trammel_detail::TakeSpareBytes(h, count)) {
            std::memmove(place, source, static_cast<std::size_t>(count));
            return noErr;
        }
    }
    return trammel_detail::AppendToBlock(source, h, count);
}

#endif

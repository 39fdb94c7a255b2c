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
// The handle stays valid until DisposeHandle. The block may move whenever its size changes, so a
// pointer into it is good only until the next call that resizes it. Blocks begin at an address
// divisible by 16, in WebAssembly by 8. Spare bytes make repeated appending cheap. They are never
// visible: sizes count the bytes in use, and bytes that come into use by growing are zero.
//
// No function here throws. Functions that take a handle accept a null one. Threads may use
// different handles at the same time. They may also read one handle and its block, while none
// changes either.

/// Address of a block.
typedef char* Ptr;
/// Address of a master pointer; null stands for "no storage".
typedef Ptr* Handle;
/// Number of bytes. Sizes below 0 and above 1 TiB (2^40 bytes) are treated as "memory is short".
/// Where `long` has 32 bits, sizes above 2^30 - 16 are.
typedef long Size;
/// Result code: `noErr`, or a negative number.
typedef std::int16_t OSErr;

/// The call did what it says.
inline constexpr OSErr noErr = 0;
/// Memory is short, or the size asked for is negative or larger than any block can be.
inline constexpr OSErr memFullErr = -108;
/// A null handle, or a null pointer where data or a handle variable is needed.
inline constexpr OSErr nilHandleErr = -109;

namespace trammel_detail {

/// The record that a handle points to. Applications see only `block`, the master pointer.
struct BlockRecord {
    Ptr block;     ///< the address of the bytes, which is the master pointer
    Size size;     ///< bytes in use
    Size capacity; ///< bytes that `block` has room for, at least `size`
};
static_assert(offsetof(BlockRecord, block) == 0, "a handle is the address of the record");

/// Returns the record behind a handle that is not null. The handle is the address of its first
/// member.
inline BlockRecord* RecordOf(Handle h) noexcept { return reinterpret_cast<BlockRecord*>(h); }

/// The number of coming requests for memory that fail, see FailNextAllocations.
extern TRAMMEL_API std::atomic<long> gFailingRequests;

/// The general form of PtrAndHand: makes room when there is none, and checks every argument.
TRAMMEL_API OSErr AppendToBlock(void const* source, Handle h, Size count) noexcept;

/// Takes `count` bytes (at least 1) behind the block's last one into use, and makes room for them
/// when there is none. Returns where they begin, for the caller to fill. Returns null, and changes
/// nothing, when `h` is null or memory is short.
TRAMMEL_API char* TakeBytes(Handle h, Size count) noexcept;

/// Takes `count` (at least 1) of the block's spare bytes into use. Returns where they begin, for
/// the caller to fill. Returns null, and changes nothing, when AppendToBlock has to be called
/// instead.
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

/// Makes a block of `size` bytes for a caller who fills them; null when memory is short or the size
/// is negative. The bytes are undefined.
Handle NewUnfilledHandle(Size size) noexcept;

/// Makes room in the block for `count` bytes beyond the bytes in use, for a caller who is about to
/// append as many. Changes nothing when memory is short.
void ReserveBytes(Handle h, Size count) noexcept;

/// Makes the next `count` requests for memory fail, for tests of the consequences. 0 or less
/// switches the failures off. For one thread at a time. These calls are requests:
/// - a call that makes a handle or a path object,
/// - a call that stores a path under a token,
/// - a call that grows a block by at least one byte, also where spare bytes would have served.
TRAMMEL_API void FailNextAllocations(long count) noexcept;

/// Uses up one of the failures that FailNextAllocations ordered: true when this request must fail.
TRAMMEL_API bool TakeInjectedFailure() noexcept;

/// Returns the number of handles that were made and not yet disposed, for tests that look for
/// leaks. It is exact while no other thread makes or disposes handles.
TRAMMEL_API long LiveHandleCount() noexcept;

/// Returns how often a block was given other room since the program's start, for tests of the
/// cost of growing and shrinking.
TRAMMEL_API long BlockReallocationCount() noexcept;

} // namespace trammel_detail

/// Makes a block of `size` zero bytes; null when memory is short or the size is negative.
/// Size 0 makes a block that can grow.
TRAMMEL_API Handle NewHandle(Size size) noexcept;

/// Does the same as NewHandle, which clears its blocks too.
TRAMMEL_API Handle NewHandleClear(Size size) noexcept;

/// Returns the number of bytes in use; 0 for a null handle.
inline Size GetHandleSize(Handle h) noexcept {
    return h != nullptr ? trammel_detail::RecordOf(h)->size : 0;
}

/// Makes the block `size` bytes long: keeps the bytes that fit, and fills the grown part with zero.
/// May move the block.
///
/// Growing reserves room for more of it, so a series of small steps costs time linear in the final
/// size. Shrinking below a quarter of the room gives memory back, except for rooms below 256 bytes.
///
/// Returns noErr, or else the block is as it was. Shrinking does not fail.
/// - nilHandleErr for a null handle,
/// - memFullErr when memory is short or the size is negative or above 1 TiB.
TRAMMEL_API OSErr SetHandleSize(Handle h, Size size) noexcept;

/// Frees the block and its master pointer; does nothing for null. The handle must not be used
/// again.
TRAMMEL_API void DisposeHandle(Handle h) noexcept;

/// Replaces the handle at `*h` by a handle to a copy of its block. The first block stays as it is;
/// a caller who wants to dispose it later keeps a copy of its handle.
///
/// Returns noErr; nilHandleErr when `h` or `*h` is null; memFullErr when memory is short. In the
/// last case `*h` is null.
TRAMMEL_API OSErr HandToHand(Handle* h) noexcept;

/// Makes a new block that holds a copy of the `size` bytes at `source`, and stores its handle in
/// `*h`, whose former value plays no part.
///
/// Returns noErr, or else leaves null in `*h`:
/// - memFullErr when memory is short or the size is negative,
/// - nilHandleErr when `h` is null, or when `source` is null and the size is positive.
TRAMMEL_API OSErr PtrToHand(void const* source, Handle* h, Size size) noexcept;

/// Appends a copy of the `count` bytes at `source` to the block. The source may lie inside the same
/// block. May move the block; n appends of a few bytes cost O(n) together.
///
/// Returns noErr, or else the block is as it was:
/// - nilHandleErr for a null handle, and for a null source with a positive count,
/// - memFullErr when memory is short or the count is negative.
inline OSErr PtrAndHand(void const* source, Handle h, Size count) noexcept {
    if (source != nullptr && count > 0) {
        if (char* const place = trammel_detail::TakeSpareBytes(h, count)) {
            std::memmove(place, source, static_cast<std::size_t>(count));
            return noErr;
        }
    }
    return trammel_detail::AppendToBlock(source, h, count);
}

#endif

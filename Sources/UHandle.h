// SPDX-License-Identifier: MIT

// Block helpers: the operations on relocatable memory blocks (Handles.h) that both polygon kinds
// share. Memory errors are not reported: a block that cannot grow stays as it is. Nothing throws.
// Threads may use different blocks at the same time, and read one that none changes.

#ifndef TRAMMEL_UHANDLE_H
#define TRAMMEL_UHANDLE_H

#include "Handles.h"
#include "TrammelExport.h"

#include <cstddef>
#include <cstring>
#include <type_traits>

/// Changes the size of the block behind `h` by `delta` bytes. A size below 0 becomes 0. A null
/// handle, a sum that overflows and short memory change nothing. Grown bytes are zero.
TRAMMEL_API void GrowHandle(char** h, long delta);

/// Copies `count` bytes from `src` to `dst`, which may overlap. Copies nothing for a count of 0 or
/// less.
TRAMMEL_API inline void BlockMove(void const* src, void* dst, long count) {
    if (count > 0) {
        std::memmove(dst, src, static_cast<std::size_t>(count));
    }
}

/// Returns a new handle to a copy of the block behind `h`; null when `h` is null or memory is
/// short.
template <class Record> Record** Clone(Record** h) {
    Handle const source = reinterpret_cast<Handle>(h);
    if (source == nullptr) {
        return nullptr;
    }
    long const size = GetHandleSize(source);
    Handle const copy = NewHandle(size);
    if (copy != nullptr) {
        BlockMove(*source, *copy, size);
    }
    return reinterpret_cast<Record**>(copy);
}

/// Appends the bytes of `item` to the block behind `h`. Appends nothing when `h` is null or memory
/// is short. n calls cost O(n) together.
template <class Record, class Item> inline void AppendHandle(Record** h, Item item) {
    static_assert(std::is_trivially_copyable_v<Item>);
    Handle const block = reinterpret_cast<Handle>(h);
    // This is PtrAndHand with the item taken by value. Taking its address would write
    // it to memory by parts and read it back as a whole, for which processors wait.
    char* place = trammel_detail::TakeSpareBytes(block, sizeof item);
    if (place == nullptr) {
        place = trammel_detail::TakeBytes(block, sizeof item);
    }
    if (place != nullptr) {
        std::memcpy(place, &item, sizeof item);
    }
}

#endif

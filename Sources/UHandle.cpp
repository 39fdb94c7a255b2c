// SPDX-License-Identifier: MIT

#include "UHandle.h"

namespace {

// The library also exports the header's inline function, for callers that find it by name.
[[gnu::used]] void (*const kInLibrary)(void const*, void*, long) = BlockMove;

} // namespace

void GrowHandle(char** h, long delta) {
    long size = 0;
    if (__builtin_add_overflow(GetHandleSize(h), delta, &size)) {
        return;
    }
    SetHandleSize(h, size < 0 ? 0 : size);
}

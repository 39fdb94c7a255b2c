// SPDX-License-Identifier: MIT

#include "Blocks.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace plain {
namespace {

struct Master {
    char* block;
    long size;
    long capacity;
};

// NOLINTBEGIN(cppcoreguidelines-no-malloc): blocks are what others are built on
Master* MasterOf(char** handle) { return reinterpret_cast<Master*>(handle); }

} // namespace

char** NewHandle(long size) {
    auto* const master = static_cast<Master*>(std::malloc(sizeof(Master)));
    char* const block = static_cast<char*>(std::calloc(1, static_cast<std::size_t>(size)));
    if (master == nullptr || block == nullptr) {
        throw std::bad_alloc();
    }
    *master = {block, size, size};
    return &master->block;
}

long GetHandleSize(char** handle) { return handle != nullptr ? MasterOf(handle)->size : 0; }

void PtrAndHand(void const* source, char** handle, long count) {
    Master* const master = MasterOf(handle);
    long const size = master->size + count;
    if (size > master->capacity) {
        long const capacity = std::max(2 * master->capacity, size);
        auto* const block =
            static_cast<char*>(std::realloc(master->block, static_cast<std::size_t>(capacity)));
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        master->block = block;
        master->capacity = capacity;
    }
    std::memcpy(master->block + master->size, source, static_cast<std::size_t>(count));
    master->size = size;
}

void DisposeHandle(char** handle) {
    std::free(MasterOf(handle)->block);
    std::free(MasterOf(handle));
}
// NOLINTEND(cppcoreguidelines-no-malloc)

} // namespace plain

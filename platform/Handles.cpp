// SPDX-License-Identifier: MIT

#include "Handles.h"

#include "SingleThreaded_p.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <new>

using trammel_detail::BlockRecord;
using trammel_detail::RecordOf;
using trammel_detail::TakeInjectedFailure;

namespace trammel_detail {

std::atomic<long> gFailingRequests{0};

} // namespace trammel_detail

namespace {

constexpr auto kRelaxed = std::memory_order_relaxed;

/// Counts of one thread, or of a few. The totals are sums. Threads that added to one variable would
/// wait for each other longer than it takes to make a block.
struct alignas(128) Counts {
    std::atomic<long> liveHandles{0};
    std::atomic<long> reallocations{0};
};

Counts gCounts[16];
std::atomic<unsigned> gThreads{0};

/// Returns the counts that belong to this thread.
Counts& CountsOfThread() {
    thread_local Counts* tCounts = nullptr;
    if (tCounts == nullptr) {
        tCounts = &gCounts[gThreads.fetch_add(1, kRelaxed) % std::size(gCounts)];
    }
    return *tCounts;
}

/// The largest block has 1 TiB, or 16 bytes less than 1 GiB where Size has 32 bits. No sum or
/// product below overflows.
constexpr Size kLargestBlock =
    (Size{1} << (sizeof(Size) == 8 ? 40 : 30)) - (sizeof(Size) == 8 ? 0 : 16);

/// Every block has this much memory, however little room it was given. So a new polygon, which is
/// a header of 40 bytes, gets its first three vertices without moving.
constexpr Size kLeastMemory = 96;

/// Blocks of this room or less grow by way of malloc, see Reallocate.
constexpr Size kLargestCopiedRoom = 256;

/// Blocks with less room than this keep it: giving it back is not worth a reallocation.
constexpr Size kSmallestShrinkingBlock = 256;

/// What malloc's addresses are divisible by: 16, but 8 in WebAssembly.
constexpr std::size_t kAlignment = alignof(std::max_align_t);

/// A record with its first block, so that a small handle takes one piece of memory. A block that
/// grows out of it leaves it unused. The record's address tells that it is one of these: other
/// records begin at an address that malloc's alignment divides.
struct SmallHandle {
    char bytes[kLeastMemory];
    char unused[kAlignment / 2];
    BlockRecord record;
};
static_assert(offsetof(SmallHandle, record) % kAlignment == kAlignment / 2 &&
              kLeastMemory % kAlignment == 0 && sizeof(SmallHandle) <= 128);

/// Returns what the record is a part of; null for a record of its own.
SmallHandle* SmallHandleOf(BlockRecord* record) {
    bool const isSmall = reinterpret_cast<std::uintptr_t>(record) % kAlignment != 0;
    return isSmall ? reinterpret_cast<SmallHandle*>(reinterpret_cast<char*>(record) -
                                                    offsetof(SmallHandle, record))
                   : nullptr;
}

/// Frees the record's block, unless it goes with the record.
void FreeBlock(BlockRecord* record) {
    SmallHandle* const small = SmallHandleOf(record);
    if (small == nullptr || record->block != small->bytes) {
        std::free(record->block); // NOLINT(cppcoreguidelines-no-malloc): see Allocate
    }
}

/// Adds to a counter. Processors need as long for an atomic addition as for making a small block,
/// so it is made only where there are threads.
void Count(std::atomic<long> Counts::*counter, long added) {
    if (trammel_detail::SingleThreaded()) {
        std::atomic<long>& count = gCounts[0].*counter;
        count.store(count.load(kRelaxed) + added, kRelaxed);
    } else {
        (CountsOfThread().*counter).fetch_add(added, kRelaxed);
    }
}

/// Returns the sum over all threads.
long Total(std::atomic<long> Counts::*counter) {
    long total = 0;
    for (Counts const& counts : gCounts) {
        total += (counts.*counter).load(kRelaxed);
    }
    return total;
}

constexpr bool IsBlockSize(Size size) { return size >= 0 && size <= kLargestBlock; }

/// Returns the room for `size` bytes: never 0, so that an empty block has an address.
constexpr Size RoomFor(Size size) { return std::max((size + 15) / 16 * 16, Size{16}); }

/// Returns the memory of a block with that much room.
constexpr Size MemoryFor(Size room) { return std::max(room, kLeastMemory); }

constexpr std::size_t Bytes(Size size) { return static_cast<std::size_t>(size); }

/// Stores the master pointer. Applications read it through pointers to their own record types,
/// which the compiler may take for different objects. A store byte by byte is ordered with such
/// reads.
void StoreBlock(BlockRecord* record, Ptr block) {
    std::memcpy(&record->block, &block, sizeof block);
}

/// Returns memory for `room` bytes, zero or undefined; null when there is none. The memory is the C
/// allocator's, which can resize a block, and mostly resizes a large one without moving it.
void* Allocate(Size room, bool clear) {
    std::size_t const bytes = Bytes(MemoryFor(room));
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): containers cannot grow where they lie
    return clear ? std::calloc(bytes, 1) : std::malloc(bytes);
}

/// Returns a record with a block of at most kLeastMemory bytes; null on failure.
BlockRecord* MakeSmall(Size size, bool clear) {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): as above
    auto* const small = static_cast<SmallHandle*>(std::malloc(sizeof(SmallHandle)));
    if (small == nullptr) {
        return nullptr;
    }
    if (clear) {
        std::memset(small->bytes, 0, Bytes(size));
    }
    StoreBlock(&small->record, small->bytes);
    return &small->record;
}

/// The same for a block of any size.
BlockRecord* MakeLarge(Size size, bool clear) {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): as above
    auto* const record = static_cast<BlockRecord*>(std::malloc(sizeof(BlockRecord)));
    if (record == nullptr) {
        return nullptr;
    }
    void* const block = Allocate(RoomFor(size), clear);
    if (block == nullptr) {
        std::free(record); // NOLINT(cppcoreguidelines-no-malloc): as above
        return nullptr;
    }
    StoreBlock(record, static_cast<Ptr>(block));
    return record;
}

/// Returns a new handle to `size` bytes, zero or (for callers that fill them) undefined; null on
/// failure.
Handle MakeBlock(Size size, bool clear) {
    if (!IsBlockSize(size) || TakeInjectedFailure()) {
        return nullptr;
    }
    BlockRecord* const record =
        size <= kLeastMemory ? MakeSmall(size, clear) : MakeLarge(size, clear);
    if (record == nullptr) {
        return nullptr;
    }
    record->size = size;
    record->capacity = MemoryFor(RoomFor(size));
    Count(&Counts::liveHandles, 1);
    return &record->block;
}

/// Returns memory for `capacity` bytes that holds the block's bytes in use, and frees the former
/// memory unless it serves again. Returns null when memory is short, and then nothing has changed.
void* MoveBytes(BlockRecord* record, Size capacity) {
    if (MemoryFor(capacity) == MemoryFor(record->capacity)) {
        return record->block;
    }
    if (record->capacity > kLargestCopiedRoom) {
        // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): as above
        return std::realloc(record->block, Bytes(MemoryFor(capacity)));
    }
    // The C library keeps small pieces of memory at hand for malloc, but not for realloc.
    void* const block = Allocate(capacity, false);
    if (block != nullptr) {
        std::memcpy(block, record->block, Bytes(std::min(record->size, capacity)));
        FreeBlock(record);
    }
    return block;
}

/// Gives the block `capacity` bytes of room and keeps the bytes in use; false when memory is short,
/// and then nothing has changed.
bool Reallocate(BlockRecord* record, Size capacity) {
    void* const block = MoveBytes(record, capacity);
    if (block == nullptr) {
        return false;
    }
    StoreBlock(record, static_cast<Ptr>(block));
    record->capacity = capacity;
    Count(&Counts::reallocations, 1);
    return true;
}

/// Makes room for `size` bytes; false when memory is short. Doubling bounds the bytes that n
/// appends copy by twice the final size; when there is no memory for that, the room needed must do.
bool MakeRoom(BlockRecord* record, Size size) {
    if (size <= record->capacity) {
        return true;
    }
    Size const needed = RoomFor(size);
    Size const generous = std::min(std::max(needed, 2 * record->capacity), RoomFor(kLargestBlock));
    return Reallocate(record, generous) || (generous > needed && Reallocate(record, needed));
}

/// Gives memory back when less than a quarter of the room is in use. Twice the bytes in use remain,
/// so that the size has to double or halve again before the next reallocation.
void GiveBackRoom(BlockRecord* record) {
    if (record->capacity >= kSmallestShrinkingBlock && record->size < record->capacity / 4) {
        // A failure leaves the block with more room than it needs, which is no harm.
        static_cast<void>(Reallocate(record, RoomFor(2 * record->size)));
    }
}

} // namespace

namespace trammel_detail {

void FailNextAllocations(long count) noexcept {
    gFailingRequests.store(std::max(count, 0L), kRelaxed);
}

bool TakeInjectedFailure() noexcept {
    long left = gFailingRequests.load(kRelaxed);
    while (left > 0) {
        if (gFailingRequests.compare_exchange_weak(left, left - 1, kRelaxed)) {
            return true;
        }
    }
    return false;
}

long LiveHandleCount() noexcept { return Total(&Counts::liveHandles); }

long BlockReallocationCount() noexcept { return Total(&Counts::reallocations); }

OSErr AppendToBlock(void const* source, Handle h, Size count) noexcept {
    if (h == nullptr) {
        return nilHandleErr;
    }
    if (count == 0) {
        return noErr;
    }
    BlockRecord* const record = RecordOf(h);
    if (count < 0 || count > kLargestBlock - record->size) {
        return memFullErr;
    }
    if (source == nullptr) {
        return nilHandleErr;
    }
    // Addresses are compared as integers: the source need not belong to the block.
    std::uintptr_t const block = reinterpret_cast<std::uintptr_t>(record->block);
    std::uintptr_t const offset = reinterpret_cast<std::uintptr_t>(source) - block;
    bool const inside = offset < Bytes(record->size);
    char* const place = TakeBytes(h, count);
    if (place == nullptr) {
        return memFullErr;
    }
    std::memmove(place, inside ? record->block + offset : source, Bytes(count));
    return noErr;
}

char* TakeBytes(Handle h, Size count) noexcept {
    BlockRecord* const record = RecordOf(h);
    if (h == nullptr || count > kLargestBlock - record->size || TakeInjectedFailure() ||
        !MakeRoom(record, record->size + count)) {
        return nullptr;
    }
    char* const place = record->block + record->size;
    record->size += count;
    return place;
}

Handle NewUnfilledHandle(Size size) noexcept { return MakeBlock(size, false); }

void ReserveBytes(Handle h, Size count) noexcept {
    BlockRecord* const record = RecordOf(h);
    if (h != nullptr && count <= kLargestBlock - record->size &&
        count > record->capacity - record->size) {
        static_cast<void>(Reallocate(record, RoomFor(record->size + count)));
    }
}

} // namespace trammel_detail

Handle NewHandle(Size size) noexcept { return MakeBlock(size, true); }

Handle NewHandleClear(Size size) noexcept { return MakeBlock(size, true); }

OSErr SetHandleSize(Handle h, Size size) noexcept {
    if (h == nullptr) {
        return nilHandleErr;
    }
    if (!IsBlockSize(size)) {
        return memFullErr;
    }
    BlockRecord* const record = RecordOf(h);
    if (size <= record->size) {
        record->size = size;
        GiveBackRoom(record);
        return noErr;
    }
    if (TakeInjectedFailure() || !MakeRoom(record, size)) {
        return memFullErr;
    }
    std::memset(record->block + record->size, 0, Bytes(size - record->size));
    record->size = size;
    return noErr;
}

void DisposeHandle(Handle h) noexcept {
    if (h == nullptr) {
        return;
    }
    BlockRecord* const record = RecordOf(h);
    FreeBlock(record);
    SmallHandle* const small = SmallHandleOf(record);
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): as above
    std::free(small != nullptr ? static_cast<void*>(small) : record);
    Count(&Counts::liveHandles, -1);
}

OSErr HandToHand(Handle* h) noexcept {
    if (h == nullptr || *h == nullptr) {
        return nilHandleErr;
    }
    return PtrToHand(**h, h, GetHandleSize(*h));
}

OSErr PtrToHand(void const* source, Handle* h, Size size) noexcept {
    if (h == nullptr) {
        return nilHandleErr;
    }
    *h = nullptr;
    if (source == nullptr && size > 0) {
        return nilHandleErr;
    }
    Handle made = MakeBlock(size, false);
    if (made == nullptr) {
        return memFullErr;
    }
    if (size > 0) {
        std::memcpy(*made, source, Bytes(size));
    }
    *h = made;
    return noErr;
}

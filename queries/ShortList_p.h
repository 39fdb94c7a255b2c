// SPDX-License-Identifier: MIT

// A list whose first items need no allocation. Not installed.

#ifndef TRAMMEL_SHORTLIST_P_H
#define TRAMMEL_SHORTLIST_P_H

#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace trammel_detail {

/// A list of items that memcpy can copy. The first `kInside` of them lie in the list itself. What
/// the list has allocated it keeps until it is destroyed.
template <class Item, std::size_t kInside> class ShortList {
    static_assert(std::is_trivially_copyable<Item>::value, "items are copied as bytes");
    static_assert(alignof(Item) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__,
                  "memory is allocated as bytes");

public:
    ShortList() : mRoom(mInside) {}
    ShortList(ShortList const&) = delete;
    ShortList& operator=(ShortList const&) = delete;
    ~ShortList() = default;

    bool empty() const { return mSize == 0; }
    std::size_t size() const { return mSize; }
    Item* begin() { return reinterpret_cast<Item*>(mRoom); }
    Item* end() { return begin() + mSize; }
    Item const* begin() const { return reinterpret_cast<Item const*>(mRoom); }
    Item const* end() const { return begin() + mSize; }
    Item& operator[](std::size_t i) { return begin()[i]; }
    Item const& operator[](std::size_t i) const { return begin()[i]; }

    void clear() { mSize = 0; }
    void push_back(Item const& item) {
        Item const copy = item; // it may be one of this list
        if (mSize == mCapacity) {
            Grow();
        }
        new (mRoom + mSize * sizeof(Item)) Item(copy);
        ++mSize;
    }
    /// Drops the items from `from` on.
    void Cut(Item const* from) { mSize = static_cast<std::size_t>(from - begin()); }

private:
    void Grow() {
        std::size_t const capacity = mCapacity * 2;
        std::unique_ptr<unsigned char[]> more(new unsigned char[capacity * sizeof(Item)]);
        std::memcpy(more.get(), mRoom, mSize * sizeof(Item));
        mMore = std::move(more);
        mRoom = mMore.get();
        mCapacity = capacity;
    }

    std::size_t mSize = 0;
    std::size_t mCapacity = kInside;
    unsigned char* mRoom;
    std::unique_ptr<unsigned char[]> mMore;
    alignas(Item) unsigned char mInside[kInside * sizeof(Item)]; // not initialised
};

} // namespace trammel_detail

#endif

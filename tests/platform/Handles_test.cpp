// SPDX-License-Identifier: MIT

#include "Handles.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using trammel_test::Contents;
using trammel_test::HandleWith;

/// Every test ends without injected failures and with as many handles as it began with.
class Handles : public ::testing::Test {
protected:
    void SetUp() override { mBefore = trammel_detail::LiveHandleCount(); }
    void TearDown() override {
        trammel_detail::FailNextAllocations(0);
        EXPECT_EQ(trammel_detail::LiveHandleCount(), mBefore);
    }

private:
    long mBefore = 0;
};

std::string Zeros(std::size_t count) { return std::string(count, '\0'); }

bool IsAligned(Handle h) {
#ifdef __EMSCRIPTEN__
    std::uintptr_t const divisor = 8; // as for all memory there
#else
    std::uintptr_t const divisor = 16;
#endif
    return reinterpret_cast<std::uintptr_t>(*h) % divisor == 0;
}

Size const kImpossibleSizes[] = {-1,
                                 -16,
                                 LONG_MIN,
                                 LONG_MIN + 1,
                                 LONG_MAX,
                                 LONG_MAX - 1,
                                 LONG_MAX - 15,
                                 LONG_MAX / 2,
                                 LONG_MAX - LONG_MAX / 16,
                                 (Size{1} << (sizeof(Size) == 8 ? 40 : 30)) + 1};

TEST_F(Handles, HaveTheCustomaryTypesAndCodes) {
    static_assert(std::is_same_v<Ptr, char*> && std::is_same_v<Handle, char**>);
    static_assert(std::is_same_v<Size, long> && std::is_same_v<OSErr, std::int16_t>);
    static_assert(noErr == 0 && memFullErr == -108 && nilHandleErr == -109);
    static_assert(std::is_same_v<decltype(memFullErr), OSErr const>);
    SUCCEED();
}

TEST_F(Handles, NewBlocksAreZeroAlignedAndOfTheSizeAskedFor) {
    for (auto const make : {NewHandle, NewHandleClear}) {
        for (Size const size : {0L, 1L, 15L, 16L, 17L, 44L, 60L, 4096L, 1000003L}) {
            // Memory that was in use before reveals uncleared blocks.
            Handle dirty = NewHandle(size);
            ASSERT_NE(dirty, nullptr);
            std::memset(*dirty, 0x5A, static_cast<std::size_t>(size));
            DisposeHandle(dirty);

            Handle h = make(size);
            ASSERT_NE(h, nullptr);
            ASSERT_NE(*h, nullptr);
            EXPECT_EQ(GetHandleSize(h), size);
            EXPECT_TRUE(IsAligned(h)) << size;
            EXPECT_EQ(Contents(h), Zeros(static_cast<std::size_t>(size))) << size;
            DisposeHandle(h);
        }
    }
}

TEST_F(Handles, NewBlocksOfImpossibleSizeAreNull) {
    for (Size const size : kImpossibleSizes) {
        EXPECT_EQ(NewHandle(size), nullptr) << size;
        EXPECT_EQ(NewHandleClear(size), nullptr) << size;
    }
}

TEST_F(Handles, NewBlocksAreNullWhenMemoryIsShort) {
    trammel_detail::FailNextAllocations(2);
    EXPECT_EQ(NewHandle(44), nullptr);
    EXPECT_EQ(NewHandleClear(0), nullptr);
    Handle h = NewHandle(44);
    EXPECT_NE(h, nullptr);
    DisposeHandle(h);
}

TEST_F(Handles, NullHandlesAreTolerated) {
    EXPECT_EQ(GetHandleSize(nullptr), 0);
    EXPECT_EQ(SetHandleSize(nullptr, 10), nilHandleErr);
    DisposeHandle(nullptr);
    EXPECT_EQ(HandToHand(nullptr), nilHandleErr);
    Handle none = nullptr;
    EXPECT_EQ(HandToHand(&none), nilHandleErr);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(PtrToHand("abc", nullptr, 3), nilHandleErr);
    EXPECT_EQ(PtrAndHand("abc", nullptr, 3), nilHandleErr);
    EXPECT_EQ(PtrAndHand(nullptr, nullptr, 0), nilHandleErr);
}

TEST_F(Handles, GrowingKeepsTheContentsAndClearsTheRest) {
    Handle h = HandleWith("abc");
    ASSERT_EQ(SetHandleSize(h, 7), noErr); // within the spare bytes
    EXPECT_EQ(Contents(h), "abc" + Zeros(4));
    ASSERT_EQ(SetHandleSize(h, 5000), noErr); // beyond them
    EXPECT_EQ(Contents(h), "abc" + Zeros(4997));
    EXPECT_TRUE(IsAligned(h));
    DisposeHandle(h);
}

TEST_F(Handles, BytesThatWereCutOffComeBackAsZeros) {
    Handle h = HandleWith("abcdefghij");
    ASSERT_EQ(SetHandleSize(h, 4), noErr);
    EXPECT_EQ(Contents(h), "abcd");
    ASSERT_EQ(SetHandleSize(h, 10), noErr);
    EXPECT_EQ(Contents(h), "abcd" + Zeros(6));
    ASSERT_EQ(SetHandleSize(h, 0), noErr);
    EXPECT_EQ(GetHandleSize(h), 0);
    ASSERT_EQ(SetHandleSize(h, 3), noErr);
    EXPECT_EQ(Contents(h), Zeros(3));
    DisposeHandle(h);
}

TEST_F(Handles, TheMasterPointerStaysWhereItIs) {
    Handle h = NewHandle(16);
    Handle const before = h;
    for (Size size = 16; size < 1000000; size *= 3) {
        ASSERT_EQ(SetHandleSize(h, size), noErr);
        EXPECT_EQ(h, before);
        EXPECT_EQ(*h, *before);
    }
    DisposeHandle(h);
}

TEST_F(Handles, AFailedResizeLeavesTheBlockAsItWas) {
    Handle h = HandleWith("abcdef");
    Ptr const block = *h;
    for (Size const size : kImpossibleSizes) {
        EXPECT_EQ(SetHandleSize(h, size), memFullErr) << size;
        EXPECT_EQ(Contents(h), "abcdef");
        EXPECT_EQ(*h, block);
    }
    trammel_detail::FailNextAllocations(2);
    EXPECT_EQ(SetHandleSize(h, 7), memFullErr);
    EXPECT_EQ(SetHandleSize(h, 70000), memFullErr);
    EXPECT_EQ(Contents(h), "abcdef");
    EXPECT_EQ(*h, block);
    EXPECT_EQ(SetHandleSize(h, 7), noErr);
    DisposeHandle(h);
}

TEST_F(Handles, ShrinkingNeedsNoMemory) {
    Handle h = NewHandle(100000);
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(SetHandleSize(h, 10), noErr);
    EXPECT_EQ(SetHandleSize(h, 10), noErr);
    EXPECT_EQ(GetHandleSize(h), 10);
    EXPECT_EQ(NewHandle(1), nullptr); // the failure is still there
    DisposeHandle(h);
}

TEST_F(Handles, HandToHandMakesAnIndependentCopy) {
    Handle const original = HandleWith("abcdef");
    Handle copy = original;
    ASSERT_EQ(HandToHand(&copy), noErr);
    ASSERT_NE(copy, original);
    EXPECT_EQ(Contents(copy), "abcdef");
    EXPECT_TRUE(IsAligned(copy));
    **copy = 'X';
    EXPECT_EQ(PtrAndHand("g", copy, 1), noErr);
    EXPECT_EQ(Contents(copy), "Xbcdefg");
    EXPECT_EQ(Contents(original), "abcdef");
    DisposeHandle(copy);
    DisposeHandle(original);
}

TEST_F(Handles, HandToHandOfAnEmptyBlockIsAnEmptyBlock) {
    Handle const original = NewHandle(0);
    Handle copy = original;
    ASSERT_EQ(HandToHand(&copy), noErr);
    EXPECT_NE(copy, original);
    EXPECT_EQ(GetHandleSize(copy), 0);
    EXPECT_EQ(PtrAndHand("g", copy, 1), noErr);
    EXPECT_EQ(Contents(copy), "g");
    DisposeHandle(copy);
    DisposeHandle(original);
}

TEST_F(Handles, AFailedHandToHandMakesTheVariableNull) {
    Handle const original = HandleWith("abcdef");
    Handle copy = original;
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(HandToHand(&copy), memFullErr);
    EXPECT_EQ(copy, nullptr);
    EXPECT_EQ(Contents(original), "abcdef");
    DisposeHandle(original);
}

TEST_F(Handles, PtrToHandCopies) {
    char bytes[] = "0123456789";
    Handle h = nullptr;
    ASSERT_EQ(PtrToHand(bytes, &h, 10), noErr);
    bytes[0] = 'X';
    EXPECT_EQ(Contents(h), "0123456789");
    EXPECT_TRUE(IsAligned(h));
    DisposeHandle(h);
    ASSERT_EQ(PtrToHand(nullptr, &h, 0), noErr);
    EXPECT_EQ(GetHandleSize(h), 0);
    DisposeHandle(h);
}

TEST_F(Handles, AFailedPtrToHandGivesNull) {
    char other = 0;
    Ptr master = &other;
    for (Size const size : kImpossibleSizes) {
        Handle h = &master;
        EXPECT_EQ(PtrToHand("abc", &h, size), memFullErr) << size;
        EXPECT_EQ(h, nullptr) << size;
    }
    Handle h = &master;
    EXPECT_EQ(PtrToHand(nullptr, &h, 3), nilHandleErr);
    EXPECT_EQ(h, nullptr);
    h = &master;
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(PtrToHand("abc", &h, 3), memFullErr);
    EXPECT_EQ(h, nullptr);
}

TEST_F(Handles, PtrAndHandAppends) {
    Handle h = NewHandle(0);
    std::string expected;
    for (std::string const& part : {std::string("a"), std::string("bcd"), std::string(1000, 'x'),
                                    Zeros(3), std::string("e")}) {
        ASSERT_EQ(PtrAndHand(part.data(), h, static_cast<Size>(part.size())), noErr);
        expected += part;
        EXPECT_EQ(Contents(h), expected);
    }
    EXPECT_EQ(PtrAndHand("ignored", h, 0), noErr);
    EXPECT_EQ(PtrAndHand(nullptr, h, 0), noErr);
    EXPECT_EQ(Contents(h), expected);
    DisposeHandle(h);
}

TEST_F(Handles, AFailedAppendLeavesTheBlockAsItWas) {
    Handle h = HandleWith("abcdef");
    Ptr const block = *h;
    for (Size const size : kImpossibleSizes) {
        EXPECT_EQ(PtrAndHand("x", h, size), memFullErr) << size;
    }
    EXPECT_EQ(PtrAndHand(nullptr, h, 5), nilHandleErr);
    // An ordered failure is a failure, with room to spare and without.
    trammel_detail::FailNextAllocations(2);
    EXPECT_EQ(PtrAndHand("x", h, 1), memFullErr);
    EXPECT_EQ(PtrAndHand(std::string(100, 'x').data(), h, 100), memFullErr);
    EXPECT_EQ(Contents(h), "abcdef");
    EXPECT_EQ(*h, block);
    EXPECT_EQ(PtrAndHand("x", h, 1), noErr);
    EXPECT_EQ(Contents(h), "abcdefx");
    DisposeHandle(h);
}

TEST_F(Handles, TheSourceOfAnAppendMayLieInTheBlock) {
    Handle h = HandleWith("0123456789");
    std::string expected = "0123456789";
    long const before = trammel_detail::BlockReallocationCount();
    // Doubles the block again and again, then appends pieces from its middle.
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(PtrAndHand(*h, h, GetHandleSize(h)), noErr);
        expected += expected;
        ASSERT_EQ(Contents(h), expected) << i;
        ASSERT_EQ(PtrAndHand(*h + 3, h, 5), noErr);
        expected += expected.substr(3, 5);
        ASSERT_EQ(Contents(h), expected) << i;
        Size const last = GetHandleSize(h) - 1;
        ASSERT_EQ(PtrAndHand(*h + last, h, 1), noErr);
        expected += expected.back();
        ASSERT_EQ(Contents(h), expected) << i;
    }
    EXPECT_GT(trammel_detail::BlockReallocationCount(), before); // the block did move on the way
    DisposeHandle(h);
}

TEST_F(Handles, AppendingOneByOneReallocatesRarely) {
    constexpr long count = 200000;
    constexpr Size pointSize = 16;
    Handle h = NewHandle(44);
    long const before = trammel_detail::BlockReallocationCount();
    for (long i = 0; i < count; ++i) {
        long const point[2] = {i, -i};
        ASSERT_EQ(PtrAndHand(point, h, pointSize), noErr);
        ASSERT_EQ(GetHandleSize(h), 44 + pointSize * (i + 1));
    }
    // 48 bytes doubled 17 times are more than 44 + 16 * 200000.
    EXPECT_LE(trammel_detail::BlockReallocationCount() - before, 17);
    for (long i = 0; i < count; ++i) {
        long point[2];
        std::memcpy(point, *h + 44 + pointSize * i, sizeof point);
        ASSERT_EQ(point[0], i);
        ASSERT_EQ(point[1], -i);
    }
    DisposeHandle(h);
}

TEST_F(Handles, ABlockOf33To48BytesGrowsTo96BytesWhereItLies) {
    for (Size size = 33; size <= 48; ++size) {
        Handle h = HandleWith(std::string(static_cast<std::size_t>(size), 'a'));
        Ptr const block = *h;
        for (Size grown = size; grown < 96; ++grown) {
            ASSERT_EQ(PtrAndHand("b", h, 1), noErr);
            ASSERT_EQ(*h, block) << size;
        }
        EXPECT_EQ(Contents(h), std::string(static_cast<std::size_t>(size), 'a') +
                                   std::string(static_cast<std::size_t>(96 - size), 'b'));
        DisposeHandle(h);
    }
}

TEST_F(Handles, SmallBlocksKeepTheirBytesWhateverTheirSizeBecomes) {
    for (Size from = 0; from <= 1200; from += 37) {
        for (Size to = 0; to <= 1200; to += 23) {
            std::string expected;
            for (Size i = 0; i < from; ++i) {
                expected += static_cast<char>('a' + i % 26);
            }
            Handle h = HandleWith(expected);
            ASSERT_EQ(SetHandleSize(h, to), noErr);
            expected.resize(static_cast<std::size_t>(to), '\0');
            ASSERT_EQ(Contents(h), expected) << from << " to " << to;
            ASSERT_EQ(PtrAndHand("end", h, 3), noErr);
            ASSERT_EQ(Contents(h), expected + "end") << from << " to " << to;
            ASSERT_TRUE(IsAligned(h));
            DisposeHandle(h);
        }
    }
}

TEST_F(Handles, GrowingOneByOneReallocatesRarely) {
    Handle h = NewHandle(44);
    long const before = trammel_detail::BlockReallocationCount();
    for (Size size = 60; size < 3200000; size += 16) {
        ASSERT_EQ(SetHandleSize(h, size), noErr);
    }
    EXPECT_LE(trammel_detail::BlockReallocationCount() - before, 17);
    DisposeHandle(h);
}

TEST_F(Handles, ShrinkingGivesMemoryBack) {
    Handle h = HandleWith(std::string(1 << 20, 'x'));
    Size const wide = trammel_detail::RecordOf(h)->capacity;
    ASSERT_EQ(SetHandleSize(h, 1 << 19), noErr);
    EXPECT_EQ(trammel_detail::RecordOf(h)->capacity, wide); // half in use: nothing to gain yet
    ASSERT_EQ(SetHandleSize(h, 1000), noErr);
    EXPECT_LE(trammel_detail::RecordOf(h)->capacity, 4096);
    EXPECT_EQ(Contents(h), std::string(1000, 'x'));
    EXPECT_TRUE(IsAligned(h));
    ASSERT_EQ(SetHandleSize(h, 1010), noErr);
    EXPECT_EQ(Contents(h), std::string(1000, 'x') + Zeros(10));
    ASSERT_EQ(SetHandleSize(h, 0), noErr);
    EXPECT_LE(trammel_detail::RecordOf(h)->capacity, 256);
    DisposeHandle(h);
}

TEST_F(Handles, DeletingOneByOneAndSwingingReallocateRarely) {
    Handle h = NewHandle(1600000);
    long before = trammel_detail::BlockReallocationCount();
    for (Size size = GetHandleSize(h); size >= 0; size -= 16) {
        ASSERT_EQ(SetHandleSize(h, size), noErr);
        Size const room = trammel_detail::RecordOf(h)->capacity;
        ASSERT_TRUE(room < 256 || room <= 4 * size + 64) << size;
    }
    EXPECT_LE(trammel_detail::BlockReallocationCount() - before, 20);
    // Going to and fro over a size at which a block grows or shrinks costs at most one step each.
    ASSERT_EQ(SetHandleSize(h, 4096), noErr);
    for (Size size = 4096; size > 0; size -= 16) {
        ASSERT_EQ(SetHandleSize(h, size), noErr);
        before = trammel_detail::BlockReallocationCount();
        for (int i = 0; i < 10; ++i) {
            ASSERT_EQ(SetHandleSize(h, size - 16), noErr);
            ASSERT_EQ(SetHandleSize(h, size), noErr);
        }
        ASSERT_LE(trammel_detail::BlockReallocationCount() - before, 1) << size;
    }
    DisposeHandle(h);
}

TEST_F(Handles, BehaveLikeAStringUnderAnySequenceOfCalls) {
    std::mt19937 random(20240501);
    Handle h = NewHandle(0);
    std::string model;
    for (int step = 0; step < 20000; ++step) {
        bool const fails = random() % 8 == 0;
        std::size_t const amount = random() % (random() % 16 == 0 ? 5000 : 40);
        std::string const fresh(amount, static_cast<char>('a' + random() % 26));
        std::size_t const from = model.empty() ? 0 : random() % model.size();
        std::size_t const inside = std::min(amount, model.size() - from);
        trammel_detail::FailNextAllocations(fails ? 1 : 0);
        switch (random() % 4) {
        case 0:
            if (PtrAndHand(fresh.data(), h, static_cast<Size>(amount)) == noErr) {
                ASSERT_TRUE(!fails || amount == 0);
                model += fresh;
            } else {
                ASSERT_TRUE(fails);
            }
            break;
        case 1:
            if (PtrAndHand(*h + from, h, static_cast<Size>(inside)) == noErr) {
                ASSERT_TRUE(!fails || inside == 0);
                model += std::string(model, from, inside);
            } else {
                ASSERT_TRUE(fails);
            }
            break;
        case 2:
            if (SetHandleSize(h, static_cast<Size>(model.size() + amount)) == noErr) {
                ASSERT_TRUE(!fails || amount == 0);
                model.resize(model.size() + amount);
            } else {
                ASSERT_TRUE(fails);
            }
            break;
        default:
            model.resize(model.size() > 3 * amount ? model.size() - 3 * amount : from);
            ASSERT_EQ(SetHandleSize(h, static_cast<Size>(model.size())), noErr);
            break;
        }
        ASSERT_EQ(Contents(h), model) << "step " << step;
        ASSERT_TRUE(IsAligned(h));
        ASSERT_LE(GetHandleSize(h), trammel_detail::RecordOf(h)->capacity);
    }
    DisposeHandle(h);
}

TEST_F(Handles, InjectedFailuresAreCountedAndSwitchedOff) {
    trammel_detail::FailNextAllocations(3);
    trammel_detail::FailNextAllocations(1); // replaces, does not add
    EXPECT_EQ(NewHandle(1), nullptr);
    Handle h = NewHandle(1);
    EXPECT_NE(h, nullptr);
    trammel_detail::FailNextAllocations(5);
    trammel_detail::FailNextAllocations(0);
    EXPECT_EQ(SetHandleSize(h, 100), noErr);
    trammel_detail::FailNextAllocations(-5);
    EXPECT_EQ(SetHandleSize(h, 1000), noErr);
    EXPECT_EQ(PtrAndHand("x", h, 1), noErr);
    EXPECT_FALSE(trammel_detail::TakeInjectedFailure());
    DisposeHandle(h);
}

TEST_F(Handles, LiveHandlesAreCounted) {
    long const before = trammel_detail::LiveHandleCount();
    Handle first = NewHandle(1);
    Handle second = first;
    EXPECT_EQ(HandToHand(&second), noErr);
    EXPECT_EQ(trammel_detail::LiveHandleCount(), before + 2);
    DisposeHandle(first);
    EXPECT_EQ(trammel_detail::LiveHandleCount(), before + 1);
    DisposeHandle(second);
    EXPECT_EQ(trammel_detail::LiveHandleCount(), before);
}

TEST_F(Handles, DifferentHandlesMayBeUsedInDifferentThreads) {
    std::vector<std::thread> threads;
    threads.reserve(4);
    std::atomic<int> good{0};
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&good, t] {
            for (int round = 0; round < 50; ++round) {
                Handle h = NewHandle(0);
                for (int i = 0; i < 200; ++i) {
                    int const value = 1000 * t + i;
                    PtrAndHand(&value, h, sizeof value);
                }
                int last = 0;
                std::memcpy(&last, *h + GetHandleSize(h) - 4, sizeof last);
                good += last == 1000 * t + 199 ? 1 : 0;
                DisposeHandle(h);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, 200);
}

} // namespace

// SPDX-License-Identifier: MIT

#include "UHandle.h"

#include "FPolygon.h"
#include "TPoly.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <random>
#include <string>
#include <type_traits>

namespace {

using trammel_test::Contents;
using trammel_test::HandleWith;
using trammel_test::Text;

class BlockHelpers : public trammel_test::WithoutLeaks {};

/// A block of a point-list polygon with the points (1, 2), (3, 4), ... up to `n` of them.
CPolygon<double>** PolygonBlock(long n) {
    CPolygon<double> header;
    header.mReserved = 0;
    header.mClosed = 1;
    header.mBoundsValid = 0;
    header.mBounds = TRect<double>(5, 6, 7, 8);
    Handle h = nullptr;
    PtrToHand(&header, &h, 40);
    auto const block = reinterpret_cast<CPolygon<double>**>(h);
    for (long i = 0; i < n; ++i) {
        AppendHandle(
            block, TPoint<double>(static_cast<double>(2 * i + 1), static_cast<double>(2 * i + 2)));
    }
    return block;
}

Handle AsHandle(CPolygon<double>** block) { return reinterpret_cast<Handle>(block); }

TEST_F(BlockHelpers, GrowHandleKeepsTheContentsAndClearsWhatIsNew) {
    Handle h = HandleWith("abcdef");
    GrowHandle(h, 3);
    EXPECT_EQ(Contents(h), std::string("abcdef\0\0\0", 9));
    GrowHandle(h, -5);
    EXPECT_EQ(Contents(h), "abcd");
    GrowHandle(h, 0);
    EXPECT_EQ(Contents(h), "abcd");
    // The bytes cut off do not come back.
    GrowHandle(h, 2);
    EXPECT_EQ(Contents(h), std::string("abcd\0\0", 6));
    GrowHandle(h, 100000);
    EXPECT_EQ(GetHandleSize(h), 100006);
    EXPECT_EQ(Contents(h), "abcd" + std::string(100002, '\0'));
    DisposeHandle(h);
}

TEST_F(BlockHelpers, GrowHandleStopsAtSizeZero) {
    for (long const delta : {-6L, -7L, -1000L, LONG_MIN + 1, LONG_MIN}) {
        Handle h = HandleWith("abcdef");
        GrowHandle(h, delta);
        EXPECT_EQ(GetHandleSize(h), 0) << delta;
        GrowHandle(h, 2);
        EXPECT_EQ(Contents(h), std::string(2, '\0')) << delta;
        DisposeHandle(h);
    }
}

TEST_F(BlockHelpers, GrowHandleLeavesTheBlockWhenTheSumOverflowsOrMemoryIsShort) {
    Handle h = HandleWith("abcdef");
    GrowHandle(h, LONG_MAX);
    EXPECT_EQ(Contents(h), "abcdef");
    GrowHandle(h, LONG_MAX - 6);
    EXPECT_EQ(Contents(h), "abcdef");
    trammel_detail::FailNextAllocations(1);
    GrowHandle(h, 16);
    EXPECT_EQ(Contents(h), "abcdef");
    DisposeHandle(h);
}

TEST_F(BlockHelpers, GrowHandleOfNullDoesNothing) {
    GrowHandle(nullptr, 16);
    GrowHandle(nullptr, -16);
    GrowHandle(nullptr, LONG_MAX);
}

TEST_F(BlockHelpers, BlockMoveCopiesNothingForCountsOfZeroOrLess) {
    void* volatile nowhere = nullptr; // volatile: the compiler would warn of null otherwise
    for (long const count : {0L, -1L, -4L, LONG_MIN}) {
        char bytes[] = "abcdefgh";
        BlockMove(bytes, bytes + 4, count);
        EXPECT_STREQ(bytes, "abcdefgh") << count;
        BlockMove(nowhere, bytes, count);
        BlockMove(bytes, nowhere, count);
        EXPECT_STREQ(bytes, "abcdefgh") << count;
    }
}

TEST_F(BlockHelpers, BlockMoveCopiesOverlappingRanges) {
    char up[] = "abcdefgh";
    BlockMove(up, up + 2, 6);
    EXPECT_STREQ(up, "ababcdef");
    char down[] = "abcdefgh";
    BlockMove(down + 2, down, 6);
    EXPECT_STREQ(down, "cdefghgh");
    char same[] = "abcdefgh";
    BlockMove(same, same, 8);
    EXPECT_STREQ(same, "abcdefgh");
    char one[] = "abcdefgh";
    BlockMove(one, one + 7, 1);
    EXPECT_STREQ(one, "abcdefga");

    std::mt19937 random(31);
    for (int round = 0; round < 500; ++round) {
        std::string bytes(200, ' ');
        for (char& c : bytes) {
            c = static_cast<char>('a' + random() % 26);
        }
        std::size_t const count = random() % 100;
        std::size_t const from = random() % 100;
        std::size_t const to = random() % 100;
        std::string expected = bytes;
        expected.replace(to, count, bytes.substr(from, count));
        BlockMove(&bytes[from], &bytes[to], static_cast<long>(count));
        ASSERT_EQ(bytes, expected) << from << " " << to << " " << count;
    }
}

TEST_F(BlockHelpers, CloneGivesAnIndependentBlockOfTheSameSizeAndContents) {
    for (long const n : {0L, 1L, 3L, 1000L}) {
        CPolygon<double>** const source = PolygonBlock(n);
        std::string const before = Contents(AsHandle(source));
        CPolygon<double>** const copy = Clone(source);
        ASSERT_NE(copy, nullptr);
        EXPECT_NE(copy, source);
        EXPECT_NE(*copy, *source);
        EXPECT_EQ(GetHandleSize(AsHandle(copy)), 40 + 16 * n);
        EXPECT_EQ(Contents(AsHandle(copy)), before);

        (*copy)->mClosed = 0;
        AppendHandle(copy, TPoint<double>(-1, -2));
        EXPECT_EQ(Contents(AsHandle(source)), before);
        DisposeHandle(AsHandle(source));
        EXPECT_EQ(Text((*copy)->mPoints[n]), "(-1, -2)");
        DisposeHandle(AsHandle(copy));
    }
}

TEST_F(BlockHelpers, CloneOfNullAndInShortMemoryIsNull) {
    EXPECT_EQ(Clone<CPolygon<double>>(nullptr), nullptr);
    EXPECT_EQ(Clone<FPolygon>(nullptr), nullptr);
    CPolygon<double>** const source = PolygonBlock(2);
    std::string const before = Contents(AsHandle(source));
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(Clone(source), nullptr);
    EXPECT_EQ(Contents(AsHandle(source)), before);
    DisposeHandle(AsHandle(source));
}

TEST_F(BlockHelpers, AppendHandleAddsOnePointAtTheEnd) {
    CPolygon<double>** const block = PolygonBlock(0);
    AppendHandle<CPolygon<double>, TPoint<double>>(block, TPoint<double>(1.5, -2.5));
    EXPECT_EQ(GetHandleSize(AsHandle(block)), 56);
    EXPECT_EQ(Text((*block)->mPoints[0]), "(1.5, -2.5)");
    AppendHandle(block, TPoint<double>(3, 4));
    EXPECT_EQ(GetHandleSize(AsHandle(block)), 72);
    EXPECT_EQ(Text((*block)->mPoints[0]), "(1.5, -2.5)");
    EXPECT_EQ(Text((*block)->mPoints[1]), "(3, 4)");
    EXPECT_EQ((*block)->mClosed, 1);
    EXPECT_EQ(Text((*block)->mBounds), "[5, 6, 7, 8]");
    DisposeHandle(AsHandle(block));
}

TEST_F(BlockHelpers, AppendHandleTakesAPointOfItsOwnBlock) {
    CPolygon<double>** const block = PolygonBlock(1);
    for (int i = 0; i < 100; ++i) { // the block moves now and then
        AppendHandle(block, (*block)->mPoints[0]);
    }
    EXPECT_EQ(GetHandleSize(AsHandle(block)), 40 + 16 * 101);
    for (int i = 0; i <= 100; ++i) {
        EXPECT_EQ(Text((*block)->mPoints[i]), "(1, 2)");
    }
    DisposeHandle(AsHandle(block));
}

TEST_F(BlockHelpers, AFailedAppendLeavesTheBlockUnchanged) {
    CPolygon<double>** const block = PolygonBlock(2);
    std::string const before = Contents(AsHandle(block));
    trammel_detail::FailNextAllocations(1);
    AppendHandle(block, TPoint<double>(9, 9));
    EXPECT_EQ(Contents(AsHandle(block)), before);
    AppendHandle(block, TPoint<double>(9, 9));
    EXPECT_EQ(GetHandleSize(AsHandle(block)), 40 + 16 * 3);
    DisposeHandle(AsHandle(block));

    AppendHandle<CPolygon<double>>(nullptr, TPoint<double>(1, 2));
}

TEST_F(BlockHelpers, AppendingManyPointsReallocatesSeldom) {
    CPolygon<double>** const block = PolygonBlock(0);
    long const before = trammel_detail::BlockReallocationCount();
    for (int i = 0; i < 100000; ++i) {
        AppendHandle(block, TPoint<double>(i, -i));
    }
    EXPECT_LE(trammel_detail::BlockReallocationCount() - before, 40);
    EXPECT_EQ(GetHandleSize(AsHandle(block)), 40 + 16 * 100000L);
    EXPECT_EQ(Text((*block)->mPoints[99999]), "(99999, -99999)");
    DisposeHandle(AsHandle(block));
}

TEST_F(BlockHelpers, TheRecordOfAPointListPolygonHasAHeaderOf40Bytes) {
    using Record = CPolygon<double>;
    EXPECT_EQ(offsetof(Record, mReserved), 0U);
    EXPECT_EQ(offsetof(Record, mClosed), 4U);
    EXPECT_EQ(offsetof(Record, mBoundsValid), 6U);
    EXPECT_EQ(offsetof(Record, mBounds), 8U);
    EXPECT_EQ(offsetof(Record, mPoints), 40U);
    static_assert(std::is_same_v<decltype(Record::mReserved), std::int32_t>);
    static_assert(std::is_same_v<decltype(Record::mClosed), std::int16_t>);
    static_assert(std::is_same_v<decltype(Record::mBoundsValid), std::int16_t>);
    static_assert(std::is_same_v<decltype(Record::mBounds), TRect<double>>);
    static_assert(std::is_same_v<decltype(Record::mPoints), TPoint<double>[1]>);

    Record const record;
    EXPECT_EQ(Text(record.mBounds), "[0, 0, 0, 0]");
    EXPECT_EQ(Text(record.mPoints[0]), "(0, 0)");
}

TEST_F(BlockHelpers, TheNumberOfVerticesFollowsFromTheBlockSize) {
    TPolygon<double> polygon;
    DisposeHandle(AsHandle(polygon.mHandle));
    for (long const n : {0L, 1L, 2L, 17L}) {
        polygon.mHandle = PolygonBlock(n);
        EXPECT_EQ(polygon.LastIndex(), n - 1);
        EXPECT_EQ(polygon.Empty(), n == 0);
        DisposeHandle(AsHandle(polygon.mHandle));
    }
    polygon.mHandle = nullptr;
}

} // namespace

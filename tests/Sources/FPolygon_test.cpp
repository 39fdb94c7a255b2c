// SPDX-License-Identifier: MIT

#include "FPolygon.h"

#include "CFPolygonRef.h"
#include "PolygonSupport.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using trammel_test::Contents;
using trammel_test::Text;

class HandlePolygonRecord : public trammel_test::WithoutLeaks {};

/// A block's bytes as an application may have stored them.
template <class Value> void Put(std::string& bytes, Value value) {
    bytes.append(reinterpret_cast<char const*>(&value), sizeof value);
}

FPolygon* Record(CFPolygonRef const& ref) { return *static_cast<FPolygon**>(ref); }

TEST_F(HandlePolygonRecord, FieldsLieAtFixedPlaces) {
    EXPECT_EQ(offsetof(FPolygon, polyReserved1), 0U);
    EXPECT_EQ(offsetof(FPolygon, polyClosed), 2U);
    EXPECT_EQ(offsetof(FPolygon, polyReserved2), 4U);
    EXPECT_EQ(offsetof(FPolygon, polyBoundsValid), 6U);
    EXPECT_EQ(offsetof(FPolygon, polyBBox), 8U);
    EXPECT_EQ(offsetof(FPolygon, polyPath), 40U);
    EXPECT_EQ(offsetof(FPolygon, polyPoints), 44U);
    EXPECT_EQ(sizeof(FPolygon), 60U);
    static_assert(std::is_same_v<decltype(FPolygon::polyReserved1), std::int16_t>);
    static_assert(std::is_same_v<decltype(FPolygon::polyClosed), std::int16_t>);
    static_assert(std::is_same_v<decltype(FPolygon::polyReserved2), std::int16_t>);
    static_assert(std::is_same_v<decltype(FPolygon::polyBoundsValid), std::int16_t>);
    static_assert(std::is_same_v<decltype(FPolygon::polyBBox), TRect<double>>);
    static_assert(std::is_same_v<decltype(FPolygon::polyPath), std::int32_t>);
    static_assert(sizeof(FPolygon::polyPath) == 4);
}

TEST_F(HandlePolygonRecord, ABlockHoldsExactlyTheFieldsAndThePoints) {
    CFPolygonRef ref(true);
    ref.Append(TPoint<double>(1.5, -2.5));
    ref.Append(TPoint<double>(3, 4));
    ref.SetClosed(true);
    ref.CalcBounds();

    std::string expected;
    Put<std::int16_t>(expected, 0);
    Put<std::int16_t>(expected, 1);
    Put<std::int16_t>(expected, 0);
    Put<std::int16_t>(expected, 1);
    for (double const field : {-2.5, 1.5, 4.0, 3.0}) { // top, left, bottom, right
        Put(expected, field);
    }
    Put<std::int32_t>(expected, 0);
    for (double const field : {-2.5, 1.5, 4.0, 3.0}) { // v before h
        Put(expected, field);
    }
    EXPECT_EQ(expected.size(), 76U);
    EXPECT_EQ(Contents(ref), expected);
    ref.Dispose();
}

TEST_F(HandlePolygonRecord, AStoredBlockIsReadAsItStands) {
    std::string bytes;
    Put<std::int16_t>(bytes, 0);
    Put<std::int16_t>(bytes, -1); // any value but 0 is closed
    Put<std::int16_t>(bytes, 0);
    Put<std::int16_t>(bytes, 256);
    for (double const field : {1.0, 2.0, 3.0, 4.0}) {
        Put(bytes, field);
    }
    Put<std::int32_t>(bytes, 0);
    for (double const field : {10.0, 20.0, 30.0, 40.0}) {
        Put(bytes, field);
    }
    Handle h = nullptr;
    ASSERT_EQ(PtrToHand(bytes.data(), &h, static_cast<Size>(bytes.size())), noErr);
    CFPolygonRef ref(reinterpret_cast<FPolygon**>(h), false);
    EXPECT_TRUE(ref.Closed());
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[2, 1, 4, 3]"); // as cached
    EXPECT_EQ(ref.LastIndex(), 1);
    EXPECT_EQ(Text(ref.PolyPoints(0)), "(20, 10)");
    EXPECT_EQ(Text(ref.PolyPoints(1)), "(40, 30)");
    ref.SetClosed(true);
    EXPECT_EQ(Contents(ref), bytes); // -1 is closed already
    ref.SetClosed(false);
    EXPECT_EQ(Record(ref)->polyClosed, 0);
    ref.SetClosed(true);
    EXPECT_EQ(Record(ref)->polyClosed, 1);
    EXPECT_EQ(Text(ref.Bounds()), "[20, 10, 40, 30]");
    ref.Dispose();
}

TEST_F(HandlePolygonRecord, ReadsAndStoresPoints) {
    CFPolygonRef ref;
    ref.CFPolygonCreate(3);
    FPolygon* const record = Record(ref);
    record->SetPolyPoints(0, TPoint<double>(1, 2));
    record->SetPolyPoints(2, TPoint<double>(-0.0, 1e308));
    EXPECT_EQ(Text(record->PolyPoints(0)), "(1, 2)");
    EXPECT_EQ(Text(record->PolyPoints(1)), "(0, 0)");
    EXPECT_EQ(Text(record->PolyPoints(2)), Text(TPoint<double>(-0.0, 1e308)));
    EXPECT_EQ(Text(ref.PolyPoints(2)), Text(TPoint<double>(-0.0, 1e308)));
    ref.Dispose();
}

TEST_F(HandlePolygonRecord, StoringAPointInTheRecordOnlyClearsTheBoundsFlag) {
    CFPolygonRef ref;
    ref.CFPolygonCreate(std::vector<TPoint<double>>{{1, 2}, {3, 4}});
    ref.CalcBounds();
    CGPath* const path = CGPathCreateMutable();
    Record(ref)->polyPath = trammel_detail::StorePath(path, ref.mRef);
    EXPECT_EQ(&Record(ref)->SetPolyPoints(1, TPoint<double>(30, 40)), Record(ref));
    EXPECT_EQ(Record(ref)->polyBoundsValid, 0);
    EXPECT_EQ(Text(Record(ref)->polyBBox), "[1, 2, 3, 4]");
    EXPECT_EQ(trammel_detail::PathForToken(Record(ref)->polyPath, ref.mRef), path);
    EXPECT_EQ(Text(ref.Bounds()), "[1, 2, 30, 40]");
    ref.Dispose();
}

TEST_F(HandlePolygonRecord, ReservedFieldsAreZeroAtFirstAndNeverTouchedLater) {
    CFPolygonRef ref;
    ref.CFPolygonCreate(2);
    EXPECT_EQ(Record(ref)->polyReserved1, 0);
    EXPECT_EQ(Record(ref)->polyReserved2, 0);
    Record(ref)->polyReserved1 = 0x1234;
    Record(ref)->polyReserved2 = -2;
    ref.Append(TPoint<double>(1, 2));
    ref.Insert(0, TPoint<double>(3, 4));
    ref.Delete(1, 1);
    ref.SetPolyPoints(0, TPoint<double>(5, 6));
    ref.SetClosed(true);
    ref.CalcBounds();
    ref.Offset(TPoint<double>(1, 1));
    ref.SetSize(8);
    ref.InvalBounds();
    CFPolygonRef copy = CFPolygonCreateCopy(ref);
    for (CFPolygonRef const& each : {ref, copy}) {
        EXPECT_EQ(Record(each)->polyReserved1, 0x1234);
        EXPECT_EQ(Record(each)->polyReserved2, -2);
    }
    copy.Dispose();
    ref.Dispose();
}

} // namespace

// SPDX-License-Identifier: MIT

// The tests of the cubic curve share this fixture and these helpers.

#ifndef TRAMMEL_BEZIERSUPPORT_H
#define TRAMMEL_BEZIERSUPPORT_H

#include "CBezier.h"
#include "Dispatch_p.h"
#include "PolygonSupport.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TestSupport.h"
#include "plain/Comparing.h"
#include "plain/PlainBezier.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace trammel_test {

/// Every test begins and ends with the settings that the library starts with.
class Bezier : public ::testing::Test {
protected:
    void SetUp() override {
        mMaxErrorBefore = CBezier::mMaxError;
        mRecursionLimitBefore = CBezier::mRecursionLimit;
        mCountBefore = CBezier::mCount;
        gCountBefore = gCount;
        maxCountBefore = maxCount;
    }
    void TearDown() override {
        CBezier::mMaxError = mMaxErrorBefore;
        CBezier::mRecursionLimit = mRecursionLimitBefore;
        CBezier::mCount = mCountBefore;
        gCount = gCountBefore;
        maxCount = maxCountBefore;
        trammel_detail::UsePortableForms(false);
    }

private:
    double mMaxErrorBefore = 0.0;
    std::int16_t mRecursionLimitBefore = 0;
    std::int32_t mCountBefore = 0;
    std::int32_t gCountBefore = 0;
    std::int32_t maxCountBefore = 0;
};

/// An arch over (0, 0) and (100, 0), symmetric.
inline CBezier const kArch(TPoint<double>(0, 0), TPoint<double>(0, 100), TPoint<double>(100, 100),
                           TPoint<double>(100, 0));
/// The line from (0, 0) to (30, 40) and 50 long.
inline CBezier const kStraight(TPoint<double>(0, 0), TPoint<double>(0, 0), TPoint<double>(30, 40),
                               TPoint<double>(30, 40));

/// The same curve for the plain form, and back.
inline plain::Bezier Plain(CBezier const& c) { return plain::Bezier{c.P0, c.P1, c.P2, c.P3}; }
inline CBezier Library(plain::Bezier const& c) { return CBezier(c.p0, c.p1, c.p2, c.p3); }

inline std::string Describe(CBezier const& c) {
    return Text(std::vector<TPoint<double>>{c.P0, c.P1, c.P2, c.P3});
}

inline bool SameCurve(CBezier const& a, CBezier const& b) {
    return plain::SameBits(a.P0, b.P0) && plain::SameBits(a.P1, b.P1) &&
           plain::SameBits(a.P2, b.P2) && plain::SameBits(a.P3, b.P3);
}
inline bool SameCurve(CBezier const& a, plain::Bezier const& b) { return SameCurve(a, Library(b)); }

/// For EXPECT_PRED_FORMAT2: lists of points that agree to the last bit.
inline testing::AssertionResult SamePoints(char const*, char const*,
                                           std::vector<TPoint<double>> const& a,
                                           std::vector<TPoint<double>> const& b) {
    if (a.size() != b.size()) {
        return testing::AssertionFailure() << a.size() << " points, " << b.size() << " expected";
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!plain::SameBits(a[i], b[i])) {
            return testing::AssertionFailure()
                   << "point " << i << " is " << Text(a[i]) << ", expected " << Text(b[i]);
        }
    }
    return testing::AssertionSuccess();
}

/// The points that Flatten appends to an empty polygon.
inline std::vector<TPoint<double>> Flattened(CBezier const& c, double error) {
    TPolygon<double> poly;
    c.Flatten(poly, error);
    return PointsOf(poly);
}

inline void Collect(TPoint<double> const& p, void* data) {
    static_cast<std::vector<TPoint<double>>*>(data)->push_back(p);
}

/// The points of CollectGlobally: a callback without data has no other place for them.
inline std::vector<TPoint<double>> gCollected; // NOLINT: no object to keep it in

inline void CollectGlobally(TPoint<double> const& p) { gCollected.push_back(p); }

/// The delivered points through the callback with data.
inline std::vector<TPoint<double>> Generated(CBezier const& c, bool force, short depth) {
    std::vector<TPoint<double>> points;
    c.GenerateSegment(Collect, &points, force, depth);
    return points;
}

/// The delivered points through the callback without data.
inline std::vector<TPoint<double>> GeneratedGlobally(CBezier const& c, bool force, short depth) {
    gCollected.clear();
    c.GenerateSegment(CollectGlobally, force, depth);
    return gCollected;
}

} // namespace trammel_test

#endif

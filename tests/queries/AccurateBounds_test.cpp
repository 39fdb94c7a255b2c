// SPDX-License-Identifier: MIT

// TightBounds contains the curve, and touches it.

#include "AccurateCurve.h"

#include "CBSpline.h"
#include "CBezier.h"
#include "CPath.h"
#include "CurveTruth.h"
#include "Finite.h"
#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using trammel::TightBounds;
using trammel_test::AnyCurve;
using trammel_test::At;
using trammel_test::IsFinite;
using trammel_test::kNaN;
using trammel_test::Off;
using trammel_test::Random;
using trammel_test::SpecialCurves;
using trammel_test::Text;
using trammel_test::Wide;
using trammel_test::Widened;
using trammel_test::WidePt;

typedef TPoint<double> Pt;

/// Checks both: the box contains dense samples of the true curve, and touches it within the stated
/// error.
void ExpectTight(CBezier const& curve) {
    TRect<double> const r = TightBounds(curve);
    TRect<double> const hull = curve.Extents();
    Wide left = Widened(curve.P0.h);
    Wide right = left;
    Wide top = Widened(curve.P0.v);
    Wide bottom = top;
    auto const add = [&](WidePt p) {
        left = std::min(left, p.h);
        right = std::max(right, p.h);
        top = std::min(top, p.v);
        bottom = std::max(bottom, p.v);
    };
    constexpr int kSamples = 300;
    for (int i = 0; i <= kSamples; ++i) {
        add(At(curve, static_cast<Wide>(i) / kSamples));
    }
    // The extrema: zeros of the derivative's coefficients d0, d1, d2 in each coordinate.
    for (Wide WidePt::*coordinate : {&WidePt::h, &WidePt::v}) {
        Wide const d0 = Widened(curve.P1).*coordinate - Widened(curve.P0).*coordinate;
        Wide const d1 = Widened(curve.P2).*coordinate - Widened(curve.P1).*coordinate;
        Wide const d2 = Widened(curve.P3).*coordinate - Widened(curve.P2).*coordinate;
        Wide const b = d1 - d0;
        Wide const c = d0 - 2 * d1 + d2;
        Wide const root = std::sqrt(std::max(b * b - c * d0, Wide{0}));
        Wide const s = b < 0 ? root - b : -root - b;
        for (Wide const t : {s / c, d0 / s}) {
            if (t > 0 && t < 1) {
                add(At(curve, t));
            }
        }
    }
    Wide const ulps = 2 * 0x1p-52L *
                      std::max(std::max(std::abs(left), std::abs(right)),
                               std::max(std::abs(top), std::abs(bottom)));
    Wide const slackH = 0x1p-45L * Widened(hull.right - hull.left) + ulps;
    Wide const slackV = 0x1p-45L * Widened(hull.bottom - hull.top) + ulps;
    // The samples themselves are rounded, in long double.
    Wide const noise =
        0x1p-60L * (std::abs(left) + std::abs(right) + std::abs(top) + std::abs(bottom) +
                    Widened(hull.right - hull.left + hull.bottom - hull.top));
    ASSERT_LE(r.left, left + noise) << Text(curve);
    ASSERT_GE(r.right, right - noise) << Text(curve);
    ASSERT_LE(r.top, top + noise) << Text(curve);
    ASSERT_GE(r.bottom, bottom - noise) << Text(curve);
    ASSERT_LE(Off(r.left, left), slackH) << Text(curve);
    ASSERT_LE(Off(r.right, right), slackH) << Text(curve);
    ASSERT_LE(Off(r.top, top), slackV) << Text(curve);
    ASSERT_LE(Off(r.bottom, bottom), slackV) << Text(curve);
}

TEST(TightBounds, ContainTheCurveAndTouchIt) {
    Random random(21);
    for (int i = 0; i < 5000; ++i) {
        CBezier const curve = AnyCurve(random);
        ExpectTight(curve);
        ExpectTight(curve + random.Point(1e6));
        CBSpline const quadratic(curve.P0, curve.P1, curve.P2);
        TRect<double> const r = TightBounds(quadratic);
        for (int k = 0; k <= 100; ++k) {
            Wide const t = k / 100.0L;
            WidePt const p = Widened(curve.P0) * ((1 - t) * (1 - t)) +
                             Widened(curve.P1) * (2 * t * (1 - t)) + Widened(curve.P2) * (t * t);
            ASSERT_LE(r.left, p.h + 1e-16L);
            ASSERT_GE(r.right, p.h - 1e-16L);
            ASSERT_LE(r.top, p.v + 1e-16L);
            ASSERT_GE(r.bottom, p.v - 1e-16L);
        }
    }
}

// The squares of its differences underflow.
TEST(TightBounds, ContainACoordinateFarSmallerThanTheOther) {
    Random random(22);
    for (int i = 0; i < 20000; ++i) {
        CBezier curve = AnyCurve(random);
        double const small = std::ldexp(1.0, -(i % 1080));
        curve *= i % 2 == 0 ? Pt(small, 1.0) : Pt(1.0, small);
        TRect<double> const r = TightBounds(curve);
        TRect<double> const hull = curve.Extents();
        // As above; long doubles hold numbers smaller than the smallest double.
        Wide const noiseH = 0x1p-50L * Widened(hull.right - hull.left);
        Wide const noiseV = 0x1p-50L * Widened(hull.bottom - hull.top);
        for (int k = 0; k <= 100; ++k) {
            WidePt const p = At(curve, k / 100.0L);
            ASSERT_LE(r.left, p.h + noiseH) << Text(curve);
            ASSERT_GE(r.right, p.h - noiseH) << Text(curve);
            ASSERT_LE(r.top, p.v + noiseV) << Text(curve);
            ASSERT_GE(r.bottom, p.v - noiseV) << Text(curve);
        }
    }
    TRect<double> const thin = TightBounds(CBezier({0, 0}, {1e-300, 1}, {-1e-300, 2}, {0, 3}));
    EXPECT_NEAR(thin.right * 1e300, std::sqrt(3.0) / 6.0, 1e-12);
    EXPECT_EQ(thin.left, -thin.right);
}

TEST(TightBounds, OfKnownCurvesAreTheKnownBounds) {
    // v = 3·100·t(1 - t): up to 75
    TRect<double> const arch = TightBounds(CBezier({0, 0}, {0, 100}, {100, 100}, {100, 0}));
    EXPECT_EQ(arch.left, 0.0);
    EXPECT_EQ(arch.right, 100.0);
    EXPECT_EQ(arch.top, 0.0);
    EXPECT_NEAR(arch.bottom, 75.0, 3e-12);
    EXPECT_GE(arch.bottom, 75.0);
    TRect<double> const parabola = TightBounds(CBSpline({0, 0}, {5, 10}, {10, 0}));
    EXPECT_NEAR(parabola.bottom, 5.0, 1e-12);
    EXPECT_GE(parabola.bottom, 5.0);
    EXPECT_EQ(parabola.right, 10.0);
    // Monotone in both directions: exactly the ends.
    EXPECT_EQ(TightBounds(CBezier({1, 8}, {2, 7}, {3, 6}, {4, 5})), TRect<double>(1, 5, 4, 8));
    EXPECT_EQ(TightBounds(CBezier()), TRect<double>());
}

TEST(TightBounds, AreNeverBeyondTheControlPoints) {
    for (CBezier const& curve : SpecialCurves()) {
        TRect<double> const r = TightBounds(curve);
        if (!IsFinite(curve)) {
            ASSERT_TRUE(std::isnan(r.left) && std::isnan(r.top) && std::isnan(r.right) &&
                        std::isnan(r.bottom));
            continue;
        }
        auto const h = std::minmax({curve.P0.h, curve.P1.h, curve.P2.h, curve.P3.h});
        auto const v = std::minmax({curve.P0.v, curve.P1.v, curve.P2.v, curve.P3.v});
        ASSERT_TRUE(r.left >= h.first && r.right <= h.second && r.left <= r.right) << Text(curve);
        ASSERT_TRUE(r.top >= v.first && r.bottom <= v.second && r.top <= r.bottom) << Text(curve);
        for (Pt const& p : {curve.P0, curve.P3}) {
            ASSERT_TRUE(p.h >= r.left && p.h <= r.right && p.v >= r.top && p.v <= r.bottom);
        }
    }
}

TEST(TightBounds, OfAPathAreThoseOfWhatIsDrawn) {
    CPath path;
    EXPECT_EQ(TightBounds(path), TRect<double>());
    path.MoveTo({-50, -50});
    EXPECT_EQ(TightBounds(path), TRect<double>());
    path.MoveTo({0, 0}).LineTo({10, 0}); // at the origin: a point like any other
    EXPECT_EQ(TightBounds(path), TRect<double>(0, 0, 10, 0));
    path.LineTo({10, 5}).ClosePath().MoveTo({500, 500});
    EXPECT_EQ(TightBounds(path), TRect<double>(0, 0, 10, 5));
    path.LineTo({500, 501}).CurveTo({600, 601}, {400, 601}, {500, 501.5});
    TRect<double> const r = TightBounds(path);
    TRect<double> const curve =
        TightBounds(CBezier({500, 501}, {600, 601}, {400, 601}, {500, 501.5}));
    EXPECT_EQ(r, TRect<double>(0, 0, curve.right, curve.bottom));
    EXPECT_LT(r.bottom, path.Bounds().bottom);
    path.LineTo({kNaN, 0});
    EXPECT_TRUE(std::isnan(TightBounds(path).left));
}

} // namespace

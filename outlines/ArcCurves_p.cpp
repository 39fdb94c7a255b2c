// SPDX-License-Identifier: MIT

#include "ArcCurves_p.h"

#include "Hypot_p.h"
#include "UTrigonometry.h"

#include <algorithm>
#include <cmath>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Finer tolerances than this share of the radius are below the rounding of the points.
constexpr double kFinestShare = 0x1p-52;

/// A full turn at the finest tolerance takes fewer curves than this.
constexpr std::size_t kMostCurves = 512;

/// Slack against one curve more from the rounding of a sweep of whole quarters.
constexpr double kQuarterSlack = 1e-9;

/// The rounding of half a chord, as a share of the ends' coordinates and of the chord.
constexpr double kChordRounding = 0x1p-52;
/// No arc is taken for half a turn by more than this, however far away it is.
constexpr double kMostChordRounding = 0x1p-26;

/// Returns a bound on how far a curve leaves an arc of radius 1, see ArcCurveCount. It is not less
/// than the formula there, because the tangent's continued fraction is cut where that enlarges it.
double Deviation(double angle) {
    double const x = angle / 4.0; // at most pi/8
    double const square = x * x;
    double const t = x / (1.0 - square / (3.0 - square / (5.0 - square / 6.9)));
    double const s = t * t;
    return 2.0 / 27.0 * s * s * s / ((1.0 + s) * (1.0 + s));
}

} // namespace

std::size_t ArcCurveCount(double sweep, double radius, double tolerance) {
    double const quarters = std::ceil(sweep / (pi / 2.0) - kQuarterSlack);
    auto const least = static_cast<std::size_t>(quarters >= 1.0 ? std::min(quarters, 4.0) : 1.0);
    double const share = std::max(kFinestShare, tolerance / radius); // NaN gives the finest
    std::size_t low = least;
    std::size_t high = kMostCurves;
    while (low < high) {
        std::size_t const middle = (low + high) / 2;
        if (Deviation(sweep / static_cast<double>(middle)) <= share) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

// The endpoint-to-centre conversion of the SVG standard (implementation notes, elliptical arcs). It
// works in the coordinates in which the ellipse is the unit circle around the origin. There the
// chord's half length s is the sine of half the arc. Everything follows from s, without differences
// of nearly equal numbers.
ArcCurves ArcCurves::BetweenPoints(Pt const& from, Pt const& to, double hRadius, double vRadius,
                                   double rotation, bool large, bool positive) {
    ArcCurves arc;
    SinCos(rotation, arc.mSine, arc.mCosine);

    // Half the chord, turned to the axes of the ellipse.
    Pt const half(0.5 * from.h - 0.5 * to.h, 0.5 * from.v - 0.5 * to.v);
    Pt const chord(arc.mCosine * half.h + arc.mSine * half.v,
                   arc.mCosine * half.v - arc.mSine * half.h);
    double s = Hypot(chord.h / hRadius, chord.v / vRadius);
    // Half a turn is often drawn with its diameter for a chord, and rounding of the ends then makes
    // s a little less than 1. The centre would move by the root of that.
    double const far =
        std::max({std::abs(from.h), std::abs(from.v), std::abs(to.h), std::abs(to.v)});
    double const slack = kChordRounding * (1.0 + far / chord.Hypotenuse());
    if (!(s + std::min(slack, kMostChordRounding) < 1.0)) {
        // The radii are too small to reach both ends: they grow until the chord is a diameter.
        double const ratio = hRadius / vRadius;
        hRadius = Hypot(chord.h, chord.v * ratio);
        vRadius = Hypot(chord.h / ratio, chord.v);
        s = 1.0;
    }
    // The chord's direction has length 1, however small the chord is beside the radii.
    double const length = chord.Hypotenuse();
    double const greater = std::max(hRadius, vRadius);
    Pt direction(chord.h / length * (greater / hRadius), chord.v / length * (greater / vRadius));
    direction /= direction.Hypotenuse();

    double const sign = large != positive ? 1.0 : -1.0;
    double const h = sign * std::sqrt((1.0 - s) * (1.0 + s));
    Pt const centre(h * direction.v, -h * direction.h);
    double const small = 2.0 * std::asin(s);

    arc.mFrom = from;
    arc.mTo = to;
    arc.mFirst = direction * s - centre;
    arc.mLast = -(direction * s) - centre;
    arc.mRadiusH = hRadius;
    arc.mRadiusV = vRadius;
    arc.mSweep = large ? 2.0 * pi - small : small;
    arc.mPositive = positive;
    return arc;
}

ArcCurves ArcCurves::AroundCenter(Pt const& center, double hRadius, double vRadius, double rotation,
                                  double startAngle, double sweep) {
    ArcCurves arc;
    SinCos(rotation, arc.mSine, arc.mCosine);
    arc.mRadiusH = hRadius;
    arc.mRadiusV = vRadius;
    arc.mSweep = std::min(std::abs(sweep), 2.0 * pi);
    arc.mPositive = sweep >= 0.0;
    SinCos(startAngle, arc.mFirst.v, arc.mFirst.h);
    arc.mLast = arc.mFirst;
    if (arc.mSweep < 2.0 * pi) {
        SinCos(startAngle + sweep, arc.mLast.v, arc.mLast.h);
    }
    arc.mFrom = center + arc.Back(arc.mFirst);
    arc.mTo = center + arc.Back(arc.mLast);
    return arc;
}

double ArcCurves::GreaterRadius() const { return std::max(std::abs(mRadiusH), std::abs(mRadiusV)); }

// A vector on the circle back to the ellipse.
Pt ArcCurves::Back(Pt const& p) const {
    double const x = p.h * mRadiusH;
    double const y = p.v * mRadiusV;
    return Pt(mCosine * x - mSine * y, mSine * x + mCosine * y);
}

void ArcCurves::Cut(std::size_t count) {
    mCount = count;
    mAt = 0;
    mStep = (mPositive ? mSweep : -mSweep) / static_cast<double>(count);
    mArm = 4.0 / 3.0 * std::tan(mStep / 4.0);
    mPoint = mFrom;
    mRadius = mFirst;
}

bool ArcCurves::Next(std::array<Pt, 3>& points) {
    if (mAt == mCount) {
        return false;
    }
    Pt nextRadius = mLast;
    Pt end = mTo;
    if (mAt + 1 < mCount) {
        double const turned = mStep * static_cast<double>(mAt + 1);
        double const c = std::cos(turned);
        double const n = std::sin(turned);
        nextRadius.Set(mFirst.h * c - mFirst.v * n, mFirst.h * n + mFirst.v * c);
        end = mFrom + Back(nextRadius - mFirst);
    }
    points[0] = mPoint + Back(Pt(-mRadius.v, mRadius.h) * mArm);
    points[1] = end - Back(Pt(-nextRadius.v, nextRadius.h) * mArm);
    points[2] = end;
    ++mAt;
    mPoint = end;
    mRadius = nextRadius;
    return true;
}

} // namespace trammel_detail

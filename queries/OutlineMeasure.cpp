// SPDX-License-Identifier: MIT

#include "OutlineMeasure.h"

#include "AccurateCurve_p.h"
#include "CBezier.h"
#include "CurveDirection_p.h"
#include "PathWalk_p.h"
#include "PointMath_p.h"
#include "Speed_p.h"
#include "Sums_p.h"
#include "TwoSum_p.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace {

typedef TPoint<double> Pt;

/// The accuracy of a curve's length, as a part of the curve's size.
constexpr double kLengthPart = 0x1p-47;

// A place on a curve is found for a length that is a multiple of a quantum. The quantum q is more
// than 2^-43 of the curve's size. The length up to the place found is off by less than 2^-45 of the
// size, so by less than q/4. For two lengths that are rounded to different multiples, the true
// lengths up to the places then differ by more than q/2. They come in order, so the parameters do.
// For two lengths that are rounded to the same multiple, the parameters are equal.

/// A quantum as a part of the curve's size, rounded down to a power of two.
constexpr double kQuantum = 0x1p-42;
/// The accuracy of the place, as a part of the curve's size.
constexpr double kPlacePart = 0x1p-45;

/// Rounds a length on a curve to a multiple of the quantum. `size` is a normal number, and the
/// length is at most as much.
double Quantized(double length, double size) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &size, sizeof bits);
    bits &= 0x7ff0000000000000U;
    double power = 0.0; // of two, at most the size
    std::memcpy(&power, &bits, sizeof bits);
    // The sum is between 2^52 and 2^53 quanta, where doubles are whole quanta apart.
    double const round = power * (1.5 * 0x1p52 * kQuantum);
    return (length + round) - round;
}

/// Returns 0, or NaN for a point with a coordinate that is not finite.
double Zero(Pt const& p) { return p.h * 0.0 + p.v * 0.0; }

double LengthOf(CBezier const& curve) {
    trammel_detail::ScaledPoints<4> const p = trammel_detail::Measured(curve);
    trammel_detail::Speed speed = trammel_detail::SpeedOf(p);
    return p.Up(speed.Length(0.0, 1.0, kLengthPart * speed.Size()));
}

/// Returns the parameter at which a curve of the length `whole` reaches `length`, which is from 0
/// to `whole`.
double ParameterAt(CBezier const& curve, double length, double whole) {
    trammel_detail::ScaledPoints<4> const p = trammel_detail::Measured(curve);
    trammel_detail::Speed speed = trammel_detail::SpeedOf(p);
    double const target = Quantized(p.Down(length), speed.Size());
    double const total = p.Down(whole);
    return target <= 0.0 ? 0.0
           : target >= total
               ? 1.0
               : trammel_detail::SolveLength(speed, target, total, kPlacePart * speed.Size());
}

/// Returns a line's direction. Differences may overflow or be subnormal.
Pt LineDirection(Pt const& from, Pt const& to) {
    Pt const delta = to - from;
    double const size = trammel_detail::Taxicab(delta);
    if (size >= 0x1p-1000 && size <= 0x1p1000) {
        return trammel_detail::Unit(delta);
    }
    return trammel_detail::Unit(size > 1.0 ? to * 0x1p-10 - from * 0x1p-10
                                           : to * 0x1p100 - from * 0x1p100);
}

/// Returns the point of a line at a parameter from 0 to 1.
Pt LinePoint(Pt const& from, Pt const& to, double t) {
    if (t == 1.0) {
        return to;
    }
    Pt const delta = to - from;
    return std::isfinite(trammel_detail::Taxicab(delta)) ? from + delta * t
                                                         : from * (1.0 - t) + to * t;
}

/// Sets the direction and the curvature of a curve at a parameter.
void SetBend(CBezier const& curve, double t, trammel::OutlineMeasure::Place& place) {
    trammel_detail::ScaledPoints<4> const p = trammel_detail::Measured(curve);
    trammel_detail::CurveDerivatives const d(CBezier(p[0], p[1], p[2], p[3]), t);
    place.tangent = trammel_detail::DirectionAt(d, t);
    double const speed = d.first.Hypotenuse();
    if (speed > 0.0) {
        double const bend = trammel_detail::Cross(place.tangent, d.second / speed) / speed;
        place.curvature = p.Down(2.0 / 3.0 * bend);
    } else {
        // Beside such a place x units of the parameter away, the bend is 1/(12x) of this product,
        // divided by the cube of the second derivative.
        double const turn = trammel_detail::Cross(d.second, d.third);
        place.curvature =
            turn == 0.0 ? 0.0 : std::copysign(std::numeric_limits<double>::infinity(), turn);
    }
}

} // namespace

namespace trammel_detail {

using trammel::OutlineMeasure;

/// A path's segments and the sums of their lengths. It is built once and never changed.
class OutlineLengths {
    struct Segment {
        std::size_t firstPt; ///< the index of its first point; the others follow
        std::size_t element; ///< its index in the path's codes
        std::size_t subpath;
        double length;
        bool isCurve;
    };

public:
    explicit OutlineLengths(CPath const& path);

    double Total() const { return mBehind.empty() ? 0.0 : mBehind.back(); }

    /// A length from the start to a place, limited to the outline, and the segment there.
    struct Target {
        double length;
        std::size_t segment; ///< the number of segments for none
    };
    /// Returns the first segment that ends at `length` or behind it, but not before the first that
    /// has a length. The search begins at `hint`.
    Target Find(double length, std::size_t hint) const {
        if (std::isnan(length)) {
            return {length, mSegments.size()};
        }
        double const limited = std::min(std::max(length, 0.0), Total());
        return {limited, limited > 0.0 ? FirstNotLess(mBehind.data(), mBehind.size(), limited, hint)
                                       : mFirst};
    }
    /// Returns the length for a fraction of the total.
    double LengthAt(double t) const { return t >= 1.0 ? Total() : t <= 0.0 ? 0.0 : t * Total(); }

    Pt PointAt(Target const& target) const;
    OutlineMeasure::Place PlaceAt(Target const& target) const;

    /// Calls use(i, target) for `count` places at the lengths length(i). The search for each place
    /// begins at the one before.
    template <class Length, class Use>
    void FindEach(std::size_t count, Length const& length, Use const& use) const {
        std::size_t hint = 0;
        for (std::size_t i = 0; i < count; ++i) {
            Target const target = Find(length(i), hint);
            hint = target.segment;
            use(i, target);
        }
    }

private:
    double Before(std::size_t i) const { return i > 0 ? mBehind[i - 1] : 0.0; }
    double Parameter(Target const& target) const;
    CBezier Curve(Segment const& segment) const {
        Pt const* const p = &mPts[segment.firstPt];
        return CBezier(p[0], p[1], p[2], p[3]);
    }
    Pt Point(Segment const& segment, double parameter) const {
        Pt const* const p = &mPts[segment.firstPt];
        return segment.isCurve ? Curve(segment).TPt(parameter) : LinePoint(p[0], p[1], parameter);
    }

    std::vector<double> mBehind; ///< the sums of lengths, each segment's own included
    std::vector<Segment> mSegments;
    std::vector<Pt> mPts;   ///< of a subpath's segments one after the other, common ends once
    std::size_t mFirst = 0; ///< the first segment that has a length, or the first of all
    Pt mStart;              ///< the first move's point
};

OutlineLengths::OutlineLengths(CPath const& path) {
    std::size_t const elements = path.mCtls.size();
    mSegments.reserve(elements);
    mPts.reserve(path.mPts.size() + elements);
    std::size_t subpath = OutlineMeasure::kNone;
    std::size_t firstOfSubpath = 0;
    double finite = 0.0; // NaN as soon as a coordinate of the subpath is not finite
    bool anyMove = false;
    bool begins = true; // the next segment is a subpath's first
    auto const endSubpath = [&] {
        if (std::isnan(finite)) {
            mPts.resize(mSegments[firstOfSubpath].firstPt);
            mSegments.resize(firstOfSubpath);
        }
        firstOfSubpath = mSegments.size();
        finite = 0.0;
    };
    SegmentCursor cursor(path);
    while (cursor.NextOrMove()) {
        if (cursor.Code() == kPathMove) {
            if (!anyMove) {
                mStart = cursor.Start();
                anyMove = true;
            }
            endSubpath();
            ++subpath;
            begins = false;
            continue;
        }
        if (begins) {
            endSubpath();
            ++subpath;
        }
        begins = cursor.Code() == kPathClose;
        CBezier const curve = cursor.IsCurve() ? cursor.Curve() : CBezier();
        Pt const from = cursor.IsCurve() ? curve.P0 : cursor.Line().mStart;
        Pt const to = cursor.IsCurve() ? curve.P3 : cursor.Line().mEnd;
        finite += Zero(from) + Zero(to);
        if (mSegments.size() == firstOfSubpath) {
            mPts.push_back(from);
        }
        Segment segment = {mPts.size() - 1, cursor.Element(), subpath, 0.0, cursor.IsCurve()};
        if (segment.isCurve) {
            finite += Zero(curve.P1) + Zero(curve.P2);
            mPts.push_back(curve.P1);
            mPts.push_back(curve.P2);
            segment.length = LengthOf(curve);
        } else {
            segment.length = Distance(from, to);
        }
        mPts.push_back(to);
        mSegments.push_back(segment);
    }
    endSubpath();

    CompensatedSum sum;
    double behind = 0.0;
    mBehind.reserve(mSegments.size());
    for (Segment const& segment : mSegments) {
        sum.Add(segment.length);
        // Rounding must not make the sums fall. After an overflow they stay infinite, where the
        // errors of the sum are NaN.
        double const value = sum.Value();
        behind = value > behind ? value : behind;
        mBehind.push_back(behind);
    }
    auto const first = std::find_if(mSegments.begin(), mSegments.end(),
                                    [](Segment const& s) { return s.length > 0.0; });
    mFirst = first != mSegments.end() ? static_cast<std::size_t>(first - mSegments.begin()) : 0;
}

double OutlineLengths::Parameter(Target const& target) const {
    Segment const& segment = mSegments[target.segment];
    double const before = Before(target.segment);
    double const all = mBehind[target.segment] - before;
    double const part = target.length - before;
    if (target.length == mBehind[target.segment]) {
        return all > 0.0 ? 1.0 : 0.0;
    }
    if (!(part > 0.0) || std::isinf(all)) {
        return 0.0;
    }
    if (!segment.isCurve) {
        return part / all;
    }
    // The sums are rounded, so `all` is not exactly the length.
    double const length = std::min(part * (segment.length / all), segment.length);
    return ParameterAt(Curve(segment), length, segment.length);
}

Pt OutlineLengths::PointAt(Target const& target) const {
    if (target.segment >= mSegments.size()) {
        return std::isnan(target.length) ? Pt(target.length, target.length) : mStart;
    }
    return Point(mSegments[target.segment], Parameter(target));
}

OutlineMeasure::Place OutlineLengths::PlaceAt(Target const& target) const {
    OutlineMeasure::Place place;
    place.length = target.length;
    if (target.segment >= mSegments.size()) {
        place.point = PointAt(target);
        return place;
    }
    Segment const& segment = mSegments[target.segment];
    place.element = segment.element;
    place.subpath = segment.subpath;
    place.parameter = Parameter(target);
    place.point = Point(segment, place.parameter);
    if (segment.isCurve) {
        SetBend(Curve(segment), place.parameter, place);
    } else {
        Pt const* const p = &mPts[segment.firstPt];
        place.tangent = LineDirection(p[0], p[1]);
    }
    return place;
}

} // namespace trammel_detail

namespace trammel {

OutlineMeasure::OutlineMeasure(CPath const& path)
    : mOutline(std::make_shared<trammel_detail::OutlineLengths const>(path)) {}

double OutlineMeasure::Length() const noexcept { return mOutline->Total(); }

OutlineMeasure::Place OutlineMeasure::At(double t) const noexcept {
    return AtLength(mOutline->LengthAt(t));
}

OutlineMeasure::Place OutlineMeasure::AtLength(double length) const noexcept {
    return mOutline->PlaceAt(mOutline->Find(length, 0));
}

TPoint<double> OutlineMeasure::TPt(double t) const noexcept {
    return PtAtLength(mOutline->LengthAt(t));
}

TPoint<double> OutlineMeasure::PtAtLength(double length) const noexcept {
    return mOutline->PointAt(mOutline->Find(length, 0));
}

void OutlineMeasure::TPts(double const* t, std::size_t count, TPoint<double>* out) const noexcept {
    mOutline->FindEach(
        count, [&](std::size_t i) { return mOutline->LengthAt(t[i]); },
        [&](std::size_t i, auto const& target) { out[i] = mOutline->PointAt(target); });
}

void OutlineMeasure::PtsAtLengths(double const* lengths, std::size_t count,
                                  TPoint<double>* out) const noexcept {
    mOutline->FindEach(
        count, [&](std::size_t i) { return lengths[i]; },
        [&](std::size_t i, auto const& target) { out[i] = mOutline->PointAt(target); });
}

void OutlineMeasure::Places(double const* t, std::size_t count, Place* out) const noexcept {
    mOutline->FindEach(
        count, [&](std::size_t i) { return mOutline->LengthAt(t[i]); },
        [&](std::size_t i, auto const& target) { out[i] = mOutline->PlaceAt(target); });
}

void OutlineMeasure::PlacesAtLengths(double const* lengths, std::size_t count,
                                     Place* out) const noexcept {
    mOutline->FindEach(
        count, [&](std::size_t i) { return lengths[i]; },
        [&](std::size_t i, auto const& target) { out[i] = mOutline->PlaceAt(target); });
}

} // namespace trammel

// SPDX-License-Identifier: MIT

#include "OutlineMeasure.h"

#include "AccurateCurve_p.h"
#include "CBezier.h"
#include "CurveDirection_p.h"
#include "NearestPoint_p.h"
#include "PathWalk_p.h"
#include "PointMath_p.h"
#include "Speed_p.h"
#include "StretchTree_p.h"
#include "Sums_p.h"
#include "TwoSum_p.h"

#include <algorithm>
#include <array>
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

/// Returns the length of a curve up to a parameter.
double LengthOf(CBezier const& curve, double t) {
    trammel_detail::ScaledPoints<4> const p = trammel_detail::Measured(curve);
    trammel_detail::Speed speed = trammel_detail::SpeedOf(p);
    return p.Up(speed.Length(0.0, t, kLengthPart * speed.Size()));
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

/// Returns the point of a line that is nearest to `p`.
trammel::CurvePoint NearestOnLine(Pt const& from, Pt const& to, Pt const& p) {
    std::array<Pt, 3> points = {from, to, p};
    trammel_detail::DropCommon(points);
    trammel_detail::ScaledPoints<3> const scaled(points);
    Pt const e = scaled[2] - scaled[0];
    Pt const delta = scaled[1] - scaled[0];
    double const square = trammel_detail::Square(delta);
    double const along = trammel_detail::Dot(e, delta);
    double const t = along > 0.0 ? std::min(along / square, 1.0) : 0.0;
    // The distance of an end is not off by the other end's rounding.
    Pt const off = t < 1.0 ? e - delta * t : scaled[2] - scaled[1];
    return {t, LinePoint(from, to, t), scaled.Up(std::sqrt(trammel_detail::Square(off)))};
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
        bool isClose;
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

    OutlineMeasure::Nearest FindNearest(Pt const& p, double accuracy, bool withLength) const;

    /// Appends the piece between two lengths to `out`.
    void Cut(double from, double to, CPath& out) const;

private:
    double Before(std::size_t i) const { return i > 0 ? mBehind[i - 1] : 0.0; }
    double Parameter(Target const& target) const;
    void MakeRoom(std::size_t first, std::size_t last, CPath& out) const;
    bool BeginsSubpath(std::size_t i) const {
        return i == 0 || mSegments[i - 1].subpath != mSegments[i].subpath;
    }
    /// True when the subpath that begins with segment `i` has no length.
    bool SubpathHasNoLength(std::size_t i) const {
        std::size_t const subpath = mSegments[i].subpath;
        std::size_t const first = i;
        while (i < mSegments.size() && mSegments[i].subpath == subpath) {
            if (mBehind[i] > Before(first)) {
                return false;
            }
            ++i;
        }
        return true;
    }
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
    std::vector<Pt> mPts; ///< of a subpath's segments one after the other, common ends once
    StretchTree mTree;
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
        Segment segment = {mPts.size() - 1,  cursor.Element(),           subpath, 0.0,
                           cursor.IsCurve(), cursor.Code() == kPathClose};
        if (segment.isCurve) {
            finite += Zero(curve.P1) + Zero(curve.P2);
            mPts.push_back(curve.P1);
            mPts.push_back(curve.P2);
            segment.length = LengthOf(curve, 1.0);
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
    mTree.Build(mSegments.size(), [this](std::size_t i) {
        Pt const* const p = &mPts[mSegments[i].firstPt];
        return mSegments[i].isCurve ? Curve(mSegments[i]) : CBezier(p[0], p[0], p[1], p[1]);
    });
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

OutlineMeasure::Nearest OutlineLengths::FindNearest(Pt const& p, double accuracy,
                                                    bool withLength) const {
    OutlineMeasure::Nearest nearest;
    if (mSegments.empty() || !IsFinite(p)) {
        return nearest; // such a point is at no finite distance from anything
    }
    double const within = accuracy > 0.0 ? accuracy : 0.0;
    // The distance from which on a box need not be opened, with room for rounding. Neither it nor
    // its square underflows.
    double const room = TurnedBox::kSlack * Taxicab(p) + 0x1p-400;
    double limit = std::numeric_limits<double>::infinity();
    std::size_t best = 0;
    bool found = false;
    mTree.Search(p, limit, [&](std::size_t i) {
        Segment const& segment = mSegments[i];
        Pt const* const pts = &mPts[segment.firstPt];
        trammel::CurvePoint const on =
            segment.isCurve ? NearestPointWithin(Curve(segment), p, within, nearest.distance)
                            : NearestOnLine(pts[0], pts[1], p);
        if (on.distance < nearest.distance || !found) {
            found = true;
            best = i;
            nearest.distance = on.distance;
            nearest.point = on.point;
            nearest.parameter = on.t;
            if (on.distance <= TurnedBox::kLargest && room <= TurnedBox::kLargest) {
                limit = std::max(on.distance - within, 0.0) + room;
            }
        }
    });
    Segment const& segment = mSegments[best];
    nearest.element = segment.element;
    nearest.subpath = segment.subpath;
    if (withLength) {
        double const t = nearest.parameter;
        double const part = t == 1.0          ? segment.length
                            : segment.isCurve ? LengthOf(Curve(segment), t)
                                              : t * segment.length;
        nearest.length = std::min(Before(best) + part, mBehind[best]);
        nearest.t = nearest.length < Total() ? nearest.length / Total() : Total() > 0.0 ? 1.0 : 0.0;
    }
    return nearest;
}

void OutlineLengths::Cut(double from, double to, CPath& out) const {
    if (mSegments.empty() || !(from < to && from < Total() && to > 0.0)) {
        return;
    }
    // The segments from the one with the start to the one with the end. Neighbours without length
    // belong to the piece where it begins or ends beside them.
    std::size_t first = Find(from, 0).segment;
    if (from > 0.0 && mBehind[first] <= from) {
        first = static_cast<std::size_t>(std::upper_bound(mBehind.begin(), mBehind.end(), from) -
                                         mBehind.begin());
    }
    Target const end = Find(to, 0);
    std::size_t last = end.segment;
    while (!BeginsSubpath(first) && from <= Before(first) && Before(first) == Before(first - 1)) {
        --first;
    }
    while (to >= mBehind[last] && last + 1 < mSegments.size() && !BeginsSubpath(last + 1) &&
           mBehind[last + 1] == mBehind[last]) {
        ++last;
    }
    MakeRoom(first, last, out);
    bool dot = false;   // the subpath has no length
    bool drawn = false; // the subpath of the piece has begun
    bool whole = false; // and it begins where the outline's does
    Pt start;
    for (std::size_t i = first; i <= last; ++i) {
        Segment const& segment = mSegments[i];
        double const t0 = from > Before(i) ? Parameter({from, i}) : 0.0;
        double const t1 = to < mBehind[i] ? Parameter({to, i}) : 1.0;
        if (BeginsSubpath(i)) {
            drawn = false;
            dot = SubpathHasNoLength(i);
        }
        if (dot || !(t0 < t1)) {
            continue;
        }
        if (!drawn) {
            drawn = true;
            whole = BeginsSubpath(i) && t0 == 0.0;
            start = Point(segment, t0);
            out.MoveTo(start);
        }
        Pt const to1 = Point(segment, t1);
        if (segment.isCurve) {
            CBezier piece = Curve(segment);
            if (t0 > 0.0 || t1 < 1.0) {
                piece.GetTRange(t0, t1, piece);
            }
            out.AddCtl(kPathCurve).AddPt(piece.P1).AddPt(piece.P2).AddPt(to1);
        } else if (segment.isClose && whole && t1 == 1.0 && to1 == start) {
            out.ClosePath();
        } else {
            out.AddCtl(kPathLine).AddPt(to1);
        }
    }
}

/// Makes room for the piece from one segment to another, so that appending it does not throw.
void OutlineLengths::MakeRoom(std::size_t first, std::size_t last, CPath& out) const {
    std::size_t const segments = last - first + 1;
    auto const reserve = [](auto& items, std::size_t more) {
        if (items.capacity() - items.size() < more) {
            items.reserve(std::max(items.size() + more, 2 * items.size()));
        }
    };
    reserve(out.mCtls, 2 * segments);
    reserve(out.mPts, 4 * segments);
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

OutlineMeasure::Nearest OutlineMeasure::FindNearest(TPoint<double> const& p,
                                                    double accuracy) const noexcept {
    return mOutline->FindNearest(p, accuracy, true);
}

double OutlineMeasure::Distance(TPoint<double> const& p, double accuracy) const noexcept {
    return mOutline->FindNearest(p, accuracy, false).distance;
}

void OutlineMeasure::FindNearest(TPoint<double> const* points, std::size_t count, Nearest* out,
                                 double accuracy) const noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = FindNearest(points[i], accuracy);
    }
}

void OutlineMeasure::GetTRange(double t0, double t1, CPath& out) const {
    GetLengthRange(mOutline->LengthAt(t0), mOutline->LengthAt(t1), out);
}

void OutlineMeasure::GetLengthRange(double length0, double length1, CPath& out) const {
    mOutline->Cut(length0, length1, out);
}

} // namespace trammel

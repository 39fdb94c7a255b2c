// SPDX-License-Identifier: MIT

#include "OutlineMeasure.h"

#include "AccurateCurve_p.h"
#include "CBezier.h"
#include "CurveDirection_p.h"
#include "NearestPoint_p.h"
#include "PathWalk_p.h"
#include "PlaceKernels_p.h"
#include "PointMath_p.h"
#include "Speed_p.h"
#include "StretchTree_p.h"
#include "Sums_p.h"
#include "TwoSum_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace {

typedef TPoint<double> Pt;
typedef trammel::OutlineMeasure::Place Place;

using trammel_detail::kPieceLengthPart;
using trammel_detail::kPlacePart;
using trammel_detail::LengthPiece;
using trammel_detail::Quantized;
using trammel_detail::Scale;

/// Returns 0, or NaN for a point with a coordinate that is not finite.
double Zero(Pt const& p) { return p.h * 0.0 + p.v * 0.0; }

/// The pieces of one curve with their lengths.
class Pieces {
public:
    explicit Pieces(CBezier const& curve)
        : mCount(trammel_detail::CurvePieces(&curve.P0.v, Scale::kAny, mPieces,
                                             trammel_detail::kGaussTable.entries)) {
        if (mCount > 0) {
            return;
        }
        trammel_detail::ScaledPoints<4> const p = trammel_detail::Measured(curve);
        mCount = trammel_detail::CurvePieces(&p[0].v, Scale::kScaled, mPieces,
                                             trammel_detail::kGaussTable.entries);
        for (int i = 0; i < mCount; ++i) {
            mPieces[i].length = p.Up(mPieces[i].length);
        }
        if (mCount == 0) { // all points are equal
            mPieces[0] = {0.0, 1.0, 0.0, -1};
            mCount = 1;
        }
    }
    LengthPiece const* begin() const { return mPieces; }
    LengthPiece const* end() const { return mPieces + mCount; }

    /// Returns the length between two parameters.
    static double LengthOf(CBezier const& curve, double from, double to) {
        trammel_detail::ScaledPoints<4> const p = trammel_detail::Measured(curve);
        trammel_detail::Speed speed = trammel_detail::SpeedOf(p);
        return p.Up(speed.Length(from, to, kPieceLengthPart * speed.Size()));
    }

private:
    LengthPiece mPieces[trammel_detail::kMostPieces]; // NOLINT(modernize-avoid-c-arrays)
    int mCount;
};

/// Returns the parameter at which a length on a piece of a curve is reached, counted from the
/// piece's start.
double ParameterAt(CBezier const& curve, LengthPiece const& piece, double length) {
    if (piece.formula >= 0) {
        double const t = trammel_detail::PieceParameter(&curve.P0.v, Scale::kAny, piece, length,
                                                        trammel_detail::kGaussTable.entries);
        if (!std::isnan(t)) {
            return t;
        }
    }
    trammel_detail::ScaledPoints<4> const p = trammel_detail::Measured(curve);
    if (piece.formula >= 0) {
        LengthPiece const scaled = {piece.from, piece.to, p.Down(piece.length), piece.formula};
        return trammel_detail::PieceParameter(&p[0].v, Scale::kScaled, scaled, p.Down(length),
                                              trammel_detail::kGaussTable.entries);
    }
    trammel_detail::Speed speed = trammel_detail::SpeedOf(p);
    double const target = Quantized(p.Down(length), speed.Size());
    double const total = p.Down(piece.length);
    return target <= 0.0     ? piece.from
           : target >= total ? piece.to
                             : trammel_detail::SolveLength(speed, piece.from, piece.to, target,
                                                           total, kPlacePart * speed.Size());
}

/// True when a vector can be squared.
bool IsOrdinary(Pt const& vector) {
    double const size = trammel_detail::Taxicab(vector);
    return size >= 0x1p-400 && size <= 0x1p400;
}

/// Returns a line's direction. Differences may overflow or be subnormal.
Pt LineDirection(Pt const& from, Pt const& to) {
    Pt const delta = to - from;
    double const size = trammel_detail::Taxicab(delta);
    if (IsOrdinary(delta)) {
        return delta / std::sqrt(trammel_detail::Square(delta));
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

/// Sets the direction and the curvature from derivatives.
void SetBend(trammel_detail::CurveDerivatives const& d, double t, Place& place) {
    double const speed =
        IsOrdinary(d.first) ? std::sqrt(trammel_detail::Square(d.first)) : d.first.Hypotenuse();
    if (speed > 0.0) {
        place.tangent = d.first / speed;
        place.curvature =
            2.0 / 3.0 * (trammel_detail::Cross(place.tangent, d.second / speed) / speed);
    } else {
        // Beside such a place x units of the parameter away, the bend is 1/(12x) of this product,
        // divided by the cube of the second derivative.
        double const turn = trammel_detail::Cross(d.second, d.third);
        place.tangent = trammel_detail::DirectionAt(d, t);
        place.curvature =
            turn == 0.0 ? 0.0 : std::copysign(std::numeric_limits<double>::infinity(), turn);
    }
}

/// Sets the direction and the curvature of a curve at a parameter.
void SetBend(CBezier const& curve, double t, Place& place) {
    trammel_detail::CurveDerivatives const d(curve, t);
    if (IsOrdinary(d.first) && trammel_detail::Taxicab(d.second) <= 0x1p400) {
        SetBend(d, t, place);
        return;
    }
    trammel_detail::ScaledPoints<4> const p = trammel_detail::Measured(curve);
    SetBend(trammel_detail::CurveDerivatives(CBezier(p[0], p[1], p[2], p[3]), t), t, place);
    place.curvature = p.Down(place.curvature);
}

} // namespace

namespace trammel_detail {

using trammel::OutlineMeasure;

/// A path's segments and the sums of their lengths. It is built once and never changed.
class OutlineLengths {
    struct Segment {
        std::size_t firstPt;   ///< the index of its first point; the others follow
        std::size_t firstSpan; ///< the index of its first span; the others follow
        std::size_t element;   ///< its index in the path's codes
        std::size_t subpath;
        char code; ///< kPathLine, kPathCurve or kPathClose

        bool IsCurve() const { return code == kPathCurve; }
    };
    /// A stretch of a segment: a whole line, or a piece of a curve.
    struct Span {
        double to;     ///< the parameter where it ends
        double length; ///< its own
        std::size_t segment;
        int formula; ///< as in LengthPiece
    };

public:
    explicit OutlineLengths(CPath const& path);

    double Total() const { return mBehind.empty() ? 0.0 : mBehind.back(); }

    /// A length from the start to a place, limited to the outline, and the span there.
    struct Target {
        double length;
        std::size_t span; ///< the number of spans for none
    };
    /// Returns the first span that ends at `length` or behind it, but not before the first that
    /// has a length. The search begins at `hint`.
    Target Find(double length, std::size_t hint) const {
        if (std::isnan(length)) {
            return {length, mSpans.size()};
        }
        double const limited = std::min(std::max(length, 0.0), Total());
        if (std::isinf(limited)) {
            return {limited, mSpans.size() - 1}; // the sums tell no other place from the end
        }
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
            hint = target.span;
            use(i, target);
        }
    }

    OutlineMeasure::Nearest FindNearest(Pt const& p, double accuracy, bool withLength) const;

    /// Appends the piece between two lengths to `out`.
    void Cut(double from, double to, CPath& out) const;

private:
    void ReadSegments(CPath const& path);
    void AddUpSpans();
    double BeforeSpan(std::size_t i) const { return i > 0 ? mBehind[i - 1] : 0.0; }
    /// The length from the start to a segment's start or end.
    double Before(std::size_t i) const { return BeforeSpan(mSegments[i].firstSpan); }
    double Behind(std::size_t i) const { return BeforeSpan(EndSpan(i)); }
    /// Returns the index behind a segment's last span.
    std::size_t EndSpan(std::size_t i) const {
        return i + 1 < mSegments.size() ? mSegments[i + 1].firstSpan : mSpans.size();
    }
    /// Returns the parameter where a span begins.
    double From(std::size_t i) const {
        return i > 0 && mSpans[i - 1].segment == mSpans[i].segment ? mSpans[i - 1].to : 0.0;
    }
    double Parameter(Target const& target) const;
    double LengthUpTo(Segment const& segment, double t) const;
    void MakeRoom(std::size_t first, std::size_t last, CPath& out) const;
    bool BeginsSubpath(std::size_t i) const {
        return i == 0 || mSegments[i - 1].subpath != mSegments[i].subpath;
    }
    /// True when the subpath that begins with segment `i` has no length.
    bool SubpathHasNoLength(std::size_t i) const {
        std::size_t const subpath = mSegments[i].subpath;
        double const before = Before(i);
        for (; i < mSegments.size() && mSegments[i].subpath == subpath; ++i) {
            if (Behind(i) > before) {
                return false;
            }
        }
        return true;
    }
    CBezier Curve(Segment const& segment) const {
        Pt const* const p = &mPts[segment.firstPt];
        return CBezier(p[0], p[1], p[2], p[3]);
    }
    Pt Point(Segment const& segment, double parameter) const {
        Pt const* const p = &mPts[segment.firstPt];
        return segment.IsCurve() ? Curve(segment).TPt(parameter) : LinePoint(p[0], p[1], parameter);
    }

    std::vector<double> mBehind; ///< the sums of lengths, each span's own included
    std::vector<Span> mSpans;
    std::vector<Segment> mSegments;
    std::vector<Pt> mPts; ///< of a subpath's segments one after the other, common ends once
    StretchTree mTree;
    std::size_t mFirst = 0; ///< the first span that has a length, or the first of all
    Pt mStart;              ///< the first move's point
};

OutlineLengths::OutlineLengths(CPath const& path) {
    ReadSegments(path);
    if (mSpans.capacity() - mSpans.size() > mSpans.size() / 8) {
        mSpans.shrink_to_fit();
    }
    AddUpSpans();
    mTree.Build(mSegments.size(), [this](std::size_t i) {
        Pt const* const p = &mPts[mSegments[i].firstPt];
        return mSegments[i].IsCurve() ? Curve(mSegments[i]) : CBezier(p[0], p[0], p[1], p[1]);
    });
    auto const first = std::find_if(mBehind.begin(), mBehind.end(),
                                    [](double sumOfSome) { return sumOfSome > 0.0; });
    mFirst = first != mBehind.end() ? static_cast<std::size_t>(first - mBehind.begin()) : 0;
}

void OutlineLengths::ReadSegments(CPath const& path) {
    std::size_t const elements = path.mCtls.size();
    mSegments.reserve(elements);
    mSpans.reserve(elements + elements / 8);
    // Points may be needed again where a close leads, and where drawing goes on after it.
    auto const closes = std::count(path.mCtls.begin(), path.mCtls.end(), char{kPathClose});
    mPts.reserve(path.mPts.size() + 2 * static_cast<std::size_t>(closes) + 1);
    std::size_t subpath = OutlineMeasure::kNone;
    std::size_t firstOfSubpath = 0;
    double finite = 0.0; // NaN as soon as a coordinate of the subpath is not finite
    bool anyMove = false;
    bool begins = true; // the next segment is a subpath's first
    auto const endSubpath = [&] {
        if (std::isnan(finite)) {
            mPts.resize(mSegments[firstOfSubpath].firstPt);
            mSpans.resize(mSegments[firstOfSubpath].firstSpan);
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
        Segment const segment = {mPts.size() - 1, mSpans.size(), cursor.Element(), subpath,
                                 cursor.Code()};
        if (cursor.IsCurve()) {
            finite += Zero(curve.P1) + Zero(curve.P2);
            mPts.push_back(curve.P1);
            mPts.push_back(curve.P2);
            for (LengthPiece const& piece : Pieces(curve)) {
                mSpans.push_back({piece.to, piece.length, mSegments.size(), piece.formula});
            }
        } else {
            mSpans.push_back({1.0, Distance(from, to), mSegments.size(), 0});
        }
        mPts.push_back(to);
        mSegments.push_back(segment);
    }
    endSubpath();
}

void OutlineLengths::AddUpSpans() {
    CompensatedSum<double> sum;
    double behind = 0.0;
    mBehind.reserve(mSpans.size());
    for (Span const& span : mSpans) {
        sum.Add(span.length);
        // Rounding must not make the sums fall. After an overflow the errors of the sum are NaN.
        double const value = sum.Value();
        behind =
            std::isnan(value) ? std::numeric_limits<double>::infinity() : std::max(value, behind);
        mBehind.push_back(behind);
    }
}

double OutlineLengths::Parameter(Target const& target) const {
    Span const& span = mSpans[target.span];
    double const before = BeforeSpan(target.span);
    double const all = mBehind[target.span] - before;
    if (target.length == mBehind[target.span]) {
        return all > 0.0 || std::isinf(target.length) ? span.to : 0.0;
    }
    double const part = target.length - before;
    if (!(part > 0.0) || std::isinf(all)) {
        return From(target.span);
    }
    Segment const& segment = mSegments[span.segment];
    if (!segment.IsCurve()) {
        return part / all;
    }
    return ParameterAt(Curve(segment), {From(target.span), span.to, span.length, span.formula},
                       part);
}

/// Returns the length from the outline's start to a parameter of a segment.
double OutlineLengths::LengthUpTo(Segment const& segment, double t) const {
    std::size_t i = segment.firstSpan;
    while (mSpans[i].to < t) {
        ++i;
    }
    if (t == mSpans[i].to) {
        return mBehind[i];
    }
    if (t == From(i)) {
        return BeforeSpan(i); // a part of an infinite length would be NaN
    }
    double const part =
        segment.IsCurve() ? Pieces::LengthOf(Curve(segment), From(i), t) : t * mSpans[i].length;
    return std::min(BeforeSpan(i) + part, mBehind[i]);
}

Pt OutlineLengths::PointAt(Target const& target) const {
    if (target.span >= mSpans.size()) {
        return std::isnan(target.length) ? Pt(target.length, target.length) : mStart;
    }
    return Point(mSegments[mSpans[target.span].segment], Parameter(target));
}

OutlineMeasure::Place OutlineLengths::PlaceAt(Target const& target) const {
    OutlineMeasure::Place place;
    place.length = target.length;
    if (target.span >= mSpans.size()) {
        place.point = PointAt(target);
        return place;
    }
    Segment const& segment = mSegments[mSpans[target.span].segment];
    place.element = segment.element;
    place.subpath = segment.subpath;
    place.parameter = Parameter(target);
    place.point = Point(segment, place.parameter);
    if (segment.IsCurve()) {
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
            segment.IsCurve() ? NearestPointWithin(Curve(segment), p, within, nearest.distance)
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
        nearest.length = LengthUpTo(segment, nearest.parameter);
        nearest.t = nearest.length < Total() ? nearest.length / Total() : Total() > 0.0 ? 1.0 : 0.0;
    }
    return nearest;
}

void OutlineLengths::Cut(double from, double to, CPath& out) const {
    if (mSegments.empty() || !(from < to && std::max(from, 0.0) < Total() && to > 0.0)) {
        return;
    }
    // The spans from the first one that ends behind the start to the last one that begins before
    // the end. Neighbours without length belong to the piece where it begins or ends beside them.
    auto const behind = std::upper_bound(mBehind.begin(), mBehind.end(), std::max(from, 0.0));
    Target const start = {from, static_cast<std::size_t>(behind - mBehind.begin())};
    Target const end = Find(to, 0);
    std::size_t first = mSpans[start.span].segment;
    std::size_t last = mSpans[end.span].segment;
    while (!BeginsSubpath(first) && from <= Before(first) && Before(first - 1) == Before(first)) {
        --first;
    }
    while (to >= Behind(last) && last + 1 < mSegments.size() && !BeginsSubpath(last + 1) &&
           Behind(last + 1) == Behind(last)) {
        ++last;
    }
    MakeRoom(first, last, out);
    bool dot = false;   // the subpath has no length
    bool drawn = false; // the subpath of the piece has begun
    bool whole = false; // and it begins where the outline's does
    Pt moved;
    for (std::size_t i = first; i <= last; ++i) {
        Segment const& segment = mSegments[i];
        double const t0 = from > Before(i) ? Parameter(start) : 0.0;
        double const t1 = to < Behind(i) ? Parameter(end) : 1.0;
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
            moved = Point(segment, t0);
            out.MoveTo(moved);
        }
        Pt const to1 = Point(segment, t1);
        if (segment.IsCurve()) {
            CBezier piece = Curve(segment);
            if (t0 > 0.0 || t1 < 1.0) {
                piece.GetTRange(t0, t1, piece);
            }
            out.AddCtl(kPathCurve).AddPt(piece.P1).AddPt(piece.P2).AddPt(to1);
        } else if (segment.code == kPathClose && whole && t1 == 1.0 && to1 == moved) {
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

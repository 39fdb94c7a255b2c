// SPDX-License-Identifier: MIT

#include "PathMeasure.h"

#include "CBezier.h"
#include "PathWalk_p.h"
#include "Subdivision_p.h"
#include "TLine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

namespace {

typedef TPoint<double> Pt;

/// The number of points of a flattening up to which it is kept: 24 KB for one curve at most.
constexpr std::size_t kMostPoints = 1024;

/// The children of a node in the tree of strips.
constexpr std::size_t kChildren = 4;

/// Levels that a tree can have: one for each doubling of the exponent of kChildren.
constexpr std::size_t kMostLevels = 33;

/// The flattening that CBezier::Length sums up, as CBezier::Flatten makes it: points with the sums
/// of the edges up to each. Of long ones only the length.
class Flattening {
public:
    /// Flattens `curve` in place of the last one.
    void Make(CBezier const& curve) {
        mPts.clear();
        mSums.clear();
        mLast = curve.P0;
        mLength = 0.0;
        Keep(curve.P0);
        if (curve.P0 != curve.P1 || curve.P2 != curve.P3) {
            trammel_detail::CurveErrorScope<CBezier> const scope(trammel_detail::kLengthError);
            gCount = 0;
            curve.GenerateSegment(
                [](Pt const& p, void* data) { static_cast<Flattening*>(data)->Add(p); }, this, true,
                CBezier::mRecursionLimit);
        }
        Add(curve.P3);
    }

    double Length() const { return mLength; }
    /// True when all points are there and their sums are in order.
    bool Complete() const { return mPts.size() <= kMostPoints && std::isfinite(mLength); }
    std::vector<Pt> const& Pts() const { return mPts; }
    std::vector<double> const& Sums() const { return mSums; }

private:
    void Add(Pt const& p) {
        if (p != mLast) {
            mLength += TLine<double>(mLast, p).Length();
            mLast = p;
            Keep(p);
        }
    }
    void Keep(Pt const& p) {
        if (mPts.size() <= kMostPoints) { // one more tells that there are too many
            mPts.push_back(p);
            mSums.push_back(mLength);
        }
    }

    std::vector<Pt> mPts;
    std::vector<double> mSums;
    Pt mLast;
    double mLength = 0.0;
};

/// A strip around a chord that holds segments: every point at most `radius` from the segment from
/// `start` along `delta`. For outlines, whose pieces are mildly bent, it fits far better than a
/// box: the number of pieces about as near as the nearest one then does not grow with the outline.
///
/// Bounds are meant to be safe, not tight to the last bits: with u = 2^-53, all rounding errors
/// here are some tens of u times the magnitudes of coordinates, and what is added for them is
/// 2^-40, more than a hundred times as much.
///
///   points    those that the search computes leave the hull of a segment's points by no more than
///             33u (see Reach); each strip's radius is enlarged by 2^-40 of the coordinates.
///   distance  the parameter t is off by at most 8u|e|/|delta|, which takes the point on the chord
///             8u|e| from the nearest one; differences and products add as much again.
///
/// Where squares could overflow or all of their bits underflow there is no strip but the whole
/// plane, or its chord is a point; the absolute error that underflow leaves in t is below 2^-600.
struct Strip {
    Pt start;
    Pt delta;
    double inverse = 0.0; ///< 1 / |delta|²; 0 where delta counts for nothing
    double radius = std::numeric_limits<double>::infinity();

    static constexpr double kSlack = 0x1p-40;
    static constexpr double kLargest = 0x1p500;
    static constexpr double kShortestSquared = 0x1p-900;

    /// The whole plane.
    Strip() = default;

    /// Only the chord from `a` to `b`.
    Strip(Pt const& a, Pt const& b) : start(a), delta(b - a), radius(0.0) {
        double const squared = delta.h * delta.h + delta.v * delta.v;
        if (squared >= kShortestSquared) {
            inverse = 1.0 / squared;
        } else {
            radius = std::abs(delta.h) + std::abs(delta.v);
            delta.SetNull();
        }
    }

    Pt End() const { return start + delta; }

    /// The square of the distance from `p` to the chord.
    double SquaredChordDistance(Pt const& p) const {
        Pt const e = p - start;
        double const t = std::min(std::max((e.h * delta.h + e.v * delta.v) * inverse, 0.0), 1.0);
        double const h = e.h - delta.h * t;
        double const v = e.v - delta.v * t;
        return h * h + v * v;
    }
    double ChordDistance(Pt const& p) const { return std::sqrt(SquaredChordDistance(p)); }

    /// True when nothing in the strip is as near as `limit`, which leaves room for rounding, to a
    /// point with this squared distance from the chord.
    bool Beyond(double limit, double squaredDistance) const {
        double const reach = limit + radius;
        return squaredDistance > reach * reach;
    }
};

double Magnitude(Pt const& p) { return std::abs(p.h) + std::abs(p.v); }

/// Of a segment. A curve is at most 3/4 as far from its chord as the farther control point:
/// distance from a segment is convex, the weights of the control points add up to 3t(1 - t).
Strip StripAround(CBezier const& c) {
    double const size = Magnitude(c.P0) + Magnitude(c.P1) + Magnitude(c.P2) + Magnitude(c.P3);
    if (!(size <= Strip::kLargest)) { // or NaN
        return Strip();
    }
    Strip strip(c.P0, c.P3);
    strip.radius += 0.75 * std::max(strip.ChordDistance(c.P1), strip.ChordDistance(c.P2));
    strip.radius += Strip::kSlack * size;
    return strip;
}

/// Of all that is in `count` strips. What is in one is no farther from the common chord than the
/// farther end of its own chord, and its radius.
Strip StripAround(Strip const* strips, std::size_t count) {
    Strip strip(strips[0].start, strips[count - 1].End());
    double size = 0.0;
    double farthest = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        Strip const& part = strips[i];
        if (std::isinf(part.radius)) {
            return Strip();
        }
        double const distance =
            std::max(strip.ChordDistance(part.start), strip.ChordDistance(part.End()));
        farthest = std::max(farthest, distance + part.radius);
        size = std::max(size, Magnitude(part.start) + Magnitude(part.End()) + part.radius);
    }
    strip.radius += farthest + Strip::kSlack * size;
    return strip;
}

/// The first of `count` numbers in order that is not less than `target`; `count` when there is
/// none, and for NaN.
std::size_t FirstNotLess(double const* sums, std::size_t count, double target) {
    std::size_t first = 0;
    while (count > 0) {
        std::size_t const half = count / 2;
        if (target <= sums[first + half]) {
            count = half;
        } else {
            first += half + 1;
            count -= half + 1;
        }
    }
    return first;
}

/// A vector made one unit long; a null vector stays null.
Pt Unit(Pt const& d) { return d.Null() ? d : d / d.Hypotenuse(); }

/// The direction of a curve at a parameter. Where the derivative vanishes, that of the next one
/// that does not leads on from there; from the curve's end it is looked back, against every second
/// one.
Pt DirectionAt(CBezier const& c, double t) {
    Pt const a = c.P1 - c.P0;
    Pt const b = c.P2 - c.P1;
    Pt const d = c.P3 - c.P2;
    double const s = 1.0 - t;
    Pt first = a * (s * s) + b * (2.0 * s * t) + d * (t * t);
    if (first.Null()) {
        Pt const second = (b - a) * s + (d - b) * t;
        first = t < 1.0 ? second : -second;
    }
    if (first.Null()) {
        first = a - b * 2.0 + d;
    }
    return Unit(first);
}

} // namespace

namespace trammel_detail {

using trammel::PathMeasure;

/// What a path's segments come to. Built once, never changed.
class MeasuredOutline {
    struct Segment {
        CBezier curve; ///< a line has its ends in P0 and P3, and again in P1 and P2
        double length;
        std::size_t element; ///< its index in the path's codes
        std::size_t firstPt; ///< of its flattening
        std::size_t ptCount; ///< of its flattening; 0: not kept
        bool isCurve;

        TLine<double> Line() const { return TLine<double>(curve.P0, curve.P3); }
    };

public:
    explicit MeasuredOutline(CPath const& path);

    double Total() const { return mBehind.empty() ? 0.0 : mBehind.back(); }

    /// The segment on which the place at `target` lies, the number of segments when on none. The
    /// first whose end is reached; `hint` is where to begin to look.
    ///
    /// The sums never decrease, as lengths are not negative and rounding is monotone; a NaN makes
    /// all later ones NaN, and no place lies there.
    std::size_t Find(double target, std::size_t hint) const;

    Pt PtOn(std::size_t i, double target) const;
    PathMeasure::Place PlaceOn(std::size_t i, double target) const;
    Pt PtAtLength(double target) const { return PtOn(Find(target, 0), target); }

    PathMeasure::Nearest FindNearest(Pt const& p, bool withFraction) const;

    /// A walk over the segments that end behind a length, for cutting.
    class Walk {
    public:
        Walk(MeasuredOutline const& outline, std::size_t first) : mOutline(outline), mNext(first) {}

        bool Next() {
            if (mNext >= mOutline.mOrdered) {
                return false;
            }
            mSegment = mNext++;
            return true;
        }
        bool IsCurve() const { return At().isCurve; }
        TLine<double> Line() const { return At().Line(); }
        CBezier const& Curve() const { return At().curve; }
        double Before() const { return mOutline.Before(mSegment); }
        double Behind() const { return mOutline.mBehind[mSegment]; }
        double Length() const { return At().length; }
        double PercentT(double fraction) const { return mOutline.PercentT(At(), fraction); }

    private:
        Segment const& At() const { return mOutline.mSegments[mSegment]; }

        MeasuredOutline const& mOutline;
        std::size_t mNext;
        std::size_t mSegment = 0;
    };
    Walk WalkFrom(double length) const { return Walk(*this, FirstEndingBehind(length)); }

private:
    struct Level {
        std::size_t first = 0; ///< of the strips
        std::size_t count = 0;
    };
    /// The nearest segment so far.
    struct Candidate {
        std::size_t segment = 0;
        bool found = false;
        double distance = std::numeric_limits<double>::max();
        double limit = std::numeric_limits<double>::infinity(); ///< see Limit
        double parameter = 0.0;
        Pt point;
    };

    void BuildTree();
    double Before(std::size_t i) const { return i > 0 ? mBehind[i - 1] : 0.0; }
    double Parameter(std::size_t i, double target) const;
    double PercentT(Segment const& segment, double fraction) const;
    Pt FlattenedPt(Segment const& segment, double fraction) const;
    std::size_t FirstEndingBehind(double length) const;
    void Consider(std::size_t i, Pt const& p, Candidate& best) const;
    static double Limit(Pt const& p, double best);

    std::vector<double> mBehind; ///< the sums of lengths, each segment's own included
    std::size_t mOrdered = 0;    ///< the number of those before the first NaN
    std::vector<Segment> mSegments;
    std::vector<double> mSums; ///< of the flattenings' edges
    std::vector<Pt> mPts;      ///< of the flattenings
    std::vector<Strip> mStrips;
    std::array<Level, kMostLevels> mLevels; ///< from the segments' own strips to the single one
    std::size_t mTop = 0;
    Pt mStart; ///< of the last subpath
};

MeasuredOutline::MeasuredOutline(CPath const& path) {
    double running = 0.0;
    Flattening flattening;
    trammel_detail::SegmentCursor cursor(path);
    while (cursor.Next()) {
        Segment segment{};
        segment.element = cursor.Element();
        segment.isCurve = cursor.IsCurve();
        if (segment.isCurve) {
            segment.curve = cursor.Curve();
            flattening.Make(segment.curve);
            segment.length = flattening.Length();
            if (flattening.Complete()) {
                segment.firstPt = mPts.size();
                segment.ptCount = flattening.Pts().size();
                mPts.insert(mPts.end(), flattening.Pts().begin(), flattening.Pts().end());
                mSums.insert(mSums.end(), flattening.Sums().begin(), flattening.Sums().end());
            }
        } else {
            TLine<double> const& line = cursor.Line();
            segment.curve.Set(line.mStart, line.mStart, line.mEnd, line.mEnd);
            segment.length = line.Length();
        }
        running += segment.length;
        mBehind.push_back(running);
        mSegments.push_back(segment);
    }
    mStart = cursor.Start();
    mOrdered = static_cast<std::size_t>(
        std::find_if(mBehind.begin(), mBehind.end(), [](double sum) { return std::isnan(sum); }) -
        mBehind.begin());
    mPts.shrink_to_fit();
    mSums.shrink_to_fit();
    mBehind.shrink_to_fit();
    mSegments.shrink_to_fit();
    BuildTree();
}

void MeasuredOutline::BuildTree() {
    std::size_t count = mSegments.size();
    mStrips.reserve(count + count / 2 + kMostLevels);
    for (Segment const& segment : mSegments) {
        mStrips.push_back(StripAround(segment.curve));
    }
    mLevels[0].count = count;
    while (count > 1) {
        Level const below = mLevels[mTop];
        Level& level = mLevels[++mTop];
        level.first = mStrips.size();
        level.count = count = (count + kChildren - 1) / kChildren;
        for (std::size_t i = 0; i < below.count; i += kChildren) {
            mStrips.push_back(
                StripAround(&mStrips[below.first + i], std::min(kChildren, below.count - i)));
        }
    }
}

std::size_t MeasuredOutline::Find(double target, std::size_t hint) const {
    double const* const sums = mBehind.data();
    std::size_t first = 0;
    std::size_t count = mOrdered;
    if (hint > 0 && hint < mOrdered && !(target <= sums[hint - 1])) {
        // Ever longer steps from there, until one is too long.
        first = hint;
        std::size_t step = 1;
        while (step < mOrdered - first && !(target <= sums[first + step - 1])) {
            first += step;
            step *= 2;
        }
        count = std::min(step, mOrdered - first);
    }
    first += FirstNotLess(sums + first, count, target);
    return first < mOrdered ? first : mSegments.size();
}

std::size_t MeasuredOutline::FirstEndingBehind(double length) const {
    return static_cast<std::size_t>(
        std::partition_point(mBehind.begin(),
                             mBehind.begin() + static_cast<std::ptrdiff_t>(mOrdered),
                             [length](double behind) { return !(length < behind); }) -
        mBehind.begin());
}

/// The point at a fraction of a curve's flattening, as TPolygon::TPt finds it.
Pt MeasuredOutline::FlattenedPt(Segment const& segment, double fraction) const {
    Pt const* const pts = &mPts[segment.firstPt];
    double const* const sums = &mSums[segment.firstPt];
    std::size_t const last = segment.ptCount - 1;
    if (fraction == 0.0) {
        return pts[0];
    }
    if (fraction == 1.0) {
        return pts[last];
    }
    double const target = fraction * sums[last];
    std::size_t const edge = FirstNotLess(sums + 1, last, target);
    if (edge == last) {
        return pts[last];
    }
    TLine<double> const line(pts[edge], pts[edge + 1]);
    return line.TPt((target - sums[edge]) / line.Length());
}

/// CBezier::PercentT.
double MeasuredOutline::PercentT(Segment const& segment, double fraction) const {
    if (segment.ptCount == 0) {
        return segment.curve.PercentT(fraction);
    }
    return segment.curve.FindTValue(FlattenedPt(segment, fraction),
                                    trammel_detail::kPercentTolerance, 0.0, 1.0);
}

double MeasuredOutline::Parameter(std::size_t i, double target) const {
    Segment const& segment = mSegments[i];
    double const fraction = (target - Before(i)) / segment.length;
    return segment.isCurve ? PercentT(segment, fraction) : fraction;
}

Pt MeasuredOutline::PtOn(std::size_t i, double target) const {
    if (i >= mSegments.size()) {
        return mStart;
    }
    double const parameter = Parameter(i, target);
    Segment const& segment = mSegments[i];
    return segment.isCurve ? segment.curve.TPt(parameter) : segment.Line().TPt(parameter);
}

PathMeasure::Place MeasuredOutline::PlaceOn(std::size_t i, double target) const {
    PathMeasure::Place place;
    if (i >= mSegments.size()) {
        place.point = mStart;
        return place;
    }
    Segment const& segment = mSegments[i];
    place.element = segment.element;
    place.parameter = Parameter(i, target);
    if (segment.isCurve) {
        place.point = segment.curve.TPt(place.parameter);
        place.direction = DirectionAt(segment.curve, place.parameter);
    } else {
        place.point = segment.Line().TPt(place.parameter);
        place.direction = Unit(segment.Line().Delta());
    }
    return place;
}

/// Takes segment `i` as the nearest if CPath::FindTValue does.
///
/// In the order of the path, lines win with a smaller distance only, curves also with the same. So
/// of all at the smallest distance the last curve wins, or the first line if there is no curve:
/// a rule that does not depend on the order in which they are considered.
void MeasuredOutline::Consider(std::size_t i, Pt const& p, Candidate& best) const {
    Segment const& segment = mSegments[i];
    double parameter;
    Pt point;
    if (segment.isCurve) {
        parameter = segment.curve.FindTValue(p, trammel_detail::kNearestTolerance, 0.0, 1.0);
        point = segment.curve.TPt(parameter);
    } else {
        TLine<double> const line = segment.Line();
        // TLine::FindTValue, with the length at hand.
        Pt const pinned = line.PinPtToLineSeg(line.PerpendicularPt(p));
        parameter = TLine<double>(line.mStart, pinned).Length() / segment.length;
        point = line.TPt(parameter);
    }
    double const distance = TLine<double>(p, point).Length();
    bool wins = distance < best.distance;
    if (distance == best.distance) {
        bool const other = best.found && mSegments[best.segment].isCurve;
        wins =
            segment.isCurve ? !other || i > best.segment : best.found && !other && i < best.segment;
    }
    if (wins) {
        best.segment = i;
        best.found = true;
        best.distance = distance;
        best.limit = Limit(p, distance);
        best.parameter = parameter;
        best.point = point;
    }
}

/// The distance, rounding of all kinds included, beyond which nothing is as near as `best`. Neither
/// it nor its square underflows.
double MeasuredOutline::Limit(Pt const& p, double best) {
    if (best <= Strip::kLargest && Magnitude(p) <= Strip::kLargest) {
        return best * (1.0 + Strip::kSlack) + Strip::kSlack * Magnitude(p) + 0x1p-400;
    }
    return std::numeric_limits<double>::infinity();
}

PathMeasure::Nearest MeasuredOutline::FindNearest(Pt const& p, bool withFraction) const {
    PathMeasure::Nearest nearest;
    // At no finite distance from anything.
    if (mSegments.empty() || !std::isfinite(p.h) || !std::isfinite(p.v)) {
        return nearest;
    }
    struct Node {
        double squaredDistance; ///< from p to the strip's chord
        std::size_t level;
        std::size_t index;
    };
    std::array<Node, kMostLevels*(kChildren - 1) + 1> pending;
    std::size_t count = 0;
    Candidate best;
    pending[count++] = Node{0.0, mTop, 0};
    while (count > 0) {
        Node const node = pending[--count];
        if (mStrips[mLevels[node.level].first + node.index].Beyond(best.limit,
                                                                   node.squaredDistance)) {
            continue;
        }
        if (node.level == 0) {
            Consider(node.index, p, best);
            continue;
        }
        Level const& below = mLevels[node.level - 1];
        std::size_t const end = std::min((node.index + 1) * kChildren, below.count);
        std::size_t const firstPending = count;
        for (std::size_t i = node.index * kChildren; i < end; ++i) {
            Strip const& strip = mStrips[below.first + i];
            double const squared = strip.SquaredChordDistance(p);
            if (strip.Beyond(best.limit, squared)) {
                continue;
            }
            // On top, to be taken first, the one with the nearest chord: what is left beside the
            // radius would tell little where the strips are wide.
            std::size_t at = count++;
            for (; at > firstPending && pending[at - 1].squaredDistance < squared; --at) {
                pending[at] = pending[at - 1];
            }
            pending[at] = Node{squared, node.level - 1, i};
        }
    }
    if (!best.found) {
        return nearest;
    }
    Segment const& segment = mSegments[best.segment];
    nearest.distance = best.distance;
    nearest.point = best.point;
    nearest.element = segment.element;
    nearest.parameter = best.parameter;
    if (withFraction) {
        double part;
        if (segment.isCurve) {
            CBezier left;
            CBezier right;
            segment.curve.Divide(left, right, best.parameter);
            part = left.Length();
        } else {
            part = TLine<double>(segment.curve.P0, best.point).Length();
        }
        nearest.length = Before(best.segment) + part;
        nearest.t = nearest.length / Total();
    }
    return nearest;
}

} // namespace trammel_detail

namespace trammel {

PathMeasure::PathMeasure(CPath const& path)
    : mOutline(std::make_shared<trammel_detail::MeasuredOutline const>(path)) {}

double PathMeasure::Length() const { return mOutline->Total(); }

TPoint<double> PathMeasure::TPt(double t) const { return PtAtLength(t * Length()); }

TPoint<double> PathMeasure::PtAtLength(double length) const { return mOutline->PtAtLength(length); }

PathMeasure::Place PathMeasure::At(double t) const { return AtLength(t * Length()); }

PathMeasure::Place PathMeasure::AtLength(double length) const {
    return mOutline->PlaceOn(mOutline->Find(length, 0), length);
}

void PathMeasure::TPts(double const* t, std::size_t count, TPoint<double>* out) const {
    double const total = Length();
    std::size_t segment = 0;
    for (std::size_t i = 0; i < count; ++i) {
        double const target = t[i] * total;
        segment = mOutline->Find(target, segment);
        out[i] = mOutline->PtOn(segment, target);
    }
}

void PathMeasure::PtsAtLengths(double const* lengths, std::size_t count,
                               TPoint<double>* out) const {
    std::size_t segment = 0;
    for (std::size_t i = 0; i < count; ++i) {
        double const target = lengths[i];
        segment = mOutline->Find(target, segment);
        out[i] = mOutline->PtOn(segment, target);
    }
}

void PathMeasure::Places(double const* t, std::size_t count, Place* out) const {
    double const total = Length();
    std::size_t segment = 0;
    for (std::size_t i = 0; i < count; ++i) {
        double const target = t[i] * total;
        segment = mOutline->Find(target, segment);
        out[i] = mOutline->PlaceOn(segment, target);
    }
}

void PathMeasure::PlacesAtLengths(double const* lengths, std::size_t count, Place* out) const {
    std::size_t segment = 0;
    for (std::size_t i = 0; i < count; ++i) {
        double const target = lengths[i];
        segment = mOutline->Find(target, segment);
        out[i] = mOutline->PlaceOn(segment, target);
    }
}

double PathMeasure::FindTValue(TPoint<double> const& p) const { return FindNearest(p).t; }

PathMeasure::Nearest PathMeasure::FindNearest(TPoint<double> const& p) const {
    return mOutline->FindNearest(p, true);
}

double PathMeasure::Distance(TPoint<double> const& p) const {
    return mOutline->FindNearest(p, false).distance;
}

void PathMeasure::GetTRange(double t0, double t1, CPath& out) const {
    GetLengthRange(t0 * Length(), t1 * Length(), out);
}

void PathMeasure::GetLengthRange(double length0, double length1, CPath& out) const {
    trammel_detail::CutRange(*mOutline, length0, length1, out);
}

} // namespace trammel

// SPDX-License-Identifier: MIT

#include "PathMeasure.h"

#include "CBezier.h"
#include "CBezierFlatten_p.h"
#include "CBezierLength_p.h"
#include "CurveDirection_p.h"
#include "PathCut_p.h"
#include "PathWalk_p.h"
#include "PointBuffer_p.h"
#include "PointMath_p.h"
#include "Reach_p.h"
#include "StretchTree_p.h"
#include "Sums_p.h"
#include "TLine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace {

typedef TPoint<double> Pt;

/// The most points of a flattening that is kept: 24 KB for one curve.
constexpr std::size_t kMostPoints = 1024;

/// The flattening of one curve: its points, with the sums of the edges up to each.
class Flattening {
public:
    /// Flattens `curve` as CBezier::Length does, in place of the curve before.
    void Make(CBezier const& curve) {
        mCount = 0;
        mLength = 0.0;
        Edges edges(*this);
        trammel_detail::PointBuffer<trammel_detail::kLengthRun, Edges> run(edges);
        trammel_detail::FlattenTo(curve, trammel_detail::kLengthError, run);
        run.Pass();
    }
    /// Returns the curve's length.
    double Length() const { return mLength; }
    /// Appends the points and the sums. Appends nothing when there are more points than
    /// kMostPoints, or the sums are not in order. Returns the number of points appended.
    std::size_t AppendTo(std::vector<Pt>& pts, std::vector<double>& sums) const {
        if (mCount > kMostPoints || !std::isfinite(mLength)) {
            return 0;
        }
        pts.insert(pts.end(), mPts.begin(), mPts.begin() + static_cast<std::ptrdiff_t>(mCount));
        sums.insert(sums.end(), mSums.begin(), mSums.begin() + static_cast<std::ptrdiff_t>(mCount));
        return mCount;
    }

    // The edges' visitor.
    void Start(Pt const& p) { Keep(p); }
    bool Edge(Pt const& p, double length) {
        mLength += length;
        Keep(p);
        return true;
    }

private:
    typedef trammel_detail::FlattenedEdges<Flattening> Edges;

    void Keep(Pt const& p) {
        if (mCount <= kMostPoints) { // one more tells that there are too many
            mPts[mCount] = p;
            mSums[mCount] = mLength;
            ++mCount;
        }
    }

    std::vector<Pt> mPts = std::vector<Pt>(kMostPoints + 1);
    std::vector<double> mSums = std::vector<double>(kMostPoints + 1);
    std::size_t mCount = 0;
    double mLength = 0.0;
};

} // namespace

namespace trammel_detail {

using trammel::PathMeasure;

/// A path's segments with all that answers questions about them. It is built once and never
/// changed.
class MeasuredOutline {
    struct Segment {
        CBezier curve; ///< a line has its ends in P0 and P3, and again in P1 and P2
        double length;
        std::size_t element; ///< its index in the path's codes
        std::size_t firstPt; ///< the index of its flattening's first point
        std::size_t ptCount; ///< the number of its flattening's points; 0: not kept
        bool isCurve;

        TLine<double> Line() const { return TLine<double>(curve.P0, curve.P3); }
    };

public:
    explicit MeasuredOutline(CPath const& path);

    double Total() const { return mBehind.empty() ? 0.0 : mBehind.back(); }

    /// Returns the segment on which the place at `target` lies: the first one that ends there or
    /// behind it. Returns the number of segments when there is none. `hint` is where the search
    /// begins.
    ///
    /// The sums never decrease, as lengths are not negative and rounding is monotone. A NaN makes
    /// all later sums NaN, and no place lies there.
    std::size_t Find(double target, std::size_t hint) const;

    /// Calls use(i, segment, target) for `count` places, `target` being values[i] * unit. The
    /// search for each place begins at the one before.
    template <class Use>
    void FindEach(double const* values, std::size_t count, double unit, Use const& use) const {
        std::size_t segment = 0;
        for (std::size_t i = 0; i < count; ++i) {
            double const target = values[i] * unit;
            segment = Find(target, segment);
            use(i, segment, target);
        }
    }

    Pt PtOn(std::size_t i, double target) const;
    PathMeasure::Place PlaceOn(std::size_t i, double target) const;
    Pt PtAtLength(double target) const { return PtOn(Find(target, 0), target); }

    PathMeasure::Nearest FindNearest(Pt const& p, bool withFraction) const;

    /// Appends the piece between two lengths to `out`.
    void Cut(double startLength, double endLength, CPath& out) const;

private:
    class Walk;
    /// The nearest segment so far.
    struct Candidate {
        std::size_t segment = 0;
        bool found = false;
        double distance = std::numeric_limits<double>::max();
        double limit = std::numeric_limits<double>::infinity(); ///< Limit() of the distance
        double parameter = 0.0;
        Pt point;
    };

    double Before(std::size_t i) const { return i > 0 ? mBehind[i - 1] : 0.0; }
    double Parameter(std::size_t i, double target) const;
    double PercentT(Segment const& segment, double fraction) const;
    Pt FlattenedPt(Segment const& segment, double fraction) const;
    std::size_t FirstEndingBehind(double length) const;
    void Consider(std::size_t i, Pt const& p, Candidate& best) const;
    static double Limit(Pt const& p, double best);

    std::vector<double> mBehind; ///< the sums of lengths, each segment's own included
    std::size_t mOrdered = 0;    ///< the number of sums before the first NaN
    std::vector<Segment> mSegments;
    std::vector<double> mSums; ///< the sums of the flattenings' edges
    std::vector<Pt> mPts;      ///< the points of the flattenings
    StretchTree mTree;
    Pt mStart; ///< the start of the last subpath
};

MeasuredOutline::MeasuredOutline(CPath const& path) {
    double running = 0.0;
    Flattening flattening;
    SegmentCursor cursor(path);
    while (cursor.Next()) {
        Segment segment{};
        segment.element = cursor.Element();
        segment.isCurve = cursor.IsCurve();
        if (segment.isCurve) {
            segment.curve = cursor.Curve();
            segment.firstPt = mPts.size();
            flattening.Make(segment.curve);
            segment.length = flattening.Length();
            segment.ptCount = flattening.AppendTo(mPts, mSums);
        } else {
            TLine<double> const line = cursor.Line();
            segment.curve.Set(line.mStart, line.mStart, line.mEnd, line.mEnd);
            segment.length = cursor.Length();
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
    mTree.Build(mSegments.size(), [this](std::size_t i) { return mSegments[i].curve; });
}

std::size_t MeasuredOutline::Find(double target, std::size_t hint) const {
    std::size_t const first = FirstNotLess(mBehind.data(), mOrdered, target, hint);
    return first < mOrdered ? first : mSegments.size();
}

/// Returns the index of the first segment that ends behind `length`.
std::size_t MeasuredOutline::FirstEndingBehind(double length) const {
    return static_cast<std::size_t>(
        std::partition_point(mBehind.begin(),
                             mBehind.begin() + static_cast<std::ptrdiff_t>(mOrdered),
                             [length](double behind) { return !(length < behind); }) -
        mBehind.begin());
}

/// A walk over the segments from one of them on.
class MeasuredOutline::Walk final : public MeasuredSegments {
public:
    Walk(MeasuredOutline const& outline, std::size_t first) : mOutline(outline), mNext(first) {}

    bool Next() override {
        if (mNext >= mOutline.mOrdered) {
            return false;
        }
        mSegment = mNext++;
        return true;
    }
    bool IsCurve() const override { return At().isCurve; }
    TPoint<double> LineEnd() const override { return At().curve.P3; }
    CBezier Curve() const override { return At().curve; }
    double PercentT(double fraction) const override { return mOutline.PercentT(At(), fraction); }
    double Length() const override { return At().length; }
    double Before() const override { return mOutline.Before(mSegment); }
    double Behind() const override { return mOutline.mBehind[mSegment]; }
    TPoint<double> PtAtLength(double length) const override { return mOutline.PtAtLength(length); }

private:
    Segment const& At() const { return mOutline.mSegments[mSegment]; }

    MeasuredOutline const& mOutline;
    std::size_t mNext;
    std::size_t mSegment = 0;
};

void MeasuredOutline::Cut(double startLength, double endLength, CPath& out) const {
    CutRange(Walk(*this, FirstEndingBehind(startLength)), startLength, endLength, out);
}

/// Returns the point at a fraction of a curve's flattening, as TPolygon::TPt finds it.
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
    return line.TPt((target - sums[edge]) / Distance(line.mStart, line.mEnd));
}

/// Does what CBezier::PercentT does.
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
        CurveDerivatives const derivatives(segment.curve, place.parameter);
        place.direction = DirectionAt(derivatives, place.parameter);
    } else {
        place.point = segment.Line().TPt(place.parameter);
        place.direction = Unit(segment.Line().Delta());
    }
    return place;
}

/// Takes segment `i` as the nearest if CPath::FindTValue does.
///
/// FindTValue goes through the segments in their order. A line wins with a smaller distance only, a
/// curve also with the same distance. So of all segments at the smallest distance the last curve
/// wins, or the first line if there is no curve. This rule holds in whatever order the segments are
/// considered.
void MeasuredOutline::Consider(std::size_t i, Pt const& p, Candidate& best) const {
    Segment const& segment = mSegments[i];
    double parameter;
    Pt point;
    if (segment.isCurve) {
        parameter = segment.curve.FindTValue(p, trammel_detail::kNearestTolerance, 0.0, 1.0);
        point = segment.curve.TPt(parameter);
    } else {
        TLine<double> const line = segment.Line();
        // TLine::FindTValue with the length, which is known.
        Pt const pinned = line.PinPtToLineSeg(line.PerpendicularPt(p));
        parameter = Distance(line.mStart, pinned) / segment.length;
        point = line.TPt(parameter);
    }
    double const distance = Distance(p, point);
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

/// Returns the distance beyond which nothing is as near as `best`, with room for all rounding.
/// Neither it nor its square underflows.
double MeasuredOutline::Limit(Pt const& p, double best) {
    if (best <= TurnedBox::kLargest && Taxicab(p) <= TurnedBox::kLargest) {
        return best * (1.0 + TurnedBox::kSlack) + TurnedBox::kSlack * Taxicab(p) + 0x1p-400;
    }
    return std::numeric_limits<double>::infinity();
}

PathMeasure::Nearest MeasuredOutline::FindNearest(Pt const& p, bool withFraction) const {
    PathMeasure::Nearest nearest;
    // Such a point is at no finite distance from anything.
    if (mSegments.empty() || !IsFinite(p)) {
        return nearest;
    }
    Candidate best;
    mTree.Search(p, best.limit, [&](std::size_t i) { Consider(i, p, best); });
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
            part = Distance(segment.curve.P0, best.point);
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
    mOutline->FindEach(t, count, Length(), [&](std::size_t i, std::size_t segment, double target) {
        out[i] = mOutline->PtOn(segment, target);
    });
}

void PathMeasure::PtsAtLengths(double const* lengths, std::size_t count,
                               TPoint<double>* out) const {
    mOutline->FindEach(lengths, count, 1.0, [&](std::size_t i, std::size_t segment, double target) {
        out[i] = mOutline->PtOn(segment, target);
    });
}

void PathMeasure::Places(double const* t, std::size_t count, Place* out) const {
    mOutline->FindEach(t, count, Length(), [&](std::size_t i, std::size_t segment, double target) {
        out[i] = mOutline->PlaceOn(segment, target);
    });
}

void PathMeasure::PlacesAtLengths(double const* lengths, std::size_t count, Place* out) const {
    mOutline->FindEach(lengths, count, 1.0, [&](std::size_t i, std::size_t segment, double target) {
        out[i] = mOutline->PlaceOn(segment, target);
    });
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
    mOutline->Cut(length0, length1, out);
}

} // namespace trammel

// SPDX-License-Identifier: MIT

#include "CPath.h"

#include "CBezier.h"
#include "PathCut_p.h"
#include "PathWalk_p.h"
#include "PointMath_p.h"
#include "Reach_p.h"
#include "TLine.h"

#include <array>
#include <cstddef>
#include <limits>
#include <new>
#include <vector>

namespace {

using trammel_detail::Distance;
using trammel_detail::SegmentCursor;

/// The lengths of segments in order. The first ones take no heap block, which suffices for most
/// outlines. When memory runs out, the later ones are not kept.
class Lengths {
public:
    void Append(double length) noexcept {
        if (mCount < mFirst.size()) {
            mFirst[mCount] = length;
        } else if (Has(mCount - 1)) {
            try {
                mRest.push_back(length);
            } catch (std::bad_alloc const&) {
                // The segment is measured again where its length is needed.
            }
        }
        ++mCount;
    }
    /// True when the length of segment `i`, which was appended, is kept.
    bool Has(std::size_t i) const { return i < mFirst.size() + mRest.size(); }
    double operator[](std::size_t i) const {
        return i < mFirst.size() ? mFirst[i] : mRest[i - mFirst.size()];
    }

private:
    std::size_t mCount = 0;
    std::array<double, 128> mFirst; ///< the first mCount are set
    std::vector<double> mRest;
};

/// A path with the lengths of its segments, so that one query measures each segment once.
class MeasuredPath {
public:
    explicit MeasuredPath(CPath const& path) : mPath(path) {
        for (SegmentCursor segment(path); segment.Next();) {
            double const length = segment.Length();
            mLengths.Append(length);
            mTotal += length;
        }
    }
    double Total() const { return mTotal; }

    TPoint<double> PtAtLength(double target) const;
    /// Appends the piece between two fractions of the length to `out`.
    void Cut(double from, double to, CPath& out) const;

private:
    class Walk;
    struct Place {
        std::size_t segment = 0; ///< counted from 1; 0: none yet
        double fraction = 0.0;
        double parameter = 0.0;
    };

    double PercentT(std::size_t segment, CBezier const& curve, double fraction) const;

    CPath const& mPath;
    Lengths mLengths;
    double mTotal = 0.0;
    /// The last places found on curves, as cutting asks for the same ones again. A piece has two
    /// ends.
    mutable std::array<Place, 2> mPlaces;
    mutable std::size_t mNextPlace = 0;
};

/// A walk over all segments.
class MeasuredPath::Walk final : public trammel_detail::MeasuredSegments {
public:
    explicit Walk(MeasuredPath const& measured) : mMeasured(measured), mSegment(measured.mPath) {}

    bool Next() override {
        if (!mSegment.Next()) {
            return false;
        }
        Lengths const& lengths = mMeasured.mLengths;
        mLength = lengths.Has(mIndex) ? lengths[mIndex] : mSegment.Length();
        ++mIndex;
        mBefore = mBehind;
        mBehind += mLength;
        return true;
    }
    bool IsCurve() const override { return mSegment.IsCurve(); }
    TPoint<double> LineEnd() const override { return mSegment.Line().mEnd; }
    CBezier Curve() const override { return mSegment.Curve(); }
    double PercentT(double fraction) const override {
        return mMeasured.PercentT(mIndex, mSegment.Curve(), fraction);
    }
    double Length() const override { return mLength; }
    double Before() const override { return mBefore; }
    double Behind() const override { return mBehind; }
    TPoint<double> PtAtLength(double length) const override { return mMeasured.PtAtLength(length); }

    /// Returns the point of the segment at a fraction of its length.
    TPoint<double> TPt(double fraction) const {
        return IsCurve() ? Curve().TPt(PercentT(fraction)) : mSegment.Line().TPt(fraction);
    }
    /// Returns the point of the last move.
    TPoint<double> Start() const { return mSegment.Start(); }

private:
    MeasuredPath const& mMeasured;
    SegmentCursor mSegment;
    std::size_t mIndex = 0; ///< of the next segment
    double mBefore = 0.0;
    double mBehind = 0.0;
    double mLength = 0.0;
};

TPoint<double> MeasuredPath::PtAtLength(double target) const {
    Walk segment(*this);
    while (segment.Next()) {
        if (target <= segment.Behind()) {
            return segment.TPt((target - segment.Before()) / segment.Length());
        }
    }
    return segment.Start();
}

void MeasuredPath::Cut(double from, double to, CPath& out) const {
    trammel_detail::CutRange(Walk(*this), from * mTotal, to * mTotal, out);
}

double MeasuredPath::PercentT(std::size_t segment, CBezier const& curve, double fraction) const {
    for (Place const& place : mPlaces) {
        if (place.segment == segment && place.fraction == fraction) {
            return place.parameter;
        }
    }
    Place& place = mPlaces[mNextPlace];
    mNextPlace = (mNextPlace + 1) % mPlaces.size();
    place.segment = segment;
    place.fraction = fraction;
    place.parameter = curve.PercentT(fraction);
    return place.parameter;
}

/// CPath::RemoveTRange, where neither output is the path that was measured.
void Remove(MeasuredPath const& measured, double t0, double t1, bool closed, CPath& outA,
            CPath& outB) {
    if (t1 < t0) {
        measured.Cut(t1, t0, outA);
        return;
    }
    trammel_detail::EndOfPath endA(outA);
    trammel_detail::EndOfPath endB(outB);
    if (closed) {
        measured.Cut(0.0, t0, outB);
        measured.Cut(t1, 1.0, outA);
        outA.Append(outB);
        outB.clear();
    } else {
        measured.Cut(0.0, t0, outA);
        measured.Cut(t1, 1.0, outB);
    }
    endA.Keep();
    endB.Keep();
}

/// True when no place on the segment with these points is as near to `pt` as `limit`, a
/// NearestLimit.
template <std::size_t N>
bool TooFar(TPoint<double> const (&points)[N], TPoint<double> const& pt, double limit) {
    return trammel_detail::SquaredDistance(trammel_detail::ReachOf(points, N), pt) > limit;
}

} // namespace

double CPath::Length() const {
    double length = 0.0;
    for (SegmentCursor segment(*this); segment.Next();) {
        length += segment.Length();
    }
    return length;
}

TPoint<double> CPath::TPt(double t) const {
    MeasuredPath const measured(*this);
    return measured.PtAtLength(t * measured.Total());
}

double CPath::FindTValue(TPoint<double> const& p) const {
    TPoint<double> const pt = p;
    double best = std::numeric_limits<double>::max();
    double limit = trammel_detail::NearestLimit(best);
    double running = 0.0;
    // The nearest segment so far: only the last one's part is measured.
    bool found = false;
    bool isCurve = false;
    double before = 0.0;
    double parameter = 0.0;
    CBezier curve;
    TLine<double> part;
    for (SegmentCursor segment(*this); segment.Next();) {
        double const start = running;
        running += segment.Length();
        if (segment.IsCurve()) {
            CBezier const c = segment.Curve();
            if (TooFar({c.P0, c.P1, c.P2, c.P3}, pt, limit)) {
                continue;
            }
            double const t = c.FindTValue(pt, trammel_detail::kNearestTolerance, 0.0, 1.0);
            double const distance = Distance(pt, c.TPt(t));
            // Not strict, unlike for lines: on a tie a later curve wins, a later line does not.
            if (!(distance <= best)) {
                continue;
            }
            best = distance;
            curve = c;
            parameter = t;
        } else {
            TLine<double> const line = segment.Line();
            if (TooFar({line.mStart, line.mEnd}, pt, limit)) {
                continue;
            }
            TPoint<double> const nearest = line.TPt(line.FindTValue(pt));
            double const distance = Distance(pt, nearest);
            if (!(distance < best)) {
                continue;
            }
            best = distance;
            part.Set(line.mStart, nearest);
        }
        limit = trammel_detail::NearestLimit(best);
        found = true;
        isCurve = segment.IsCurve();
        before = start;
    }
    if (!found) {
        return 0.0;
    }
    if (isCurve) {
        CBezier left;
        CBezier right;
        curve.Divide(left, right, parameter);
        return (before + left.Length()) / running;
    }
    return (before + Distance(part.mStart, part.mEnd)) / running;
}

void CPath::GetTRange(double t0, double t1, CPath& out) const {
    if (&out == this) {
        CPath const source(*this);
        source.GetTRange(t0, t1, out);
        return;
    }
    MeasuredPath(*this).Cut(t0, t1, out);
}

void CPath::RemoveTRange(double t0, double t1, CPath& outA, CPath& outB) const {
    if (&outA == this || &outB == this) {
        CPath const source(*this);
        Remove(MeasuredPath(source), t0, t1, source.Closed(), outA, outB);
    } else {
        Remove(MeasuredPath(*this), t0, t1, Closed(), outA, outB);
    }
}

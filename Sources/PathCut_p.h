// SPDX-License-Identifier: MIT

// The cutting of a piece out of a measured outline. Not installed.

#ifndef TRAMMEL_PATHCUT_P_H
#define TRAMMEL_PATHCUT_P_H

#include "CBezier.h"
#include "CPath.h"
#include "TPoint.h"
#include "TRect.h"

#include <cstddef>
#include <type_traits>

namespace trammel_detail {

/// Gives a path back the end that it had, unless Keep is called. An operation that appends step by
/// step then leaves it as it was when memory runs out between the steps.
class EndOfPath {
public:
    explicit EndOfPath(CPath& path)
        : mPath(&path), mCodes(path.mCtls.size()), mPoints(path.mPts.size()),
          mLastCode(mCodes != 0 ? path.mCtls.back() : char{kPathClose}),
          mLastPt(mPoints != 0 ? path.mPts.back() : TPoint<double>()), mCurrentPt(path.mCurrentPt),
          mOpen(path.mOpen), mBounds(path.mBounds) {}
    EndOfPath(EndOfPath const&) = delete;
    EndOfPath& operator=(EndOfPath const&) = delete;
    ~EndOfPath() {
        if (mPath == nullptr) {
            return;
        }
        mPath->mCtls.resize(mCodes); // within what was there, so that nothing throws
        mPath->mPts.resize(mPoints);
        if (mCodes != 0 && mPoints != 0) { // a move at the end may have been replaced
            mPath->mCtls.back() = mLastCode;
            mPath->mPts.back() = mLastPt;
        }
        mPath->mCurrentPt = mCurrentPt;
        mPath->mOpen = mOpen;
        mPath->mBounds = mBounds;
    }
    void Keep() { mPath = nullptr; }

private:
    CPath* mPath;
    std::size_t mCodes;
    std::size_t mPoints;
    char mLastCode;
    TPoint<double> mLastPt;
    TPoint<double> mCurrentPt;
    bool mOpen;
    TRect<double> mBounds;
};

/// The segments of a measured outline, one after the other: what CutRange reads.
class MeasuredSegments {
public:
    virtual ~MeasuredSegments() = default;

    /// Steps to the next segment. Returns false at the end.
    virtual bool Next() = 0;
    virtual bool IsCurve() const = 0;
    /// Returns the end of the segment, which is a line.
    virtual TPoint<double> LineEnd() const = 0;
    /// Returns the segment, which is a curve.
    virtual CBezier Curve() const = 0;
    /// Returns the parameter of the curve at a fraction of its length (CBezier::PercentT).
    virtual double PercentT(double fraction) const = 0;
    virtual double Length() const = 0;
    /// Returns the length of the outline from its start up to the segment.
    virtual double Before() const = 0;
    /// Returns the length of the outline from its start up to the segment's end.
    virtual double Behind() const = 0;
    /// Returns the point of the outline at a length from its start (PathMeasure::PtAtLength).
    virtual TPoint<double> PtAtLength(double length) const = 0;

protected:
    MeasuredSegments() = default;
    MeasuredSegments(MeasuredSegments const&) = default;
    MeasuredSegments& operator=(MeasuredSegments const&) = default;
};

/// Appends the piece between two lengths to `out`, which must not be the path that is cut. The
/// lengths count from the outline's start, in coordinate units. See CPath::GetTRange. Without
/// memory it throws std::bad_alloc and leaves `out` as it was.
///
/// `segments` may begin anywhere before the first segment that ends behind `startLength`. Its class
/// is a template's parameter and final, so that the compiler calls its functions directly.
template <class Segments>
void CutRange(Segments segments, double startLength, double endLength, CPath& out) {
    static_assert(std::is_base_of_v<MeasuredSegments, Segments> && std::is_final_v<Segments>);
    EndOfPath end(out);
    out.MoveTo(segments.PtAtLength(startLength));
    bool done = false;
    while (!done && segments.Next()) {
        if (!(startLength < segments.Behind())) {
            continue;
        }
        if (!segments.IsCurve()) {
            done = endLength <= segments.Behind();
            out.LineTo(done ? segments.PtAtLength(endLength) : segments.LineEnd());
        } else if (endLength < segments.Before()) {
            done = true;
        } else {
            // A curve that holds the range's end does not end the walk; the segment after it does.
            // A line then leads to the range's end, and LineTo leaves it out where it has no
            // length. A curve then adds nothing.
            double const before = segments.Before();
            double const length = segments.Length();
            double const u0 =
                before < startLength ? segments.PercentT((startLength - before) / length) : 0.0;
            double const u1 = endLength < segments.Behind()
                                  ? segments.PercentT((endLength - before) / length)
                                  : 1.0;
            CBezier piece;
            segments.Curve().GetTRange(u0, u1, piece);
            out.CurveTo(piece.P1, piece.P2, piece.P3);
        }
    }
    end.Keep();
}

} // namespace trammel_detail

#endif

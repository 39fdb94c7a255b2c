// SPDX-License-Identifier: MIT

// Walks along a path's elements and segments, and the cutting of a piece, for all that measures
// paths. Not installed.

#ifndef TRAMMEL_PATHWALK_P_H
#define TRAMMEL_PATHWALK_P_H

#include "CBezier.h"
#include "CPath.h"
#include "TLine.h"
#include "TPoint.h"

#include <cstddef>

namespace trammel_detail {

/// The step of the parameter to which the nearest point on a curve of a path is searched.
inline constexpr double kNearestTolerance = 0.001;

/// The number of points that an element takes; 0 for a close and for unknown codes.
inline std::size_t PointCount(char code) {
    switch (code) {
    case kPathMove:
    case kPathLine:
        return 1;
    case kPathCurve:
        return 3;
    default:
        return 0;
    }
}

/// Goes through a path's elements by index, so that a path whose codes ask for more points than it
/// has, or that a visitor changes on the way, is never read beyond its end.
class ElementCursor {
public:
    explicit ElementCursor(CPath const& path) : mPath(path) {}

    /// Steps to the next element; false at the end, or where the points do not suffice.
    bool Next() {
        mPoint += mTaken;
        if (mElement >= mPath.mCtls.size()) {
            return false;
        }
        mCode = mPath.mCtls[mElement++];
        mTaken = PointCount(mCode);
        return mPoint <= mPath.mPts.size() && mTaken <= mPath.mPts.size() - mPoint;
    }
    char Code() const { return mCode; }
    /// The element's index in the path's codes.
    std::size_t Index() const { return mElement - 1; }
    /// Point `i` of the element, by value: it outlives a change of the path.
    TPoint<double> Pt(std::size_t i) const { return mPath.mPts[mPoint + i]; }

private:
    CPath const& mPath;
    std::size_t mElement = 0;
    std::size_t mPoint = 0;
    std::size_t mTaken = 0;
    char mCode = kPathClose;
};

/// Goes through a path's segments: lines, closing lines and curves, with the moves between them.
class SegmentCursor {
public:
    explicit SegmentCursor(CPath const& path) : mElements(path) {}

    /// Steps to the next segment; false at the end. Moves are passed, and Start() tells of them.
    bool Next() {
        while (mElements.Next()) {
            TPoint<double> const from = mCurrent;
            switch (mElements.Code()) {
            case kPathMove:
                mStart = mCurrent = mElements.Pt(0);
                break;
            case kPathLine:
                mCurrent = mElements.Pt(0);
                mIsCurve = false;
                mLine.Set(from, mCurrent);
                return true;
            case kPathCurve:
                mCurrent = mElements.Pt(2);
                mIsCurve = true;
                mCurve.Set(from, mElements.Pt(0), mElements.Pt(1), mCurrent);
                return true;
            case kPathClose:
                mIsCurve = false;
                mLine.Set(from, mStart); // the current point stays where it was
                return true;
            default:
                break;
            }
        }
        return false;
    }
    bool IsCurve() const { return mIsCurve; }
    TLine<double> const& Line() const { return mLine; }
    CBezier const& Curve() const { return mCurve; }
    double Length() const { return mIsCurve ? mCurve.Length() : mLine.Length(); }
    /// The index of the segment's element in the path's codes.
    std::size_t Element() const { return mElements.Index(); }
    /// The point of the last move passed, (0, 0) before the first.
    TPoint<double> Start() const { return mStart; }

private:
    ElementCursor mElements;
    TPoint<double> mStart;
    TPoint<double> mCurrent;
    bool mIsCurve = false;
    TLine<double> mLine;
    CBezier mCurve;
};

/// Appends the piece between two lengths to `out`, which is no part of what is cut; see
/// CPath::GetTRange.
///
/// Of the outline it asks PtAtLength(length), and for WalkFrom(length): a walk over the segments,
/// where those that end at `length` or before it may be missing. The walk has Next(), IsCurve(),
/// Line(), Curve(), the sums of lengths Before() and Behind() the segment, its Length() and, for a
/// curve, PercentT(fraction).
template <class Outline>
void CutRange(Outline const& outline, double startLength, double endLength, CPath& out) {
    out.MoveTo(outline.PtAtLength(startLength));
    bool done = false;
    for (auto segment = outline.WalkFrom(startLength); !done && segment.Next();) {
        if (!(startLength < segment.Behind())) {
            continue;
        }
        if (!segment.IsCurve()) {
            done = endLength <= segment.Behind();
            out.LineTo(done ? outline.PtAtLength(endLength) : segment.Line().mEnd);
        } else if (endLength < segment.Before()) {
            done = true;
        } else {
            // A curve that holds the range's end does not end the walk: a following line adds
            // itself up to the end, where it has length; a following curve stops.
            double const before = segment.Before();
            double const length = segment.Length();
            double const u0 =
                before < startLength ? segment.PercentT((startLength - before) / length) : 0.0;
            double const u1 = endLength < segment.Behind()
                                  ? segment.PercentT((endLength - before) / length)
                                  : 1.0;
            CBezier piece;
            segment.Curve().GetTRange(u0, u1, piece);
            out.CurveTo(piece.P1, piece.P2, piece.P3);
        }
    }
}

} // namespace trammel_detail

#endif

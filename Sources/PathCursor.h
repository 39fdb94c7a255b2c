// SPDX-License-Identifier: MIT

// The walks along a path's elements and segments, on which PathSegments.h is built. Users go by
// that header.
//
// A cursor keeps the path's address and its place in numbers. It never reads beyond the path's end,
// even where the codes ask for more points than there are, or a visitor changes the path on the
// way. Nothing throws or allocates.

#ifndef TRAMMEL_PATHCURSOR_H
#define TRAMMEL_PATHCURSOR_H

#include "CBezier.h"
#include "CPath.h"
#include "TLine.h"
#include "TPoint.h"

#include <cstddef>

namespace trammel_detail {

/// Returns the number of points that an element takes; 0 for a close and for unknown codes.
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

/// Goes through a path's elements by index.
class ElementCursor {
public:
    /// Makes a cursor that stands nowhere and may only be assigned to.
    ElementCursor() = default;
    explicit ElementCursor(CPath const& path) : mPath(&path) {}

    /// Steps to the next element. Returns false at the end, or where the points do not suffice.
    bool Next() {
        mPoint += mTaken;
        if (mElement >= mPath->mCtls.size()) {
            return false;
        }
        mCode = mPath->mCtls[mElement++];
        mTaken = PointCount(mCode);
        return mPoint <= mPath->mPts.size() && mTaken <= mPath->mPts.size() - mPoint;
    }
    char Code() const { return mCode; }
    /// Returns the element's index in the path's codes.
    std::size_t Index() const { return mElement - 1; }
    /// Returns the index of the element to which Next will step.
    std::size_t NextIndex() const { return mElement; }
    /// True when the next element is a move.
    bool MoveIsNext() const {
        return mElement < mPath->mCtls.size() && mPath->mCtls[mElement] == kPathMove;
    }
    /// Returns point `i` of the element, by value: it outlives a change of the path.
    TPoint<double> Pt(std::size_t i) const { return mPath->mPts[mPoint + i]; }
    /// Returns where the element's points lie. The address is good until the path changes.
    TPoint<double> const* Points() const { return mPath->mPts.data() + mPoint; }

private:
    CPath const* mPath = nullptr;
    std::size_t mElement = 0;
    std::size_t mPoint = 0;
    std::size_t mTaken = 0;
    char mCode = kPathClose;
};

/// Goes through a path's segments (lines, curves and closing lines) as its measuring does. An
/// element before any move begins at (0, 0), and an element after a close at the last point drawn.
class PathCursor {
public:
    /// Makes a cursor that stands nowhere and may only be assigned to.
    PathCursor() = default;
    explicit PathCursor(CPath const& path) : mElements(path) {}

    /// Steps to the next segment and passes over moves. Returns false at the end.
    bool Next() {
        while (Step()) {
            if (IsSegment()) {
                return true;
            }
        }
        return false;
    }
    /// Steps to the next segment or move. Returns false at the end.
    bool NextOrMove() {
        while (Step()) {
            if (IsSegment() || Code() == kPathMove) {
                return true;
            }
        }
        return false;
    }
    /// Steps to the next element, be its code known or not. Returns false at the end.
    bool Step() {
        if (!mElements.Next()) {
            return false;
        }
        mFrom = mCurrent;
        switch (mElements.Code()) {
        case kPathMove:
            mStart = mCurrent = mElements.Pt(0);
            break;
        case kPathLine:
            mCurrent = mElements.Pt(0);
            break;
        case kPathCurve:
            mCurrent = mElements.Pt(2);
            break;
        default: // a close leaves the current point where it was
            break;
        }
        return true;
    }
    /// True when the next element is a move.
    bool MoveIsNext() const { return mElements.MoveIsNext(); }
    /// Returns the index of the element to which Step will go.
    std::size_t NextElement() const { return mElements.NextIndex(); }

    /// True where the element is a line, a curve or a close.
    bool IsSegment() const {
        return Code() == kPathLine || Code() == kPathCurve || Code() == kPathClose;
    }
    /// Returns the element's code.
    char Code() const { return mElements.Code(); }
    bool IsCurve() const { return Code() == kPathCurve; }
    /// Returns the line or the closing line.
    TLine<double> Line() const {
        return TLine<double>(mFrom, Code() == kPathClose ? mStart : mCurrent);
    }
    /// Returns the curve, as long as the path has not changed since the step. By value, as the line
    /// is: the cursor's address then never escapes, and the compiler keeps it in registers.
    CBezier Curve() const { return CBezier(mFrom, mElements.Pt(0), mElements.Pt(1), mCurrent); }
    /// Returns the index of the segment's element in the path's codes.
    std::size_t Element() const { return mElements.Index(); }
    /// Returns the point of the last move; (0, 0) before the first one.
    TPoint<double> Start() const { return mStart; }
    /// Returns the point from which the next segment begins, unless a move comes before it.
    TPoint<double> Current() const { return mCurrent; }

private:
    ElementCursor mElements;
    TPoint<double> mStart;
    TPoint<double> mCurrent;
    TPoint<double> mFrom; ///< where the element begins
};

} // namespace trammel_detail

#endif

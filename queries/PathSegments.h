// SPDX-License-Identifier: MIT

// PathSegments: the subpaths and segments of a path, for range-for and the standard algorithms.
//
//     for (trammel::Subpath const& subpath : trammel::Subpaths(path)) {
//         for (trammel::PathSegment const& segment : subpath) {
//             use(segment.start, segment.end);
//         }
//     }
//
// Choose these ranges over a visitor (CPathActions.h) where a loop reads more easily, needs the
// start of each segment, or ends early.
//
// The path's own measuring goes through the same subpaths and segments:
// - A subpath begins with a move, or where drawing goes on after a close. Without a move it begins
//   at the last point drawn, or at (0, 0) where there is none. It ends before the next move, with a
//   close, or with the path. A move that nothing follows is a subpath without segments.
// - A segment is a line, a curve, or the line that a close draws to the point of the last move,
//   which may have no length.
// - An unknown code is passed over. The walk ends early where the points do not suffice.
//
// Ranges and iterators keep the address of the path, which has to live as long as they do. They are
// for a path that stays as it is: any change but that of a point's coordinates makes them invalid,
// as it does for the iterators of a vector. Invalid ones give segments without meaning. They read
// nothing beyond the path's end.
//
// Coordinates are handed over as they are, NaN and infinities too. Nothing allocates or throws. A
// step costs O(1), and a step to the next subpath costs O(n) for the n elements of that one.
// Different threads may go through one path at the same time.

#ifndef TRAMMEL_PATHSEGMENTS_H
#define TRAMMEL_PATHSEGMENTS_H

#include "CBezier.h"
#include "CPath.h"
#include "PathCursor.h"
#include "TLine.h"
#include "TPoint.h"

#include <cstddef>
#include <iterator>

namespace trammel {

/// One segment of a path, by value.
struct PathSegment {
    CPathCode kind = kPathLine; ///< kPathLine, kPathCurve or kPathClose for a closing line
    /// True for a closing line that the path does not have, which only ClosedSegments gives.
    bool implied = false;
    /// The index of the segment's element in the path's codes. For an implied closing line it is
    /// the index that a close would get.
    std::size_t element = 0;
    TPoint<double> start;    ///< where the segment begins
    TPoint<double> control1; ///< the first control point of a curve; of a line its start
    TPoint<double> control2; ///< the second control point of a curve; of a line its end
    TPoint<double> end;      ///< where the segment ends

    bool IsCurve() const { return kind == kPathCurve; }
    /// Returns the line from start to end, which is the chord of a curve.
    TLine<double> Line() const { return TLine<double>(start, end); }
    /// Returns the curve with these control points. That of a line has the same points as the line,
    /// though not at the same parameters.
    CBezier Curve() const { return CBezier(start, control1, control2, end); }
};

/// Goes through segments. It is a standard input iterator that can also be copied and kept.
class PathSegmentIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = PathSegment;
    using difference_type = std::ptrdiff_t;
    using pointer = PathSegment const*;
    using reference = PathSegment const&;

    /// Makes the end of every range.
    PathSegmentIterator() = default;

    /// Returns the segment, which the next step replaces.
    PathSegment const& operator*() const { return mSegment; }
    PathSegment const* operator->() const { return &mSegment; }
    PathSegmentIterator& operator++() {
        Step();
        return *this;
    }
    PathSegmentIterator operator++(int) {
        PathSegmentIterator const before(*this);
        Step();
        return before;
    }
    /// True when both stand at the same segment of one range, or both at the end.
    bool operator==(PathSegmentIterator const& other) const {
        return mAtEnd == other.mAtEnd && (mAtEnd || (mSegment.element == other.mSegment.element &&
                                                     mSegment.implied == other.mSegment.implied));
    }
    bool operator!=(PathSegmentIterator const& other) const { return !(*this == other); }

private:
    friend class Subpath;
    friend class PathSegments;

    /// Begins behind `before`, and ends before the element of index `end`. `closing` appends the
    /// line back to where the range began.
    PathSegmentIterator(trammel_detail::PathCursor const& before, std::size_t end, bool closing)
        : mCursor(before), mEnd(end), mBegin(before.Current()), mClosing(closing), mAtEnd(false) {
        Step();
    }

    void Step() {
        if (mCursor.NextElement() < mEnd && mCursor.Next()) {
            mSegment.kind = static_cast<CPathCode>(mCursor.Code());
            mSegment.element = mCursor.Element();
            if (mCursor.IsCurve()) {
                CBezier const curve = mCursor.Curve();
                curve.Get(mSegment.start, mSegment.control1, mSegment.control2, mSegment.end);
            } else {
                SetLine(mCursor.Line());
            }
        } else if (mClosing && mCursor.Current() != mBegin) {
            mClosing = false;
            mSegment.kind = kPathClose;
            mSegment.implied = true;
            mSegment.element = mEnd;
            SetLine(TLine<double>(mCursor.Current(), mBegin));
        } else {
            mAtEnd = true;
        }
    }
    void SetLine(TLine<double> const& line) {
        mSegment.start = mSegment.control1 = line.mStart;
        mSegment.end = mSegment.control2 = line.mEnd;
    }

    trammel_detail::PathCursor mCursor;
    std::size_t mEnd = 0;
    TPoint<double> mBegin;
    PathSegment mSegment;
    bool mClosing = false;
    bool mAtEnd = true;
};

/// All segments of a path in order, over its subpaths: what Segments returns.
class PathSegments {
public:
    using value_type = PathSegment;
    using iterator = PathSegmentIterator;
    using const_iterator = PathSegmentIterator;

    /// Makes the range of all segments of `path`.
    explicit PathSegments(CPath const& path) : mBegin(path) {}

    PathSegmentIterator begin() const {
        return PathSegmentIterator(mBegin, static_cast<std::size_t>(-1), false);
    }
    PathSegmentIterator end() const { return PathSegmentIterator(); }

private:
    trammel_detail::PathCursor mBegin;
};

/// One subpath of a path: the range of its segments.
class Subpath {
public:
    using value_type = PathSegment;
    using iterator = PathSegmentIterator;
    using const_iterator = PathSegmentIterator;

    /// The segments with the line back to the start of a subpath, which is implied unless drawn.
    class WithClosing {
    public:
        using value_type = PathSegment;
        using iterator = PathSegmentIterator;
        using const_iterator = PathSegmentIterator;

        PathSegmentIterator begin() const { return mBegin; }
        PathSegmentIterator end() const { return PathSegmentIterator(); }

    private:
        friend class Subpath;
        explicit WithClosing(PathSegmentIterator const& begin) : mBegin(begin) {}
        PathSegmentIterator mBegin;
    };

    /// Makes a subpath without segments, from (0, 0).
    Subpath() = default;

    PathSegmentIterator begin() const { return PathSegmentIterator(mBegin, mEndElement, false); }
    PathSegmentIterator end() const { return PathSegmentIterator(); }
    /// Returns the segments with the line that closes the subpath, as it does for filling. A
    /// subpath that is closed, or that ends where it starts, has no other segments than before.
    WithClosing ClosedSegments() const {
        return WithClosing(PathSegmentIterator(mBegin, mEndElement, !mClosed));
    }

    /// True when there is no segment: the subpath is a mere move.
    bool Empty() const { return begin() == end(); }
    /// True when the subpath ends with a close.
    bool Closed() const { return mClosed; }
    /// True when the subpath's first element is its move. A close without one may lead elsewhere
    /// than to the start: to the point of an older move.
    bool BeginsWithMove() const { return mBeginsWithMove; }
    /// Returns the point where the first segment begins.
    TPoint<double> Start() const { return mBegin.Current(); }
    /// Returns the last point drawn, not counting a close; the start where nothing is drawn.
    TPoint<double> End() const { return mLast; }
    /// Returns the index of the first element: the move, where the subpath begins with one.
    std::size_t FirstElement() const { return mFirstElement; }
    /// Returns the index behind the last segment's element.
    std::size_t EndElement() const { return mEndElement; }

private:
    friend class SubpathIterator;

    trammel_detail::PathCursor mBegin; ///< before the first segment, behind the move
    TPoint<double> mLast;
    std::size_t mFirstElement = 0;
    std::size_t mEndElement = 0;
    bool mClosed = false;
    bool mBeginsWithMove = false;
};

/// Goes through subpaths. It is a standard input iterator that can also be copied and kept.
class SubpathIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = Subpath;
    using difference_type = std::ptrdiff_t;
    using pointer = Subpath const*;
    using reference = Subpath const&;

    /// Makes the end of every range.
    SubpathIterator() = default;

    /// Returns the subpath, which the next step replaces.
    Subpath const& operator*() const { return mSubpath; }
    Subpath const* operator->() const { return &mSubpath; }
    SubpathIterator& operator++() {
        Step();
        return *this;
    }
    SubpathIterator operator++(int) {
        SubpathIterator const before(*this);
        Step();
        return before;
    }
    /// True when both stand at the same subpath of one range, or both at the end.
    bool operator==(SubpathIterator const& other) const {
        return mAtEnd == other.mAtEnd &&
               (mAtEnd || mSubpath.mFirstElement == other.mSubpath.mFirstElement);
    }
    bool operator!=(SubpathIterator const& other) const { return !(*this == other); }

private:
    friend class SubpathRange;

    explicit SubpathIterator(trammel_detail::PathCursor const& begin)
        : mCursor(begin), mAtEnd(false) {
        Step();
    }

    void Step() {
        do { // up to the element that begins the subpath
            mSubpath.mBegin = mCursor;
            if (!mCursor.Step()) {
                mAtEnd = true;
                return;
            }
        } while (!mCursor.IsSegment() && mCursor.Code() != kPathMove);
        mSubpath.mBeginsWithMove = mCursor.Code() == kPathMove;
        if (mSubpath.mBeginsWithMove) {
            mSubpath.mBegin = mCursor;
        }
        mSubpath.mFirstElement = mCursor.Element();
        mSubpath.mEndElement = mCursor.NextElement();
        mSubpath.mClosed = mCursor.Code() == kPathClose;
        while (!mSubpath.mClosed && !mCursor.MoveIsNext() && mCursor.Step()) {
            if (mCursor.IsSegment()) {
                mSubpath.mEndElement = mCursor.NextElement();
                mSubpath.mClosed = mCursor.Code() == kPathClose;
            }
        }
        mSubpath.mLast = mCursor.Current();
    }

    trammel_detail::PathCursor mCursor; ///< behind the subpath
    Subpath mSubpath;
    bool mAtEnd = true;
};

/// The subpaths of a path in order: what Subpaths returns.
class SubpathRange {
public:
    using value_type = Subpath;
    using iterator = SubpathIterator;
    using const_iterator = SubpathIterator;

    /// Makes the range of the subpaths of `path`.
    explicit SubpathRange(CPath const& path) : mBegin(path) {}

    SubpathIterator begin() const { return SubpathIterator(mBegin); }
    SubpathIterator end() const { return SubpathIterator(); }

private:
    trammel_detail::PathCursor mBegin;
};

/// Returns the subpaths of `path` in order; none for an empty path. `path` has to outlive the
/// range, so a temporary path is refused.
inline SubpathRange Subpaths(CPath const& path) { return SubpathRange(path); }
SubpathRange Subpaths(CPath const&& path) = delete;

/// Returns the segments of `path` in order, whatever subpath they are in. `path` has to outlive the
/// range, so a temporary path is refused.
inline PathSegments Segments(CPath const& path) { return PathSegments(path); }
PathSegments Segments(CPath const&& path) = delete;

} // namespace trammel

#endif

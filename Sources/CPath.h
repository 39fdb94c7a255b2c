// SPDX-License-Identifier: MIT

// CPath: the general outline, a sequence of moves, lines, cubic curves and closes.
//
// A path is built element by element under joining rules that absorb degenerate input:
//
// - a line of no length, and a curve that ends where it starts, are not recorded;
// - a second move in a row replaces the first;
// - a close without an open subpath is not recorded;
// - a line without an open subpath is a move, while a curve needs no move before it.
//
// A path is measured and cut by the fraction t of its total length. The first point is at t = 0,
// the end of the last element at t = 1, and equal steps of t are equal steps of length. Curves are
// measured by CBezier::Length (a flattening at 0.001). An element before any move is measured from
// (0, 0), and after a close the next element is measured from the last point drawn, not from the
// subpath's start. A path without length divides by zero: NaN. NaN and infinite coordinates
// propagate likewise.
//
// Nothing is cached between calls but the bounds of the points: each measuring call costs O(n) plus
// the flattening of every curve. Memory exhaustion is std::bad_alloc; a building operation then
// leaves the path as it was. Length, TPt and FindTValue never throw: without memory they measure
// again. Building operations return the path, so that they can be chained.
//
// Threads: const members of one path, and all members of different paths, may run at the same time.

#ifndef TRAMMEL_CPATH_H
#define TRAMMEL_CPATH_H

#include "CPathActions.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

class CMatrix3x3;

/// Element codes of CPath::mCtls, and in brackets the points of mPts that each takes.
enum CPathCode : char {
    kPathMove = 0,  ///< starts a subpath at the point (1)
    kPathLine = 1,  ///< straight segment to the point (1)
    kPathCurve = 2, ///< cubic Bezier: first control point, second control point, end (3)
    kPathClose = 3, ///< straight segment to the subpath's start (0)
};

/// An outline of subpaths.
class TRAMMEL_API CPath {
public:
    /// Selects what TestContents looks for.
    enum ContentAttributes : std::int32_t {
        kContainsClose = 0,
        kContainsLines = 1,
        kContainsCurves = 2,
    };

    std::vector<char> mCtls;          ///< one CPathCode for each element; see InvalBounds
    std::vector<TPoint<double>> mPts; ///< the points of all elements, in order; see InvalBounds
    TPoint<double> mCurrentPt;        ///< the last point added
    bool mOpen;                       ///< a subpath is open: set by a move, cleared by a close
    mutable TRect<double> mBounds;    ///< cached bounds of the points; null: not known

    // Create

    /// An empty path.
    CPath();
    /// Copies all fields.
    CPath(CPath const& other)
        : mCtls(other.mCtls), mPts(other.mPts), mCurrentPt(other.mCurrentPt), mOpen(other.mOpen),
          mBounds(other.CachedBounds()) {}
    /// Takes the elements of `other` and leaves it empty.
    CPath(CPath&& other) noexcept : CPath() { *this = std::move(other); }
    /// Copies all fields; nothing when `other` is this path.
    CPath& operator=(CPath const& other) {
        if (this != &other) {
            mCtls.reserve(other.mCtls.size()); // from here on memory cannot run out half-way
            mPts.reserve(other.mPts.size());
            mCtls = other.mCtls;
            mPts = other.mPts;
            mCurrentPt = other.mCurrentPt;
            mOpen = other.mOpen;
            mBounds = other.CachedBounds();
        }
        return *this;
    }
    /// Takes the elements of `other` and leaves it empty.
    CPath& operator=(CPath&& other) noexcept {
        if (this != &other) {
            mCtls = std::move(other.mCtls);
            mPts = std::move(other.mPts);
            mCurrentPt = other.mCurrentPt;
            mOpen = other.mOpen;
            mBounds = other.mBounds;
            other.clear();
        }
        return *this;
    }
    ~CPath() = default;

    // Build

    /// Makes the path empty, its current point (0, 0).
    CPath& clear();
    /// Starts a subpath at `p`. Replaces a move directly before it, whose point stays in the cached
    /// bounds.
    CPath& MoveTo(TPoint<double> const& p);
    /// Adds a line to `p`, or a move when no subpath is open, or nothing when `p` equals the
    /// current point.
    CPath& LineTo(TPoint<double> const& p);
    /// Adds a curve by way of the control points `c1` and `c2` to `e`. With an open subpath nothing
    /// when `e` equals the current point, whatever the control points are. Without one the curve is
    /// added with no move before it, and no subpath is open after it either.
    CPath& CurveTo(TPoint<double> const& c1, TPoint<double> const& c2, TPoint<double> const& e);
    /// Closes the subpath, if one is open. The current point stays where it is.
    CPath& ClosePath();
    /// Adds an elliptical arc around `center`: LineTo its start, then one curve for each started
    /// quarter turn, and one more where the quarters come out even. No sweep adds the line only.
    /// \param startAngle,sweep radians; 0 is the +h direction, a positive sweep turns toward +v.
    ///        A sweep that is NaN, infinite or beyond 2^31 quarter turns adds the start point only.
    /// \param hRadius,vRadius coordinate units; negative ones mirror. Greatest deviation from the
    ///        true ellipse 2.73e-4 of the radius at a quarter turn, 4.3e-6 at an eighth.
    CPath& Arc(TPoint<double> const& center, double hRadius, double vRadius, double startAngle,
               double sweep);
    /// Adds a circular arc, as above.
    CPath& Arc(TPoint<double> const& center, double radius, double startAngle, double sweep);
    /// Adds a closed rounded rectangle, starting on the top edge toward the right.
    ///
    /// `corner` is the diameter of a corner, limited to the shorter side; 0 gives a plain
    /// rectangle. Each corner curve has its first control point on its own start and its second on
    /// the rectangle's corner: the platform's shape, not a circular quarter.
    CPath& RRect(TRect<double> r, double corner);
    /// Appends another path, dropping every close of both: its moves and lines become lines, its
    /// curves curves, under the joining rules. The result is one continuous path as far as they
    /// allow. Appending a path to itself appends a copy.
    CPath& Append(CPath const& other);

    /// Appends an element code and nothing else; the caller keeps codes and points consistent.
    CPath& AddCtl(char code);
    /// Appends a point, which becomes the current point and grows the cached bounds; the caller
    /// keeps codes and points consistent.
    CPath& AddPt(TPoint<double> const& p);

    // Query

    /// The size of the element data in bytes, 1 for each code and 16 for each point; not a count of
    /// elements.
    unsigned long size() const;
    /// The last point added; not moved by a close or by Transform.
    TPoint<double> CurrentPoint() const { return mCurrentPt; }
    /// Returns the fraction of its tangent arms at which a curve has its control points to follow
    /// an arc of the unit circle. It is 4/3 / (sqrt(L² + 1) + 1), where L is the distance from the
    /// arc's start `a` to the crossing `b` of its end tangents.
    double GetFraction(TPoint<double> a, TPoint<double> b) const;
    /// The bounds of all points, control points included; rebuilt when the cache is null. May be
    /// larger than the points after a replaced move, and forgets a leading point at the origin (see
    /// TRect's union). Null for an empty path.
    TRect<double> Bounds() const;
    /// True when any element is of the selected kind; false for other selectors.
    bool TestContents(ContentAttributes attribute) const;
    /// True when any subpath is closed.
    bool Closed() const { return TestContents(kContainsClose); }

    // Visit, transform

    /// Delivers every element in order to the visitor; a code other than the four is passed over.
    /// The walk ends early where the points do not suffice.
    void ForAll(CPathActions& actions) const;
    /// Drops the cached bounds; the next call of Bounds() computes them from the points. Call this
    /// after a point of mPts was moved, or after elements or points were removed, directly: nothing
    /// else brings such a change into the bounds. The current point stays as it was.
    CPath& InvalBounds() {
        mBounds.SetNull();
        return *this;
    }
    /// Maps every point through the matrix and drops the bounds. The current point stays as it was:
    /// go on building with a move.
    void Transform(CMatrix3x3 const& m);

    // Measure

    /// The total length, closing segments included.
    double Length() const;
    /// The point at fraction `t` of the length. t <= 0 is found on the first segment (extended
    /// backward), t > 1 gives the start of the last subpath, as does an empty path ((0, 0)).
    TPoint<double> TPt(double t) const;
    /// The fraction of the length at which the path is nearest to `p`; 0 for a path without
    /// segments. On exact ties a later curve wins, a later line does not. Curves are searched by
    /// CBezier::FindTValue at 0.001.
    double FindTValue(TPoint<double> const& p) const;

    // Cut

    /// Appends the piece from `t0` to `t1` (t0 <= t1) to `out`: a move, then lines and curves; gaps
    /// between subpaths are joined. When the piece ends in a curve and a line follows, a line to
    /// TPt(t1) is added, which is dropped when it has no length. `out` is not closed; it may be
    /// this path.
    void GetTRange(double t0, double t1, CPath& out) const;
    /// Cuts the piece from `t0` to `t1` away. The outputs are appended to, and may be this path.
    ///
    /// - Closed path: `outA` gets the rest, from t1 through the start to t0, as one open piece, and
    ///   `outB` is emptied.
    /// - Open path: `outA` gets the part before t0 and `outB` the part after t1.
    /// - t1 < t0: `outA` gets the piece between and `outB` stays as it is.
    void RemoveTRange(double t0, double t1, CPath& outA, CPath& outB) const;

private:
    /// Returns the cached bounds, which another thread may be storing.
    TRect<double> CachedBounds() const;
    void MakeRoom(std::size_t codes, std::size_t points);
    template <class Scale>
    void AddArc(TPoint<double> center, double startAngle, double sweep, Scale scale);
};

#endif

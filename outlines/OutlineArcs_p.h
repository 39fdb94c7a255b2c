// SPDX-License-Identifier: MIT

// Outlines taken apart into arcs, for operations that keep curves. Not installed.
//
// docs/outlines.md describes the steps.

#ifndef TRAMMEL_OUTLINEARCS_P_H
#define TRAMMEL_OUTLINEARCS_P_H

#include "Box_p.h"
#include "CPath.h"
#include "Cubic_p.h"
#include "TPoint.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace trammel_detail {

/// The number of an element, a vertex, an arc or a part of one.
typedef std::uint32_t Index;

inline constexpr Index kNoIndex = std::numeric_limits<Index>::max();

/// Moves and multiplies coordinates: those of a drawing become work coordinates, in which the
/// larger side of its bounds has a length from 1 to 2. Both steps are exact, unless a coordinate is
/// so small beside the bounds that it underflows.
class WorkFrame {
public:
    WorkFrame() = default;
    /// Makes the frame of a drawing with finite bounds that are more than a point.
    explicit WorkFrame(Box<double> const& bounds);

    TPoint<double> ToWork(TPoint<double> const& p) const {
        return TPoint<double>((p.h - mOffset.h) * mUp * mUpAgain,
                              (p.v - mOffset.v) * mUp * mUpAgain);
    }
    /// Returns the point of the drawing. Where doubles are too coarse it is rounded.
    TPoint<double> FromWork(TPoint<double> const& p) const {
        return TPoint<double>(Finite(p.h * mDown * mDownAgain + mOffset.h),
                              Finite(p.v * mDown * mDownAgain + mOffset.v));
    }
    double LengthToWork(double length) const { return length * mUp * mUpAgain; }
    double LengthFromWork(double length) const { return length * mDown * mDownAgain; }
    /// Returns how far apart doubles are at the drawing's farthest coordinate, in work units.
    double Spacing() const { return mSpacing; }

private:
    static double Finite(double x) {
        double const most = std::numeric_limits<double>::max();
        return x > most ? most : x < -most ? -most : x;
    }

    TPoint<double> mOffset;
    double mUp = 1.0; // two factors, as their product may overflow
    double mUpAgain = 1.0;
    double mDown = 1.0;
    double mDownAgain = 1.0;
    double mSpacing = 0x1p-52;
};

/// A segment of an operand, in the drawing's coordinates.
struct OutlineElement {
    Cubic c; ///< of a line only the ends count
    std::uint32_t operand;
    std::size_t segment; ///< its number in the operand, or kNoSegment for an implied closing line
    bool curve;
};
inline constexpr std::size_t kNoSegment = std::numeric_limits<std::size_t>::max();

/// A stretch of an element.
struct ElementStretch {
    Index element; ///< kNoIndex for a line that was put in
    double from;   ///< parameters on the element
    double to;     ///< less than `from` where the stretch runs the other way
};

/// Contours whose elements are stretches of other elements.
struct StretchContours {
    std::vector<OutlineElement> elements;
    std::vector<ElementStretch> stretches; ///< an element of the operands for each of `elements`
    std::vector<std::size_t> ends;         ///< of the elements of each contour

    std::size_t Begin(std::size_t contour) const { return contour == 0 ? 0 : ends[contour - 1]; }
};

/// Points at which arcs begin, end and cross. Two of them are farther apart than the reach in h or
/// in v; a point that is nearer to a vertex becomes the vertex.
class VertexTable {
public:
    void Reset(WorkFrame const& frame, double reach, std::size_t expected);

    /// Returns the vertex at a point of the drawing.
    Index At(TPoint<double> const& p);
    /// Returns the vertex at a point in work coordinates.
    Index AtWork(TPoint<double> const& p) { return At(mFrame.FromWork(p)); }
    /// Appends a vertex that others do not become.
    Index AddApart(TPoint<double> const& work);

    std::size_t Count() const { return mWork.size(); }
    TPoint<double> const& Place(Index vertex) const { return mPlaces[vertex]; }
    TPoint<double> const& WorkPlace(Index vertex) const { return mWork[vertex]; }

private:
    std::size_t SlotOf(std::int64_t x, std::int64_t y) const;
    Index FindInSlot(std::size_t slot, TPoint<double> const& work) const;
    void Grow();

    struct Entry {
        std::int64_t x, y;
        Index first; ///< vertex of the cell, kNoIndex for a free slot
    };
    WorkFrame mFrame;
    double mReach = 0.0;
    double mPerCell = 1.0;
    std::vector<TPoint<double>> mPlaces;
    std::vector<TPoint<double>> mWork;
    std::vector<Index> mNext; // by vertex: the next of its cell
    std::vector<Entry> mSlots;
    std::size_t mUsed = 0;
};

/// A stretch of an outline that is monotone in h and in v, in work coordinates. Arcs do not
/// coincide within the reach.
struct OutlineArc {
    Cubic c; ///< of a line the control points are thirds
    Index v0;
    Index v1;
    bool straight; ///< whether it is a line in all of its uses
};

/// An arc as a part of an element, in the direction of the element.
struct ArcUse {
    Index arc;
    Index element;
    double from; ///< parameters on the element; from < to
    double to;
    bool reversed; ///< whether the arc runs the other way
    bool paced;    ///< whether equal shares of both parameters are the same place
};

/// A contour of an operand.
struct UseContour {
    std::size_t end; ///< of its uses, or of its elements where no outline has curves
    std::uint32_t operand;
    bool open; ///< whether it ends where its subpath does
    bool ring; ///< whether its subpath is closed
};

/// All operands' outlines as arcs.
class OutlineArcs {
public:
    OutlineArcs() = default;
    /// Takes contours whose elements are stretches of those of `whole`, and has its frame. Refers
    /// to `whole`.
    explicit OutlineArcs(OutlineArcs const* whole) : mBounds(whole->mBounds), mWhole(whole) {}

    /// Adds the contours of a path. A contour with a coordinate that is not finite is absent.
    /// They are closed, or they end where their subpaths do.
    void Add(CPath const& path, std::uint32_t operand, bool closed = true);
    /// Adds the contours from `begin` to `end`.
    void Add(StretchContours const& from, std::size_t begin, std::size_t end,
             std::uint32_t operand);
    /// Takes the elements apart, with room for the tolerance, which is in the drawing's units.
    void Build(double tolerance);
    /// Takes them apart anew with a larger reach. False where it is as large as it gets.
    bool Coarsen();

    /// Returns the contours that were added, of which none is open.
    StretchContours AsStretches() const;
    /// Returns the box of all points.
    Box<double> const& Bounds() const { return mBounds; }
    bool AnyCurve() const {
        return std::any_of(elements.begin(), elements.end(),
                           [](OutlineElement const& e) { return e.curve; });
    }

    WorkFrame const& Frame() const { return mFrame; }
    /// Returns the distance, in work units, below which points and curves become one.
    double Reach() const { return mReach; }
    /// True when the operands have an area to speak of.
    bool HasExtent() const { return mBounds.lowX < mBounds.highX || mBounds.lowY < mBounds.highY; }
    /// True when there is a curve. Else there are no arcs, and the elements stand for themselves.
    bool HasCurves() const { return mHasCurves; }

    /// True when the elements are those of the operands.
    bool IsWhole() const { return mWhole == nullptr; }
    /// Returns the elements of the operands.
    std::vector<OutlineElement> const& Wholes() const {
        return mWhole != nullptr ? mWhole->elements : elements;
    }
    /// Returns a stretch of an element as one of an operand's element.
    ElementStretch OnWhole(ElementStretch const& stretch) const;

    std::vector<OutlineElement> elements;
    VertexTable vertices;
    std::vector<OutlineArc> arcs;
    std::vector<ArcUse> uses; ///< contour by contour
    std::vector<UseContour> contours;
    std::vector<std::pair<Index, Index>> pairs; ///< of arcs whose boxes meet, i < j

private:
    struct Piece; // of an element, monotone
    struct Cut;
    struct Branch; // of a piece that leaves a vertex

    void TakeApart();
    void TakeContour(std::size_t first, UseContour const& contour);
    void CutElement(Index element, std::vector<Piece>& pieces);
    std::vector<Cut> CutsAtVertices(std::vector<Piece> const& pieces) const;
    void AddCutsWherePart(Branch const& first, Branch const& second,
                          std::vector<Piece> const& pieces, std::vector<Cut>& cuts);
    std::vector<Cut> CutsWherePiecesPart(std::vector<Piece> const& pieces);
    void Apply(std::vector<Cut>& cuts, std::vector<Piece>& pieces,
               std::vector<std::size_t>& ends) const;
    bool Near(TPoint<double> const& p, TPoint<double> const& q) const {
        return std::abs(p.h - q.h) <= mReach && std::abs(p.v - q.v) <= mReach;
    }
    bool Coincide(Cubic const& a, Cubic const& b, int depth) const;
    void CutAtVertices(std::vector<Piece>& pieces, std::vector<std::size_t>& ends);
    void TakePieces(std::vector<Piece> const& pieces, std::vector<std::size_t> const& ends);
    /// Sets the pairs of items, which have a curve `c` each.
    template <class Items> void FindPairs(Items const& items);

    WorkFrame mFrame;
    double mReach = 0.0;
    bool mHasCurves = false;
    Box<double> mBounds;
    OutlineArcs const* mWhole = nullptr;
    std::vector<ElementStretch> mStretches; // by element: of an element of mWhole
    std::vector<Box<double>> mBoxes;        // of what pairs were found for last
    std::vector<std::size_t> mContourEnds;  // of elements
    std::vector<UseContour> mContours;      // as many, without their ends
};

/// Finds the place of a monotone curve that is nearest to `p` along its chord. True when it is
/// within `reach` of `p`; `t` gets its parameter.
bool FindOnMonotone(Cubic const& c, bool straight, TPoint<double> const& p, double reach,
                    double& t);

/// Returns how far the control points are from the line along the chord at most. A curve without
/// turns in h and v is no farther from its chord. Of a chord without length, the distance from its
/// point counts.
double HeightBesideChord(Cubic const& c);

/// Moves the ends of a curve with the control points beside them.
void MoveEnds(Cubic& c, TPoint<double> const& start, TPoint<double> const& end);

} // namespace trammel_detail

#endif

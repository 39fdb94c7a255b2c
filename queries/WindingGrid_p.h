// SPDX-License-Identifier: MIT

// A grid of cells over an outline whose segments run to and fro past each other, so that a query
// looks at the segments of one cell only. Not installed.
//
// Let c(S) be the crossings of a segment S with the ray from a point p toward +h
// (RayCrossings_p.h). They are the same for all points of a cell that S does not meet, except that
// they change where p passes the height of an end of S. So each end V takes a term: g(V) is 1 where
// V lies beyond the ray's line and right of the cell, else 0. Along a closed contour the terms
// cancel, so
//
//     winding number of p  =  sum of c(S) - g(end of S) + g(start of S)  over all segments S.
//
// The summand of S counts how S crosses the way from p to the cell's right wall and then along the
// wall's line toward +v. This is constant in a cell that S does not meet. A cell keeps the sum over
// these segments, and the list of the others.
//
// Most segments of a list cross the cell from wall to wall. A strip around a straight line holds
// their part in the cell. Their summand is one constant right of the strip, and one more left of
// it. Points within the strip, and the segments that end or turn in the cell, go to the code that
// decides for WindingNumber, too.

#ifndef TRAMMEL_WINDINGGRID_P_H
#define TRAMMEL_WINDINGGRID_P_H

#include "TPoint.h"
#include "Vector_p.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace trammel_detail {

/// A segment of an outline, as the grid and what it is made from know it.
struct GridSegment {
    std::uint32_t point; ///< where its two or four points begin in the outline's list
    bool isCurve;
};

class WindingGrid {
public:
    WindingGrid() = default;
    /// Makes the grid of closed contours of finite points. `low` and `high` are the corners of
    /// their box, v in lane 0 and h in lane 1. Makes no cells where the box is very narrow, or
    /// where coordinates or their number are too large or too small for it. O(n) time and memory.
    WindingGrid(std::vector<TPoint<double>> const& points, std::vector<GridSegment> const& segments,
                Double2 const& low, Double2 const& high);

    bool IsEmpty() const { return mCells.empty(); }
    /// Returns the winding number of the contours around a point in their box.
    int WindingNumber(TPoint<double> const* points, TPoint<double> const& p) const;
    std::size_t Bytes() const;

private:
    class Builder;
    typedef std::uint32_t Id;
    typedef std::int16_t Step; ///< a coordinate within a cell, and what is derived from it

    static constexpr unsigned kPack = 8;

    struct Cell {
        std::int32_t base; ///< the sum over segments of which the cell has nothing
        Id firstStrip;     ///< the cell's strips end where the next cell's begin
        Id firstAsked;     ///< of mAsked, in the same way
    };
    /// Strips of one or several cells. A point's distance to the left of the middle line is
    /// h * p.h + v * p.v + at.
    struct Strips {
        Step h[kPack];
        Step v[kPack];
        Step at[kPack];
        Step width[kPack]; ///< half the strip's width, and what rounding takes
        Id segment[kPack]; ///< NameOf, with the summand right of the strip
    };

    /// A segment in 32 bits: its point, the summand right of its strip, and its kind.
    static Id NameOf(GridSegment const& segment, int summand) {
        return segment.point << 4U | static_cast<Id>(summand + 4) << 1U |
               static_cast<Id>(segment.isCurve);
    }
    static int SummandOf(Id name) { return static_cast<int>(name >> 1U & 7U) - 4; }
    /// Returns c(S) - g(end of S) + g(start of S) for the cells left of a wall.
    static int Summand(Id name, TPoint<double> const* points, TPoint<double> const& p, double wall);

    /// The left wall of a column.
    double WallOf(Id column) const { return Lane<1>(mLow) + column * Lane<1>(mSize); }
    Id CellAt(Id row, Id column) const { return row * mColumns + column; }
    /// Returns what the cell tells of a point that lies in it or on a wall. `place` is seen from
    /// the cell's corner, in cells.
    int Ask(Id cell, Double2 const& place, double wall, TPoint<double> const* points,
            TPoint<double> const& p) const;

    Double2 mLow = 0.0;
    Double2 mSize = 0.0; ///< of a cell
    Double2 mScale = 0.0;
    Id mRows = 0;
    Id mColumns = 0;
    std::vector<Cell> mCells; ///< row by row, and one more for the end of the last lists
    std::vector<Strips> mStrips;
    std::vector<Id> mAsked; ///< segments without a strip
};

} // namespace trammel_detail

#endif

// SPDX-License-Identifier: MIT

// Closed lines on the grid, and their edges. Not installed.
#ifndef TRAMMEL_LINES_P_H
#define TRAMMEL_LINES_P_H

#include "Box_p.h"
#include "Grid_p.h"
#include "Scratch_p.h"

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// A set of operands, one bit each.
typedef unsigned char Operands;

/// Tells from which of the caller's edges an edge comes: 2 * that edge's number, + 1 where the two
/// run in opposite directions.
typedef std::uint32_t Origin;

/// Returns the number of the caller's edge.
inline std::uint32_t EdgeOf(Origin origin) { return origin / 2; }
/// True when the two run in opposite directions.
inline bool IsReversed(Origin origin) { return origin % 2 != 0; }
/// Returns the origin of the same edge as it runs the other way.
inline Origin Reversed(Origin origin) { return origin ^ 1; }

/// Closed lines: the vertices of all of them one after the other, and for each line where it ends
/// and which operand it bounds.
struct GridLines {
    ScratchVector<GridPoint> points;
    ScratchVector<std::size_t> ends;
    ScratchVector<Operands> operands;
    /// The operand of each line by its number, where regions are told by winding numbers (see
    /// WindingRegion). Else empty.
    ScratchVector<std::uint32_t> owners;
    /// By point: the origin of the edge from there to the next point of its line. Empty where
    /// nobody asks for origins.
    ScratchVector<Origin> origins;

    explicit GridLines(Scratch* scratch = nullptr)
        : points(scratch), ends(scratch), operands(scratch), owners(scratch), origins(scratch) {}

    /// Returns the number of lines.
    std::size_t Count() const { return ends.size(); }
    /// Line `i` has the points from Begin(i) on and before End(i).
    std::size_t Begin(std::size_t i) const { return i == 0 ? 0 : ends[i - 1]; }
    std::size_t End(std::size_t i) const { return ends[i]; }

    /// Appends the points of a line of `from` with their origins, and ends the line there. What it
    /// bounds is up to the caller.
    void AppendPoints(GridLines const& from, std::size_t line);
    /// Ends the line that was begun with points.push_back(), which bounds `operand`. Takes out
    /// repeated vertices and edges that run back over the edge before. Takes out the whole line if
    /// fewer than three vertices are left. All this leaves winding numbers as they are. An edge
    /// that replaces two lies on one of them, and has its origin.
    void Close(Operands operand);
    /// Does the same for an operand that is told by its number.
    void CloseOwned(std::uint32_t owner);

private:
    /// Sets the origin of the edge from point a to point c, once point b between them is taken out.
    void Skip(std::size_t a, std::size_t b, std::size_t c);
};

/// Stands for an edge that is left out when edges are held against each other, because it equals
/// another one.
inline constexpr char kCopy = 2;

/// An edge, in the direction of its line.
struct GridEdge {
    GridPoint a;
    GridPoint b;
};

/// Measures where points are along an edge, in the coordinate in which the edge is longer.
class MajorAxis {
public:
    explicit MajorAxis(GridEdge const& e)
        : mX(e.b.x < e.a.x ? -1 : 1), mY(e.b.y < e.a.y ? -1 : 1), mWidth((e.b.x - e.a.x) * mX),
          mHeight((e.b.y - e.a.y) * mY), mWide(mWidth >= mHeight) {}

    /// Returns the longer coordinate, which grows from the edge's first end to its second.
    std::int64_t Along(GridPoint p) const { return mWide ? p.x * mX : p.y * mY; }
    /// Returns the other coordinate, which does not fall from the first end to the second.
    std::int64_t Across(GridPoint p) const { return mWide ? p.y * mY : p.x * mX; }
    /// Returns the point that has these two coordinates.
    GridPoint Point(std::int64_t along, std::int64_t across) const {
        return mWide ? GridPoint{along * mX, across * mY} : GridPoint{across * mX, along * mY};
    }
    /// Returns |dx| + |dy| of the edge, which is at least its length.
    std::int64_t LengthBound() const { return mWidth + mHeight; }

private:
    std::int64_t mX;
    std::int64_t mY;
    std::int64_t mWidth;
    std::int64_t mHeight;
    bool mWide;
};

/// The bounding box of one edge or of several. Points on its sides belong to it.
typedef Box<std::int64_t> GridBox;

inline GridBox BoxOf(GridPoint a, GridPoint b) { return GridBox::Of(a.x, a.y, b.x, b.y); }
inline GridBox BoxOf(GridEdge const& e) { return BoxOf(e.a, e.b); }
/// True when the point lies in the box.
inline bool Contains(GridBox const& box, GridPoint p) { return box.Contains(p.x, p.y); }

} // namespace trammel_detail

#endif

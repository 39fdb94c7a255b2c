// SPDX-License-Identifier: MIT

// The clipper's own corpus: figures from a generator with fixed seeds, and the file of their exact
// areas, counts of contours and samples.
#ifndef TRAMMEL_CLIPCORPUS_H
#define TRAMMEL_CLIPCORPUS_H

#include "PlainClip.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace plain {

/// Random numbers that are the same with every standard library.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : mEngine(seed) {}

    /// An integer in low <= n <= high.
    int Int(int low, int high) {
        auto const count = static_cast<std::uint64_t>(high - low) + 1;
        return low + static_cast<int>(mEngine() % count);
    }
    /// A double in 0 <= v < 1.
    double Unit() { return static_cast<double>(mEngine() >> 11) * 0x1p-53; }

private:
    std::mt19937_64 mEngine;
};

/// Two operands, and a name without blanks.
struct ClipCase {
    std::string name;
    Polygon a;
    Polygon b;
};

/// Added to all coordinates of grid cases. The doubles between 1024 and 2048 have one spacing,
/// 2^-42, so the results' coordinates are integers of that unit and tests on them can be exact.
inline int const kGridOffset = 1024;

Contour Rectangle(double x0, double y0, double x1, double y1);

Polygon Mapped(Polygon polygon, double scaleX, double scaleY, double moveX, double moveY);

/// Vertices anywhere in the unit square.
Contour RandomDoubles(Dice& dice, int vertices);

/// One to three contours of such vertices, each with 3 to `mostVertices` of them.
Polygon RandomPolygon(Dice& dice, int mostVertices);

/// A contour with vertices anywhere on the integer grid from 0 to `size`, moved by kGridOffset.
Contour RandomContour(Dice& dice, int vertices, int size);

/// Figures on integer grids, all in coordinates between 1024 and 2048:
/// - random polygons from dense grids (much coincides) to sparse ones (little does),
/// - several contours, repeated vertices and spikes,
/// - rectangles in every relative position,
/// - nested rings, chessboards, combs, and triangulated squares that share all their edges.
std::vector<ClipCase> MakeGridCases();

/// The grid cases and these, each in several sizes:
/// - nested and touching squares, frames with many holes,
/// - stars, wheels that nearly coincide, needles through one point,
/// - combs, saws, spirals, walks that cross themselves,
/// - copies that are a few units in the last place apart,
/// - figures far from the origin, tiny, huge and thin ones,
/// - contours that enclose nothing, run back, or run twice.
///
/// Only correctly rounded operations make the coordinates (no sine, no cosine), so that every
/// machine makes the same bits.
std::vector<ClipCase> MakeCorpus();

/// A number that tells the operands of different cases apart, made of all bits of their vertices.
std::uint64_t Fingerprint(ClipCase const& c);

/// The operands' common measure: powers of two that bring the box around them to a side between
/// 1/2 and 1 on each axis, and how far rounding may move a vertex.
struct Measure {
    int exponentX = 0;
    int exponentY = 0;
    /// The grid's spacing on each axis after scaling: the unit in the last place of the largest
    /// coordinate, or the clipper's step where that is larger.
    double unitX = 0;
    double unitY = 0;

    explicit Measure(ClipCase const& c);
    /// The polygon multiplied by the powers of two, which is exact unless coordinates underflow.
    Polygon Scaled(Polygon polygon) const;
};

/// The known facts about an operation's result.
struct ResultFigures {
    int contours = 0;
    int holes = 0;
    /// The area that Measure's scaling gives, rounded to the nearest double.
    double area = 0;
};

inline bool operator==(ResultFigures const& a, ResultFigures const& b) {
    return a.contours == b.contours && a.holes == b.holes && a.area == b.area;
}

/// A line of the file of figures.
struct CaseFigures {
    std::string name;
    std::uint64_t fingerprint = 0;
    /// True when all vertices and crossings are far from the edges beside them. Rounding joins and
    /// parts nothing then, and the rounded result has as many contours as the exact one.
    bool settled = false;
    /// A character for each of SamplePoints(): the sum of 1 for inside `a` and 2 for inside `b`,
    /// or a minus where rounding may decide.
    std::string samples;
    std::array<ResultFigures, 4> results; ///< in the order of kOperations
};

/// Points in the box around the operands.
std::vector<Vertex> SamplePoints(ClipCase const& c);

/// True when the point lies on or near the line through an edge of the operands. The rounding of
/// vertices or of the test itself may then decide on which side the point lies.
bool IsNearALine(ClipCase const& c, Measure const& measure, Vertex p);

/// Reads the file of figures. On a malformed file the message names the line; it is empty
/// otherwise.
std::vector<CaseFigures> ReadFigures(std::string const& path, std::string& message);

/// A line of the file, without its end. Doubles have 17 digits, so that they are read back exactly.
std::string ToLine(CaseFigures const& figures);

/// How much the area of a result may differ from the exact one, in scaled coordinates, and how much
/// the area between the two boundaries can be.
///
/// The boundary of the exact result consists of pieces of the operands' edges. The clipper moves
/// the ends of the pieces to points of its grid. An end moves by half a unit at each rounding, and
/// again when a moved edge gets a new crossing; this bound allows two units on each axis. A piece
/// with differences dx, dy between its ends, both of which move by at most (mx, my), sweeps over at
/// most |dx| my + |dy| mx + 2 mx my. Summed over the pieces, the first two terms are at most those
/// of the operands' edges, whatever the cuts are. The last term is below 2^-100 for each piece and
/// the sum's own rounding covers it.
double RegionTolerance(ClipCase const& c, Measure const& measure);

} // namespace plain

#endif

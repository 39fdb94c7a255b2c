// SPDX-License-Identifier: MIT

// Pairs of near edges where boxes cannot tell edges apart. Not installed.

#ifndef TRAMMEL_EDGESPLIT_P_H
#define TRAMMEL_EDGESPLIT_P_H

#include "Lines_p.h"
#include "Scratch_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// A pair of edges by their numbers.
struct EdgePair {
    std::uint32_t first;
    std::uint32_t second; ///< greater than `first`
};

/// Tells by doubles which edges are not near each other, although their boxes may meet.
class NearTest {
public:
    /// Edges are near if they are no further apart than twice the margin.
    explicit NearTest(GridPoint margin)
        : mX(2 * static_cast<double>(margin.x) + kRounding),
          mY(2 * static_cast<double>(margin.y) + kRounding) {}

    /// What the test needs of an edge besides its first end.
    struct Direction {
        double x;
        double y;
        double reach; ///< twice the area of its triangle with a point that is just near
    };
    Direction DirectionOf(GridEdge const& e) const {
        double const x = static_cast<double>(e.b.x - e.a.x);
        double const y = static_cast<double>(e.b.y - e.a.y);
        return {x, y, mY * std::abs(x) + mX * std::abs(y)};
    }

    /// True unless two edges are certainly not near each other.
    bool MayBeNear(GridEdge const& e, GridEdge const& f) const {
        return MayBeNear(e.a, DirectionOf(e), f.a, DirectionOf(f));
    }
    /// Does the same for edges from two points.
    static bool MayBeNear(GridPoint a, Direction const& e, GridPoint b, Direction const& f) {
        double const toX = static_cast<double>(b.x - a.x);
        double const toY = static_cast<double>(b.y - a.y);
        // Twice the areas of the triangles that either edge makes with each end of the other.
        double const both = e.x * f.y - e.y * f.x;
        double const fa = e.x * toY - e.y * toX;
        double const ea = f.y * toX - f.x * toY;
        return !IsBeside(fa, fa + both, e.reach) && !IsBeside(ea, ea - both, f.reach);
    }

private:
    /// The areas are off by less than 2^-50 times the products of lengths up to 2^62. That is as if
    /// the edges were this much further apart.
    static constexpr double kRounding = 0x1p13;

    static bool IsBeside(double a, double b, double limit) {
        return std::min(a, b) > limit || std::max(a, b) < -limit;
    }

    double mX;
    double mY;
};

/// Finds all pairs of edges that are no further apart than twice the margin, once each and in
/// order, and perhaps some more. `active` is as for EdgeTree: pairs without an active edge are left
/// out, and so are copies. Returns false if that takes more than `budget` steps or very many pairs;
/// what `pairs` holds then means nothing.
///
/// The plane is split along lines in the directions of edges, and each part again, until few edges
/// run through each part. Long slanted edges that run side by side are soon apart, though their
/// boxes all meet. An edge that runs through several parts is held against others in each of them.
///
/// Cost: O(n log n + k) steps where edges run side by side. Where many edges cross, there is no
/// such split, and the budget ends the search.
bool FindNearPairs(ScratchVector<GridEdge> const& edges, ScratchVector<char> const& active,
                   GridPoint margin, std::size_t budget, ScratchVector<EdgePair>& pairs);

} // namespace trammel_detail

#endif

// SPDX-License-Identifier: MIT
#include "ClipperContours_p.h"

#include "ClipperLinker_p.h"
#include "ClipperPredicates_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace trammel_detail {

namespace {

/// The bits of the upper half of a coordinate, with a zero after each.
std::uint64_t Spread(std::int64_t v) {
    std::uint64_t bits = (static_cast<std::uint64_t>(v) + (std::uint64_t{1} << 61)) >> 30;
    bits &= 0xFFFFFFFF;
    bits = (bits | bits << 16) & 0x0000FFFF0000FFFF;
    bits = (bits | bits << 8) & 0x00FF00FF00FF00FF;
    bits = (bits | bits << 4) & 0x0F0F0F0F0F0F0F0F;
    bits = (bits | bits << 2) & 0x3333333333333333;
    return (bits | bits << 1) & 0x5555555555555555;
}

/// The lines in an order in which neighbours are near each other: that of their first vertices
/// along Morton's curve.
GridLines SortedByPlace(GridLines const& lines) {
    std::vector<std::pair<std::uint64_t, std::size_t>> order;
    order.reserve(lines.Count());
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        GridPoint const p = lines.points[lines.Begin(line)];
        order.emplace_back(Spread(p.x) << 1 | Spread(p.y), line);
    }
    std::sort(order.begin(), order.end());
    GridLines sorted;
    sorted.points.reserve(lines.points.size());
    sorted.ends.reserve(lines.Count());
    for (auto const& [place, line] : order) {
        for (std::size_t i = lines.Begin(line); i < lines.End(line); ++i) {
            sorted.points.push_back(lines.points[i]);
        }
        sorted.ends.push_back(sorted.points.size());
    }
    return sorted;
}

struct Cut {
    std::size_t edge;
    GridPoint at;
};

/// What edges have in common.
struct Contacts {
    std::vector<Cut> cuts;    // where an edge meets another, not at its own end
    std::vector<char> shared; // by EdgeEnd: 1 at vertices that occur more than once; or empty
};

/// round(d * num / den) for 0 <= num <= den, to within a step.
std::int64_t Fraction(std::int64_t d, Int128 num, Int128 den) {
    UInt128 n = static_cast<UInt128>(num);
    UInt128 m = static_cast<UInt128>(den);
    // 63 leading bits of the denominator leave room for a quotient of 63 bits.
    while (m >> 63 != 0) {
        m >>= 1;
        n >>= 1;
    }
    Int128 const ratio = static_cast<Int128>((n << 62) / m); // of 2^62
    Int128 const half = static_cast<Int128>(1) << 61;
    return static_cast<std::int64_t>((ratio * d + half) >> 62);
}

/// The point where two edges cross that have no end in common.
GridPoint Crossing(GridEdge const& e, GridEdge const& f, Int128 sideA, Int128 sideB) {
    // Measured from the nearer end of f, where the rounding is least.
    bool const fromA = (sideA < 0 ? -sideA : sideA) <= (sideB < 0 ? -sideB : sideB);
    GridPoint const from = fromA ? f.a : f.b;
    GridPoint const to = fromA ? f.b : f.a;
    Int128 num = fromA ? sideA : sideB;
    Int128 den = num - (fromA ? sideB : sideA);
    if (num < 0) {
        num = -num;
        den = -den;
    }
    GridBox const box = BoxOf(e);
    return {std::clamp(from.x + Fraction(to.x - from.x, num, den), box.x0, box.x1),
            std::clamp(from.y + Fraction(to.y - from.y, num, den), box.y0, box.y1)};
}

/// Finds the crossings of edges, and the vertices on other edges.
///
/// With `pixels` also the vertices near other edges: those that an edge passes at less than half of
/// the doubles' spacing, in x and in y. (J. D. Hobby, Practical Segment Intersection with Finite
/// Precision Output, 1999: edges that are bent at all such vertices meet at vertices only.)
Contacts FindContacts(EdgeTree const& tree, ClipGrid const& grid, bool pixels) {
    Contacts contacts;
    GridPoint const largest = grid.LargestSpacing();
    auto const cutAt = [&](std::size_t i, GridPoint p) {
        if (p != tree.At(i).a && p != tree.At(i).b) {
            contacts.cuts.push_back({i, p});
        }
    };
    auto const share = [&](bool equal, EdgeEnd end, EdgeEnd other) {
        if (equal) {
            contacts.shared.resize(2 * tree.Count(), 0);
            contacts.shared[end] = 1;
            contacts.shared[other] = 1;
        }
    };
    // Whether edge e passes through p, or the pixel around it, given Cross(e.a, e.b, p).
    auto const passes = [&](GridEdge const& e, GridPoint p, Int128 cross) {
        GridBox const box = BoxOf(e);
        if (!pixels) {
            return cross == 0 && box.Contains(p);
        }
        Int128 const width = box.x1 - box.x0;
        Int128 const height = box.y1 - box.y0;
        Int128 const distance = 2 * (cross < 0 ? -cross : cross);
        if (distance >= width * largest.y + height * largest.x) {
            return false;
        }
        // Are they separate along x, along y, or along the edge's normal? Everything is doubled, to
        // stay whole.
        GridPoint const size = grid.Spacing(p);
        return 2 * p.x + size.x > 2 * box.x0 && 2 * p.x - size.x < 2 * box.x1 &&
               2 * p.y + size.y > 2 * box.y0 && 2 * p.y - size.y < 2 * box.y1 &&
               distance < width * size.y + height * size.x;
    };
    tree.ForMeetingPairs([&](std::size_t i, std::size_t j, bool follow) {
        if (follow && !pixels) {
            return;
        }
        GridEdge const& e = tree.At(i);
        GridEdge const& f = tree.At(j);
        Int128 const fa = Cross(e.a, e.b, f.a);
        Int128 const fb = Cross(e.a, e.b, f.b);
        if (!pixels && Sign(fa) * Sign(fb) > 0) {
            return;
        }
        Int128 const ea = Cross(f.a, f.b, e.a);
        Int128 const eb = Cross(f.a, f.b, e.b);
        if (!pixels && Sign(ea) * Sign(eb) > 0) {
            return;
        }
        std::size_t const before = contacts.cuts.size();
        if (passes(e, f.a, fa)) {
            cutAt(i, f.a);
        }
        if (passes(e, f.b, fb)) {
            cutAt(i, f.b);
        }
        if (passes(f, e.a, ea)) {
            cutAt(j, e.a);
        }
        if (passes(f, e.b, eb)) {
            cutAt(j, e.b);
        }
        if (contacts.cuts.size() == before && Sign(ea) * Sign(eb) < 0 && Sign(fa) * Sign(fb) < 0) {
            GridPoint const p = grid.Snapped(Crossing(e, f, fa, fb));
            cutAt(i, p);
            cutAt(j, p);
        }
        if (!follow) {
            share(e.a == f.a, 2 * i, 2 * j);
            share(e.a == f.b, 2 * i, 2 * j + 1);
            share(e.b == f.a, 2 * i + 1, 2 * j);
            share(e.b == f.b, 2 * i + 1, 2 * j + 1);
        }
    });
    return contacts;
}

/// The lines with the cuts as new vertices.
GridLines WithCuts(GridLines const& lines, EdgeTree const& tree, std::vector<Cut> cuts) {
    std::sort(cuts.begin(), cuts.end(), [&](Cut const& c, Cut const& d) {
        if (c.edge != d.edge) {
            return c.edge < d.edge;
        }
        // Along the edge, in the direction in which it is longer: rounding can have moved points
        // off the line, but not past each other by more than a step or two.
        GridEdge const& e = tree.At(c.edge);
        std::int64_t const dx = e.b.x - e.a.x;
        std::int64_t const dy = e.b.y - e.a.y;
        std::int64_t x = c.at.x - d.at.x;
        std::int64_t y = c.at.y - d.at.y;
        x = dx < 0 ? -x : x;
        y = dy < 0 ? -y : y;
        bool const wide = (dx < 0 ? -dx : dx) >= (dy < 0 ? -dy : dy);
        return wide ? (x != 0 ? x < 0 : y < 0) : (y != 0 ? y < 0 : x < 0);
    });
    GridLines result;
    result.points.reserve(lines.points.size() + cuts.size());
    auto cut = cuts.begin();
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        for (std::size_t i = lines.Begin(line); i < lines.End(line); ++i) {
            result.points.push_back(lines.points[i]);
            for (; cut != cuts.end() && cut->edge == i; ++cut) {
                result.points.push_back(cut->at);
            }
        }
        result.Close();
    }
    return result;
}

void SetDirection(GridLines& lines, std::size_t line, bool counterclockwise) {
    if (FootOf(lines, line).counterclockwise != counterclockwise) {
        auto const first = lines.points.begin();
        std::reverse(first + static_cast<std::ptrdiff_t>(lines.Begin(line)),
                     first + static_cast<std::ptrdiff_t>(lines.End(line)));
    }
}

/// The contours where lines have nothing in common, neither with others nor with themselves. The
/// lines, which the tree refers to, end up in the result.
ResolvedContours ContoursOfSeparateLines(GridLines& lines, EdgeTree const& tree) {
    ResolvedContours result;
    result.holes.assign(lines.Count(), 0);
    for (std::size_t line = 0; line < lines.Count() && lines.Count() > 1; ++line) {
        Foot const foot = FootOf(lines, line);
        // The edge's side that is enclosed by the line is the west one if the line, followed
        // upwards, runs counterclockwise.
        bool const enclosedIsWest = foot.forward == foot.counterclockwise;
        bool const enclosedIsInside = tree.InsideWestOf(foot.edge) == enclosedIsWest;
        result.holes[line] = enclosedIsInside ? 0 : 1;
    }
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        SetDirection(lines, line, result.holes[line] != 0);
    }
    result.contours = std::move(lines);
    return result;
}

} // namespace

ResolvedContours ResolveContours(GridLines lines, ClipGrid const& grid) {
    if (lines.Count() > 2) {
        lines = SortedByPlace(lines);
    }
    // A cut moves edges by the rounding of the new vertex, which can make them meet others, so it
    // is looked again until nothing is left to cut. Two or three rounds are usual. Once there was
    // something to cut, edges are bent at all vertices that they pass too closely; else two that
    // run nearly side by side could go on crossing, each time one double further along.
    int const kMaxRounds = 50;
    for (int round = 0;; ++round) {
        if (lines.Count() == 0) {
            return {};
        }
        bool const pixels = round > 0;
        EdgeTree const tree(lines, pixels ? grid.LargestSpacing() : GridPoint{0, 0});
        Contacts contacts = FindContacts(tree, grid, pixels);
        if (contacts.cuts.empty() || round == kMaxRounds) {
            return contacts.cuts.empty() && contacts.shared.empty()
                       ? ContoursOfSeparateLines(lines, tree)
                       : LinkContours(tree, contacts.shared);
        }
        GridLines next = WithCuts(lines, tree, std::move(contacts.cuts));
        lines = std::move(next);
    }
}

} // namespace trammel_detail

// SPDX-License-Identifier: MIT

// Open lines that are cut by regions.
#include "OpenLines_p.h"

#include "plain/ClipCorpus.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using plain::Contour;
using plain::Dice;
using plain::Vertex;
using trammel_detail::BooleanOperand;
using trammel_detail::EdgeOf;
using trammel_detail::GridLines;
using trammel_detail::IsReversed;
using trammel_detail::LabelOpenLines;
using trammel_detail::OpenPieces;
using trammel_detail::RegionOf;
using trammel_detail::WindingRegion;

RegionOf const kUnion = {{false, true, true, true}};

/// Labels open lines by the union of contours by a rule.
OpenPieces Labelled(std::vector<Contour> const& open, std::vector<Contour> const& contours,
                    bool evenOdd) {
    BooleanOperand lines(nullptr);
    for (Contour const& line : open) {
        lines.AddOpen(line.empty() ? nullptr : &line[0].x, line.size());
    }
    BooleanOperand operand(nullptr);
    for (Contour const& contour : contours) {
        operand.Add(contour.empty() ? nullptr : &contour[0].x, contour.size());
    }
    WindingRegion region(kUnion, nullptr);
    region.rules = {{evenOdd, 0}};
    return LabelOpenLines(lines, operand, region, nullptr);
}

Vertex VertexOf(OpenPieces const& pieces, std::size_t i) {
    Vertex v{};
    pieces.grid.ToDoubles(pieces.lines.points[i], v.x, v.y);
    return v;
}

/// Returns the pieces as text: each vertex, and between them the edge's number and its sides.
std::string Text(OpenPieces const& pieces) {
    std::string text;
    char part[64];
    for (std::size_t line = 0; line < pieces.lines.Count(); ++line) {
        for (std::size_t i = pieces.lines.Begin(line); i < pieces.lines.End(line); ++i) {
            Vertex const v = VertexOf(pieces, i);
            std::snprintf(part, sizeof part, "(%g %g)", v.x, v.y);
            text += part;
            if (i + 1 < pieces.lines.End(line)) {
                std::snprintf(part, sizeof part, " %u:%u ", EdgeOf(pieces.lines.origins[i]),
                              unsigned{pieces.sides[i]});
                text += part;
            }
        }
        text += "\n";
    }
    return text;
}

bool IsInside(Vertex const& p, std::vector<Contour> const& contours, bool evenOdd) {
    int winding = 0;
    for (Contour const& contour : contours) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            Vertex const a = contour[i];
            Vertex const b = contour[i + 1 < contour.size() ? i + 1 : 0];
            if ((a.y > p.y) != (b.y > p.y) &&
                a.x + (b.x - a.x) * ((p.y - a.y) / (b.y - a.y)) < p.x) {
                winding += b.y > a.y ? 1 : -1;
            }
        }
    }
    return evenOdd ? winding % 2 != 0 : winding != 0;
}

Contour const kSquare = {{0, 0}, {4, 0}, {4, 4}, {0, 4}};

TEST(OpenLines, AreCutAtTheBoundary) {
    EXPECT_EQ(Text(Labelled({{{-2, 1}, {2, 1}, {2, 9}}}, {kSquare}, false)),
              "(-2 1) 4:0 (0 1) 4:3 (2 1) 5:3 (2 4) 5:0 (2 9)\n");
}

TEST(OpenLines, TellTheSidesAlongTheBoundary) {
    EXPECT_EQ(Text(Labelled({{{-1, 0}, {6, 0}}, {{4, 5}, {4, -5}}}, {kSquare}, true)),
              "(-1 0) 4:0 (0 0) 4:1 (4 0) 4:0 (6 0)\n(4 5) 6:0 (4 4) 6:2 (4 0) 6:0 (4 -5)\n");
}

TEST(OpenLines, AreInsideOrOutsideWhereNothingCutsThem) {
    EXPECT_EQ(Text(Labelled({{{1, 2}, {3, 2}}}, {kSquare}, false)), "(1 2) 4:3 (3 2)\n");
    EXPECT_EQ(Text(Labelled({{{1, 2}, {2, 3}, {1, 2}}}, {kSquare}, false)),
              "(1 2) 4:3 (2 3) 5:3 (1 2)\n");
    EXPECT_EQ(Text(Labelled({{{5, 2}, {9, 2}}}, {kSquare}, false)), "(5 2) 4:0 (9 2)\n");
}

TEST(OpenLines, NeedNoRegion) {
    EXPECT_EQ(Text(Labelled({{{1, 2}, {3, 2}}}, {}, false)), "(1 2) 0:0 (3 2)\n");
    EXPECT_EQ(Text(Labelled({{{7, 7}, {7, 7}}}, {}, false)), "");
    EXPECT_EQ(Text(Labelled({}, {kSquare}, false)), "");
}

TEST(OpenLines, AreLeftOutWithoutTwoFiniteVertices) {
    double const kNaN = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Text(Labelled({{{1, 1}}, {{1, 1}, {1, 1}}, {{1, 1}, {kNaN, 2}}, {{1, 1}, {2, 1}}},
                            {kSquare}, false)),
              "(1 1) 9:3 (2 1)\n");
}

TEST(OpenLines, AreOnTheSidesThatWindingNumbersSay) {
    Dice dice(77);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        int const size = dice.Int(2, 10);
        auto const random = [&](int most) {
            Contour line;
            for (int k = dice.Int(1, most); k > 0; --k) {
                line.push_back({static_cast<double>(dice.Int(0, size)),
                                static_cast<double>(dice.Int(0, size))});
            }
            return line;
        };
        std::vector<Contour> const open = {random(12), random(5)};
        std::vector<Contour> const contours = {random(14), random(9)};
        std::size_t const firstEdge = contours[0].size() + contours[1].size();
        bool const evenOdd = round % 2 != 0;
        OpenPieces const pieces = Labelled(open, contours, evenOdd);
        GridLines const& lines = pieces.lines;
        for (std::size_t line = 0; line < lines.Count(); ++line) {
            for (std::size_t i = lines.Begin(line); i + 1 < lines.End(line); ++i) {
                Vertex const p = VertexOf(pieces, i);
                Vertex const q = VertexOf(pieces, i + 1);
                double const dx = q.x - p.x;
                double const dy = q.y - p.y;
                double const length = std::hypot(dx, dy);
                ASSERT_FALSE(IsReversed(lines.origins[i]));
                std::size_t const edge = EdgeOf(lines.origins[i]) - firstEdge;
                bool const second = edge >= open[0].size();
                std::size_t const k = second ? edge - open[0].size() : edge;
                Vertex const a = open[second ? 1 : 0][k];
                Vertex const b = open[second ? 1 : 0][k + 1];
                EXPECT_NEAR((b.x - a.x) * (p.y - a.y), (b.y - a.y) * (p.x - a.x), 1e-11);
                EXPECT_NEAR((b.x - a.x) * (q.y - a.y), (b.y - a.y) * (q.x - a.x), 1e-11);
                if (length < 1e-6) {
                    continue; // the rounding of cuts
                }
                EXPECT_GT((b.x - a.x) * dx + (b.y - a.y) * dy, 0);
                // Details of such drawings are larger than this.
                double const aside = 1e-9 / length;
                for (bool const left : {false, true}) {
                    double const side = left ? aside : -aside;
                    Vertex const at = {p.x + dx * 0.4871 - dy * side,
                                       p.y + dy * 0.4871 + dx * side};
                    EXPECT_EQ((pieces.sides[i] & (left ? 1 : 2)) != 0,
                              IsInside(at, contours, evenOdd));
                }
            }
        }
        for (bool const second : {false, true}) {
            Contour const& given = open[second ? 1 : 0];
            bool found = given.size() < 2;
            for (std::size_t line = 0; line < lines.Count() && !found; ++line) {
                Vertex const first = VertexOf(pieces, lines.Begin(line));
                Vertex const last = VertexOf(pieces, lines.End(line) - 1);
                found = first == given.front() && last == given.back();
            }
            bool const isPoint =
                std::all_of(given.begin(), given.end(), [&](Vertex v) { return v == given[0]; });
            EXPECT_TRUE(found || isPoint);
        }
    }
}

} // namespace

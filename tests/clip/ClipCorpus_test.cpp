// SPDX-License-Identifier: MIT

// The clipper's results on figures whose areas are known exactly.
#include "ClipChecks.h"

#include "gpc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace clip_test {
namespace {

using plain::Box;
using plain::Clip;
using plain::kOperationNames;
using plain::kOperations;
using plain::Normalised;

/// The areas by flags and by the even-odd rule against the exact one. They may be off by
/// kAreaTolerance of the union, and by what rounding to doubles does: all edges of a result are
/// parts of the operands' edges, with ends that are the nearest doubles, so that the area changes
/// by no more than if all vertices of the operands were moved by a unit in the last place. At 1e11
/// that is the greater part for figures of size 100, elsewhere nothing to speak of.
void ExpectArea(Region const& region, double exact, double unionArea, Polygon const& a,
                Polygon const& b) {
    Box box;
    box.Include(a);
    box.Include(b);
    if (!box.HasArea()) {
        EXPECT_TRUE(region.contours.empty());
        return;
    }
    Normalised const normalised(box);
    Region const scaled{normalised(region.contours), region.holes};
    double const tolerance = kAreaTolerance * normalised.Area(unionArea) +
                             normalised.Area(plain::RoundingOfArea(a) + plain::RoundingOfArea(b));
    double const evenOdd = plain::EvenOddArea(scaled.contours);
    EXPECT_NEAR(evenOdd, normalised.Area(exact), tolerance + kStripTolerance);
    EXPECT_NEAR(Area(scaled), evenOdd,
                kAreaTolerance * normalised.Area(unionArea) + kStripTolerance);
}

/// Whether two results list the same contours with the same flags: each starting anywhere, in any
/// order, coordinates to within a tolerance.
bool SameContours(Region const& ours, Region const& theirs, double toleranceX, double toleranceY) {
    if (ours.contours.size() != theirs.contours.size()) {
        return false;
    }
    std::vector<char> used(theirs.contours.size(), 0);
    for (std::size_t i = 0; i < ours.contours.size(); ++i) {
        bool found = false;
        for (std::size_t j = 0; j < theirs.contours.size() && !found; ++j) {
            Contour contour = theirs.contours[j];
            if (used[j] != 0 || ours.holes[i] != theirs.holes[j] ||
                contour.size() != ours.contours[i].size()) {
                continue;
            }
            for (std::size_t k = 0; k < contour.size() && !found; ++k) {
                found = plain::Same(ours.contours[i], contour, toleranceX, toleranceY);
                std::rotate(contour.begin(), contour.begin() + 1, contour.end());
            }
            used[j] = found;
        }
        if (!found) {
            return false;
        }
    }
    return true;
}

/// Whether no vertex occurs twice: nothing touches, so that there is one way to list the contours.
bool IsSimple(Region const& region, double toleranceX, double toleranceY) {
    std::vector<Vertex> vertices;
    for (Contour const& contour : region.contours) {
        vertices.insert(vertices.end(), contour.begin(), contour.end());
    }
    std::sort(vertices.begin(), vertices.end());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        for (std::size_t j = i + 1;
             j < vertices.size() && vertices[j].y - vertices[i].y <= toleranceY; ++j) {
            if (std::fabs(vertices[j].x - vertices[i].x) <= toleranceX) {
                return false;
            }
        }
    }
    return true;
}

TEST(ClipCorpus, FindsTheAreasOfGridCases) {
    std::vector<plain::GridCase> const cases = plain::MakeGridCases();
    ASSERT_GT(cases.size(), 400U);
    for (plain::GridCase const& c : cases) {
        std::array<double, 4> const exact = plain::ExactAreas(c.a, c.b);
        // The exact areas themselves: what is in a but not b, in both, and in b but not a.
        double const onlyA = exact[0];
        double const both = exact[1];
        EXPECT_NEAR(exact[3] - exact[2], both, 1e-9 * exact[3]);
        EXPECT_GE(exact[2] - onlyA, -1e-9);
        for (std::size_t k = 0; k < 4; ++k) {
            SCOPED_TRACE(c.name + ": " + kOperationNames[k]);
            Region const region = Clip(kOperations[k], c.a, c.b);
            ExpectArea(region, exact[k], exact[3], c.a, c.b);
            ExpectWellFormed(region);
            ExpectDirections(region);
            ExpectNoCrossings(region);
        }
    }
}

TEST(ClipCorpus, FindsTheAreasOfReferenceCases) {
#ifndef TRAMMEL_CLIP_CORPUS
    GTEST_SKIP() << "TRAMMEL_CLIP_CORPUS was not set when this test was compiled";
#else
    std::string const path = TRAMMEL_CLIP_CORPUS;
    if (!std::ifstream(path)) {
        GTEST_SKIP() << "no file of reference cases at '" << path << "'";
    }
    std::string message;
    std::vector<plain::ReferenceCase> const cases = plain::ReadReferenceCases(path, message);
    ASSERT_EQ(message, "");
    ASSERT_GT(cases.size(), 0U);
    int compared = 0;
    int equal = 0;
    int listedAlike = 0;
    for (plain::ReferenceCase const& c : cases) {
        Box box;
        box.Include(c.a);
        box.Include(c.b);
        for (std::size_t k = 0; k < 4; ++k) {
            SCOPED_TRACE(c.group + " " + c.name + ": " + kOperationNames[k]);
            plain::ReferenceResult const& reference = c.results[k];
            Region const region = Clip(kOperations[k], c.a, c.b);
            ExpectArea(region, reference.exactArea, c.results[3].exactArea, c.a, c.b);
            ExpectWellFormed(region);

            // How a result is listed is comparable where there is one way to do it and the
            // reference is right.
            if (!reference.listed || kOperations[k] == GPC_XOR || !box.HasArea() ||
                !(reference.regionError <= kAreaTolerance)) {
                continue;
            }
            double const toleranceX = kAreaTolerance * (box.highX - box.lowX);
            double const toleranceY = kAreaTolerance * (box.highY - box.lowY);
            if (!IsSimple(reference.region, toleranceX, toleranceY)) {
                continue;
            }
            ++compared;
            if (SameContours(region, reference.region, toleranceX, toleranceY)) {
                ++equal;
                bool alike = true;
                for (std::size_t i = 0; i < region.contours.size(); ++i) {
                    alike = alike && plain::Same(region.contours[i], reference.region.contours[i],
                                                 toleranceX, toleranceY);
                }
                listedAlike += alike ? 1 : 0;
            }
        }
    }
    std::printf("%zu cases; of %d simple results %d have the reference's contours, %d of them in "
                "its order\n",
                cases.size(), compared, equal, listedAlike);
    EXPECT_GE(equal, compared * 95 / 100);
    // First vertices and the order of the contours follow its conventions without exception.
    EXPECT_EQ(listedAlike, equal);
#endif
}

TEST(ClipCorpus, KnowsTheAreasOfKnownFigures) {
    auto const at = [](std::initializer_list<std::pair<int, int>> points) {
        Contour contour;
        for (auto const& [x, y] : points) {
            contour.push_back(plain::GridVertex(x, y));
        }
        return contour;
    };
    std::array<double, 4> const squares = plain::ExactAreas({plain::GridRectangle(0, 0, 10, 10)},
                                                            {plain::GridRectangle(5, 5, 15, 15)});
    EXPECT_EQ(squares, (std::array<double, 4>{75, 25, 150, 175}));
    // A bow tie, and twice the same contour, which is nothing.
    std::array<double, 4> const bowTie =
        plain::ExactAreas({at({{0, 0}, {10, 10}, {10, 0}, {0, 10}})}, {});
    EXPECT_EQ(bowTie, (std::array<double, 4>{50, 0, 50, 50}));
    Contour const triangle = at({{0, 0}, {7, 3}, {2, 9}});
    EXPECT_EQ(plain::ExactAreas({triangle, triangle}, {}), (std::array<double, 4>{0, 0, 0, 0}));
    EXPECT_EQ(plain::ExactAreas({triangle}, {triangle}), (std::array<double, 4>{0, 28.5, 0, 28.5}));
    // Two triangles that cross in (10/3, 10/3): twice the common area is 100 / 3.
    std::array<double, 4> const crossing =
        plain::ExactAreas({at({{0, 0}, {10, 0}, {0, 5}})}, {at({{0, 0}, {5, 0}, {0, 10}})});
    EXPECT_DOUBLE_EQ(crossing[1], 50.0 / 3);
}

} // namespace
} // namespace clip_test

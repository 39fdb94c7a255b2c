// SPDX-License-Identifier: MIT

// The clipper against a file of reference cases that lies outside of the repository, because parts
// of it are other people's data. Where that file is missing, this one is not compiled.
#include "ClipChecks.h"

#include "gpc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

namespace clip_test {
namespace {

using plain::Box;
using plain::Clip;
using plain::kOperationNames;
using plain::kOperations;
using plain::Normalised;

/// Compares the areas by flags and by the even-odd rule with the exact one. The tolerance is the
/// sum of
/// - kAreaTolerance of the union, as the file's areas have an error of their own,
/// - the change of the area when all vertices of the operands move by a unit in the last place, as
///   rounding moves the ends of edges.
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

/// True when two results list the same contours with the same flags, to within a tolerance. The
/// order of the contours and their first vertices do not matter.
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

/// True when no vertex occurs twice. Nothing touches then, and there is one way to list contours.
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

TEST(ClipReference, HasTheAreasAndListingOfReferenceCases) {
    std::string message;
    std::vector<plain::ReferenceCase> const cases =
        plain::ReadReferenceCases(TRAMMEL_CLIP_CORPUS, message);
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
}

} // namespace
} // namespace clip_test

// SPDX-License-Identifier: MIT

// The clipper against stored figures: areas, counts of contours and points inside that were
// computed exactly (ClipExact_test.cpp proves them).
#include "ClipChecks.h"

#include "gpc.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace clip_test {
namespace {

using plain::CaseFigures;
using plain::ClipCase;
using plain::kOperationNames;
using plain::kOperations;
using plain::Measure;

/// Calls `check` with each case of the corpus and its figures.
void ForCorpus(std::function<void(ClipCase const&, CaseFigures const&)> const& check) {
    std::string message;
    std::vector<CaseFigures> const figures =
        plain::ReadFigures(TRAMMEL_TEST_DATA_DIR "/clip_corpus.txt", message);
    ASSERT_EQ(message, "");
    std::vector<ClipCase> const cases = plain::MakeCorpus();
    ASSERT_EQ(cases.size(), figures.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(cases[i].name);
        ASSERT_EQ(cases[i].name, figures[i].name);
        check(cases[i], figures[i]);
    }
}

/// An area computed in doubles, and a bound of its error.
struct BoundedArea {
    double value = 0;
    double error = 0;
};

/// The area that the flags of a result tell. Each term of the sum is rounded five times at most,
/// and n terms take n additions; with terms t the error is below (n + 5) 2^-53 sum |t|.
BoundedArea AreaOf(Region const& region) {
    BoundedArea area;
    double terms = 0;
    double sizes = 0;
    for (std::size_t i = 0; i < region.contours.size(); ++i) {
        Contour const& contour = region.contours[i];
        Vertex const o = contour[0];
        double twice = 0;
        for (std::size_t k = 0; k < contour.size(); ++k) {
            Vertex const p = contour[k];
            Vertex const q = contour[k + 1 == contour.size() ? 0 : k + 1];
            double const first = (p.x - o.x) * (q.y - o.y);
            double const second = (p.y - o.y) * (q.x - o.x);
            twice += first - second;
            sizes += std::fabs(first) + std::fabs(second);
            terms += 1;
        }
        area.value += (region.holes[i] != 0 ? -0.5 : 0.5) * std::fabs(twice);
        terms += 1;
    }
    area.error = (terms + 5) * 0x1p-53 * sizes;
    return area;
}

TEST(ClipCorpus, HasTheOperandsThatItsFiguresStandFor) {
    std::size_t settled = 0;
    std::size_t samples = 0;
    ForCorpus([&](ClipCase const& c, CaseFigures const& figures) {
        EXPECT_EQ(plain::Fingerprint(c), figures.fingerprint);
        settled += figures.settled ? 1 : 0;
        for (char const sample : figures.samples) {
            samples += sample >= '0' && sample <= '3' ? 1 : 0;
        }
    });
    // Most cases compare all that there is to compare.
    EXPECT_GE(settled, 600U);
    EXPECT_GE(samples, 14000U);
}

TEST(ClipCorpus, HasTheExactAreas) {
    ForCorpus([](ClipCase const& c, CaseFigures const& figures) {
        Measure const measure(c);
        double const tolerance = plain::RegionTolerance(c, measure);
        for (std::size_t k = 0; k < 4; ++k) {
            Region region = plain::Clip(kOperations[k], c.a, c.b);
            region.contours = measure.Scaled(region.contours);
            BoundedArea const area = AreaOf(region);
            EXPECT_NEAR(area.value, figures.results[k].area, tolerance + area.error)
                << kOperationNames[k];
        }
    });
}

TEST(ClipCorpus, HasTheContoursAndHolesOfTheExactResults) {
    ForCorpus([](ClipCase const& c, CaseFigures const& figures) {
        for (std::size_t k = 0; figures.settled && k < 4; ++k) {
            Region const region = plain::Clip(kOperations[k], c.a, c.b);
            int holes = 0;
            for (int const hole : region.holes) {
                holes += hole;
            }
            EXPECT_EQ(static_cast<int>(region.contours.size()), figures.results[k].contours)
                << kOperationNames[k];
            EXPECT_EQ(holes, figures.results[k].holes) << kOperationNames[k];
        }
    });
}

TEST(ClipCorpus, CoversThePointsOfTheExactResults) {
    ForCorpus([](ClipCase const& c, CaseFigures const& figures) {
        std::vector<Vertex> const points = plain::SamplePoints(c);
        if (points.empty()) {
            EXPECT_EQ(figures.samples, "none");
            return;
        }
        ASSERT_EQ(points.size(), figures.samples.size());
        for (std::size_t k = 0; k < 4; ++k) {
            Region const region = plain::Clip(kOperations[k], c.a, c.b);
            for (std::size_t i = 0; i < points.size(); ++i) {
                if (figures.samples[i] != '-') {
                    int const set = figures.samples[i] - '0';
                    EXPECT_EQ(plain::Inside(region.contours, points[i]),
                              plain::Combine(kOperations[k], (set & 1) != 0, (set & 2) != 0))
                        << kOperationNames[k] << " at point " << i;
                }
            }
        }
    });
}

TEST(ClipCorpus, GivesWellFormedContours) {
    ForCorpus([](ClipCase const& c, CaseFigures const&) {
        for (gpc_op const operation : kOperations) {
            ExpectWellFormed(plain::Clip(operation, c.a, c.b));
        }
    });
}

TEST(ClipCorpus, GivesContoursThatNeverCrossOnIntegerGrids) {
    for (ClipCase const& c : plain::MakeGridCases()) {
        for (std::size_t k = 0; k < 4; ++k) {
            SCOPED_TRACE(c.name + ": " + kOperationNames[k]);
            Region const region = plain::Clip(kOperations[k], c.a, c.b);
            ExpectDirections(region);
            ExpectNoCrossings(region);
        }
    }
}

} // namespace
} // namespace clip_test

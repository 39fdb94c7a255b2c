// SPDX-License-Identifier: MIT

// The clipper and its stored figures against the exact arrangements of CGAL, where that is
// installed.
#include "ClipChecks.h"

#ifdef TRAMMEL_TEST_CGAL
#include "ExactJudge.h"
#endif

#include "gpc.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace clip_test {
namespace {

#ifdef TRAMMEL_TEST_CGAL

using plain::ClipCase;
using plain::kOperationNames;
using plain::kOperations;

/// Expects that no more area is wrong than RegionTolerance() says.
void ExpectRegionsAreRight(ClipCase const& c) {
    SCOPED_TRACE(c.name);
    std::array<Region, 4> regions;
    for (std::size_t k = 0; k < 4; ++k) {
        regions[k] = plain::Clip(kOperations[k], c.a, c.b);
    }
    double const tolerance = plain::RegionTolerance(c, plain::Measure(c));
    std::array<double, 4> const errors = RegionErrors(c, regions);
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_LE(errors[k], tolerance) << kOperationNames[k];
    }
}

// With a file's name in TRAMMEL_CLIP_FIGURES, this writes the figures there.
TEST(ClipExact, ProvesTheFiguresOfTheCorpus) {
    std::string message;
    std::vector<plain::CaseFigures> const stored =
        plain::ReadFigures(TRAMMEL_TEST_DATA_DIR "/clip_corpus.txt", message);
    char const* const path = std::getenv("TRAMMEL_CLIP_FIGURES");
    std::ofstream written(path != nullptr ? path : "");
    std::vector<ClipCase> const cases = plain::MakeCorpus();
    EXPECT_EQ(message, "");
    EXPECT_EQ(cases.size(), stored.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        plain::CaseFigures const figures = FiguresOf(cases[i]);
        written << plain::ToLine(figures) << '\n';
        if (i < stored.size()) {
            EXPECT_EQ(plain::ToLine(figures), plain::ToLine(stored[i]));
        }
    }
}

TEST(ClipExact, FindsTheRegionsOfTheCorpus) {
    std::vector<ClipCase> const cases = plain::MakeCorpus();
    for (std::size_t i = 0; i < cases.size(); i += 7) {
        ExpectRegionsAreRight(cases[i]);
    }
}

TEST(ClipExact, FindsTheRegionsOfRandomPolygons) {
    Dice dice(4711);
    for (int round = 0; round < 20; ++round) {
        ClipCase c{"round " + std::to_string(round), {}, {}};
        c.a = plain::RandomPolygon(dice, 12);
        c.b = plain::RandomPolygon(dice, 12);
        ExpectRegionsAreRight(c);
    }
}

#ifdef TRAMMEL_CLIP_CORPUS // the second corpus, outside of the repository
TEST(ClipExact, FindsTheRegionsOfReferenceCases) {
    std::string message;
    std::vector<plain::ReferenceCase> const cases =
        plain::ReadReferenceCases(TRAMMEL_CLIP_CORPUS, message);
    ASSERT_EQ(message, "");
    std::size_t compared = 0;
    for (std::size_t i = 0; i < cases.size(); i += 7) {
        std::size_t vertices = 0;
        for (Polygon const* const operand : {&cases[i].a, &cases[i].b}) {
            for (Contour const& contour : *operand) {
                vertices += contour.size();
            }
        }
        if (vertices <= 100) {
            ExpectRegionsAreRight({cases[i].group + " " + cases[i].name, cases[i].a, cases[i].b});
            ++compared;
        }
    }
    EXPECT_GT(compared, 50U);
}
#endif

#else

TEST(ClipExact, ProvesTheFiguresOfTheCorpus) {
    GTEST_SKIP() << "CGAL was not found when this test was compiled";
}

#endif

} // namespace
} // namespace clip_test

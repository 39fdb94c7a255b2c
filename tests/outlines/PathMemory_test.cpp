// SPDX-License-Identifier: MIT

// Paths when memory runs out in the midst of PathBuilding and PathStructure.

#include "CMatrix3x3.h"
#include "CPath.h"
#include "PathBuilding.h"
#include "PathStructure.h"
#include "ShortMemory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <new>
#include <vector>

namespace {

using trammel_test::ShortMemory;

typedef TPoint<double> Pt;

/// A path whose vectors are full, so that every addition needs memory.
CPath Full() {
    CPath path;
    path.MoveTo(Pt(1, 1)).LineTo(Pt(4, 0)).CurveTo(Pt(5, 1), Pt(5, 2), Pt(4, 3));
    path.mCtls.shrink_to_fit();
    path.mPts.shrink_to_fit();
    return path;
}

TEST(PathMemory, PathIsAsBeforeWhenMemoryIsShort) {
    CPath more;
    for (int i = 0; i < 100; ++i) {
        more.MoveTo(Pt(i, 1)).LineTo(Pt(i, 2)).ClosePath();
    }
    std::vector<std::function<void(CPath&)>> const additions = {
        [](CPath& path) { trammel::AddCurve(path, Pt(1, 2), Pt(3, 4), Pt(4, 3)); },
        [](CPath& path) { trammel::QuadTo(path, Pt(1, 2), Pt(4, 3)); },
        [](CPath& path) { trammel::SmoothCurveTo(path, Pt(1, 2), Pt(9, 9)); },
        [](CPath& path) { trammel::SmoothQuadTo(path, Pt(9, 9)); },
        [](CPath& path) { trammel::ArcTo(path, 5, 6, 1, true, true, Pt(9, 9), 1e-9); },
        [](CPath& path) {
            trammel::AddArc(path, trammel::EllipticalArc{Pt(3, 3), 5, 6, 1, 1, 5}, 1e-9);
        },
        [](CPath& path) { trammel::LineBy(path, Pt(1, 2)); },
        [&](CPath& path) { trammel::AppendSubpaths(path, more); },
        [](CPath& path) { trammel::AppendSubpaths(path, path); },
    };
    for (std::size_t i = 0; i < additions.size(); ++i) {
        int failures = 0;
        bool done = false;
        for (long allocations = 0; !done && allocations < 50; ++allocations) {
            CPath path = Full();
            try {
                ShortMemory const memory(allocations);
                additions[i](path);
                done = true;
            } catch (std::bad_alloc const&) {
                ++failures;
                EXPECT_TRUE(trammel::Equal(path, Full())) << i << " " << allocations;
                EXPECT_EQ(path.CurrentPoint(), Full().CurrentPoint());
                EXPECT_EQ(path.Bounds(), Full().Bounds());
                EXPECT_TRUE(path.mOpen);
            }
        }
        EXPECT_TRUE(done) << i;
        EXPECT_GT(failures, 0) << i;
    }
}

TEST(PathMemory, SetPointNeedsNone) {
    CPath path = Full();
    ShortMemory const memory(0);
    trammel::SetPoint(path, 1, Pt(7, 7));
    EXPECT_EQ(path.mPts[1], Pt(7, 7));
}

} // namespace

// SPDX-License-Identifier: MIT

#include "CGPathBuilder.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using trammel::BuildClosedPath;
using trammel::BuildOpenPath;
using trammel::BuildPath;
using trammel_test::kInf;
using trammel_test::kNaN;

typedef TPoint<double> Pt;
typedef std::vector<Pt> Points;

/// Returns the elements as "M 1,2 L 3,4 Z"; nine digits tell single precision numbers apart.
std::string Elements(CGPathRef path) {
    struct Writer {
        static void Write(void* text, CGPathElement const* element) {
            std::string& out = *static_cast<std::string*>(text);
            int const counts[] = {1, 1, 2, 3, 0};
            out += out.empty() ? "" : " ";
            out += "MLQCZ"[element->type];
            for (int i = 0; i < counts[element->type]; ++i) {
                char point[64];
                std::snprintf(point, sizeof point, " %.9g,%.9g",
                              static_cast<double>(element->points[i].x),
                              static_cast<double>(element->points[i].y));
                out += point;
            }
        }
    };
    std::string text;
    CGPathApply(path, &text, Writer::Write);
    return text;
}

class PathBuilder : public trammel_test::WithoutLeaks {
protected:
    /// Returns the elements that `build` makes of the points.
    static std::string Built(CGPath* (*build)(CFPolygonRef), Points const& points,
                             bool closed = false) {
        CFPolygonRef ref;
        ref.CFPolygonCreate(points).SetClosed(closed);
        CGPath* const path = build(ref);
        EXPECT_NE(path, nullptr);
        EXPECT_EQ(CGPathGetRetainCount(path), 1) << "one reference, the caller's";
        std::string const text = Elements(path);
        CGPathRelease(path);
        EXPECT_EQ(ref.LastIndex() + 1, static_cast<long>(points.size()));
        ref.Dispose();
        return text;
    }
};

TEST_F(PathBuilder, DrawsFromPointToPoint) {
    struct Row {
        char const* name;
        Points points;
        char const* open;
        char const* closed;
    };
    for (Row const& row : {
             Row{"triangle",
                 {{1, 2}, {3, 4.5}, {-5, 6}},
                 "M 1,2 L 3,4.5 L -5,6",
                 "M 1,2 L 3,4.5 L -5,6 Z"},
             Row{"first point repeated",
                 {{1, 2}, {3, 4}, {5, 6}, {1, 2}},
                 "M 1,2 L 3,4 L 5,6 L 1,2",
                 "M 1,2 L 3,4 L 5,6 Z"},
             Row{"repeated twice: one of them is a point",
                 {{1, 2}, {3, 4}, {1, 2}, {1, 2}},
                 "M 1,2 L 3,4 L 1,2 L 1,2",
                 "M 1,2 L 3,4 L 1,2 Z"},
             Row{"repeated but for the last bit",
                 {{1, 2}, {3, 4}, {1, 2.0000000000000004}},
                 "M 1,2 L 3,4 L 1,2",
                 "M 1,2 L 3,4 L 1,2 Z"},
             Row{"two points", {{1, 2}, {3, 4}}, "M 1,2 L 3,4", "M 1,2 L 3,4 Z"},
             Row{"two equal points", {{1, 2}, {1, 2}}, "M 1,2 L 1,2", "M 1,2 Z"},
             Row{"one point", {{1, 2}}, "M 1,2", "M 1,2 Z"},
             Row{"the origin", {{0, 0}}, "M 0,0", "M 0,0 Z"},
             Row{"no point", {}, "", ""},
         }) {
        EXPECT_EQ(Built(BuildOpenPath, row.points), row.open) << row.name;
        EXPECT_EQ(Built(BuildOpenPath, row.points, true), row.open) << row.name;
        EXPECT_EQ(Built(BuildClosedPath, row.points), row.closed) << row.name;
        EXPECT_EQ(Built(BuildClosedPath, row.points, true), row.closed) << row.name;
        EXPECT_EQ(Built(BuildPath, row.points), row.open) << row.name << ", flag off";
        EXPECT_EQ(Built(BuildPath, row.points, true), row.closed) << row.name << ", flag on";
    }
}

TEST_F(PathBuilder, RoundsToSinglePrecision) {
    EXPECT_EQ(Built(BuildOpenPath, {{0.1, 16777217.0}, {1e-60, -0.0}}),
              "M 0.100000001,16777216 L 0,-0");
    double const largest = static_cast<double>(FLT_MAX);
    EXPECT_EQ(Built(BuildClosedPath, {{largest, -largest}, {1, 1}}),
              "M 3.40282347e+38,-3.40282347e+38 L 1,1 Z");
}

TEST_F(PathBuilder, LeavesAGapAroundWhatIsNoNumber) {
    for (double const bad : {kNaN, kInf, -kInf, 3.5e38, -3.5e38, 1e308}) {
        for (Pt const& b : {Pt(bad, 1), Pt(1, bad), Pt(bad, bad)}) {
            struct Row {
                char const* name;
                Points points;
                char const* open;
                char const* closed;
            };
            for (Row const& row : {
                     Row{"the first", {b, {3, 3}, {4, 4}}, "M 3,3 L 4,4", "M 3,3 L 4,4"},
                     Row{"one between",
                         {{1, 1}, {2, 2}, b, {4, 4}, {5, 5}},
                         "M 1,1 L 2,2 M 4,4 L 5,5",
                         "M 1,1 L 2,2 M 4,4 L 5,5 L 1,1"},
                     Row{"the last", {{1, 1}, {2, 2}, b}, "M 1,1 L 2,2", "M 1,1 L 2,2"},
                     Row{"every other one",
                         {{1, 1}, b, {3, 3}, b, {5, 5}},
                         "M 1,1 M 3,3 M 5,5",
                         "M 1,1 M 3,3 M 5,5 L 1,1"},
                     Row{"a repeated first point",
                         {{1, 1}, b, {3, 3}, {1, 1}},
                         "M 1,1 M 3,3 L 1,1",
                         "M 1,1 M 3,3 L 1,1"},
                     Row{"first and last", {b, {2, 2}, b}, "M 2,2", "M 2,2"},
                     Row{"all", {b, b, b}, "", ""},
                     Row{"the only one", {b}, "", ""},
                 }) {
                EXPECT_EQ(Built(BuildOpenPath, row.points), row.open) << row.name << ", " << bad;
                EXPECT_EQ(Built(BuildClosedPath, row.points), row.closed)
                    << row.name << ", " << bad;
            }
        }
    }
}

TEST_F(PathBuilder, ANullReferenceHasNoPath) {
    EXPECT_EQ(BuildOpenPath(CFPolygonRef()), nullptr);
    EXPECT_EQ(BuildClosedPath(CFPolygonRef()), nullptr);
    EXPECT_EQ(BuildPath(CFPolygonRef()), nullptr);
}

TEST_F(PathBuilder, NoMemoryForThePathGivesNull) {
    CFPolygonRef ref;
    ref.CFPolygonCreate(Points{{1, 2}, {3, 4}});
    for (auto* const build : {BuildOpenPath, BuildClosedPath, BuildPath}) {
        trammel_detail::FailNextAllocations(1);
        EXPECT_EQ(build(ref), nullptr);
        EXPECT_FALSE(trammel_detail::TakeInjectedFailure());
    }
    ref.Dispose();
}

TEST_F(PathBuilder, DoesNotChangeThePolygon) {
    CFPolygonRef ref;
    ref.CFPolygonCreate(Points{{1, 2}, {3, 4}, {1, 2}}).SetClosed(true);
    Handle const h = reinterpret_cast<Handle>(ref.mRef);
    std::string const before(*h, static_cast<std::size_t>(GetHandleSize(h)));
    for (auto* const build : {BuildOpenPath, BuildClosedPath, BuildPath}) {
        CGPathRelease(build(ref));
        EXPECT_EQ(std::string(*h, static_cast<std::size_t>(GetHandleSize(h))), before);
    }
    ref.Dispose();
}

TEST_F(PathBuilder, ServesAsThePolygonsBuilder) {
    CFPolygonRef ref(true);
    ref.Append(Pt(1, 2)).Append(Pt(3, 4)).Append(Pt(5, 0));
    CFPolygonRef::SetBuilPathProc(BuildPath);
    CGPath* const open = ref.GetPath();
    EXPECT_EQ(Elements(open), "M 1,2 L 3,4 L 5,0");
    EXPECT_EQ(ref.GetPath(), open);
    ref.SetClosed(true);
    EXPECT_EQ(Elements(ref.GetPath()), "M 1,2 L 3,4 L 5,0 Z");
    ref.Insert(0, Pt(9, 9));
    EXPECT_EQ(Elements(ref.GetPath()), "M 1,2 L 3,4 L 5,0 Z") << "an insertion keeps the path";
    ref.Append(Pt(8, 8));
    EXPECT_EQ(Elements(ref.GetPath()), "M 9,9 L 1,2 L 3,4 L 5,0 L 8,8 Z");
    ref.SetSize(0);
    CGPath* const empty = ref.GetPath();
    EXPECT_NE(empty, nullptr);
    EXPECT_TRUE(CGPathIsEmpty(empty));
    EXPECT_EQ(ref.GetPath(), empty) << "an empty path is cached like any other";
    ref.Dispose();
    CFPolygonRef::SetBuilPathProc(nullptr);
}

} // namespace

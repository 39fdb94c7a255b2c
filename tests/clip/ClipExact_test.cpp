// SPDX-License-Identifier: MIT

// The clipper against the exact arrangements of CGAL, where that is installed.
#include "gpc.h"

#include "plain/ClipCorpus.h"
#include "plain/PlainClip.h"

#include <gtest/gtest.h>

#ifdef TRAMMEL_TEST_CGAL
#include <CGAL/Arr_curve_data_traits_2.h>
#include <CGAL/Arr_segment_traits_2.h>
#include <CGAL/Arrangement_2.h>
#include <CGAL/Exact_predicates_exact_constructions_kernel.h>
#endif

#include <cmath>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

using plain::Contour;
using plain::Polygon;
using plain::Region;
using plain::Vertex;

#ifdef TRAMMEL_TEST_CGAL

typedef CGAL::Exact_predicates_exact_constructions_kernel Kernel;
typedef CGAL::Arr_segment_traits_2<Kernel> Segments;

/// Where curves coincide: a set of operands, in which those that occur twice cancel.
struct Parity {
    unsigned operator()(unsigned a, unsigned b) const { return a ^ b; }
};
typedef CGAL::Arr_curve_data_traits_2<Segments, unsigned, Parity> Traits;
typedef CGAL::Arrangement_2<Traits> Arrangement;

void AddCurves(Polygon const& polygon, unsigned bit, std::vector<Traits::Curve_2>& curves) {
    for (Contour const& contour : polygon) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            Vertex const p = contour[i];
            Vertex const q = contour[i + 1 == contour.size() ? 0 : i + 1];
            if (p != q) {
                curves.push_back(Traits::Curve_2(
                    Segments::Curve_2(Kernel::Point_2(p.x, p.y), Kernel::Point_2(q.x, q.y)), bit));
            }
        }
    }
}

struct Comparison {
    double error;  ///< the area that is in the result or in the truth, but not in both
    double united; ///< the area of the union
};

/// Compares a result with the truth, exactly.
Comparison Compare(gpc_op operation, Polygon const& a, Polygon const& b, Region const& result) {
    std::vector<Traits::Curve_2> curves;
    AddCurves(a, 1, curves);
    AddCurves(b, 2, curves);
    AddCurves(result.contours, 4, curves);
    Arrangement arrangement;
    CGAL::insert(arrangement, curves.begin(), curves.end());

    // From the unbounded face, which is in nothing, over the edges to all others.
    std::map<Arrangement::Face_const_handle, unsigned> inside;
    std::vector<Arrangement::Face_const_handle> open{arrangement.unbounded_face()};
    inside[open.back()] = 0;
    Comparison comparison{0, 0};
    while (!open.empty()) {
        Arrangement::Face_const_handle const face = open.back();
        open.pop_back();
        unsigned const here = inside[face];
        Kernel::FT twice = 0;
        auto const walk = [&](Arrangement::Ccb_halfedge_const_circulator first) {
            auto edge = first;
            do {
                Kernel::Point_2 const& p = edge->source()->point();
                Kernel::Point_2 const& q = edge->target()->point();
                twice += p.x() * q.y() - p.y() * q.x();
                Arrangement::Face_const_handle const other = edge->twin()->face();
                if (inside.emplace(other, here ^ edge->curve().data()).second) {
                    open.push_back(other);
                }
            } while (++edge != first);
        };
        for (auto i = face->outer_ccbs_begin(); i != face->outer_ccbs_end(); ++i) {
            walk(*i);
        }
        for (auto i = face->inner_ccbs_begin(); i != face->inner_ccbs_end(); ++i) {
            walk(*i);
        }
        if (face->is_unbounded()) {
            continue;
        }
        bool const inA = (here & 1) != 0;
        bool const inB = (here & 2) != 0;
        double const area = CGAL::to_double(twice) / 2;
        if (plain::Combine(operation, inA, inB) != ((here & 4) != 0)) {
            comparison.error += area;
        }
        if (inA || inB) {
            comparison.united += area;
        }
    }
    return comparison;
}

void ExpectRight(Polygon const& a, Polygon const& b) {
    for (gpc_op const operation : plain::kOperations) {
        Region const region = plain::Clip(operation, a, b);
        Comparison const comparison = Compare(operation, a, b, region);
        // Rounding moves an edge over no more than its length times a unit in the last place.
        double const tolerance =
            1e-9 * comparison.united + plain::RoundingOfArea(a) + plain::RoundingOfArea(b);
        EXPECT_LE(comparison.error, tolerance) << plain::kOperationNames[operation];
    }
}

TEST(ClipExact, RegionsAreRight) {
    plain::Dice dice(4711);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Polygon a;
        Polygon b;
        for (Polygon* const operand : {&a, &b}) {
            for (int contours = dice.Int(1, 3); contours > 0; --contours) {
                Contour contour;
                for (int i = dice.Int(3, 12); i > 0; --i) {
                    double const x = dice.Unit();
                    contour.push_back({x, dice.Unit()});
                }
                operand->push_back(contour);
            }
        }
        ExpectRight(a, b);
    }
}

TEST(ClipExact, RegionsOfGridCasesAreRight) {
    std::vector<plain::GridCase> const cases = plain::MakeGridCases();
    for (std::size_t i = 0; i < cases.size(); i += 17) {
        SCOPED_TRACE(cases[i].name);
        ExpectRight(cases[i].a, cases[i].b);
    }
}

TEST(ClipExact, RegionsOfReferenceCasesAreRight) {
#ifndef TRAMMEL_CLIP_CORPUS
    GTEST_SKIP() << "TRAMMEL_CLIP_CORPUS was not set when this test was compiled";
#else
    std::string message;
    std::vector<plain::ReferenceCase> const cases =
        plain::ReadReferenceCases(TRAMMEL_CLIP_CORPUS, message);
    if (cases.empty()) {
        GTEST_SKIP() << "no reference cases: " << message;
    }
    std::size_t compared = 0;
    for (std::size_t i = 0; i < cases.size(); i += 7) {
        std::size_t vertices = 0;
        for (Polygon const* const operand : {&cases[i].a, &cases[i].b}) {
            for (Contour const& contour : *operand) {
                vertices += contour.size();
            }
        }
        if (vertices <= 100) {
            SCOPED_TRACE(cases[i].group + " " + cases[i].name);
            ExpectRight(cases[i].a, cases[i].b);
            ++compared;
        }
    }
    EXPECT_GT(compared, 50U);
#endif
}

#else

TEST(ClipExact, RegionsAreRight) {
    GTEST_SKIP() << "CGAL was not found when this test was compiled";
}

#endif

} // namespace

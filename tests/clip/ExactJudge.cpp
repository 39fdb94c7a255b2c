// SPDX-License-Identifier: MIT

#include "ExactJudge.h"

#include <CGAL/Arr_curve_data_traits_2.h>
#include <CGAL/Arr_segment_traits_2.h>
#include <CGAL/Arrangement_2.h>
#include <CGAL/Exact_predicates_exact_constructions_kernel.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace clip_test {

using plain::ClipCase;
using plain::Contour;
using plain::Measure;
using plain::Polygon;
using plain::Vertex;

namespace {

typedef CGAL::Exact_predicates_exact_constructions_kernel Kernel;
typedef Kernel::FT Number;
typedef CGAL::Arr_segment_traits_2<Kernel> Segments;

/// Joins the sets of polygons that an edge belongs to where edges coincide. Polygons that occur
/// twice cancel, as the even-odd rule has it.
struct Parity {
    unsigned operator()(unsigned a, unsigned b) const { return a ^ b; }
};
typedef CGAL::Arr_curve_data_traits_2<Segments, unsigned, Parity> Traits;
typedef CGAL::Arrangement_2<Traits> Arrangement;
typedef Arrangement::Face_const_handle Face;
typedef Arrangement::Halfedge_const_handle Edge;
typedef Arrangement::Vertex_const_handle Corner;

/// The bits of the operands in a set of polygons. Results have the bits above these.
unsigned const kA = 1;
unsigned const kB = 2;
unsigned const kFirstResult = 4;

void AddCurves(Polygon const& polygon, unsigned bit, std::vector<Traits::Curve_2>& curves) {
    for (Contour const& contour : polygon) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            Vertex const p = contour[i];
            Vertex const q = contour[i + 1 == contour.size() ? 0 : i + 1];
            if (p != q) {
                curves.emplace_back(
                    Segments::Curve_2(Kernel::Point_2(p.x, p.y), Kernel::Point_2(q.x, q.y)), bit);
            }
        }
    }
}

/// Twice the area that an edge spans with the origin.
Number Cross(Edge edge) {
    Kernel::Point_2 const& p = edge->source()->point();
    Kernel::Point_2 const& q = edge->target()->point();
    return p.x() * q.y() - p.y() * q.x();
}

/// Calls `visit` for all edges around a face.
template <class Visit> void ForEdges(Face face, Visit&& visit) {
    auto const walk = [&](Arrangement::Ccb_halfedge_const_circulator first) {
        auto edge = first;
        do {
            visit(edge);
        } while (++edge != first);
    };
    for (auto i = face->outer_ccbs_begin(); i != face->outer_ccbs_end(); ++i) {
        walk(*i);
    }
    for (auto i = face->inner_ccbs_begin(); i != face->inner_ccbs_end(); ++i) {
        walk(*i);
    }
}

/// The plane divided by all edges, with the set of polygons that each face is inside.
struct Plane {
    Arrangement arrangement;
    std::map<Face, unsigned> inside;

    explicit Plane(std::vector<Traits::Curve_2> const& curves) {
        CGAL::insert(arrangement, curves.begin(), curves.end());
        // From the unbounded face, which is in nothing, over the edges to all others.
        std::vector<Face> open{Face(arrangement.unbounded_face())};
        inside[open.back()] = 0;
        while (!open.empty()) {
            Face const face = open.back();
            open.pop_back();
            unsigned const here = inside[face];
            ForEdges(face, [&](Edge edge) {
                Face const other = edge->twin()->face();
                if (inside.emplace(other, here ^ edge->curve().data()).second) {
                    open.push_back(other);
                }
            });
        }
    }
    bool IsIn(Face face, std::size_t operation) const {
        unsigned const set = inside.at(face);
        return plain::Combine(plain::kOperations[operation], (set & kA) != 0, (set & kB) != 0);
    }
};

Number TwiceArea(Face face) {
    Number twice = 0;
    ForEdges(face, [&](Edge edge) { twice += Cross(edge); });
    return twice;
}

/// The double nearest to an exact number.
double Nearest(Number const& number) {
    // Of the rational number itself: of a lazy one, which has intervals, it would be a rough guess.
    double const near = CGAL::to_double(CGAL::exact(number));
    double best = near;
    for (double const limit : {-1.0, 1.0}) {
        double const next = std::nextafter(near, limit * std::numeric_limits<double>::infinity());
        if (CGAL::abs(number - Number(next)) < CGAL::abs(number - Number(best))) {
            best = next;
        }
    }
    return best;
}

/// Counts the simple contours of a closed walk, and the holes among them.
void CountContours(std::vector<Edge> const& walk, plain::ResultFigures& figures) {
    std::vector<Edge> path;
    std::map<Corner, std::size_t> at;
    for (Edge const edge : walk) {
        at[edge->source()] = path.size();
        path.push_back(edge);
        auto const back = at.find(edge->target());
        if (back == at.end()) {
            continue;
        }
        std::size_t const begin = back->second;
        Number twice = 0;
        for (std::size_t i = begin; i < path.size(); ++i) {
            twice += Cross(path[i]);
            at.erase(path[i]->source());
        }
        path.resize(begin);
        ++figures.contours;
        figures.holes += twice < 0 ? 1 : 0;
    }
}

plain::ResultFigures ResultOf(Plane const& plane, std::size_t operation) {
    plain::ResultFigures figures;
    std::set<Edge> done;
    Number twice = 0;
    for (auto i = plane.arrangement.halfedges_begin(); i != plane.arrangement.halfedges_end();
         ++i) {
        auto const isBoundary = [&](Edge edge) {
            return plane.IsIn(edge->face(), operation) &&
                   !plane.IsIn(edge->twin()->face(), operation);
        };
        std::vector<Edge> walk;
        Edge edge = i;
        while (isBoundary(edge) && done.insert(edge).second) {
            walk.push_back(edge);
            twice += Cross(edge);
            edge = edge->next();
            while (!isBoundary(edge)) {
                edge = edge->twin()->next();
            }
        }
        CountContours(walk, figures);
    }
    figures.area = Nearest(twice / 2);
    return figures;
}

/// True when no vertex of the arrangement is near an edge that does not end in it.
///
/// If each vertex moves by at most d, a vertex can get across an edge only where the two are no
/// further apart than 2 d. The clipper's d is at most two units on each axis; a distance of 16
/// units leaves room for the rounding of this test, too.
bool IsSettled(Arrangement const& arrangement, Measure const& measure) {
    double const unit = 16 * std::max(measure.unitX, measure.unitY);
    auto const vertex = [](Corner corner) {
        return Vertex{CGAL::to_double(corner->point().x()), CGAL::to_double(corner->point().y())};
    };
    std::vector<std::pair<Corner, Vertex>> corners;
    for (auto i = arrangement.vertices_begin(); i != arrangement.vertices_end(); ++i) {
        corners.emplace_back(i, vertex(i));
    }
    for (auto i = arrangement.edges_begin(); i != arrangement.edges_end(); ++i) {
        Vertex const a = vertex(i->source());
        Vertex const b = vertex(i->target());
        double const dx = b.x - a.x;
        double const dy = b.y - a.y;
        for (auto const& [corner, p] : corners) {
            if (corner == Corner(i->source()) || corner == Corner(i->target())) {
                continue;
            }
            double const along = dx * (p.x - a.x) + dy * (p.y - a.y);
            double const t = std::clamp(along / (dx * dx + dy * dy), 0.0, 1.0);
            if (!(std::hypot(a.x + t * dx - p.x, a.y + t * dy - p.y) > unit)) {
                return false;
            }
        }
    }
    return true;
}

bool IsInside(Polygon const& polygon, Vertex v) {
    Kernel::Point_2 const point(v.x, v.y);
    bool inside = false;
    for (Contour const& contour : polygon) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            Vertex const a = contour[i];
            Vertex const b = contour[i + 1 == contour.size() ? 0 : i + 1];
            if ((a.y > v.y) != (b.y > v.y)) {
                bool const isLeft =
                    CGAL::left_turn(Kernel::Point_2(a.x, a.y), Kernel::Point_2(b.x, b.y), point);
                inside ^= isLeft == (b.y > a.y);
            }
        }
    }
    return inside;
}

} // namespace

plain::CaseFigures FiguresOf(ClipCase const& c) {
    Measure const measure(c);
    std::vector<Traits::Curve_2> curves;
    AddCurves(measure.Scaled(c.a), kA, curves);
    AddCurves(measure.Scaled(c.b), kB, curves);
    Plane const plane(curves);
    plain::CaseFigures figures;
    figures.name = c.name;
    figures.fingerprint = plain::Fingerprint(c);
    figures.settled = IsSettled(plane.arrangement, measure);
    for (Vertex const& p : plain::SamplePoints(c)) {
        if (plain::IsNearALine(c, measure, p)) {
            figures.samples += '-';
        } else {
            int const set = (IsInside(c.a, p) ? 1 : 0) + (IsInside(c.b, p) ? 2 : 0);
            figures.samples += static_cast<char>('0' + set);
        }
    }
    if (figures.samples.empty()) {
        figures.samples = "none";
    }
    for (std::size_t k = 0; k < 4; ++k) {
        figures.results[k] = ResultOf(plane, k);
    }
    return figures;
}

std::array<double, 4> RegionErrors(ClipCase const& c, std::array<plain::Region, 4> const& regions) {
    Measure const measure(c);
    std::array<double, 4> errors{};
    for (std::size_t k = 0; k < 4; ++k) {
        std::vector<Traits::Curve_2> curves;
        AddCurves(measure.Scaled(c.a), kA, curves);
        AddCurves(measure.Scaled(c.b), kB, curves);
        AddCurves(measure.Scaled(regions[k].contours), kFirstResult, curves);
        Plane const plane(curves);
        for (auto const& [face, set] : plane.inside) {
            if (!face->is_unbounded() && plane.IsIn(face, k) != ((set & kFirstResult) != 0)) {
                errors[k] += CGAL::to_double(TwiceArea(face)) / 2;
            }
        }
    }
    return errors;
}

} // namespace clip_test

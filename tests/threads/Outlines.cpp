// SPDX-License-Identifier: MIT

// Calls of regions, and of operations on outlines.

#include "Objects.h"

#include <array>

namespace threads {

namespace {

using trammel::FillRule;

void AddMoments(trammel::AreaMoments const& moments, Digest& digest) {
    digest.Add(moments.area);
    digest.Add(moments.centroid);
    digest.Add(moments.hv);
}

void Regions(Objects const& shared, Digest& digest) {
    Pt const p(40, 40);
    digest.Add(trammel::WindingNumber(shared.path, p));
    digest.Add(trammel::WindingNumber(shared.polygon, p));
    digest.Add(trammel::WindingNumber(shared.handle, p));
    digest.Add(trammel::WindingNumber(shared.holed.outer, p));
    digest.Add(trammel::SignedArea(shared.path));
    digest.Add(trammel::SignedArea(shared.polygon));
    digest.Add(trammel::SignedArea(shared.handle));
    digest.Add(trammel::SignedArea(shared.holed.outer));
    digest.Add(trammel::ContourAreas(shared.path));
    AddMoments(trammel::MomentsOf(shared.path), digest);
    AddMoments(trammel::MomentsOf(shared.polygon), digest);
    AddMoments(trammel::MomentsOf(shared.handle), digest);
    AddMoments(trammel::MomentsOf(shared.holed.outer), digest);
    AddMoments(trammel::MomentsOf(shared.holed), digest);
    digest.Add(trammel::RegionArea(shared.path, FillRule::kNonZero, 0.01).area);
    digest.Add(trammel::Area(shared.holed));
    digest.Add(trammel::Bounds(shared.holed));
    digest.Add(trammel::Contains(shared.holed, p, FillRule::kEvenOdd));
    trammel::PolygonWithHoles own = shared.holed;
    trammel::OrientRings(own);
    digest.Add(own);
}

void Prepared(Objects const& shared, Digest& digest) {
    std::array<Pt, 3> const points = {Pt(3, 3), Pt(30, 30), Pt(60, 60)};
    std::array<bool, 3> inside{};
    std::array<int, 3> windings{};
    trammel::PreparedPolygon const& polygon = shared.prepared;
    digest.Add(polygon.Contains(points[1]));
    polygon.Contains(points.data(), points.size(), inside.data());
    digest.Add(inside[2]);
    digest.Add(static_cast<long>(polygon.MemorySize()));
    digest.Add(trammel::PreparedPolygon(shared.polygon).Contains(points[1]));
    digest.Add(trammel::PreparedPolygon(shared.handle).Contains(points[1]));
    trammel::PreparedOutline const& outline = shared.preparedOutline;
    digest.Add(outline.Contains(points[1], FillRule::kEvenOdd));
    outline.Contains(points.data(), points.size(), FillRule::kNonZero, inside.data());
    digest.Add(inside[2]);
    digest.Add(outline.WindingNumber(points[1]));
    outline.WindingNumbers(points.data(), points.size(), windings.data());
    digest.Add(windings[2]);
    digest.Add(static_cast<long>(outline.MemorySize()));
    digest.Add(trammel::PreparedOutline(shared.path).WindingNumber(points[1]));
    digest.Add(trammel::PreparedOutline(shared.polygon).WindingNumber(points[1]));
    digest.Add(trammel::PreparedOutline(shared.handle).WindingNumber(points[1]));
    digest.Add(trammel::PreparedOutline(shared.holed.outer).WindingNumber(points[1]));
}

void Meetings(Objects const& shared, Digest& digest) {
    using trammel::Intersections;
    CBezier const& curve = shared.curve;
    TLine<double> const& line = shared.line;
    CPath const& path = shared.path;
    digest.Add(Intersections(curve, curve * 0.7, 1e-6));
    digest.Add(Intersections(curve, line, 1e-6));
    digest.Add(Intersections(line, curve, 1e-6));
    digest.Add(Intersections(line, TLine<double>(Pt(0, 50), Pt(60, 0)), 1e-6));
    digest.Add(Intersections(path, shared.other, 1e-6));
    digest.Add(Intersections(path, curve, 1e-6));
    digest.Add(Intersections(curve, path, 1e-6));
    digest.Add(Intersections(path, line, 1e-6));
    digest.Add(Intersections(line, path, 1e-6));
    digest.Add(trammel::SelfIntersections(path, 1e-6));
    digest.Add(trammel::SelfIntersections(curve, 1e-6));
}

void Structure(Objects const& shared, Digest& digest) {
    CPath const& path = shared.path;
    for (trammel::Subpath const& subpath : trammel::Subpaths(path)) {
        digest.Add(trammel::PathOf(subpath));
        for (trammel::PathSegment const& segment : subpath) {
            digest.Add(segment.end);
        }
    }
    digest.Add(trammel::PathOf(shared.polygon));
    digest.Add(trammel::PathOf(shared.handle));
    digest.Add(trammel::PathOf(std::vector<Polygon>{shared.polygon}));
    digest.Add(trammel::PathOf(shared.holed));
    digest.Add(trammel::SplitSubpaths(path));
    digest.Add(trammel::Reversed(path));
    digest.Add(trammel::WithSubpathsClosed(path));
    digest.Add(trammel::WithSubpathsOpened(path, trammel::ClosingLine::kKeep));
    digest.Add(trammel::Transformed(path, CMatrix3x3().Scale(2)));
    digest.Add(static_cast<long>(trammel::FirstPointOf(path, 2)));
    digest.Add(trammel::Equal(path, shared.other));
    digest.Add(trammel::Equal(shared.polygon, shared.polygon));
}

void Shapes(Objects const&, Digest& digest) {
    digest.Add(trammel::CirclePath(Pt(5, 5), 4, 0.01));
    digest.Add(trammel::EllipsePath(Pt(5, 5), 4, 3, 0.2, 0.01));
    digest.Add(trammel::RoundedRectPath(Box(0, 0, 20, 30), 3, 4, 0.01));
    digest.Add(trammel::RoundedRectPath(Box(0, 0, 20, 30), trammel::CornerRadii(), 0.01));
    digest.Add(trammel::PolygonPath({Pt(0, 0), Pt(4, 4), Pt(0, 5)}));
    digest.Add(trammel::RegularPolygonPath(Pt(0, 0), 5, 7, 0.1));
    digest.Add(trammel::StarPath(Pt(0, 0), 5, 3, 5, 0.1));
}

void Outlines(Objects const& shared, Digest& digest) {
    CPath out;
    digest.Add(trammel::Boolean(kPolyXor, shared.path, FillRule::kNonZero, shared.other,
                                FillRule::kEvenOdd, 0.01, out));
    digest.Add(trammel::Union({shared.path, shared.other}, FillRule::kNonZero, 0.01, out));
    digest.Add(trammel::RemoveOverlap(shared.path, FillRule::kNonZero, 0.01, out));
    digest.Add(trammel::ClipOpen(shared.other, shared.path, FillRule::kNonZero, true, 0.01, out));
    digest.Add(out);
    digest.Add(shared.outlines.Merge({0}, out));
    digest.Add(out);
    digest.Add(static_cast<long>(
        trammel::OutlineArrangement({shared.path, shared.other}, 0.01).Faces().size()));
    trammel::StrokeStyle style;
    style.width = 3;
    digest.Add(trammel::Stroke(shared.path, style, 0.1, out));
    digest.Add(out);
    digest.Add(trammel::Offset(shared.path, FillRule::kNonZero, 2, trammel::StrokeJoin::kMiter, 4,
                               0.1, out));
    digest.Add(out);
    digest.Add(trammel::Simplify(shared.path, 1, out));
    digest.Add(out);
    digest.Add(trammel::Simplify(shared.path, 1, trammel::NewCrossings::kAvoid, out));
    digest.Add(out);
    std::vector<CPath> simple;
    digest.Add(trammel::SimplifyOutlines({shared.path, shared.path}, 1,
                                         trammel::NewCrossings::kAvoid, simple));
    for (CPath const& path : simple) {
        digest.Add(path);
    }
}

void PolygonOperations(Objects const& shared, Digest& digest) {
    using trammel::PolygonWithHoles;
    std::vector<Polygon> const a = {shared.polygon};
    std::vector<Polygon> const b = {Polygon(Box(20, 20, 60, 70))};
    digest.Add(trammel::Boolean(kPolyUnion, a, FillRule::kNonZero, b, FillRule::kNonZero));
    digest.Add(trammel::Union(a, FillRule::kNonZero));
    digest.Add(trammel::Union(std::vector<std::vector<Polygon>>{a, b}, FillRule::kNonZero));
    digest.Add(trammel::RemoveOverlap(a, FillRule::kNonZero));
    std::vector<PolygonWithHoles> const polygons = trammel::ToPolygons(b, FillRule::kNonZero);
    digest.Add(trammel::Boolean(kPolyDifference, polygons, {shared.holed}));
    digest.Add(trammel::Union(std::vector<PolygonWithHoles>{shared.holed}));
    digest.Add(shared.polygons.Merged({0}));
    digest.Add(trammel::WindingNumberOf(shared.polygons.Faces()[0], 0));
    digest.Add(static_cast<long>(
        trammel::PolygonArrangement(std::vector<std::vector<Polygon>>{a, b}).Faces().size()));
}

void Fewer(Objects const& shared, Digest& digest) {
    std::vector<Pt> const points(shared.polygon.begin(), shared.polygon.end());
    CPath out;
    digest.Add(trammel::FitCurves(points, 0.5, 0.6, out));
    trammel::CurveFitter fitter(0.5, 0.6);
    for (Pt const& p : points) {
        fitter.Add(p);
    }
    digest.Add(fitter.Tail());
    fitter.Finish();
    digest.Add(fitter.Finished());
    digest.Add(out);
    std::vector<trammel::Ring> rings;
    digest.Add(trammel::SimplifyRings({points}, 5, trammel::NewCrossings::kAvoid, rings));
    digest.Add(rings);
    std::vector<trammel::PolygonWithHoles> map;
    digest.Add(trammel::SimplifyMap({shared.holed}, 5, trammel::NewCrossings::kAllow, map));
    digest.Add(map);
}

} // namespace

std::vector<Calls> CallsOfOutlines() {
    return {
        {"regions", Regions},      {"prepared", Prepared},
        {"meetings", Meetings},    {"structure", Structure},
        {"shapes", Shapes},        {"outlines", Outlines},
        {"fewer elements", Fewer}, {"polygon operations", PolygonOperations},
    };
}

} // namespace threads

// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "AnyOutline.h"
#include "Moments.h"
#include "OutlineOperations.h"
#include "PolygonArrangement.h"
#include "PolygonOperations.h"
#include "SimplifyRings.h"
#include "outlines/OutlineJudge.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace fuzz {

namespace {

using trammel::ElementSource;
using trammel::FillRule;
using trammel::PathSegment;
using trammel::Segments;
using trammel_test::OutlineJudge;

typedef std::vector<ElementSource> Sources;

/// Nearer to an outline than this share of the size, the judge does not look.
constexpr double kFinest = 1e-8;

FillRule AnyRule(Input& in) { return in.Flag() ? FillRule::kEvenOdd : FillRule::kNonZero; }

/// Outlines, each with the judge of its region.
struct Operands {
    std::vector<CPath> paths;
    std::vector<OutlineJudge> judges;
    double size = 0.0;      ///< of all together
    double greatest = 0.0;  ///< the greatest coordinate
    double tolerance = 0.0; ///< to ask for

    Operands(Input& in, std::vector<CPath> const& outlines) : paths(outlines) {
        std::vector<Pt> all;
        for (CPath const& path : paths) {
            CPath const finite = FinitePart(path);
            judges.emplace_back(finite);
            all.insert(all.end(), finite.mPts.begin(), finite.mPts.end());
        }
        size = ExtentOf(all);
        for (Pt const& p : all) {
            greatest = std::max({greatest, std::abs(p.h), std::abs(p.v)});
        }
        tolerance = in.Flag() ? 0.0 : size * std::pow(10.0, -in.Int(2, 12));
    }
    /// Below the normal numbers, and where differences overflow, nothing can be judged.
    bool CanBeJudged() const { return size > 1e-290 && greatest < 1e300; }
    /// Points nearer to an outline are on either side.
    double Unsure(double kept) const {
        return std::max({1.001 * kept, kFinest * size, greatest * 0x1p-46});
    }
    bool IsNear(Pt const& p, double distance) const {
        return std::any_of(judges.begin(), judges.end(),
                           [&](OutlineJudge const& o) { return o.IsNear(p, distance); });
    }
};

Pt At(PathSegment const& s, double t) {
    double const u = 1.0 - t;
    return s.IsCurve() ? s.start * (u * u * u) + s.control1 * (3.0 * u * u * t) +
                             s.control2 * (3.0 * u * t * t) + s.end * (t * t * t)
                       : s.start * u + s.end * t;
}

double Apart(Pt const& p, Pt const& q) { return std::hypot(p.h - q.h, p.v - q.v); }

void CheckDistance(Operands const& operands, double kept) {
    Require(kept >= 0.0 && kept >= operands.tolerance * (operands.size > 0.0 ? 1.0 : 0.0),
            "the distance is the tolerance or more");
    // Far from the origin, coordinates are rounded more coarsely.
    double const most =
        std::max(operands.tolerance, operands.size * 0x1p-6) + operands.greatest * 0x1p-40;
    Require(!operands.CanBeJudged() || kept <= most, "the distance is small beside the size");
}

/// Contours close, and each element comes from its source.
void CheckElements(Operands const& operands, CPath const& out, Sources const& sources, double kept,
                   bool closed) {
    Require(sources.size() == out.mCtls.size(), "each element has a source");
    for (trammel::Subpath const& subpath : trammel::Subpaths(out)) {
        Require(subpath.BeginsWithMove(), "a contour begins with a move");
        if (closed) {
            Require(subpath.Closed(), "a contour is closed");
        }
    }
    std::vector<std::vector<PathSegment>> segments;
    for (CPath const& path : operands.paths) {
        segments.emplace_back();
        for (PathSegment const& s : Segments(path)) {
            segments.back().push_back(s);
        }
    }
    double const most = kept * 1.001 + (operands.size + operands.greatest) * 0x1p-45;
    for (PathSegment const& s : Segments(out)) {
        ElementSource const& source = sources[s.element];
        Require(std::isfinite(s.end.h) && std::isfinite(s.end.v), "a result is finite");
        if (source.operand == ElementSource::kNoSource) {
            Require(!s.IsCurve(), "what has no source is a line");
            continue;
        }
        Require(source.operand < segments.size(), "a source is an operand");
        if (source.element == ElementSource::kNoSource || !operands.CanBeJudged()) {
            continue;
        }
        Require(source.element < segments[source.operand].size(), "a source is an element");
        PathSegment const& whole = segments[source.operand][source.element];
        if (whole.kind == kPathClose) {
            continue; // a contour without a move ends elsewhere than its close
        }
        Require(whole.IsCurve() == s.IsCurve(), "a part of a curve is a curve");
        for (double const t : {0.0, 0.3, 0.5, 0.8, 1.0}) {
            Pt const off = At(s, t) - At(whole, source.from + (source.to - source.from) * t);
            Require(std::hypot(off.h, off.v) <= most, "an element is a part of its source");
        }
    }
}

template <class Wanted>
void CheckRegion(Operands const& operands, CPath const& out, double kept, Wanted&& wanted) {
    if (operands.CanBeJudged()) {
        Require(trammel_test::WrongPoints(operands.judges, OutlineJudge(out), operands.Unsure(kept),
                                          operands.size, wanted) == 0,
                "a region has the points that winding numbers tell");
    }
}

void Combine(Input& in) {
    FillRule const ruleA = AnyRule(in);
    FillRule const ruleB = AnyRule(in);
    auto const op = static_cast<TPolyOp>(in.Int(0, 3));
    CPath const a = DrawnOutline(in, 10);
    Operands const operands(in,
                            {a, in.Int(0, 7) == 0 ? trammel::Reversed(a) : DrawnOutline(in, 10)});
    CPath out;
    Sources sources;
    double const kept =
        trammel::Boolean(op, a, ruleA, operands.paths[1], ruleB, operands.tolerance, out, &sources);
    CheckDistance(operands, kept);
    CheckElements(operands, out, sources, kept, true);
    CheckRegion(operands, out, kept, [&](Pt const& p) {
        return trammel_test::Wants(op, operands.judges[0].Holds(p, ruleA),
                                   operands.judges[1].Holds(p, ruleB));
    });
}

void CleanUp(Input& in) {
    FillRule const rule = AnyRule(in);
    Operands const operands(in, {DrawnOutline(in, 16)});
    CPath out;
    Sources sources;
    double const kept =
        trammel::RemoveOverlap(operands.paths[0], rule, operands.tolerance, out, &sources);
    CheckDistance(operands, kept);
    CheckElements(operands, out, sources, kept, true);
    CheckRegion(operands, out, kept,
                [&](Pt const& p) { return operands.judges[0].Holds(p, rule); });
    // Once more it stays within the distances of both.
    CPath again;
    double const keptAgain = trammel::RemoveOverlap(out, rule, operands.tolerance, again);
    CheckRegion(operands, again, kept + keptAgain,
                [&](Pt const& p) { return operands.judges[0].Holds(p, rule); });
}

std::vector<CPath> SomeOutlines(Input& in) {
    std::vector<CPath> outlines;
    for (int i = in.Int(0, 5); i > 0; --i) {
        bool const again = !outlines.empty() && in.Int(0, 7) == 0;
        outlines.push_back(again ? outlines.back() : DrawnOutline(in, 6));
    }
    return outlines;
}

void Unite(Input& in) {
    FillRule const rule = AnyRule(in);
    Operands const operands(in, SomeOutlines(in));
    CPath out;
    Sources sources;
    double const kept = trammel::Union(operands.paths, rule, operands.tolerance, out, &sources);
    CheckDistance(operands, kept);
    CheckElements(operands, out, sources, kept, true);
    CheckRegion(operands, out, kept, [&](Pt const& p) {
        return std::any_of(operands.judges.begin(), operands.judges.end(),
                           [&](OutlineJudge const& o) { return o.Holds(p, rule); });
    });
}

void ClipLines(Input& in) {
    FillRule const rule = AnyRule(in);
    bool const inside = in.Flag();
    Operands const operands(in, {FinitePart(DrawnOutline(in, 8)), DrawnOutline(in, 8)});
    CPath const& lines = operands.paths[0];
    OutlineJudge const& region = operands.judges[1];
    CPath out;
    Sources sources;
    double const kept = trammel::ClipOpen(lines, operands.paths[1], rule, inside,
                                          operands.tolerance, out, &sources);
    CheckDistance(operands, kept);
    CheckElements(operands, out, sources, kept, false);
    if (!operands.CanBeJudged()) {
        return;
    }
    std::size_t number = 0;
    for (PathSegment const& s : Segments(lines)) {
        double const length =
            std::abs(s.control1.h - s.start.h) + std::abs(s.control1.v - s.start.v) +
            std::abs(s.control2.h - s.start.h) + std::abs(s.control2.v - s.start.v) +
            std::abs(s.end.h - s.start.h) + std::abs(s.end.v - s.start.v);
        for (int i = 0; i < 16 && length > 4.0 * operands.Unsure(kept); ++i) {
            double const t = (i + 0.4) / 16;
            Pt const p = At(s, t);
            if (region.IsNear(p, operands.Unsure(kept))) {
                continue;
            }
            // A stretch smaller than the distance may vanish. Its points move to where it was.
            bool moved = Apart(p, s.start) <= 1.001 * kept;
            std::ptrdiff_t holders = 0;
            for (ElementSource const& e : sources) {
                if (e.operand == 0 && e.element == number) {
                    holders += e.from <= t && t <= e.to ? 1 : 0;
                    Pt const nearest = At(s, std::min(std::max(t, e.from), e.to));
                    moved = moved || Apart(p, nearest) <= 1.001 * kept;
                }
            }
            bool const wanted = region.Holds(p, rule) == inside;
            Require(holders == (wanted ? 1 : 0) || (wanted && holders == 0 && moved),
                    "a point of a line is there exactly if it is asked for");
        }
        ++number;
    }
}

/// Each point that an operand winds around is in one face, which tells how often each of them does.
template <class Faces>
void CheckFaces(Operands const& operands, Faces const& faces,
                std::vector<OutlineJudge> const& judges, double unsure) {
    for (Pt const& p : trammel_test::SamplePoints(operands.judges, OutlineJudge(CPath()), unsure,
                                                  operands.size)) {
        std::vector<int> windings;
        for (OutlineJudge const& outline : operands.judges) {
            windings.push_back(outline.Winding(p));
        }
        bool right = true;
        int holders = 0;
        for (std::size_t k = 0; k < judges.size(); ++k) {
            if (judges[k].Holds(p, FillRule::kNonZero)) {
                ++holders;
                std::vector<int> told(windings.size(), 0);
                for (trammel::OperandWinding const& w : faces[k].windings) {
                    told[w.operand] = w.winding;
                }
                right = right && told == windings;
            }
        }
        bool const wound = windings != std::vector<int>(windings.size(), 0);
        right = right && (wound ? holders == 1 : holders <= 1);
        Require(right || operands.IsNear(p, unsure), "a point is in one face, with its windings");
    }
}

void Arrange(Input& in) {
    Operands const operands(in, SomeOutlines(in));
    trammel::OutlineArrangement const arrangement(operands.paths, operands.tolerance);
    double const kept = arrangement.Distance();
    CheckDistance(operands, kept);
    std::vector<OutlineJudge> faces;
    for (trammel::OutlineFace const& face : arrangement.Faces()) {
        CheckElements(operands, face.outline, face.sources, kept, true);
        faces.emplace_back(face.outline);
    }
    if (!operands.CanBeJudged()) {
        return;
    }
    CheckFaces(operands, arrangement.Faces(), faces, operands.Unsure(kept));
    std::vector<std::size_t> chosen;
    for (std::size_t k = 0; k < faces.size(); ++k) {
        if (in.Flag()) {
            chosen.push_back(k);
        }
    }
    CPath merged;
    double const keptMerged = arrangement.Merge(chosen, merged);
    CheckRegion(operands, merged, kept + keptMerged, [&](Pt const& p) {
        return std::any_of(chosen.begin(), chosen.end(),
                           [&](std::size_t k) { return faces[k].Holds(p, FillRule::kNonZero); });
    });
}

typedef std::vector<TPolygon<double>> RingList;
typedef std::vector<trammel::PolygonWithHoles> Regions;

RingList SomeRings(Input& in) {
    RingList rings;
    for (int i = in.Int(0, 4); i > 0; --i) {
        CPath const outline = DrawnOutline(in, 9);
        rings.emplace_back(outline.mPts);
        if (in.Flag()) {
            rings.back().Close();
        }
    }
    return rings;
}

CPath PathOf(Regions const& regions) {
    CPath path;
    for (trammel::PolygonWithHoles const& region : regions) {
        trammel::AppendSubpaths(path, trammel::PathOf(region));
    }
    return path;
}

/// Rings of a result are closed, and begin at their first vertices.
void CheckRings(RingList const& rings, double size) {
    for (TPolygon<double> const& ring : rings) {
        std::vector<Pt> const vertices(ring.begin(), ring.end());
        Require(ring.Closed() && vertices.size() >= 3, "a ring is closed");
        for (Pt const& p : vertices) {
            Require(std::isfinite(p.h) && std::isfinite(p.v), "a vertex is finite");
            Pt const& first = vertices.front();
            // Where differences are smaller than a step of the grid, they tell nothing.
            Require(first.v <= p.v + size * 0x1p-50, "a ring begins at its least vertex");
        }
    }
}

/// RingList with holes, and the rings that they were made of, have the same area.
void CheckAreas(Operands const& operands, RingList const& rings, Regions const& regions) {
    double ofRings = 0.0;
    double ofRegions = 0.0;
    for (TPolygon<double> const& ring : rings) {
        ofRings += trammel::SignedArea(ring);
    }
    for (trammel::PolygonWithHoles const& region : regions) {
        double const area = trammel::Area(region);
        std::size_t vertices = region.outer.size();
        double least = std::abs(trammel::SignedArea(region.outer)); // of all rings
        for (trammel::Ring const& hole : region.holes) {
            vertices += hole.size();
            least = std::min(least, std::abs(trammel::SignedArea(hole)));
        }
        // The bound of Moments.h, with the length of the rings that the vertices allow
        double const off =
            0x1p-46 * 2.0 * static_cast<double>(vertices) * operands.size * operands.size;
        Require(!(area < -off), "a polygon has no negative area");
        ofRegions += area;
        trammel::PolygonWithHoles turned = region;
        trammel::OrientRings(turned);
        Require(!(least > off) || (turned.outer == region.outer && turned.holes == region.holes),
                "rings run as their directions tell");
        Box const bounds = trammel::Bounds(region);
        for (trammel::Ring const& hole : region.holes) {
            for (Pt const& p : hole) {
                Require(p.h >= bounds.left && p.h <= bounds.right && p.v >= bounds.top &&
                            p.v <= bounds.bottom,
                        "a hole lies within the bounds");
            }
        }
    }
    double const most = (operands.size + operands.greatest * 0x1p-30) * operands.size * 1e-6;
    Require(!operands.CanBeJudged() || !(operands.size > 1e-100 && operands.size < 1e100) ||
                std::abs(ofRings - ofRegions) <= most,
            "polygons have the area of their rings");
}

void CombineRings(Input& in, RingList const& a, RingList const& b) {
    FillRule const ruleA = AnyRule(in);
    FillRule const ruleB = AnyRule(in);
    auto const op = static_cast<TPolyOp>(in.Int(0, 3));
    Operands const operands(in, {trammel::PathOf(a), trammel::PathOf(b)});
    auto const wanted = [&](Pt const& p) {
        return trammel_test::Wants(op, operands.judges[0].Holds(p, ruleA),
                                   operands.judges[1].Holds(p, ruleB));
    };
    RingList const rings = trammel::Boolean(op, a, ruleA, b, ruleB);
    CheckRings(rings, operands.size);
    CheckRegion(operands, trammel::PathOf(rings), 0.0, wanted);
    // The same by way of polygons with holes.
    Regions const regions =
        trammel::Boolean(op, trammel::ToPolygons(a, ruleA), trammel::ToPolygons(b, ruleB));
    CheckRegion(operands, PathOf(regions), 0.0, wanted);
    CheckAreas(operands, rings, regions);
}

void UniteRings(Input& in, RingList const& rings) {
    FillRule const rule = AnyRule(in);
    std::vector<CPath> paths;
    std::vector<RingList> each;
    Regions regions;
    for (TPolygon<double> const& ring : rings) {
        paths.push_back(trammel::PathOf(ring));
        each.push_back({ring});
        Regions const more = trammel::ToPolygons(each.back(), rule);
        regions.insert(regions.end(), more.begin(), more.end());
    }
    Operands const operands(in, paths);
    RingList const united = trammel::Union(rings, rule);
    RingList const same = trammel::Union(each, rule);
    CheckRings(united, operands.size);
    Require(std::equal(united.begin(), united.end(), same.begin(), same.end(),
                       [](auto const& p, auto const& q) { return trammel::Equal(p, q); }),
            "a ring is a polygon of one ring");
    for (CPath const& path : {trammel::PathOf(united), PathOf(trammel::Union(regions))}) {
        CheckRegion(operands, path, 0.0, [&](Pt const& p) {
            return std::any_of(operands.judges.begin(), operands.judges.end(),
                               [&](OutlineJudge const& o) { return o.Holds(p, rule); });
        });
    }
    Operands const together(in, {trammel::PathOf(rings)});
    RingList const cleaned = trammel::RemoveOverlap(rings, rule);
    CheckRings(cleaned, together.size);
    CheckRegion(together, trammel::PathOf(cleaned), 0.0,
                [&](Pt const& p) { return together.judges[0].Holds(p, rule); });
    CheckAreas(together, cleaned, trammel::ToPolygons(rings, rule));
}

void ArrangeRings(Input& in, RingList const& a, RingList const& b) {
    Operands const operands(in, {trammel::PathOf(a), trammel::PathOf(b)});
    trammel::PolygonArrangement const arrangement({a, b});
    std::vector<OutlineJudge> faces;
    std::vector<std::size_t> chosen;
    Regions map;
    for (trammel::ArrangementFace const& face : arrangement.Faces()) {
        if (in.Flag()) {
            chosen.push_back(faces.size());
        }
        faces.emplace_back(trammel::PathOf(face.polygon));
        map.push_back(face.polygon);
        for (trammel::OperandWinding const& w : face.windings) {
            Require(w.winding != 0 && w.winding == trammel::WindingNumberOf(face, w.operand),
                    "a winding number is found by its operand");
        }
    }
    double const tolerance = in.Tolerance(operands.size);
    Regions simple;
    trammel::SimplifyMap(map, tolerance, trammel::NewCrossings::kAvoid, simple);
    Require(simple.size() == map.size(), "a simplified map has as many polygons");
    if (!operands.CanBeJudged()) {
        return;
    }
    CheckFaces(operands, arrangement.Faces(), faces, operands.Unsure(0.0));
    CheckRegion(operands, PathOf(arrangement.Merged(chosen)), 0.0, [&](Pt const& p) {
        return std::any_of(chosen.begin(), chosen.end(),
                           [&](std::size_t k) { return faces[k].Holds(p, FillRule::kNonZero); });
    });
}

} // namespace

void Rings(Input& in) {
    int const kind = in.Int(0, 2);
    RingList const a = SomeRings(in);
    RingList const b = SomeRings(in);
    switch (kind) {
    case 0:
        CombineRings(in, a, b);
        break;
    case 1:
        UniteRings(in, a);
        break;
    default:
        ArrangeRings(in, a, b);
        break;
    }
}

void Booleans(Input& in) { in.Flag() ? Combine(in) : CleanUp(in); }

void Unions(Input& in) {
    switch (in.Int(0, 2)) {
    case 0:
        Unite(in);
        break;
    case 1:
        ClipLines(in);
        break;
    default:
        Arrange(in);
        break;
    }
}

} // namespace fuzz

// SPDX-License-Identifier: MIT

#include "OutlineOperations.h"

#include "Box_p.h"
#include "Faces_p.h"
#include "OpenLines_p.h"
#include "OutlineArcs_p.h"
#include "OutlineLift_p.h"
#include "OutlineStages_p.h"
#include "PointMath_p.h"
#include "PolygonRegions_p.h"
#include "PolygonRings_p.h"
#include "Scratch_p.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <utility>

namespace trammel {

namespace {

typedef TPoint<double> Pt;
using trammel_detail::BooleanOperand;
using trammel_detail::Box;
using trammel_detail::FlatOutlines;
using trammel_detail::OutlineArcs;
using trammel_detail::RegionOf;
using trammel_detail::Scratch;
using trammel_detail::WindingRegion;
using trammel_detail::WorkFrame;

/// Sets `out` to what lift() makes of the polygons. Returns the distance that was kept.
template <class Lift>
double OperateOn(OutlineArcs& arcs, double tolerance, Scratch* scratch, CPath& out,
                 std::vector<ElementSource>* sources, Lift&& lift) {
    arcs.Build(tolerance);
    CPath path;
    std::vector<ElementSource> found;
    double kept = tolerance > 0.0 ? tolerance : 0.0;
    if (arcs.HasExtent()) {
        FlatOutlines const flat(arcs);
        trammel_detail::Try([&] {
            lift(flat, scratch, path, sources != nullptr ? &found : nullptr);
            return 0;
        });
        kept = std::max(kept, flat.DistanceKept());
    }
    out = std::move(path);
    if (sources != nullptr) {
        sources->swap(found);
    }
    return kept;
}

/// Does the same for a region, which combine() gives.
template <class Combine>
double Operate(OutlineArcs& arcs, double tolerance, CPath& out, std::vector<ElementSource>* sources,
               Combine&& combine) {
    Scratch scratch;
    return OperateOn(arcs, tolerance, &scratch, out, sources,
                     [&](FlatOutlines const& flat, Scratch* block, CPath& path,
                         std::vector<ElementSource>* found) {
                         trammel_detail::LiftResult(combine(flat, block), flat, path, found);
                     });
}

/// Adds the subpaths of an outline to the engine as they are, and their points to `bounds`. False
/// unless they are rings of lines with finite points, each with a move and a close of its own.
/// Their edges have the numbers that FlatOutlines gives them.
bool AddRings(CPath const& outline, BooleanOperand& rings, Box<double>& bounds) {
    std::vector<Pt> const& points = outline.mPts;
    std::size_t begin = 0;
    std::size_t end = 0; // of the ring that is open
    for (char const code : outline.mCtls) {
        bool const first = begin == end;
        if (code == kPathClose) {
            if (end < begin + 3 || points[begin] == points[end - 1]) {
                return false;
            }
            rings.Add(&points[begin].v, end - begin);
            begin = end;
        } else if (code == (first ? kPathMove : kPathLine) && end < points.size() &&
                   trammel_detail::IsFinite(points[end])) {
            bounds.Include(points[end].h, points[end].v);
            ++end;
        } else {
            return false;
        }
    }
    return begin == end && end == points.size() && end > 0;
}

} // namespace

double Boolean(TPolyOp op, CPath const& a, FillRule ruleA, CPath const& b, FillRule ruleB,
               double tolerance, CPath& out, std::vector<ElementSource>* sources) {
    RegionOf of{};
    OutlineArcs arcs;
    if (trammel_detail::SetRegion(op, of)) {
        arcs.Add(a, 0);
        arcs.Add(b, 1);
    }
    return Operate(arcs, tolerance, out, sources, [&](FlatOutlines const& flat, Scratch* scratch) {
        WindingRegion region(of, scratch);
        region.rules = {{ruleA == FillRule::kEvenOdd, 0}, {ruleB == FillRule::kEvenOdd, 1}};
        BooleanOperand first(scratch);
        BooleanOperand second(scratch);
        flat.AddTo(first, 0, 0);
        flat.AddTo(second, 1, 1);
        return trammel_detail::CombineByWinding(first, second, region, scratch,
                                                trammel_detail::Origins::kKept);
    });
}

double Union(std::vector<CPath> const& outlines, FillRule rule, double tolerance, CPath& out,
             std::vector<ElementSource>* sources) {
    if (outlines.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    auto const count = static_cast<std::uint32_t>(outlines.size());
    bool const evenOdd = rule == FillRule::kEvenOdd;
    OutlineArcs arcs;
    for (std::uint32_t i = 0; i < count; ++i) {
        arcs.Add(outlines[i], i);
    }
    CPath path;
    std::vector<ElementSource> found;
    double kept = tolerance > 0.0 ? tolerance : 0.0;
    if (trammel_detail::UniteInStages(arcs, count, evenOdd, kept, path,
                                      sources != nullptr ? &found : nullptr)) {
        out = std::move(path);
        if (sources != nullptr) {
            sources->swap(found);
        }
        return kept;
    }
    return Operate(arcs, tolerance, out, sources, [&](FlatOutlines const& flat, Scratch* scratch) {
        BooleanOperand all(scratch);
        flat.AddAll(all);
        return trammel_detail::UniteByWinding(all, count, evenOdd, scratch,
                                              trammel_detail::Origins::kKept);
    });
}

double RemoveOverlap(CPath const& outline, FillRule rule, double tolerance, CPath& out,
                     std::vector<ElementSource>* sources) {
    auto const unite = [&](BooleanOperand const& all, Scratch* scratch) {
        return trammel_detail::UniteByWinding(all, 1, rule == FillRule::kEvenOdd, scratch,
                                              trammel_detail::Origins::kKept);
    };
    OutlineArcs arcs;
    Scratch scratch; // one for both ways, as each takes a large part of a small stack
    {
        BooleanOperand rings(&scratch);
        Box<double> bounds;
        if (AddRings(outline, rings, bounds)) {
            trammel_detail::WindingResult const result =
                trammel_detail::Try([&] { return unite(rings, &scratch); });
            // By the even-odd rule, holes may run as the contours around them do.
            bool const runsRight = rule == FillRule::kNonZero || rings.Count() == 1;
            if (result.unchanged && runsRight && sources == nullptr) {
                out = outline;
                WorkFrame const frame(bounds);
                return std::max(tolerance > 0.0 ? tolerance : 0.0,
                                frame.LengthFromWork(trammel_detail::WorkDistanceOfLines(frame)));
            }
            arcs.Add(outline, 0);
            return OperateOn(arcs, tolerance, &scratch, out, sources,
                             [&](FlatOutlines const& flat, Scratch*, CPath& path,
                                 std::vector<ElementSource>* found) {
                                 trammel_detail::LiftResult(result, flat, path, found);
                             });
        }
    }
    arcs.Add(outline, 0);
    return OperateOn(arcs, tolerance, &scratch, out, sources,
                     [&](FlatOutlines const& flat, Scratch* block, CPath& path,
                         std::vector<ElementSource>* found) {
                         BooleanOperand all(block);
                         flat.AddAll(all);
                         trammel_detail::LiftResult(unite(all, block), flat, path, found);
                     });
}

double ClipOpen(CPath const& lines, CPath const& region, FillRule rule, bool inside,
                double tolerance, CPath& out, std::vector<ElementSource>* sources) {
    OutlineArcs arcs;
    arcs.Add(region, 1);
    arcs.Add(lines, 0, false);
    Scratch block;
    return OperateOn(arcs, tolerance, &block, out, sources,
                     [&](FlatOutlines const& flat, Scratch* scratch, CPath& path,
                         std::vector<ElementSource>* found) {
                         WindingRegion of({{false, true, false, true}}, scratch);
                         of.rules = {{rule == FillRule::kEvenOdd, 0}};
                         BooleanOperand contours(scratch);
                         BooleanOperand open(scratch);
                         flat.AddTo(contours, 1, 0);
                         flat.AddOpenTo(open);
                         trammel_detail::LiftOpen(
                             trammel_detail::LabelOpenLines(open, contours, of, scratch), inside,
                             flat, path, found);
                     });
}

OutlineArrangement::OutlineArrangement(std::vector<CPath> const& operands, double tolerance)
    : mTolerance(tolerance) {
    if (operands.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw std::bad_alloc();
    }
    auto const count = static_cast<std::uint32_t>(operands.size());
    OutlineArcs arcs;
    for (std::uint32_t i = 0; i < count; ++i) {
        arcs.Add(operands[i], i);
    }
    CPath none;
    Scratch block;
    mDistance = OperateOn(
        arcs, tolerance, &block, none, nullptr,
        [&](FlatOutlines const& flat, Scratch* scratch, CPath&, std::vector<ElementSource>*) {
            BooleanOperand all(scratch);
            flat.AddAll(all);
            trammel_detail::Faces const faces =
                trammel_detail::FacesOf(all, count, scratch, trammel_detail::Origins::kKept);
            for (trammel_detail::LiftedFace& face : trammel_detail::LiftFaces(faces, flat)) {
                OutlineFace taken{std::move(face.outline), std::move(face.sources), {}};
                std::size_t k = face.ring == 0 ? 0 : faces.ends[face.ring - 1];
                for (; k < faces.ends[face.ring]; ++k) {
                    // The engine's numbers grow on the other side: its x is our v.
                    taken.windings.push_back(
                        {faces.windings[k].owner, -static_cast<int>(faces.windings[k].winding)});
                }
                mFaces.push_back(std::move(taken));
            }
        });
}

double OutlineArrangement::Merge(std::vector<std::size_t> const& faces, CPath& out) const {
    std::vector<std::size_t> wanted = faces;
    std::sort(wanted.begin(), wanted.end());
    wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
    std::vector<CPath> outlines;
    for (std::size_t const face : wanted) {
        if (face < mFaces.size()) {
            outlines.push_back(mFaces[face].outline);
        }
    }
    return Union(outlines, FillRule::kNonZero, mTolerance, out);
}

} // namespace trammel

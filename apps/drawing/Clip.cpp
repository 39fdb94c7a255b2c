// SPDX-License-Identifier: MIT

#include "Clip.h"

#include "Outlines.h"

#include <trammel/CBezier.h>
#include <trammel/Intersections.h>
#include <trammel/OutlineOperations.h>
#include <trammel/PathSegments.h>
#include <trammel/PreparedOutline.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

namespace tool {

namespace {

typedef TPoint<double> Pt;

/// Ends of pieces nearer to each other than this share of the segment's parameter are one.
constexpr double kSameParameter = 0x1p-44;

Pt PointAt(trammel::PathSegment const& segment, double t) {
    return segment.IsCurve() ? segment.Curve().TPt(t) : segment.Line().TPt(t);
}

/// Adds the part of a segment between two parameters. It goes on where the part before ends.
void AddPart(CPath& out, trammel::PathSegment const& segment, double from, double to,
             bool continues) {
    Pt const end = to == 1.0 ? segment.end : PointAt(segment, to);
    if (!continues) {
        out.MoveTo(from == 0.0 ? segment.start : PointAt(segment, from));
    }
    if (!segment.IsCurve()) {
        out.LineTo(end);
        return;
    }
    // The controls of the part, by the blossom of the curve.
    auto const blossom = [&](double a, double b, double c) {
        auto const mix = [](Pt const& p, Pt const& q, double t) { return p + (q - p) * t; };
        Pt const p = mix(segment.start, segment.control1, a);
        Pt const q = mix(segment.control1, segment.control2, a);
        Pt const r = mix(segment.control2, segment.end, a);
        return mix(mix(p, q, b), mix(q, r, b), c);
    };
    AddCurve(out, blossom(from, from, to), blossom(from, to, to), end);
}

/// Returns the pieces of a line that lie in a region.
CPath LinesInside(CPath const& path, Clip const& clip) {
    std::vector<trammel::Intersection> meets;
    trammel::AppendIntersections(path, clip.path, 0.0, meets);
    std::map<std::size_t, std::vector<double>> cuts; // parameters by the element of the path
    for (trammel::Intersection const& meet : meets) {
        std::vector<double>& list = cuts[meet.a.element];
        list.push_back(meet.a.t);
        list.push_back(meet.a.endT);
    }
    trammel::PreparedOutline const region(clip.path);
    CPath out;
    bool drawing = false;
    Pt last;
    for (trammel::PathSegment const& segment : trammel::Segments(path)) {
        std::vector<double> ends = cuts[segment.element];
        ends.push_back(0.0);
        ends.push_back(1.0);
        std::sort(ends.begin(), ends.end());
        double from = 0.0;
        for (double const to : ends) {
            if (!(to - from > kSameParameter) && to != 1.0) {
                continue;
            }
            Pt const middle = PointAt(segment, from + (to - from) / 2.0);
            bool const shown = region.Contains(middle, clip.rule);
            if (shown) {
                bool const continues = drawing && (from > 0.0 || last == segment.start);
                AddPart(out, segment, from, to, continues);
                last = segment.end;
            }
            drawing = shown;
            from = to;
        }
    }
    return out;
}

/// Cuts off what one clip hides.
void ApplyClip(Outline& outline, Clip const& clip) {
    if (outline.fill == "none") {
        outline.path = LinesInside(outline.path, clip);
        outline.arcLength += 4.0 * clip.distance;
    } else {
        CPath visible;
        double const kept = trammel::Boolean(kPolyIntersection, outline.path, outline.rule,
                                             clip.path, clip.rule, 0.0, visible);
        outline.path = std::move(visible);
        outline.rule = trammel::FillRule::kNonZero; // contours do not overlap: any rule will do
        outline.arcDistance = std::max(outline.arcDistance, clip.distance) + kept;
        outline.arcLength += clip.arcLength + kept * static_cast<double>(outline.path.mCtls.size());
    }
}

} // namespace

Clip UnionOf(std::vector<Outline> const& outlines) {
    Clip all;
    std::vector<CPath> paths;
    trammel::FillRule const rule =
        outlines.empty() ? trammel::FillRule::kNonZero : outlines.front().rule;
    bool const same = std::all_of(outlines.begin(), outlines.end(), [rule](Outline const& outline) {
        return outline.rule == rule && outline.clips.empty();
    });
    for (Outline const& outline : outlines) {
        Outline part = outline;
        part.fill = "black"; // paint does not matter in a clip
        for (std::shared_ptr<Clip const> const& clip : outline.clips) {
            ApplyClip(part, *clip);
        }
        if (!same) {
            CPath contours;
            part.arcDistance += trammel::RemoveOverlap(part.path, part.rule, 0.0, contours);
            part.path = std::move(contours);
        }
        all.distance = std::max(all.distance, part.arcDistance);
        all.arcLength += part.arcLength;
        paths.push_back(std::move(part.path));
    }
    all.rule = same ? rule : trammel::FillRule::kNonZero;
    if (paths.size() == 1) {
        all.path = std::move(paths.front());
    } else if (!paths.empty()) {
        double const kept = trammel::Union(paths, all.rule, 0.0, all.path);
        all.distance += kept;
        all.arcLength += kept * static_cast<double>(all.path.mCtls.size());
        all.rule = trammel::FillRule::kNonZero;
    }
    return all;
}

void ApplyClips(Drawing& drawing) {
    bool clipped = false;
    for (Outline& outline : drawing.outlines) {
        for (std::shared_ptr<Clip const> const& clip : outline.clips) {
            ApplyClip(outline, *clip);
        }
        clipped = clipped || !outline.clips.empty();
        if (!outline.clips.empty() && outline.path.mCtls.empty()) {
            outline.source.element = kNoElement; // goes
        }
        outline.clips.clear();
    }
    if (clipped) {
        drawing.outlines.erase(std::remove_if(drawing.outlines.begin(), drawing.outlines.end(),
                                              [](Outline const& outline) {
                                                  return outline.source.element == kNoElement &&
                                                         outline.path.mCtls.empty();
                                              }),
                               drawing.outlines.end());
    }
}

} // namespace tool

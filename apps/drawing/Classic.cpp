// SPDX-License-Identifier: MIT

#include "Classic.h"

#include "Outlines.h"

#include <trammel/CBezier.h>
#include <trammel/PathSegments.h>
#include <trammel/TLine.h>

#include <algorithm>

namespace tool {

namespace {

typedef TPoint<double> Pt;

/// Sets the flattening error of the curves' hit test for its own lifetime.
class CurveErrorScope {
public:
    explicit CurveErrorScope(double error) : mOld(CBezier::SetCurveError(error)) {}
    ~CurveErrorScope() { CBezier::SetCurveError(mOld); }
    CurveErrorScope(CurveErrorScope const&) = delete;
    CurveErrorScope& operator=(CurveErrorScope const&) = delete;

private:
    double mOld;
};

} // namespace

std::vector<TPolygon<double>> ClassicFlatten(CPath const& path, double error) {
    std::vector<TPolygon<double>> polygons;
    for (trammel::Subpath const& subpath : trammel::Subpaths(path)) {
        TPolygon<double>& polygon = polygons.emplace_back();
        polygon.Append(subpath.Start(), true);
        for (trammel::PathSegment const& segment : subpath) {
            if (segment.IsCurve()) {
                segment.Curve().Flatten(polygon, error);
            } else if (segment.kind == kPathLine) {
                polygon.AppendUnique(segment.end);
            }
        }
        if (subpath.Closed()) {
            polygon.Close();
        }
    }
    return polygons;
}

bool ClassicContains(CPath const& path, Pt const& p) {
    bool odd = false;
    for (TPolygon<double> const& polygon : ClassicFlatten(path, FineError(ControlBounds(path)))) {
        odd ^= polygon.Contains(p);
    }
    return odd;
}

bool ClassicHits(CPath const& path, Pt const& p, double tolerance) {
    CurveErrorScope const scope(std::max(FineError(ControlBounds(path)), tolerance / 16.0));
    auto const segments = trammel::Segments(path);
    return std::any_of(segments.begin(), segments.end(), [&](trammel::PathSegment const& segment) {
        return segment.IsCurve() ? segment.Curve().HitTest(p, tolerance)
                                 : segment.Line().HitTest(p, tolerance);
    });
}

} // namespace tool

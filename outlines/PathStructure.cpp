// SPDX-License-Identifier: MIT

#include "PathStructure.h"

#include "ElementAppender_p.h"
#include "PathCursor.h"
#include "PointRun_p.h"
#include "PolygonPoints_p.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace trammel {

namespace {

using trammel_detail::ElementAppender;
using trammel_detail::PointRun;
using trammel_detail::PointsOf;

typedef TPoint<double> Pt;

/// The number of elements and points that a path can come to as complete subpaths. A subpath
/// without a move comes first or behind a close. It gets a move, and its close may become a line.
struct Room {
    std::size_t codes;
    std::size_t points;

    explicit Room(CPath const& path) {
        auto const headless = 1 + static_cast<std::size_t>(
                                      std::count(path.mCtls.begin(), path.mCtls.end(), kPathClose));
        codes = path.mCtls.size() + 2 * headless;
        points = path.mPts.size() + 2 * headless;
    }
};

void AppendSegment(ElementAppender& out, PathSegment const& segment) {
    if (segment.IsCurve()) {
        out.Curve(segment.control1, segment.control2, segment.end);
    } else {
        out.Line(segment.end);
    }
}

/// Appends the subpath up to its close, which is left to the caller. Returns whether it is closed
/// to its own start.
bool AppendOpen(ElementAppender& out, Subpath const& subpath) {
    out.Move(subpath.Start());
    for (PathSegment const& segment : subpath) {
        if (segment.kind != kPathClose || !subpath.BeginsWithMove()) {
            AppendSegment(out, segment);
        }
    }
    return subpath.Closed() && subpath.BeginsWithMove();
}

void AppendWhole(ElementAppender& out, Subpath const& subpath) {
    if (AppendOpen(out, subpath)) {
        out.Close();
    }
}

/// Appends the points as a subpath under the joining rules.
void AppendPolygon(CPath& path, PointRun const& points, bool closed) {
    for (long i = 0; i < points.count; ++i) {
        if (i == 0) {
            path.MoveTo(points[0]);
        } else {
            path.LineTo(points[i]);
        }
    }
    if (closed && points.count > 0) {
        path.ClosePath();
    }
}

} // namespace

CPath PathOf(Subpath const& subpath) {
    CPath out;
    std::size_t const elements = subpath.EndElement() - subpath.FirstElement();
    ElementAppender appender(out, elements + 1, 3 * elements + 1);
    AppendWhole(appender, subpath);
    return out;
}

CPath PathOf(TPolygon<double> const& polygon) {
    CPath out;
    AppendPolygon(out, PointsOf(polygon), polygon.Closed());
    return out;
}

CPath PathOf(CFPolygonRef const& polygon) {
    CPath out;
    if (!polygon) {
        return out;
    }
    PointRun points = PointsOf(polygon);
    bool const closed = polygon.Closed();
    if (closed && points.count > 1 && points[0] == points[points.count - 1]) {
        --points.count;
    }
    AppendPolygon(out, points, closed);
    return out;
}

CPath PathOf(std::vector<TPolygon<double>> const& polygons) {
    CPath out;
    for (TPolygon<double> const& polygon : polygons) {
        AppendPolygon(out, PointsOf(polygon), polygon.Closed());
    }
    return out;
}

std::vector<CPath> SplitSubpaths(CPath const& path) {
    std::vector<CPath> out;
    for (Subpath const& subpath : Subpaths(path)) {
        out.push_back(PathOf(subpath));
    }
    return out;
}

CPath& AppendSubpaths(CPath& path, CPath const& more) {
    if (&path == &more) {
        CPath const copy(more);
        return AppendSubpaths(path, copy);
    }
    Room const room(more);
    ElementAppender appender(path, room.codes, room.points);
    for (Subpath const& subpath : Subpaths(more)) {
        AppendWhole(appender, subpath);
    }
    return path;
}

CPath Reversed(CPath const& path) {
    CPath out;
    Room const room(path);
    ElementAppender appender(out, room.codes, room.points);
    std::vector<PathSegment> segments;
    for (Subpath const& subpath : Subpaths(path)) {
        segments.assign(subpath.begin(), subpath.end());
        bool const closed = subpath.Closed() && subpath.BeginsWithMove();
        if (closed) {
            segments.pop_back();
        }
        appender.Move(segments.empty() ? subpath.Start() : segments.back().end);
        for (auto segment = segments.rbegin(); segment != segments.rend(); ++segment) {
            std::swap(segment->start, segment->end);
            std::swap(segment->control1, segment->control2);
            AppendSegment(appender, *segment);
        }
        if (closed) {
            appender.Close();
        }
    }
    return out;
}

CPath WithSubpathsClosed(CPath const& path) {
    CPath out;
    Room const room(path);
    // Each open subpath but the last ends before a move.
    auto const moves =
        static_cast<std::size_t>(std::count(path.mCtls.begin(), path.mCtls.end(), kPathMove));
    ElementAppender appender(out, room.codes + moves, room.points);
    for (Subpath const& subpath : Subpaths(path)) {
        AppendOpen(appender, subpath);
        if (!subpath.Empty()) {
            appender.Close();
        }
    }
    return out;
}

CPath WithSubpathsOpened(CPath const& path, ClosingLine closing) {
    CPath out;
    Room const room(path);
    ElementAppender appender(out, room.codes, room.points);
    for (Subpath const& subpath : Subpaths(path)) {
        bool const closed = AppendOpen(appender, subpath);
        if (closed && closing == ClosingLine::kKeep && subpath.End() != subpath.Start()) {
            appender.Line(subpath.Start());
        }
    }
    return out;
}

CPath Transformed(CPath const& path, CMatrix3x3 const& m) {
    CPath out(path);
    out.Transform(m);
    m.Transform(out.mCurrentPt);
    out.Bounds();
    return out;
}

std::size_t FirstPointOf(CPath const& path, std::size_t element) {
    if (element >= path.mCtls.size()) {
        throw std::out_of_range("the path has no such element");
    }
    std::size_t point = 0;
    for (std::size_t i = 0; i < element; ++i) {
        point += trammel_detail::PointCount(path.mCtls[i]);
    }
    return point;
}

CPath& SetPoint(CPath& path, std::size_t index, Pt const& p) {
    if (index >= path.mPts.size()) {
        throw std::out_of_range("the path has no such point");
    }
    Pt const old = path.mPts[index];
    Pt const point = p;
    TRect<double> const bounds = path.Bounds();
    path.mPts[index] = point;
    if (index + 1 == path.mPts.size()) {
        path.mCurrentPt = point;
    }
    bool const inside =
        bounds.left < old.h && old.h < bounds.right && bounds.top < old.v && old.v < bounds.bottom;
    if (inside) {
        path.mBounds |= point;
    } else {
        path.InvalBounds().Bounds();
    }
    return path;
}

bool Equal(CPath const& a, CPath const& b) noexcept {
    return a.mCtls == b.mCtls && a.mPts == b.mPts;
}

bool Equal(TPolygon<double> const& a, TPolygon<double> const& b) noexcept {
    PointRun const p = PointsOf(a);
    PointRun const q = PointsOf(b);
    if (p.count != q.count || a.Closed() != b.Closed()) {
        return false;
    }
    for (long i = 0; i < p.count; ++i) {
        if (p[i] != q[i]) {
            return false;
        }
    }
    return true;
}

} // namespace trammel

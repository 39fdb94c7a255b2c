// SPDX-License-Identifier: MIT

#include "Faults.h"

#include <limits>

namespace trammel_test {

namespace {

typedef TPoint<double> Pt;

/// One of a kind's points, in a square of 100 around the origin before it is scaled.
Pt PointOf(ArgumentKind kind, std::size_t i, std::size_t count) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const inf = std::numeric_limits<double>::infinity();
    double const angle = 2.4 * static_cast<double>(i);
    double const turn = 6.25 * static_cast<double>(i) / static_cast<double>(count);
    Pt const ring(50 * std::cos(turn) + (i % 2 == 0 ? 7 : 0), 50 * std::sin(turn));
    switch (kind) {
    case ArgumentKind::kHuge:
        return ring * 1e300;
    case ArgumentKind::kTiny:
        return ring * 1e-300;
    case ArgumentKind::kNaN:
        return i % 5 == 4 ? Pt(nan, 1) : i % 7 == 6 ? Pt(inf, -inf) : ring;
    case ArgumentKind::kOnePoint:
        return {3, 4};
    case ArgumentKind::kWound:
        return Pt(std::cos(angle), std::sin(angle)) *
               std::pow(10.0, 4.0 * static_cast<double>(i) / static_cast<double>(count) - 2.0);
    default:
        return ring;
    }
}

std::size_t CountOf(ArgumentKind kind) {
    switch (kind) {
    case ArgumentKind::kSmall:
        return 10;
    case ArgumentKind::kMany:
        return 4000;
    default:
        return 60;
    }
}

/// Lines and curves through a kind's points, or a comb of many teeth.
CPath PathOf(ArgumentKind kind, bool upright) {
    CPath path;
    if (kind == ArgumentKind::kMany) {
        int const teeth = 40;
        auto const point = [&](double h, double v) { return upright ? Pt(h, v) : Pt(v, h); };
        path.MoveTo(point(0, 0));
        for (int i = 0; i < teeth; ++i) {
            path.LineTo(point(i + 0.4, 41))
                .CurveTo(point(i + 0.6, 30), point(i + 0.8, 3), point(i + 1, 2));
        }
        path.LineTo(point(teeth, -1)).ClosePath();
        return path;
    }
    std::size_t const count = CountOf(kind);
    std::size_t const from = upright ? 0 : 3;
    auto const point = [&](std::size_t i) { return PointOf(kind, i + from, count + 4); };
    path.MoveTo(point(0));
    for (std::size_t i = 1; i + 4 <= count; i += 4) {
        path.LineTo(point(i)).CurveTo(point(i + 1), point(i + 2), point(i + 3));
        if (i == 5) {
            path.ClosePath().MoveTo(point(3));
        }
    }
    path.mCtls.shrink_to_fit();
    path.mPts.shrink_to_fit();
    return path;
}

} // namespace

Arguments::Arguments(ArgumentKind kind)
    : path(PathOf(kind, true)), other(PathOf(kind, false)),
      curve(PointOf(kind, 0, 9), PointOf(kind, 3, 9), PointOf(kind, 6, 9), PointOf(kind, 8, 9)),
      spline(PointOf(kind, 0, 9), PointOf(kind, 4, 9), PointOf(kind, 8, 9)),
      line(PointOf(kind, 1, 9), PointOf(kind, 5, 9)), rect(1, 2, 31, 42), p(12, 13) {
    std::size_t const count = CountOf(kind);
    for (std::size_t i = 0; i < count; ++i) {
        points.push_back(PointOf(kind, i, count));
    }
    points.shrink_to_fit();
    out.MoveTo(Pt(1, 1)).LineTo(Pt(2, 1));
    out.mCtls.shrink_to_fit();
    out.mPts.shrink_to_fit();
    second = out;
    paths = {path, other, out};
    polygon = TPolygon<double>(points);
    flat = TPolygon<double>{Pt(5, 5)};
    trammel::Ring const square = {Pt(-30, -30), Pt(30, -30), Pt(30, 30), Pt(-30, 30)};
    trammel::Ring const hole = {Pt(-10, -10), Pt(-10, 10), Pt(10, 10), Pt(10, -10)};
    trammel::Ring ring = points;
    if (kind == ArgumentKind::kMany) {
        ring.resize(400);
    }
    rings = {ring, square, hole};
    for (trammel::Ring const& one : rings) {
        polygons.emplace_back(one);
    }
    operands = {polygons, {polygons[1]}};
    map = {{square, {hole}}, {ring, {}}};
    mapOut = map;
    ringsOut = {hole};
    ref.CFPolygonCreate(ring);
    empty.CFPolygonCreate(0);
    for (trammel::Ring const& one : rings) {
        Tgcp_contour contour;
        contour.mVertices = one;
        clipA.AddContour(contour);
    }
    clipB = Tgpc_polygon(TRect<double>(-5, -60, 5, 60));
    clipped = clipB;
    table = {1, 2};
    table.shrink_to_fit();
    contours.points = {Pt(1, 2)};
    style.width = 3;
    style.join = trammel::StrokeJoin::kRound;
    style.startCap = trammel::StrokeCap::kSquare;
    style.dashes = {20, 7};
    text = "M 1 2 L 3 4 C 5 6 7 8 9 10 Q 1 1 2 2 A 5 6 7 1 0 9 9 S 1 2 3 4 Z m 1 1 h 5 v 5 z";
    for (std::size_t i = 0; i < count; ++i) {
        text += "L1e300 .5-7";
    }
    if (kind == ArgumentKind::kWound) {
        text = "M" + std::string(20000, '9') + "." + std::string(20000, '7') + "e" +
               std::string(9000, '9');
    } else if (kind == ArgumentKind::kNaN) {
        text += " nan";
    }
    matrix.Rotate(0.5);
    if (kind == ArgumentKind::kMany) {
        tolerance = 0.5;
    } else if (kind == ArgumentKind::kHuge) {
        tolerance = 1e298;
    } else if (kind == ArgumentKind::kTiny) {
        tolerance = 1e-302;
    }
}

Arguments::~Arguments() {
    ref.Dispose();
    empty.Dispose();
}

std::uint64_t Arguments::State() const {
    Digest state;
    state.All(path, other, out, second, paths, points, polygon, flat, polygons, operands, map,
              mapOut, rings, ringsOut, ref, empty, curve, spline, line, rect, p, clipA, clipB,
              clipped, places, sources, contours.points, contours.contours, table, style.dashes,
              text, matrix);
    return state.Value();
}

void Arguments::Disposed(CFPolygonRef made) {
    Returned(made);
    made.Dispose();
}

void Arguments::Disposed(Handle block) {
    Returned(GetHandleSize(block));
    DisposeHandle(block);
}

} // namespace trammel_test

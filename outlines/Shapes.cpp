// SPDX-License-Identifier: MIT

#include "Shapes.h"

#include "ArcCurves_p.h"
#include "PointMath_p.h"
#include "UTrigonometry.h"
#include "UnitCircle_p.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace trammel {

namespace {

using trammel_detail::IsFinite;
using trammel_detail::UnitPoint;

typedef TPoint<double> Pt;

/// The greatest radius of a corner: sums of such radii do not overflow.
constexpr double kGreatestCornerRadius = 0x1p500;

/// Maps the unit circle to an ellipse.
struct Ellipse {
    Pt center;
    double hRadius;
    double vRadius;
    double sine = 0.0; ///< of the axes' turn
    double cosine = 1.0;
    Pt shift = Pt(); ///< added on the unit circle: with it `center` is a corner of the box

    Pt At(Pt const& unit) const {
        double const x = (unit.h + shift.h) * hRadius;
        double const y = (unit.v + shift.v) * vRadius;
        return Pt(center.h + (cosine * x - sine * y), center.v + (sine * x + cosine * y));
    }
};

/// Adds a quarter of an ellipse, from `quarter` quarters of a turn on. The path is there already.
void AddQuarter(CPath& path, Ellipse const& ellipse, std::size_t quarter, double tolerance) {
    std::size_t const count = trammel_detail::ArcCurveCount(
        pi / 2.0, std::max(ellipse.hRadius, ellipse.vRadius), tolerance);
    Pt const half = UnitPoint(1, 8 * count);
    double const arm =
        4.0 / 3.0 * (half.v / (1.0 + half.h)); // the tangent of a quarter of the sweep
    Pt unit = UnitPoint(quarter, 4);
    for (std::size_t i = 1; i <= count; ++i) {
        Pt const next = UnitPoint(quarter * count + i, 4 * count);
        path.CurveTo(ellipse.At(Pt(unit.h - unit.v * arm, unit.v + unit.h * arm)),
                     ellipse.At(Pt(next.h + next.v * arm, next.v - next.h * arm)),
                     ellipse.At(next));
        unit = next;
    }
}

/// Returns the path, or an empty one where a coordinate is not finite.
CPath Finite(CPath path) {
    return std::all_of(path.mPts.begin(), path.mPts.end(), IsFinite) ? path : CPath();
}

bool AllFinite(std::initializer_list<double> numbers) {
    return std::all_of(numbers.begin(), numbers.end(), [](double x) { return std::isfinite(x); });
}

/// A corner of a rounded rectangle, with the quarter of an ellipse in it.
void AddCorner(CPath& path, Pt const& corner, Pt const& radii, std::size_t quarter,
               double tolerance) {
    if (radii.h == 0.0 || radii.v == 0.0) {
        path.LineTo(corner);
        return;
    }
    // Seen from the corner, the ends of the quarter lie on the sides exactly.
    Ellipse ellipse{corner, radii.h, radii.v};
    ellipse.shift = UnitPoint(quarter + 2, 4) + UnitPoint(quarter + 3, 4);
    path.LineTo(ellipse.At(UnitPoint(quarter, 4)));
    AddQuarter(path, ellipse, quarter, tolerance);
}

/// Returns the vertices on two circles in turn.
CPath Vertices(Pt const& center, double even, double odd, std::size_t count, double angle) {
    CPath path;
    if (count == 0 || !IsFinite(center) || !AllFinite({even, odd, angle})) {
        return path;
    }
    Ellipse circle{center, 0.0, 0.0};
    SinCos(angle, circle.sine, circle.cosine);
    path.mPts.reserve(count);
    path.mCtls.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        circle.hRadius = circle.vRadius = i % 2 == 0 ? even : odd;
        Pt const p = circle.At(UnitPoint(i, count));
        if (i == 0) {
            path.MoveTo(p);
        } else {
            path.LineTo(p);
        }
    }
    path.ClosePath();
    return Finite(path);
}

} // namespace

CPath EllipsePath(Pt const& center, double hRadius, double vRadius, double rotation,
                  double tolerance) {
    CPath path;
    if (!IsFinite(center) || !AllFinite({hRadius, vRadius, rotation})) {
        return path;
    }
    Ellipse ellipse{center, std::abs(hRadius), std::abs(vRadius)};
    SinCos(rotation, ellipse.sine, ellipse.cosine);
    path.MoveTo(ellipse.At(UnitPoint(0, 4)));
    for (std::size_t quarter = 0; quarter < 4; ++quarter) {
        AddQuarter(path, ellipse, quarter, tolerance);
    }
    path.ClosePath();
    return Finite(path);
}

CPath CirclePath(Pt const& center, double radius, double tolerance) {
    return EllipsePath(center, radius, radius, 0.0, tolerance);
}

CPath RoundedRectPath(TRect<double> const& rect, CornerRadii const& radii, double tolerance) {
    CornerRadii r = radii;
    for (Pt* const corner : {&r.topLeft, &r.topRight, &r.bottomRight, &r.bottomLeft}) {
        if (std::isnan(corner->h) || std::isnan(corner->v)) {
            return CPath();
        }
        corner->h = std::clamp(corner->h, 0.0, kGreatestCornerRadius);
        corner->v = std::clamp(corner->v, 0.0, kGreatestCornerRadius);
    }
    TRect<double> box = rect;
    box.Rectify();
    double shrink = 1.0;
    auto const fit = [&](double side, double sum) {
        if (sum > side) {
            shrink = std::min(shrink, side / sum);
        }
    };
    fit(box.Width(), r.topLeft.h + r.topRight.h);
    fit(box.Width(), r.bottomLeft.h + r.bottomRight.h);
    fit(box.Height(), r.topLeft.v + r.bottomLeft.v);
    fit(box.Height(), r.topRight.v + r.bottomRight.v);
    for (Pt* const corner : {&r.topLeft, &r.topRight, &r.bottomRight, &r.bottomLeft}) {
        *corner *= shrink;
    }

    CPath path;
    bool const cut = r.topLeft.h != 0.0 && r.topLeft.v != 0.0;
    path.MoveTo(Pt(box.left + (cut ? r.topLeft.h : 0.0), box.top));
    AddCorner(path, box.TopRight(), r.topRight, 3, tolerance);
    AddCorner(path, box.BottomRight(), r.bottomRight, 0, tolerance);
    AddCorner(path, box.BottomLeft(), r.bottomLeft, 1, tolerance);
    AddCorner(path, box.TopLeft(), r.topLeft, 2, tolerance);
    path.ClosePath();
    return Finite(path);
}

CPath RoundedRectPath(TRect<double> const& rect, double hRadius, double vRadius, double tolerance) {
    Pt const corner(std::min(hRadius, std::abs(rect.Width()) / 2.0),
                    std::min(vRadius, std::abs(rect.Height()) / 2.0));
    return RoundedRectPath(rect, CornerRadii{corner, corner, corner, corner}, tolerance);
}

CPath PolygonPath(std::vector<Pt> const& vertices) {
    CPath path;
    for (Pt const& vertex : vertices) {
        if (&vertex == vertices.data()) {
            path.MoveTo(vertex);
        } else {
            path.LineTo(vertex);
        }
    }
    path.ClosePath();
    return path;
}

CPath RegularPolygonPath(Pt const& center, double radius, std::size_t count, double angle) {
    return Vertices(center, radius, radius, count, angle);
}

CPath StarPath(Pt const& center, double outerRadius, double innerRadius, std::size_t count,
               double angle) {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    return Vertices(center, outerRadius, innerRadius, count > most / 2 ? most : 2 * count, angle);
}

} // namespace trammel

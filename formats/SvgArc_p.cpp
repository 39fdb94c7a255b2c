// SPDX-License-Identifier: MIT

#include "SvgArc_p.h"

#include "PointMath_p.h"
#include "UTrigonometry.h"

#include <algorithm>
#include <cmath>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

} // namespace

// The endpoint-to-centre conversion of the SVG standard (implementation notes, elliptical arcs). It
// works in the coordinates in which the ellipse is the unit circle around the origin. There the
// chord's half length s is the sine of half the arc. Everything follows from s, without differences
// of nearly equal numbers.
SvgArc::SvgArc(Pt const& from, Pt const& to, double rx, double ry, double degrees, bool large,
               bool sweep) {
    double sine;
    double cosine;
    // Between -180 and 180 exactly, so that quarter turns are exact; -180 is the same as 180.
    double const turn =
        std::abs(std::remainder(degrees, 360.0)) == 180.0 ? 180.0 : std::remainder(degrees, 360.0);
    SinCos(DegToRad(turn), sine, cosine);

    // Half the chord, turned to the axes of the ellipse.
    Pt const half(0.5 * from.h - 0.5 * to.h, 0.5 * from.v - 0.5 * to.v);
    Pt const chord(cosine * half.h + sine * half.v, cosine * half.v - sine * half.h);
    double s = std::hypot(chord.h / rx, chord.v / ry);
    if (!(s < 1.0)) {
        // The radii are too small to reach both ends: they grow until the chord is a diameter.
        double const ratio = rx / ry;
        rx = std::hypot(chord.h, chord.v * ratio);
        ry = std::hypot(chord.h / ratio, chord.v);
        s = 1.0;
    }
    // The chord's direction has length 1, however small the chord is beside the radii.
    double const length = chord.Hypotenuse();
    double const greater = std::max(rx, ry);
    Pt direction(chord.h / length * (greater / rx), chord.v / length * (greater / ry));
    direction /= direction.Hypotenuse();

    double const sign = large != sweep ? 1.0 : -1.0;
    double const h = sign * std::sqrt((1.0 - s) * (1.0 + s));
    Pt const centre(h * direction.v, -h * direction.h);
    Pt const first = direction * s - centre;
    Pt const last = -(direction * s) - centre;
    double const small = 2.0 * std::asin(s);
    double const angle = large ? 2.0 * pi - small : small;
    // Rounding must not make three curves of a quarter turn.
    mCount = static_cast<std::size_t>(
        std::clamp(std::ceil(angle / (pi / 4.0) - 1e-9), 1.0, static_cast<double>(kMaxCurves)));
    double const step = (sweep ? angle : -angle) / static_cast<double>(mCount);
    double const arm = 4.0 / 3.0 * std::tan(step / 4.0);

    auto const back = [=](Pt const& p) { // a vector back to the ellipse
        double const x = p.h * rx;
        double const y = p.v * ry;
        return Pt(cosine * x - sine * y, sine * x + cosine * y);
    };
    Pt radius = first;
    Pt start = from;
    for (std::size_t i = 0; i < mCount; ++i) {
        Pt nextRadius = last;
        Pt end = to;
        if (i + 1 < mCount) {
            double const turned = step * static_cast<double>(i + 1);
            double const c = std::cos(turned);
            double const n = std::sin(turned);
            nextRadius.Set(first.h * c - first.v * n, first.h * n + first.v * c);
            end = from + back(nextRadius - first);
        }
        mPoints[3 * i] = start + back(Pt(-radius.v, radius.h) * arm);
        mPoints[3 * i + 1] = end - back(Pt(-nextRadius.v, nextRadius.h) * arm);
        mPoints[3 * i + 2] = end;
        start = end;
        radius = nextRadius;
    }
}

bool SvgArc::IsFinite() const {
    return std::all_of(mPoints.begin(), mPoints.begin() + static_cast<std::ptrdiff_t>(3 * mCount),
                       [](Pt const& p) { return trammel_detail::IsFinite(p); });
}

} // namespace trammel_detail

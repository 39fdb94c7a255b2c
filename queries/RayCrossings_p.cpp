// SPDX-License-Identifier: MIT

#include "RayCrossings_p.h"

#include "PointMath_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trammel_detail {

// How slightly the control points are moved, with u = 2^-53 and D the greatest coordinate of a
// segment's control points as seen from the origin: the differences are off by uD. Each halving
// adds 3u of the size of the piece that it halves. Only pieces whose control points surround the
// origin are halved. After n halvings they are no larger than D, nor than 6D · 2^-n, so that all
// halvings together add less than 15uD. The last piece and its chord lie within 8uD of the origin,
// so they are at most 16uD apart. A line's product is off by 3u of its factors, which moves it by
// 6uD at most. That makes no more than 32uD in each coordinate, which is 2^-48 D.

namespace {

typedef TPoint<double> Pt;
typedef std::array<Pt, 4> Cubic;
typedef std::array<Double2, 4> Lanes; ///< v in lane 0 and h in lane 1 of each point

/// The greatest magnitude of a coordinate; infinite when one is and none is NaN.
double SizeOf(Lanes const& c) {
    Double2 const most = Max(Max(Abs(c[0]), Abs(c[1])), Max(Abs(c[2]), Abs(c[3])));
    return Max(Lane<0>(most), Lane<1>(most));
}

/// The points as seen from `origin`. A coordinate is halved where a difference overflows. It is
/// magnified where it is so small that halvings of the curve would lose bits. Each coordinate is
/// scaled by itself, which moves no point across an axis.
Cubic Relative(Cubic const& c, Pt const& origin) {
    constexpr double kLeast = 0x1p-900;
    constexpr double kMagnifier = 0x1p100;
    Cubic relative;
    std::transform(c.begin(), c.end(), relative.begin(), [&](Pt const& p) { return p - origin; });
    for (double Pt::*const coordinate : {&Pt::h, &Pt::v}) {
        double size = 0.0;
        for (Pt const& p : relative) {
            size = std::max(std::abs(p.*coordinate), size);
        }
        if (size == std::numeric_limits<double>::infinity()) {
            for (std::size_t i = 0; i < c.size(); ++i) {
                relative[i].*coordinate = c[i].*coordinate * 0.5 - origin.*coordinate * 0.5;
            }
        } else if (size < kLeast) {
            for (Pt& p : relative) {
                p.*coordinate *= kMagnifier;
            }
        }
    }
    return relative;
}

/// The crossings of the line from the first to the second of these points, which surround (0, 0).
int CrossingsOfDiagonal(Cubic ends) {
    // Products of ordinary numbers neither overflow nor lose what counts. Other numbers are scaled,
    // each coordinate by itself, which moves no point across an axis.
    constexpr double kLeast = 0x1p-480;
    constexpr double kGreatest = 0x1p500;
    for (double Pt::*const coordinate : {&Pt::h, &Pt::v}) {
        double const size = std::max(std::abs(ends[0].*coordinate), std::abs(ends[1].*coordinate));
        if (!std::isfinite(size)) {
            return 0; // of a contour that does not count
        }
        if (size < kLeast || size > kGreatest) {
            int const exponent = std::ilogb(size);
            ends[0].*coordinate = std::scalbn(ends[0].*coordinate, -exponent);
            ends[1].*coordinate = std::scalbn(ends[1].*coordinate, -exponent);
        }
    }
    double const product = Cross(ends[0], ends[1]);
    if (ends[1].v > ends[0].v) {
        return product > 0.0 ? 1 : 0;
    }
    return product < 0.0 ? -1 : 0;
}

/// A piece no larger than this part of the curve as seen from the origin is not halved: its chord
/// stands for it.
constexpr double kSmallestPart = 0x1p-50;
/// Halvings after which every piece is as small: its points are 6 · 2^-60 of that size apart.
constexpr int kMostHalvings = 60;

Double2 Middle(Double2 const& a, Double2 const& b) { return a * 0.5 + b * 0.5; } // no overflow

/// The crossings of the halves of a cubic with the ray from (0, 0).
int CrossingsOfHalves(Lanes const& c, double smallest, int halvings) {
    Double2 const m01 = Middle(c[0], c[1]);
    Double2 const m12 = Middle(c[1], c[2]);
    Double2 const m23 = Middle(c[2], c[3]);
    Double2 const m012 = Middle(m01, m12);
    Double2 const m123 = Middle(m12, m23);
    Double2 const split = Middle(m012, m123);
    int crossings = 0;
    int ofChord = 0;
    for (Lanes const& half : {Lanes{c[0], m01, m012, split}, Lanes{split, m123, m23, c[3]}}) {
        Side const start = SideOf(half[0], 0.0);
        Side const first = SideOf(half[1], 0.0);
        Side const second = SideOf(half[2], 0.0);
        Side const end = SideOf(half[3], 0.0);
        Side const all = start & first & second & end;
        if (!Surrounds(all, start | first | second | end)) {
            crossings += PlainCrossings(all, start, end);
        } else if (ChordTells(half[0], half[1], half[2], half[3], ofChord)) {
            crossings += ofChord;
        } else if (halvings < kMostHalvings && SizeOf(half) > smallest) {
            crossings += CrossingsOfHalves(half, smallest, halvings + 1);
        } else if (Surrounds(start & end, start | end)) {
            Pt const from(Lane<1>(half[0]), Lane<0>(half[0]));
            Pt const to(Lane<1>(half[3]), Lane<0>(half[3]));
            crossings += CrossingsOfDiagonal({from, to, from, to});
        } else {
            crossings += PlainCrossings(start & end, start, end);
        }
    }
    return crossings;
}

} // namespace

int CrossingsOfLineAround(TPoint<double> const& a, TPoint<double> const& b,
                          TPoint<double> const& origin) {
    int crossings = 0;
    return LineTells(CoordinatesAt(&a) - CoordinatesAt(&origin),
                     CoordinatesAt(&b) - CoordinatesAt(&origin), crossings)
               ? crossings
               : CrossingsOfDiagonal(Relative({a, b, a, b}, origin));
}

int CrossingsOfCurveAround(TPoint<double> const& p0, TPoint<double> const& p1,
                           TPoint<double> const& p2, TPoint<double> const& p3,
                           TPoint<double> const& origin) {
    Cubic const c = Relative({p0, p1, p2, p3}, origin);
    Lanes const lanes = {CoordinatesAt(&c[0]), CoordinatesAt(&c[1]), CoordinatesAt(&c[2]),
                         CoordinatesAt(&c[3])};
    int crossings = 0;
    if (ChordTells(lanes[0], lanes[1], lanes[2], lanes[3], crossings)) {
        return crossings;
    }
    double const size = SizeOf(lanes);
    // A contour with a coordinate that is not finite does not count.
    return std::isfinite(size) ? CrossingsOfHalves(lanes, size * kSmallestPart, 1) : 0;
}

int CrossingsOfLine(TPoint<double> const* a, TPoint<double> const& origin) {
    Double2 const p = CoordinatesAt(&origin);
    Side const start = SideOf(CoordinatesAt(a), p);
    Side const end = SideOf(CoordinatesAt(a + 1), p);
    Side const all = start & end;
    return Surrounds(all, start | end) ? CrossingsOfLineAround(a[0], a[1], origin)
                                       : PlainCrossings(all, start, end);
}

int CrossingsOfCurve(TPoint<double> const* a, TPoint<double> const& origin) {
    Double2 const p = CoordinatesAt(&origin);
    Side const start = SideOf(CoordinatesAt(a), p);
    Side const second = SideOf(CoordinatesAt(a + 1), p);
    Side const third = SideOf(CoordinatesAt(a + 2), p);
    Side const end = SideOf(CoordinatesAt(a + 3), p);
    Side const all = start & second & third & end;
    return Surrounds(all, start | second | third | end)
               ? CrossingsOfCurveAround(a[0], a[1], a[2], a[3], origin)
               : PlainCrossings(all, start, end);
}

} // namespace trammel_detail

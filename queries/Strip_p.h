// SPDX-License-Identifier: MIT

// Strips around chords, which hold segments of an outline and stretches of it. Not installed.

#ifndef TRAMMEL_STRIP_P_H
#define TRAMMEL_STRIP_P_H

#include "CBezier.h"
#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trammel_detail {

/// A strip around a chord. Every point of the segments that it holds is at most `radius` away from
/// the chord, which runs from `start` to `start` + `delta`.
///
/// The pieces of an outline are mildly bent, so a strip fits them far better than a box. Therefore
/// the number of pieces that are about as near as the nearest one does not grow with the outline.
///
/// Bounds are safe, not tight to the last bits. With u = 2^-53, all rounding errors here are some
/// tens of u times the magnitudes of coordinates. The slack for them is 2^-40, more than a hundred
/// times as much.
///
///   points    The points that the search computes leave the hull of a segment's points by no more
///             than 33u (see ReachOf). Each strip's radius is enlarged by 2^-40 of the coordinates.
///   distance  The parameter t is off by at most 8u|e|/|delta|, which takes the point on the chord
///             8u|e| from the nearest one. Differences and products add as much again.
///
/// Where squares could overflow, the strip is the whole plane. Where all bits of a square could
/// underflow, the chord is a point. The absolute error that underflow leaves in t is below 2^-600.
struct Strip {
    TPoint<double> start;
    TPoint<double> delta;
    double inverse = 0.0; ///< 1 / |delta|²; 0 where delta counts for nothing
    double radius = std::numeric_limits<double>::infinity();

    static constexpr double kSlack = 0x1p-40;
    static constexpr double kLargest = 0x1p500;
    static constexpr double kShortestSquared = 0x1p-900;

    /// The whole plane.
    Strip() = default;

    /// Only the chord from `a` to `b`.
    Strip(TPoint<double> const& a, TPoint<double> const& b) : start(a), delta(b - a), radius(0.0) {
        double const squared = Square(delta);
        if (squared >= kShortestSquared) {
            inverse = 1.0 / squared;
        } else {
            radius = Taxicab(delta);
            delta.SetNull();
        }
    }

    TPoint<double> End() const { return start + delta; }

    /// Returns the square of the distance from `p` to the chord.
    double SquaredChordDistance(TPoint<double> const& p) const {
        TPoint<double> const e = p - start;
        double const t = std::min(std::max(Dot(e, delta) * inverse, 0.0), 1.0);
        return Square(e - delta * t);
    }
    double ChordDistance(TPoint<double> const& p) const {
        return std::sqrt(SquaredChordDistance(p));
    }

    /// True when nothing in the strip is as near as `limit`, a distance, to a point.
    /// `squaredDistance` is the point's SquaredChordDistance. The caller's limit leaves room for
    /// rounding.
    bool Beyond(double limit, double squaredDistance) const {
        double const reach = limit + radius;
        return squaredDistance > reach * reach;
    }
};

/// Returns the strip around a segment. A curve is at most 3/4 as far from its chord as the farther
/// control point. The reason is that the distance from a segment is convex, and that the control
/// points' weights add up to 3t(1 - t) <= 3/4.
inline Strip StripAround(CBezier const& c) {
    double const size = Taxicab(c.P0) + Taxicab(c.P1) + Taxicab(c.P2) + Taxicab(c.P3);
    if (!(size <= Strip::kLargest)) { // also for a NaN
        return Strip();
    }
    Strip strip(c.P0, c.P3);
    strip.radius += 0.75 * std::max(strip.ChordDistance(c.P1), strip.ChordDistance(c.P2));
    strip.radius += Strip::kSlack * size;
    return strip;
}

/// Returns the strip around all that is in `count` strips, 1 or more, which follow each other along
/// the outline. The common chord runs from the first strip's start to the last one's end. A point
/// in a strip is no farther from it than the farther end of the strip's own chord, plus its radius.
inline Strip StripAround(Strip const* strips, std::size_t count) {
    Strip strip(strips[0].start, strips[count - 1].End());
    double size = 0.0;
    double farthest = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        Strip const& part = strips[i];
        if (std::isinf(part.radius)) {
            return Strip();
        }
        double const distance =
            std::max(strip.ChordDistance(part.start), strip.ChordDistance(part.End()));
        farthest = std::max(farthest, distance + part.radius);
        size = std::max(size, Taxicab(part.start) + Taxicab(part.End()) + part.radius);
    }
    strip.radius += farthest + Strip::kSlack * size;
    return strip;
}

} // namespace trammel_detail

#endif

// SPDX-License-Identifier: MIT

// A cubic beside a polyline: the proof that they keep a distance. Not installed.

#ifndef TRAMMEL_STROKEMATCH_P_H
#define TRAMMEL_STROKEMATCH_P_H

#include "Cubic_p.h"
#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace trammel_detail {

/// The points of a stroke, and the length of the polyline up to each of them.
struct StrokePoints {
    std::vector<TPoint<double>> at;
    std::vector<double> length;

    /// Finds the lengths for the points.
    void Measure() {
        length.resize(at.size());
        for (std::size_t i = 1; i < at.size(); ++i) {
            length[i] = length[i - 1] + std::sqrt(Square(at[i] - at[i - 1]));
        }
    }
    void Add(TPoint<double> const& p) {
        length.push_back(at.empty() ? 0.0 : length.back() + std::sqrt(Square(p - at.back())));
        at.push_back(p);
    }
};

/// Lengths whose squares are out of range count as 0, and are less than this.
constexpr double kUnderflow = 0x1p-500;

/// A cubic in powers of the parameter, counted from an anchor.
struct PowerCubic {
    TPoint<double> a0, a1, a2, a3;
    double bend;     ///< no second derivative is longer
    double rounding; ///< the rounding of a distance from the curve to a point beside it

    PowerCubic(Cubic const& c, TPoint<double> const& anchor) : a0(c[0] - anchor) {
        TPoint<double> const b = c[1] - c[0];
        TPoint<double> const d = c[2] - c[1];
        TPoint<double> const e = c[3] - c[2];
        a1 = b * 3.0;
        a2 = (d - b) * 3.0;
        a3 = (e - d) - (d - b);
        TPoint<double> const last = (e - d) * 6.0;
        bend = std::sqrt(std::max(Square(a2) * 4.0, Square(last))) * (1.0 + 0x1p-50);
        // A dozen operations on sums of these terms, each rounded by 2^-53
        rounding = (Taxicab(a0) + Taxicab(a1) + Taxicab(a2) + Taxicab(a3)) * 0x1p-47 + kUnderflow;
    }
    TPoint<double> Point(double t) const { return ((a3 * t + a2) * t + a1) * t + a0; }
    TPoint<double> First(double t) const { return (a3 * (3.0 * t) + a2 * 2.0) * t + a1; }
    TPoint<double> Second(double t) const { return a3 * (6.0 * t) + a2 * 2.0; }
};

/// What MatchRun found.
struct RunMatch {
    double distance;  ///< within it the run and the cubic keep to each other, if `fits`
    std::size_t last; ///< the last point reached
    bool fits;
};

/// Pairs the points `from` to `to` of a stroke with rising parameters of a cubic, and the
/// lines between them with the stretches of the cubic between the parameters. Gives up where a pair
/// may be farther apart than `tolerance`.
///
/// Of a stretch and a line, the ends' distance is taken at the parameters that Newton's method
/// gives, whether or not they are the nearest places. In between, the cubic departs from its chord
/// by at most an eighth of its second derivative. So `distance` bounds the Fréchet distance, and
/// with it the Hausdorff distance. O(to - from); gives up at once where a point is too far away.
RunMatch MatchRun(StrokePoints const& stroke, std::size_t from, std::size_t to, Cubic const& cubic,
                  double tolerance);

/// True when some points of the run seem to be within `tolerance` of the cubic. O(1).
bool SeemsToMatch(StrokePoints const& stroke, std::size_t from, std::size_t to, Cubic const& cubic,
                  double tolerance);

} // namespace trammel_detail

#endif

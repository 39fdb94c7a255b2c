// SPDX-License-Identifier: MIT

// What results are compared with when it is asked how far they are from the truth: quadrature for
// lengths, dense sampling for distances, each far finer than what is judged.

#ifndef TRAMMEL_TRUTH_H
#define TRAMMEL_TRUTH_H

#include <trammel/CBezier.h>

#include <cstddef>
#include <functional>
#include <vector>

namespace truth {

typedef std::vector<TPoint<double>> Chain;

/// The length of the curve from parameter t0 to t1, to some 1e-12 of it.
double Length(CBezier const& curve, double t0, double t1);

/// The distance from `p` to the segment from `a` to `b`.
double Distance(TPoint<double> const& p, TPoint<double> const& a, TPoint<double> const& b);

/// The distance from `p` to the nearest point of the curve.
double Distance(CBezier const& curve, TPoint<double> const& p);

/// The greatest distance of a point of the curve from the chain.
double Deviation(CBezier const& curve, Chain const& chain);

/// The greatest of some errors, and the one that 95 of 100 do not exceed.
struct Errors {
    double worst = 0.0;
    double p95 = 0.0;
};

Errors Summary(std::vector<double> errors);

// How far answers to questions on curves are off. `answer(i)` answers for curve i; where there are
// many, only some of them are asked.

/// Distances of curves from their flattenings, in units of the coordinates.
Errors OfFlattening(std::vector<CBezier> const& curves,
                    std::function<Chain(std::size_t)> const& answer);
/// Lengths, relative.
Errors OfLength(std::vector<CBezier> const& curves,
                std::function<double(std::size_t)> const& answer);
/// Parameters nearest to points: how much farther the point found is than the nearest, in units of
/// the coordinates.
Errors OfNearest(std::vector<CBezier> const& curves, Chain const& points,
                 std::function<double(std::size_t)> const& answer);
/// Parameters at which a fraction of the length is reached: the difference from the fraction there.
Errors OfFraction(std::vector<CBezier> const& curves, double fraction,
                  std::function<double(std::size_t)> const& answer);
/// Whether points are within the tolerance of the curves: how far the distance was from the
/// tolerance where the answer was wrong, 0 where it was right.
Errors OfHit(std::vector<CBezier> const& curves, Chain const& points, double tolerance,
             std::function<bool(std::size_t)> const& answer);

} // namespace truth

#endif

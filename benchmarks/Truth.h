// SPDX-License-Identifier: MIT

// The truth with which results are compared: quadrature for lengths and dense sampling for
// distances. Both are far finer than the results.

#ifndef TRAMMEL_TRUTH_H
#define TRAMMEL_TRUTH_H

#include <trammel/CBezier.h>

#include <cstddef>
#include <functional>
#include <vector>

namespace truth {

typedef std::vector<TPoint<double>> Chain;

/// Returns the length of the curve from parameter t0 to t1, to some 1e-12 of it.
double Length(CBezier const& curve, double t0, double t1);

/// Returns the distance from `p` to the segment from `a` to `b`.
double Distance(TPoint<double> const& p, TPoint<double> const& a, TPoint<double> const& b);

/// Returns the distance from `p` to the nearest point of the curve.
double Distance(CBezier const& curve, TPoint<double> const& p);

/// Returns the greatest distance of a point of the curve from the chain.
double Deviation(CBezier const& curve, Chain const& chain);

/// The greatest of some errors, and the error that 95 of 100 do not exceed.
struct Errors {
    double worst = 0.0;
    double p95 = 0.0;
};

Errors Summary(std::vector<double> errors);

// The functions below return the errors of answers to questions on curves. `answer(i)` answers for
// curve i. They ask only about some of many curves.

/// Distances of curves from their flattenings, in units of the coordinates.
Errors OfFlattening(std::vector<CBezier> const& curves,
                    std::function<Chain(std::size_t)> const& answer);
/// Lengths, relative.
Errors OfLength(std::vector<CBezier> const& curves,
                std::function<double(std::size_t)> const& answer);
/// Parameters nearest to points: the distance of the point found less the distance of the nearest
/// point, in units of the coordinates.
Errors OfNearest(std::vector<CBezier> const& curves, Chain const& points,
                 std::function<double(std::size_t)> const& answer);
/// Parameters at a fraction of the length: the difference from the fraction there.
Errors OfFraction(std::vector<CBezier> const& curves, double fraction,
                  std::function<double(std::size_t)> const& answer);
/// Hits of points within the tolerance of the curves: 0 for a right answer, and the difference of
/// the distance from the tolerance for a wrong one.
Errors OfHit(std::vector<CBezier> const& curves, Chain const& points, double tolerance,
             std::function<bool(std::size_t)> const& answer);

} // namespace truth

#endif

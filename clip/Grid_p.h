// SPDX-License-Identifier: MIT

// The integer grid of one operation, and the way between doubles and grid. Not installed.
#ifndef TRAMMEL_GRID_P_H
#define TRAMMEL_GRID_P_H

#include "TwoSum_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace trammel_detail {

/// A point of the grid. Both coordinates lie within -2^60 .. 2^60. So differences are at most 2^61,
/// and cross products of differences, at most 2^123, fit in 128 bits.
struct GridPoint {
    std::int64_t x;
    std::int64_t y;
};

inline bool operator==(GridPoint a, GridPoint b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(GridPoint a, GridPoint b) { return !(a == b); }
/// Orders by y, then by x, as a sweep upwards meets the points.
inline bool operator<(GridPoint a, GridPoint b) { return a.y != b.y ? a.y < b.y : a.x < b.x; }

/// Returns the double nearest to an integer.
///
/// GCC for 32-bit x86 leaves the cast's rounding out where the double becomes an integer again. It
/// takes the integer through the old floating-point unit, whose registers hold all 64 bits. SSE2
/// adds two halves, and rounds the sum.
inline double NearestDouble(std::int64_t n) {
#ifdef __i386__
    return static_cast<double>(static_cast<std::int32_t>(n >> 32)) * 0x1p32 +
           static_cast<double>(static_cast<std::uint32_t>(n));
#else
    return static_cast<double>(n);
#endif
}

/// One axis of the grid over the range of the coordinates. The range has 2^60 to 2^61 steps, or
/// fewer where such a step would be finer than all doubles. The step is a power of two.
///
/// The grid is centred on the range and depends on the coordinates' differences from its lower end
/// only. So a figure gives the same grid points wherever it is moved. As the step is a power of
/// two, the mapping is exact for every double without bits below the step. All doubles that are at
/// least 2^-8 of the range from zero are of this kind.
class GridAxis {
public:
    /// The axis for coordinates in low <= v <= high, where low < high and both are finite.
    GridAxis(double low, double high);

    /// Returns the grid coordinate nearest to `v`, which lies in the axis' range.
    std::int64_t ToGrid(double v) const;

    /// Returns the double nearest to grid coordinate `g`, and sets `g` to the coordinate of that
    /// double. The two coordinates differ where the doubles are coarser than the grid. The double
    /// always lies on the grid.
    double FromGrid(std::int64_t& g) const;

    /// Returns the distance of the double at grid coordinate `g` to the next one away from zero, in
    /// steps, and at least 1. Rounding can give twice the distance for the last doubles below a
    /// power of two, and half of it for the first ones from there on.
    std::int64_t Spacing(std::int64_t g) const;

    /// Returns the largest Spacing() of the axis.
    std::int64_t LargestSpacing() const { return std::max(Spacing(-mHalf), Spacing(mHalf + 1)); }

    /// Returns the double at grid coordinate `g`, which is the coordinate of a double.
    double OfDouble(std::int64_t g) const;

    /// Returns a magnitude from which on all doubles map exactly.
    double ExactFrom() const { return mExactFrom; }

private:
    // A double v is scaled to v * mUp1 * mUp2, of magnitude 4 at most. One factor alone might be
    // beyond the doubles. mDown1 and mDown2 are the inverses.
    double mUp1 = 1;
    double mUp2 = 1;
    double mDown1 = 1;
    double mDown2 = 1;
    double mOrigin = 0;       // scaled, a multiple of the step near the range's lower end
    std::int64_t mHalf = 0;   // half the range, in steps: mOrigin has grid coordinate -mHalf
    double mStep = 1;         // scaled
    double mStepsPerUnit = 1; // 1 / mStep
    double mExactFrom = 0;
    // True when the doubles' zero is near enough to count steps from there. The count is the sum of
    // mFromZero and a grid coordinate. Its magnitude is at most 2^62.
    bool mIsNearZero = false;
    std::int64_t mFromZero = 0; // 0 unless mIsNearZero
};

inline std::int64_t GridAxis::ToGrid(double v) const {
    TwoSumResult const d = TwoSum(v * mUp1 * mUp2, -mOrigin);
    double const steps = d.value * mStepsPerUnit;
    std::int64_t const whole = static_cast<std::int64_t>(steps);
    double const rest = (steps - static_cast<double>(whole)) + d.error * mStepsPerUnit;
    // To add and subtract this rounds small numbers to integers, faster than a function does.
    double const integers = 0x1.8p52;
    return whole - mHalf + static_cast<std::int64_t>((rest + integers) - integers);
}

inline double GridAxis::FromGrid(std::int64_t& g) const {
    if (mIsNearZero) {
        // The conversion rounds to the nearest double, as the code below does.
        double const v = NearestDouble(g + mFromZero);
        g = static_cast<std::int64_t>(v) - mFromZero;
        return v * mStep * mDown1 * mDown2;
    }
    std::int64_t const steps = g + mHalf;
    double const high = NearestDouble(steps);
    double const low = static_cast<double>(steps - static_cast<std::int64_t>(high));
    TwoSumResult const sum = TwoSum(mOrigin, high * mStep);
    TwoSumResult const rest = TwoSum(sum.error, low * mStep);
    TwoSumResult const v = TwoSum(sum.value, rest.value);
    g -= static_cast<std::int64_t>(v.error * mStepsPerUnit) +
         static_cast<std::int64_t>(rest.error * mStepsPerUnit);
    return v.value * mDown1 * mDown2;
}

inline double GridAxis::OfDouble(std::int64_t g) const {
    if (mIsNearZero) {
        return static_cast<double>(g + mFromZero) * mStep * mDown1 * mDown2;
    }
    std::int64_t const steps = g + mHalf;
    double const high = NearestDouble(steps);
    double const low = static_cast<double>(steps - static_cast<std::int64_t>(high));
    TwoSumResult const sum = TwoSum(mOrigin, high * mStep);
    // Both sums are exact. The inner one is the double sought less sum.value, which is near it. The
    // outer one is the double sought.
    return (sum.value + (sum.error + low * mStep)) * mDown1 * mDown2;
}

inline std::int64_t GridAxis::Spacing(std::int64_t g) const {
    double const v = mOrigin + static_cast<double>(g + mHalf) * mStep;
    // The power of two below v has its bits without those of the fraction and the sign.
    std::uint64_t bits = 0;
    std::memcpy(&bits, &v, sizeof bits);
    bits &= 0x7FF0000000000000;
    double power = 0;
    std::memcpy(&power, &bits, sizeof power);
    double const spacing = power * 0x1p-52 * mStepsPerUnit;
    return spacing > 1 ? static_cast<std::int64_t>(spacing) : 1;
}

/// The grid of one clip, and the operands' vertices that it cannot hold exactly.
class ClipGrid {
public:
    /// The grid over lowX <= x <= highX, lowY <= y <= highY.
    ClipGrid(double lowX, double lowY, double highX, double highY)
        : mX(lowX, highX), mY(lowY, highY) {}

    /// Returns the grid point of an operand's vertex. Remembers the vertex if the way back would
    /// change it.
    GridPoint Add(double x, double y) {
        GridPoint const p{mX.ToGrid(x), mY.ToGrid(y)};
        if (std::fabs(x) < mX.ExactFrom() || std::fabs(y) < mY.ExactFrom()) {
            AddInexact(p, x, y);
        }
        return p;
    }

    /// Has to be called after the last Add() and before the first ToDoubles().
    void FinishAdding();

    /// Returns the nearest point that is a pair of doubles.
    GridPoint Snapped(GridPoint p) const {
        mX.FromGrid(p.x);
        mY.FromGrid(p.y);
        return p;
    }

    /// Returns GridAxis::Spacing() of a snapped point in x and in y.
    GridPoint Spacing(GridPoint p) const { return {mX.Spacing(p.x), mY.Spacing(p.y)}; }
    GridPoint LargestSpacing() const { return {mX.LargestSpacing(), mY.LargestSpacing()}; }

    /// Sets x and y to the doubles of a snapped point. Where Add() remembered vertices, these are
    /// the doubles of the first of them.
    void ToDoubles(GridPoint p, double& x, double& y) const;

private:
    void AddInexact(GridPoint p, double x, double y);

    struct Vertex {
        GridPoint at;
        double x;
        double y;
    };
    GridAxis mX;
    GridAxis mY;
    std::vector<Vertex> mInexact;
};

} // namespace trammel_detail

#endif

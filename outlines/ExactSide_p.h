// SPDX-License-Identifier: MIT

// On which side of a line a point lies, decided exactly. Not installed.

#ifndef TRAMMEL_EXACTSIDE_P_H
#define TRAMMEL_EXACTSIDE_P_H

#include "PointMath_p.h"
#include "TPoint.h"
#include "TwoSum_p.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace trammel_detail {

/// A sum of numbers without loss: its parts do not overlap, and the last one is the greatest.
/// Source: J. R. Shewchuk, Adaptive precision floating-point arithmetic, 1997 (Grow-Expansion).
template <std::size_t kMost> class ExactSum {
public:
    void Add(double x) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < mCount; ++i) {
            TwoSumResult const sum = TwoSum(x, mParts[i]);
            x = sum.value;
            if (sum.error != 0.0) {
                mParts[kept++] = sum.error;
            }
        }
        mCount = kept;
        if (x != 0.0) {
            mParts[mCount++] = x;
        }
    }
    /// Adds a product; exact unless it leaves the range of normal doubles.
    void AddProduct(double a, double b) {
        double const product = a * b;
        Add(std::fma(a, b, -product));
        Add(product);
    }
    int Sign() const { return mCount == 0 ? 0 : mParts[mCount - 1] > 0.0 ? 1 : -1; }

private:
    std::array<double, kMost> mParts;
    std::size_t mCount = 0;
};

/// Returns the sign of Cross(a - c, b - c), exactly, unless a product leaves the range of normal
/// doubles. It is 0 for three points on one line.
inline int ExactSide(TPoint<double> const& a, TPoint<double> const& b, TPoint<double> const& c) {
    double const left = (a.h - c.h) * (b.v - c.v);
    double const right = (a.v - c.v) * (b.h - c.h);
    double const difference = left - right;
    // Both products are off by less than 3 roundings, and the difference by one.
    double const bound = 0x1p-51 * (std::abs(left) + std::abs(right));
    if (std::abs(difference) > bound) {
        return difference > 0.0 ? 1 : -1;
    }
    TwoSumResult const ah = TwoSum(a.h, -c.h);
    TwoSumResult const av = TwoSum(a.v, -c.v);
    TwoSumResult const bh = TwoSum(b.h, -c.h);
    TwoSumResult const bv = TwoSum(b.v, -c.v);
    ExactSum<16> sum;
    for (double const x : {ah.error, ah.value}) {
        for (double const y : {bv.error, bv.value}) {
            sum.AddProduct(x, y);
        }
    }
    for (double const x : {av.error, av.value}) {
        for (double const y : {bh.error, bh.value}) {
            sum.AddProduct(-x, y);
        }
    }
    return sum.Sign();
}

} // namespace trammel_detail

#endif

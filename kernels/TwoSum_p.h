// SPDX-License-Identifier: MIT

// Sums without loss. Not installed.

#ifndef TRAMMEL_TWOSUM_P_H
#define TRAMMEL_TWOSUM_P_H

namespace trammel_detail {

/// Number is double, or a vector whose lanes are sums of their own.
template <class Number> struct TwoSumOf {
    Number value; ///< the rounded sum
    Number error; ///< the exact sum less `value`; it is a Number itself
};
typedef TwoSumOf<double> TwoSumResult;

/// Returns a + b without loss, unless the sum overflows. Source: D. E. Knuth, The Art of Computer
/// Programming 2, section 4.2.2, theorem B.
template <class Number> inline TwoSumOf<Number> TwoSum(Number const& a, Number const& b) {
    Number const s = a + b;
    Number const t = s - a;
    return {s, (a - (s - t)) + (b - t)};
}

/// A sum of many numbers whose error hardly grows with their count n. The sum is off by the
/// rounding of the result, and by n² 2^-106 of the sum of the numbers' magnitudes.
///
/// Source: T. Ogita, S. M. Rump, S. Oishi, Accurate sum and dot product, SIAM Journal on Scientific
/// Computing 26(6), 2005 (Sum2).
template <class Number> class CompensatedSum {
public:
    void Add(Number const& x) {
        TwoSumOf<Number> const sum = TwoSum(mSum, x);
        mSum = sum.value;
        mErrors = mErrors + sum.error;
    }
    Number Value() const { return mSum + mErrors; }
    /// Returns the sum without what rounding took from it.
    Number const& Sum() const { return mSum; }
    /// Returns what rounding took from the sum.
    Number const& Errors() const { return mErrors; }

private:
    Number mSum = 0.0;
    Number mErrors = 0.0;
};

} // namespace trammel_detail

#endif

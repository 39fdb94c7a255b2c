// SPDX-License-Identifier: MIT

// Sums without loss. Not installed.

#ifndef TRAMMEL_TWOSUM_P_H
#define TRAMMEL_TWOSUM_P_H

namespace trammel_detail {

struct TwoSumResult {
    double value; ///< the rounded sum
    double error; ///< the exact sum less `value`; it is a double itself
};

/// Returns a + b without loss, unless the sum overflows. Source: D. E. Knuth, The Art of Computer
/// Programming 2, section 4.2.2, theorem B.
inline TwoSumResult TwoSum(double a, double b) {
    double const s = a + b;
    double const t = s - a;
    return {s, (a - (s - t)) + (b - t)};
}

/// A sum of many numbers whose error hardly grows with their count n. The sum is off by the
/// rounding of the result, and by n² 2^-106 of the sum of the numbers' magnitudes.
///
/// Source: T. Ogita, S. M. Rump, S. Oishi, Accurate sum and dot product, SIAM Journal on Scientific
/// Computing 26(6), 2005 (Sum2).
class CompensatedSum {
public:
    void Add(double x) {
        TwoSumResult const sum = TwoSum(mSum, x);
        mSum = sum.value;
        mErrors += sum.error;
    }
    double Value() const { return mSum + mErrors; }

private:
    double mSum = 0.0;
    double mErrors = 0.0;
};

} // namespace trammel_detail

#endif

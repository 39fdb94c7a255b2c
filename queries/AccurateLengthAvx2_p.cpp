// SPDX-License-Identifier: MIT
//
// The integral of a curve's speed for processors with AVX2. Compiled with -mavx2, and called only
// where the processor has it; see CurveKernelsAvx2_p.cpp for what must not be here.

#include "AccurateLengthForms_p.h"

namespace trammel_detail {

double CurveLengthAvx2(CBezier const& curve, double accuracy,
                       double const (&table)[kGaussEntries]) {
    return CurveLengthForm<PackAvx2>(curve, accuracy, table);
}

double SpeedLengthAvx2(SpeedCurve& curve, double t0, double t1, double accuracy,
                       double const (&table)[kGaussEntries]) {
    return SpeedLengthForm<PackAvx2>(curve, t0, t1, accuracy, table);
}

} // namespace trammel_detail

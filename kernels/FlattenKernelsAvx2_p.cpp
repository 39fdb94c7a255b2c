// SPDX-License-Identifier: MIT

// The arithmetic of flattening for processors with AVX2. Vector_p.h tells what such a file may not
// contain.

#include "FlattenKernelForms_p.h"

namespace trammel_detail {

double PlanFlatteningAvx2(FlatCubic const& curve, double scale, FlatPlan& plan) {
    return PlanFlatteningForm<WideDouble4>(curve, scale, plan);
}

void NextFlatRunAvx2(FlatCubic const& curve, double tolerance, FlatPlan& plan, FlatRun& run) {
    NextFlatRunForm<WideDouble4>(curve, tolerance, plan, run);
}

int SomeChordsAvx2(FlatCubic const& curve, double scale, double tolerance, FlatRun& run) {
    return SomeChordsForm<WideDouble4>(curve, scale, tolerance, run);
}

int FewChordsAvx2(double const* points, double tolerance, double* out) {
    return FewChordsForm<WideDouble4>(points, tolerance, out);
}

} // namespace trammel_detail

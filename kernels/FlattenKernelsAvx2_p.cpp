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

int FewChordsAvx2(FlatCubic const& curve, double scale, double tolerance, FlatRun& run) {
    return FewChordsForm<WideDouble4>(curve, scale, tolerance, run);
}

} // namespace trammel_detail

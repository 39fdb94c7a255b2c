// SPDX-License-Identifier: MIT
//
// The arithmetic of flattening for processors with AVX2. Compiled with -mavx2, and called only
// where the processor has it; see CurveKernelsAvx2_p.cpp for what must not be here.

#include "AccurateFlattenForms_p.h"

namespace trammel_detail {

double PlanFlatteningAvx2(FlatCubic const& curve, double scale, FlatPlan& plan) {
    return PlanFlatteningForm<PackAvx2>(curve, scale, plan);
}

void NextFlatRunAvx2(FlatCubic const& curve, double tolerance, FlatPlan& plan, FlatRun& run) {
    NextFlatRunForm<PackAvx2>(curve, tolerance, plan, run);
}

int FewChordsAvx2(FlatCubic const& curve, double scale, double tolerance, FlatRun& run) {
    return FewChordsForm<PackAvx2>(curve, scale, tolerance, run);
}

} // namespace trammel_detail

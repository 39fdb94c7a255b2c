// SPDX-License-Identifier: MIT

// The arithmetic of flattening for every processor.

#include "FlattenKernelForms_p.h"

namespace trammel_detail {

double PlanFlatteningPortable(FlatCubic const& curve, double scale, FlatPlan& plan) {
    return PlanFlatteningForm<Double4>(curve, scale, plan);
}

void NextFlatRunPortable(FlatCubic const& curve, double tolerance, FlatPlan& plan, FlatRun& run) {
    NextFlatRunForm<Double4>(curve, tolerance, plan, run);
}

int FewChordsPortable(FlatCubic const& curve, double scale, double tolerance, FlatRun& run) {
    return FewChordsForm<Double4>(curve, scale, tolerance, run);
}

} // namespace trammel_detail

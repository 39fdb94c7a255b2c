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

int SomeChordsPortable(FlatCubic const& curve, double scale, double tolerance, FlatRun& run) {
    return SomeChordsForm<Double4>(curve, scale, tolerance, run);
}

int FewChordsPortable(double const* points, double tolerance, double* out) {
    return FewChordsForm<Double4>(points, tolerance, out);
}

} // namespace trammel_detail

// SPDX-License-Identifier: MIT

// The arithmetic of flattening for every processor.

#include "FlattenChordForms_p.h"
#include "FlattenKernelForms_p.h"
#include "FlattenPackForms_p.h"

namespace trammel_detail {

double PlanFlatteningPortable(FlatCubic const& curve, double scale, FlatPlan& plan) {
    return PlanFlatteningForm<Double4>(curve, scale, plan);
}

void NextFlatRunPortable(FlatCubic const& curve, double tolerance, FlatPlan& plan, FlatRun& run) {
    NextFlatRunForm<Double4>(curve, tolerance, plan, run);
}

int DivideIntoChordsPortable(double const* points, double tolerance, double* out,
                             FlatChords& chords) {
    return DivideIntoChordsForm<Double4>(points, tolerance, out, chords);
}

void DividePackPortable(double const* const (&curves)[kPack], double tolerance, FlatPack& pack) {
    DividePackForm<Double4>(curves, tolerance, pack);
}

} // namespace trammel_detail

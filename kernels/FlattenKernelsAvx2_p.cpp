// SPDX-License-Identifier: MIT

// The arithmetic of flattening for processors with AVX2. Vector_p.h tells what such a file may not
// contain.

#include "FlattenChordForms_p.h"
#include "FlattenKernelForms_p.h"
#include "FlattenPackForms_p.h"

namespace trammel_detail {

double PlanFlatteningAvx2(FlatCubic const& curve, double scale, FlatPlan& plan) {
    return PlanFlatteningForm<WideDouble4>(curve, scale, plan);
}

void NextFlatRunAvx2(FlatCubic const& curve, double tolerance, FlatPlan& plan, FlatRun& run) {
    NextFlatRunForm<WideDouble4>(curve, tolerance, plan, run);
}

int DivideIntoChordsAvx2(double const* points, double tolerance, double* out, FlatChords& chords) {
    return DivideIntoChordsForm<WideDouble4>(points, tolerance, out, chords);
}

void DividePackAvx2(double const* const (&curves)[kPack], double tolerance, FlatPack& pack) {
    DividePackForm<WideDouble4>(curves, tolerance, pack);
}

} // namespace trammel_detail

// SPDX-License-Identifier: MIT
//
// The curve kernels for processors with AVX2. Compiled with -mavx2, and called only where the
// processor has it. Every function that is not inlined here has a name of its own: one shared with
// another file, compiled for this processor, might be the one that the linker keeps.

#include "CurveKernelForms_p.h"

namespace trammel_detail {

int DivideBlockAvx2(BlockJob const& job, double* out) {
    return BlockForm<PackAvx2>(job).Divide(out);
}

void EdgeLengthsAvx2(double const* points, long edges, double* lengths) {
    EdgeLengthsForm<PackAvx2>(points, edges, lengths);
}

} // namespace trammel_detail

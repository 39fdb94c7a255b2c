// SPDX-License-Identifier: MIT

// The curve kernels for processors with AVX2. Vector_p.h tells what such a file may not contain.

#include "CurveKernelForms_p.h"

namespace trammel_detail {

int DivideBlockAvx2(BlockJob const& job, double* out) {
    return BlockForm<WideDouble4>(job).Divide(out);
}

void EdgeLengthsAvx2(double const* points, long edges, double* lengths) {
    EdgeLengthsForm<WideDouble4>(points, edges, lengths);
}

} // namespace trammel_detail

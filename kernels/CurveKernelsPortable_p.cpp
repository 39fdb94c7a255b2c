// SPDX-License-Identifier: MIT
//
// The curve kernels for every processor.

#include "CurveKernelForms_p.h"

namespace trammel_detail {

int DivideBlockPortable(BlockJob const& job, double* out) {
    return BlockForm<PackPair>(job).Divide(out);
}

void EdgeLengthsPortable(double const* points, long edges, double* lengths) {
    EdgeLengthsForm<PackPair>(points, edges, lengths);
}

} // namespace trammel_detail

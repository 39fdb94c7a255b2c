// SPDX-License-Identifier: MIT

// The curve kernels for every processor.

#include "CurveKernelForms_p.h"

namespace trammel_detail {

int DivideBlockPortable(BlockJob const& job, double* out) {
    return BlockForm<Double4>(job).Divide(out);
}

void EdgeLengthsPortable(double const* points, long edges, double* lengths) {
    EdgeLengthsForm<Double4>(points, edges, lengths);
}

} // namespace trammel_detail

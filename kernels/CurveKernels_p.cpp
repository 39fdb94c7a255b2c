// SPDX-License-Identifier: MIT

#include "CurveKernels_p.h"

#include "Dispatch_p.h"

namespace trammel_detail {

#ifdef TRAMMEL_AVX2_KERNELS

int DivideBlock(BlockJob const& job, double* out) {
    return HasWideVectors() ? DivideBlockAvx2(job, out) : DivideBlockPortable(job, out);
}

void EdgeLengths(double const* points, long edges, double* lengths) {
    if (HasWideVectors()) {
        EdgeLengthsAvx2(points, edges, lengths);
    } else {
        EdgeLengthsPortable(points, edges, lengths);
    }
}

#else

int DivideBlock(BlockJob const& job, double* out) { return DivideBlockPortable(job, out); }

void EdgeLengths(double const* points, long edges, double* lengths) {
    EdgeLengthsPortable(points, edges, lengths);
}

#endif

} // namespace trammel_detail

// SPDX-License-Identifier: MIT

#include "UCurveKernels_p.h"

#include <atomic>

namespace trammel_detail {

#ifdef TRAMMEL_AVX2_KERNELS

namespace {

bool ProcessorHasAvx2() {
    __builtin_cpu_init(); // may run before the constructors that do it otherwise
    return __builtin_cpu_supports("avx2") != 0;
}

std::atomic<bool> gTakeAvx2{ProcessorHasAvx2()};

} // namespace

int DivideBlock(BlockJob const& job, double* out) {
    return gTakeAvx2.load(std::memory_order_relaxed) ? DivideBlockAvx2(job, out)
                                                     : DivideBlockPortable(job, out);
}

void EdgeLengths(double const* points, long edges, double* lengths) {
    if (gTakeAvx2.load(std::memory_order_relaxed)) {
        EdgeLengthsAvx2(points, edges, lengths);
    } else {
        EdgeLengthsPortable(points, edges, lengths);
    }
}

bool UsePortableKernels(bool portable) {
    bool const has = ProcessorHasAvx2();
    gTakeAvx2 = has && !portable;
    return has;
}

#else

int DivideBlock(BlockJob const& job, double* out) { return DivideBlockPortable(job, out); }

void EdgeLengths(double const* points, long edges, double* lengths) {
    EdgeLengthsPortable(points, edges, lengths);
}

bool UsePortableKernels(bool /*portable*/) { return false; }

#endif

} // namespace trammel_detail

// SPDX-License-Identifier: MIT

#include "Dispatch_p.h"

namespace trammel_detail {

namespace {

bool Detect() {
#if defined(TRAMMEL_AVX2_KERNELS)
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0; // asks the system, too
#else
    return false;
#endif
}

} // namespace

Vectors gVectors = Vectors::kUnknown;

Vectors FindVectors() {
    Vectors vectors = Detect() ? Vectors::kWide : Vectors::kNarrow;
    __atomic_store(&gVectors, &vectors, __ATOMIC_RELAXED);
    return vectors;
}

bool UsePortableForms(bool portable) {
    bool const has = Detect();
    Vectors vectors = has && !portable ? Vectors::kWide : Vectors::kNarrow;
    __atomic_store(&gVectors, &vectors, __ATOMIC_SEQ_CST);
    return has;
}

} // namespace trammel_detail

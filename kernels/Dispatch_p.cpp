// SPDX-License-Identifier: MIT

#include "Dispatch_p.h"

#include <atomic>

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

enum class Vectors : int { kUnknown, kNarrow, kWide };

std::atomic<Vectors> gVectors{Vectors::kUnknown};

} // namespace

bool HasWideVectors() {
    Vectors vectors = gVectors.load(std::memory_order_relaxed);
    if (vectors == Vectors::kUnknown) {
        vectors = Detect() ? Vectors::kWide : Vectors::kNarrow;
        gVectors.store(vectors, std::memory_order_relaxed);
    }
    return vectors == Vectors::kWide;
}

bool UsePortableForms(bool portable) {
    bool const has = Detect();
    gVectors = has && !portable ? Vectors::kWide : Vectors::kNarrow;
    return has;
}

} // namespace trammel_detail

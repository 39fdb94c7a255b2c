// SPDX-License-Identifier: MIT

// The choice between the two forms of a kernel: the one for every processor, and the one for
// processors with AVX2. Both give the same results to the last bit. Not installed.

#ifndef TRAMMEL_DISPATCH_P_H
#define TRAMMEL_DISPATCH_P_H

#include "TrammelExport.h"

#include <type_traits>

namespace trammel_detail {

/// True when the build has the forms for AVX2 (cmake/TrammelKernels.cmake).
#ifdef TRAMMEL_AVX2_KERNELS
inline constexpr bool kHasAvx2Forms = true;
#else
inline constexpr bool kHasAvx2Forms = false;
#endif

/// Makes the portable forms run (true), or those for this processor again (false), so that tests
/// can compare the two. Returns false when the portable forms run in both cases. Other threads must
/// not call the library meanwhile.
TRAMMEL_API bool UsePortableForms(bool portable);

/// Which forms run.
enum class Vectors : int { kUnknown, kNarrow, kWide };

/// What UsePortableForms said last or, before, what FindVectors found. It is read and written by
/// the compiler's atomic operations: files for AVX2 may not share std::atomic's functions.
extern Vectors gVectors;

/// Finds out which forms run here, keeps it in gVectors and returns it.
Vectors FindVectors();

/// True when the forms for AVX2 run: the build has them, processor and system have AVX2, and
/// UsePortableForms(true) was not called. The first call finds it out.
[[gnu::always_inline]] inline bool HasWideVectors() {
    Vectors vectors;
    __atomic_load(&gVectors, &vectors, __ATOMIC_RELAXED);
    return (vectors == Vectors::kUnknown ? FindVectors() : vectors) == Vectors::kWide;
}

/// Calls the form of a kernel that suits this processor. Where the build has no forms for AVX2,
/// `avx2` needs no definition.
template <auto portable, auto avx2, class... Arguments>
[[gnu::always_inline]] inline auto Dispatch(Arguments&&... arguments) {
    static_assert(std::is_same_v<decltype(portable), decltype(avx2)>, "two forms of one kernel");
    if constexpr (kHasAvx2Forms) {
        if (HasWideVectors()) {
            return avx2(arguments...);
        }
    }
    return portable(arguments...);
}

} // namespace trammel_detail

#endif

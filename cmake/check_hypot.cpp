// SPDX-License-Identifier: MIT

// The configuration runs this program. It ends with 0 when our inlined hypot gives this C library's bits
// for all pairs that it tries.

#define TRAMMEL_INLINE_HYPOT // NOLINT: what is to be tried
#include "Hypot_p.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

std::uint64_t state = 0x9E3779B97F4A7C15u;

std::uint64_t Next() { // xorshift64*, Vigna
    state ^= state >> 12;
    state ^= state << 25;
    state ^= state >> 27;
    return state * 0x2545F4914F6CDD1Du;
}

bool Same(double h, double v) {
    double const ours = trammel_detail::Hypot(h, v);
    // Through a volatile, so that no compiler computes it beforehand.
    volatile double const argument = h;
    double const theirs = std::hypot(argument, v);
    return std::memcmp(&ours, &theirs, sizeof ours) == 0;
}

} // namespace

int main() {
    for (int i = 0; i < 1000000; ++i) {
        double const mantissaH = 1.0 + static_cast<double>(Next() >> 12) * 0x1p-52;
        double const mantissaV = 1.0 + static_cast<double>(Next() >> 12) * 0x1p-52;
        int const exponent = static_cast<int>(Next() % 40) - 20;
        int const apart = static_cast<int>(Next() % 8) - 4;
        if (!Same(std::ldexp(mantissaH, exponent), -std::ldexp(mantissaV, exponent + apart))) {
            return 1;
        }
        int const far = static_cast<int>(Next() % 2000) - 1000;
        int const gap = static_cast<int>(Next() % 128) - 64;
        if (!Same(std::ldexp(mantissaH, far), std::ldexp(mantissaV, far + gap))) {
            return 1;
        }
    }
    double const special[] = {0.0,       -0.0,     1.0,      3.0,      4.0,      0x1p-1074,
                              0x1p-1022, 0x1p-459, 0x1p511,  0x1p-460, 0x1p512,  0x1p-538,
                              0x1p-513,  0x1p600,  0x1p1023, 0x1p565,  0x1p-405, 0x1p-406,
                              -0x1p-404, 1e308,    HUGE_VAL};
    for (double const h : special) {
        for (double const v : special) {
            if (!Same(h, v) || !Same(h * (1.0 + 0x1p-52), v)) {
                return 1;
            }
        }
    }
    return 0;
}

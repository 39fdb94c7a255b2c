// SPDX-License-Identifier: MIT

// Polynomials in Bernstein form. Not installed.

#ifndef TRAMMEL_BERNSTEIN_P_H
#define TRAMMEL_BERNSTEIN_P_H

#include "PointMath_p.h"
#include "TPoint.h"

#include <array>
#include <cstddef>

namespace trammel_detail {

/// Cuts a polynomial at its middle.
template <class Value, std::size_t N>
void CutAtMiddle(std::array<Value, N> const& whole, std::array<Value, N>& left,
                 std::array<Value, N>& right) {
    right = whole;
    for (std::size_t k = 0; k < N; ++k) {
        left[k] = right[0];
        for (std::size_t i = 0; i + 1 + k < N; ++i) {
            right[i] = (right[i] + right[i + 1]) * 0.5;
        }
    }
}

// Polynomials in scaled Bernstein form, in which coefficient k has the factor binomial(n, k):
// products are then those of the coefficients.

template <std::size_t N, std::size_t M>
std::array<double, N + M - 1> Product(std::array<double, N> const& a,
                                      std::array<double, M> const& b) {
    std::array<double, N + M - 1> result = {};
    for (std::size_t i = 0; i < N; ++i) {
        for (std::size_t k = 0; k < M; ++k) {
            result[i + k] += a[i] * b[k];
        }
    }
    return result;
}

template <std::size_t N> constexpr std::array<double, N> Binomials() {
    std::array<double, N> result = {};
    double value = 1.0;
    for (std::size_t k = 0; k < N; ++k) {
        result[k] = value;
        value = value * static_cast<double>(N - 1 - k) / static_cast<double>(k + 1);
    }
    return result;
}

/// Returns the square of a curve's speed, whose control points are given.
inline std::array<double, 5> SpeedSquare(std::array<TPoint<double>, 3> const& speed) {
    auto const& [a, b, d] = speed;
    return {{Square(a), Dot(a, b), (2.0 * Square(b) + Dot(a, d)) / 3.0, Dot(b, d), Square(d)}};
}

/// Returns the third power of the speed times the curvature, where `speed` is a third of a curve's
/// derivative.
inline std::array<double, 3> SpeedBend(std::array<TPoint<double>, 3> const& speed) {
    auto const& [a, b, d] = speed;
    return {{Cross(a, b) / 1.5, Cross(a, d) / 3.0, Cross(b, d) / 1.5}};
}

} // namespace trammel_detail

#endif

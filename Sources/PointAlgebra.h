// SPDX-License-Identifier: MIT

// PointAlgebra: the usual notation for vectors. Operators.h has that for matrices.
//
// The operator is in the global namespace, where the points are, so that expressions find it in
// every namespace. An operator that an application has written for itself goes first, because this
// one is a template.
//
// Nothing throws. NaN and infinities propagate. No shared state: safe in any thread.

#ifndef TRAMMEL_POINTALGEBRA_H
#define TRAMMEL_POINTALGEBRA_H

#include "TPoint.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

/// Returns `p * s`: both coordinates times the number.
template <class Number, class T, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
constexpr TPoint<T> operator*(Number s, TPoint<T> const& p) {
    return p * static_cast<double>(s);
}
namespace trammel {

/// Returns the scalar product a.h·b.h + a.v·b.v. It is 0 for vectors at a right angle.
constexpr double Dot(TPoint<double> const& a, TPoint<double> const& b) {
    return a.h * b.h + a.v * b.v;
}

/// Returns the cross product a.h·b.v - a.v·b.h: twice the signed area of the triangle on both. It
/// is positive where the turn from `a` to `b` is from h toward v.
constexpr double Cross(TPoint<double> const& a, TPoint<double> const& b) {
    return a.h * b.v - a.v * b.h;
}

/// Returns the vector of length 1 with the direction of `p`.
///
/// Each coordinate is right within 2^-51, however large or small `p` is. The null vector stays as
/// it is. With an infinite coordinate the result has a NaN.
inline TPoint<double> Normalize(TPoint<double> const& p) {
    constexpr double kHuge = 0x1p500; // above it and below its inverse, squares may overflow
    TPoint<double> q = p;
    double const greatest = std::max(std::abs(p.h), std::abs(p.v));
    if (greatest == 0.0) {
        return p;
    }
    if (greatest > kHuge) {
        q *= 1.0 / kHuge / 0x1p50;
    } else if (greatest < 1.0 / kHuge) {
        q *= kHuge * 0x1p74; // subnormal numbers, too
    }
    return q / std::sqrt(q.h * q.h + q.v * q.v);
}

} // namespace trammel

#endif

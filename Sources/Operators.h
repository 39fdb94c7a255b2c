// SPDX-License-Identifier: MIT

// Operators: numbers and matrices times rectangles, lines and curves, and points times matrices.
// PointAlgebra.h has the other operators of points.
//
// The operators are in the global namespace, where the types are, so that expressions find them in
// every namespace. An operator that an application has written for itself goes first, because these
// are templates.
//
// There is no matrix * p. Points are row vectors here, and a product of matrices applies its left
// factor first. So p * a * b maps p by a and then by b, whichever product is taken first. The other
// order would not have that property.
//
// Nothing throws. NaN and infinities propagate. No shared state: safe in any thread.

#ifndef TRAMMEL_OPERATORS_H
#define TRAMMEL_OPERATORS_H

#include "CBezier.h"
#include "CMatrix3x3.h"
#include "PointAlgebra.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"

#include <type_traits>

/// Returns `r * s`: all fields times the number.
template <class Number, class T, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
TRect<T> operator*(Number s, TRect<T> const& r) {
    return r * static_cast<double>(s);
}
/// Returns `curve * s`: all points times the number.
template <class Number, std::enable_if_t<std::is_arithmetic_v<Number>, int> = 0>
CBezier operator*(Number s, CBezier const& curve) {
    return curve * static_cast<double>(s);
}

/// Returns the position mapped by the matrix, as CMatrix3x3::Transform does.
template <class T> TPoint<T> operator*(TPoint<T> const& p, CMatrix3x3 const& m) {
    return TPoint<T>(p).Transform(m);
}
/// Returns the line with both ends mapped.
template <class T> TLine<T> operator*(TLine<T> const& line, CMatrix3x3 const& m) {
    return TLine<T>(line.mStart * m, line.mEnd * m);
}
/// Returns the curve with all points mapped, which is the mapped curve.
template <class Matrix, std::enable_if_t<std::is_same_v<Matrix, CMatrix3x3>, int> = 0>
CBezier operator*(CBezier const& curve, Matrix const& m) {
    return CBezier(curve).Transform(m);
}

#endif

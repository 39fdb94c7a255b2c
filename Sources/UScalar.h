// SPDX-License-Identifier: MIT

// Scalar and point helpers: ordering, clamping, interpolation, distances, tolerant equality.
// Stateless, safe in any thread; nothing throws. Each template exists for the types it names only.

#ifndef TRAMMEL_USCALAR_H
#define TRAMMEL_USCALAR_H

#include "TPoint.h"
#include "TrammelExport.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

/// Stores the smaller of `a` and `b` in `lo` and the larger in `hi`. T is short or double.
///
/// With doubles lo is a when b > a, or else b, and hi is a when a >= b, or else b. Equal values (0
/// and -0) give lo = b and hi = a; with a NaN both receive b.
template <class T> inline void minmax(T& lo, T& hi, T a, T b) {
    static_assert(std::is_same_v<T, double> || std::is_same_v<T, short>,
                  "minmax exists for double and short only");
    if constexpr (std::is_same_v<T, double>) {
        lo = b > a ? a : b;
    } else {
        lo = a >= b ? b : a;
    }
    hi = a >= b ? a : b;
}

/// Clamps `value` in place: to `lo` when it is below, or else to `hi` when it is above.
///
/// Nothing checks that lo <= hi: with lo > hi, values below lo become lo, all others become hi. A
/// NaN value stays. T is double.
template <class T> inline void PinValueToRange(T const& lo, T const& hi, T& value) {
    static_assert(std::is_same_v<T, double>, "PinValueToRange exists for double only");
    if (lo > value) {
        value = lo;
    } else if (value > hi) {
        value = hi;
    }
}

/// True when both coordinate differences are smaller in magnitude than `tolerance` (coordinate
/// units, exclusive): with tolerance 0 a point does not even equal itself. T is double or short.
///
/// For shorts the difference is formed in 16 bits and wraps, so 32767 and -32768 are 1 apart. A NaN
/// in the h difference gives false. In the v difference alone it is overlooked, because the larger
/// of the two magnitudes is `std::max(|dh|, |dv|)`.
template <class T> inline bool EqualTPt(TPoint<T> const& a, TPoint<T> const& b, double tolerance) {
    TPoint<double> const d(b - a);
    return tolerance > std::max(std::abs(d.h), std::abs(d.v));
}

/// Returns the point at parameter `t` of the segment from `a` (t = 0) to `b` (t = 1): a + (b -
/// a)·t. `t` is not limited to [0, 1]; at t = 1 the result can differ from b by the rounding of b -
/// a. NaN and infinities propagate. T is double.
template <class T> inline TPoint<T> TPt(TPoint<T> const& a, TPoint<T> const& b, double t) {
    static_assert(std::is_same_v<T, double>, "TPt exists for double only");
    return a + (b - a) * t;
}

/// Returns the middle of two points, a + (b - a)·0.5. It has this form rather than (a + b)/2 so
/// that it equals `TPt(a, b, 0.5)` to the last bit. T is double.
template <class T> inline TPoint<T> MidPt(TPoint<T> const& a, TPoint<T> const& b) {
    return TPt(a, b, 0.5);
}

/// Returns the distance between two points, by `hypot` with the same bits on every machine. Choose
/// this when coordinates may be huge or tiny: no square overflows or underflows on the way. T is
/// double.
template <class T> inline double Hypotenuse(TPoint<T> const& a, TPoint<T> const& b) {
    static_assert(std::is_same_v<T, double>, "Hypotenuse exists for double only");
    return trammel_detail::LengthOf(b.h - a.h, b.v - a.v);
}

/// Returns the distance between two points by a square root. Choose this when coordinates are
/// ordinary and speed counts: it overflows to infinity for differences above about 1e154. For
/// shorts each difference is formed in 32 bits, so it does not wrap. T is double or short.
template <class T> inline double LineLength(TPoint<T> const& a, TPoint<T> const& b) {
    double dh;
    double dv;
    if constexpr (std::is_same_v<T, short>) {
        dh = static_cast<double>(std::int32_t{b.h} - std::int32_t{a.h});
        dv = static_cast<double>(std::int32_t{b.v} - std::int32_t{a.v});
    } else {
        dh = b.h - a.h;
        dv = b.v - a.v;
    }
    return std::sqrt(dh * dh + dv * dv);
}

/// Returns the squared distance between two points. Choose this to compare distances without a
/// root. T is double.
template <class T> inline double LineMagnitude(TPoint<T> const& a, TPoint<T> const& b) {
    static_assert(std::is_same_v<T, double>, "LineMagnitude exists for double only");
    double const dh = b.h - a.h;
    double const dv = b.v - a.v;
    return dh * dh + dv * dv;
}

extern template TRAMMEL_API void minmax<short>(short&, short&, short, short);
extern template TRAMMEL_API void minmax<double>(double&, double&, double, double);
extern template TRAMMEL_API void PinValueToRange<double>(double const&, double const&, double&);
extern template TRAMMEL_API bool EqualTPt<double>(TPoint<double> const&, TPoint<double> const&,
                                                  double);
extern template TRAMMEL_API bool EqualTPt<short>(TPoint<short> const&, TPoint<short> const&,
                                                 double);
extern template TRAMMEL_API TPoint<double> TPt<double>(TPoint<double> const&, TPoint<double> const&,
                                                       double);
extern template TRAMMEL_API TPoint<double> MidPt<double>(TPoint<double> const&,
                                                         TPoint<double> const&);
extern template TRAMMEL_API double Hypotenuse<double>(TPoint<double> const&, TPoint<double> const&);
extern template TRAMMEL_API double LineLength<double>(TPoint<double> const&, TPoint<double> const&);
extern template TRAMMEL_API double LineLength<short>(TPoint<short> const&, TPoint<short> const&);
extern template TRAMMEL_API double LineMagnitude<double>(TPoint<double> const&,
                                                         TPoint<double> const&);

#endif

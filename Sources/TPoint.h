// SPDX-License-Identifier: MIT

// TPoint: the two-dimensional point and vector.
//
// A plain value, copied freely, used as a position and as a displacement alike. TPoint<double> is
// the working type of all geometry. TPoint<short> is the integer screen coordinate with the layout
// of the platform's Point. The vertical coordinate is stored first, yet every pair of arguments and
// every text is (h, v), that is (x, y). v grows downward, h rightward.
//
// The null point is (0, 0). Any value may be stored, NaN and infinities too; nothing is validated
// (see UHygiene.h for that). Arithmetic on doubles is plain floating point. Arithmetic on shorts
// wraps at 16 bits. A double stored into a short is truncated toward zero to 32 bits, and the low
// 16 of them are kept. NaN and numbers that do not fit 32 bits store 0.
//
// Arguments are read before anything is written, so a point may be its own argument. Nothing
// throws, except NSString when memory is short. No shared state: safe in any thread.

#ifndef TRAMMEL_TPOINT_H
#define TRAMMEL_TPOINT_H

#include "FixedPoint.h"
#include "Integers.h"
#include "Records.h"
#include "TrammelExport.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

class CMatrix3x3;
// It is marked here, too, because Clang goes by a template's first declaration.
template <class T> struct TRAMMEL_API TRect;

namespace trammel_detail {

/// Returns `value` as a stored coordinate: unchanged for double, truncated into 16 bits for short.
template <class T> constexpr T StoreCoordinate(double value) {
    if constexpr (std::is_same_v<T, short>) {
        return TruncateToInt16(value);
    } else {
        return value;
    }
}

/// Returns the root of h² + v² without overflow or underflow on the way, with the same bits on
/// every machine and for every C library. An infinity beats a NaN. It is computed in the library,
/// so the options that an application is compiled with do not matter.
TRAMMEL_API double LengthOf(double h, double v) noexcept;

/// Returns the low 16 bits of an integer result, or the double as it is.
template <class T, class Wide> constexpr T Narrow(Wide value) { return static_cast<T>(value); }

} // namespace trammel_detail

/// A point or vector with coordinates of type double or short.
template <class T> struct TRAMMEL_API TPoint {
    static_assert(std::is_same_v<T, double> || std::is_same_v<T, short>,
                  "TPoint exists for double and short only");

    /// The coordinate type of the sister instantiation: short for double, double for short.
    using Other = std::conditional_t<std::is_same_v<T, double>, short, double>;

    T v; ///< vertical coordinate (y), grows downward
    T h; ///< horizontal coordinate (x), grows rightward

    // Create

    /// Makes the null point (0, 0).
    constexpr TPoint() : v(0), h(0) {}
    /// Makes the point (h, v): horizontal coordinate first.
    constexpr TPoint(T hCoord, T vCoord) : v(vCoord), h(hCoord) {}
    TPoint(TPoint const&) = default;
    TPoint& operator=(TPoint const&) = default;

    /// Converts from the sister type. Into double this is exact. Into short each coordinate is
    /// truncated toward zero, and wraps at 16 bits. Choose `operator Point` where rounding is
    /// wanted.
    constexpr TPoint(TPoint<Other> const& p)
        : v(trammel_detail::StoreCoordinate<T>(p.v)), h(trammel_detail::StoreCoordinate<T>(p.h)) {}
    /// Converts from a 16.16 fixed-point record: exact into double, truncated toward zero into
    /// short.
    constexpr TPoint(FPoint const& p)
        : v(trammel_detail::StoreCoordinate<T>(Fix2X(p.v))),
          h(trammel_detail::StoreCoordinate<T>(Fix2X(p.h))) {}
    /// Converts from the platform's integer point, exactly.
    constexpr TPoint(Point const& p) : v(p.v), h(p.h) {}
    /// Converts from a single-precision point: h from x, v from y. Shorts are truncated toward
    /// zero.
    constexpr TPoint(CGPoint const& p)
        : v(trammel_detail::StoreCoordinate<T>(static_cast<double>(p.y))),
          h(trammel_detail::StoreCoordinate<T>(static_cast<double>(p.x))) {}
    /// Converts as from CGPoint.
    constexpr TPoint(_NSPoint const& p)
        : v(trammel_detail::StoreCoordinate<T>(static_cast<double>(p.y))),
          h(trammel_detail::StoreCoordinate<T>(static_cast<double>(p.x))) {}

    // Set

    /// Stores both coordinates, horizontal first.
    constexpr void Set(T hCoord, T vCoord) {
        h = hCoord;
        v = vCoord;
    }
    /// Makes this the null point (0, 0).
    constexpr void SetNull() { Set(0, 0); }

    // Query

    /// True when both coordinates equal 0; false with a NaN.
    constexpr bool Null() const { return h == 0 && v == 0; }
    /// True when both coordinates are equal; a NaN is unequal to everything, itself included.
    constexpr bool operator==(TPoint const& p) const { return h == p.h && v == p.v; }
    /// True exactly when `==` is false: true with a NaN.
    constexpr bool operator!=(TPoint const& p) const { return !(*this == p); }
    /// True when neither coordinate exceeds the other's. This is componentwise dominance, not an
    /// ordering: of two points neither may be <= the other. False with a NaN.
    constexpr bool operator<=(TPoint const& p) const { return h <= p.h && v <= p.v; }

    /// Returns v / h, unguarded: ±infinity for a vertical vector, NaN for the null one.
    double Slope() const { return static_cast<double>(v) / static_cast<double>(h); }
    /// Returns the direction in radians, atan2(v, h), in [-pi, pi]: 0 along +h, pi/2 along +v
    /// (downward).
    double Angle() const { return std::atan2(static_cast<double>(v), static_cast<double>(h)); }
    /// Returns the distance from the origin, sqrt(h² + v²).
    ///
    /// Choose this when coordinates are ordinary and speed counts. It overflows to infinity above
    /// about 1e154, and underflows below 1e-162. For shorts the sum is formed in 32 bits and wraps:
    /// (-32768, -32768) gives NaN.
    double Length() const {
        if constexpr (std::is_same_v<T, short>) {
            return std::sqrt(static_cast<double>(
                trammel_detail::WrappingAdd(std::int32_t{h} * h, std::int32_t{v} * v)));
        } else {
            return std::sqrt(h * h + v * v);
        }
    }
    /// Returns the distance from the origin, by `hypot` with the same bits on every machine.
    ///
    /// Choose this when coordinates may be huge or tiny: it neither overflows nor underflows before
    /// its result does. For ordinary values it agrees with `Length` up to the last bit or two.
    double Hypotenuse() const {
        return trammel_detail::LengthOf(static_cast<double>(h), static_cast<double>(v));
    }

    // Arithmetic: each works on h and v independently

    /// Returns the opposite vector; for shorts -32768 stays -32768.
    constexpr TPoint operator-() const {
        return TPoint(trammel_detail::Narrow<T>(-h), trammel_detail::Narrow<T>(-v));
    }
    constexpr TPoint& operator+=(TPoint const& p) {
        h = trammel_detail::Narrow<T>(h + p.h);
        v = trammel_detail::Narrow<T>(v + p.v);
        return *this;
    }
    constexpr TPoint& operator-=(TPoint const& p) {
        h = trammel_detail::Narrow<T>(h - p.h);
        v = trammel_detail::Narrow<T>(v - p.v);
        return *this;
    }
    /// Multiplies coordinate by coordinate.
    constexpr TPoint& operator*=(TPoint const& p) {
        h = trammel_detail::Narrow<T>(h * p.h);
        v = trammel_detail::Narrow<T>(v * p.v);
        return *this;
    }
    /// Divides coordinate by coordinate.
    /// - Doubles: a zero divisor gives infinity or NaN.
    /// - Shorts are truncated toward zero; precondition: neither coordinate of `p` is 0.
    constexpr TPoint& operator/=(TPoint const& p) {
        h = trammel_detail::Narrow<T>(h / p.h);
        v = trammel_detail::Narrow<T>(v / p.v);
        return *this;
    }
    /// Multiplies both coordinates by `s`; shorts are computed in double and truncated.
    constexpr TPoint& operator*=(double s) {
        h = trammel_detail::StoreCoordinate<T>(h * s);
        v = trammel_detail::StoreCoordinate<T>(v * s);
        return *this;
    }
    /// Divides both coordinates by `s`; shorts are computed in double and truncated. A zero divisor
    /// gives infinity or NaN (stored as 0 in a short).
    constexpr TPoint& operator/=(double s) {
        h = trammel_detail::StoreCoordinate<T>(h / s);
        v = trammel_detail::StoreCoordinate<T>(v / s);
        return *this;
    }
    constexpr TPoint operator+(TPoint const& p) const { return TPoint(*this) += p; }
    constexpr TPoint operator-(TPoint const& p) const { return TPoint(*this) -= p; }
    constexpr TPoint operator*(TPoint const& p) const { return TPoint(*this) *= p; }
    constexpr TPoint operator/(TPoint const& p) const { return TPoint(*this) /= p; }
    constexpr TPoint operator*(double s) const { return TPoint(*this) *= s; }
    constexpr TPoint operator/(double s) const { return TPoint(*this) /= s; }

    // Geometry

    /// Moves the point by (dh, dv).
    constexpr TPoint& Offset(T dh, T dv) { return *this += TPoint(dh, dv); }
    /// Does the same as `+= d`.
    constexpr TPoint& Offset(TPoint const& d) { return *this += d; }
    /// Does the same as `*= s`: scales about the origin.
    constexpr TPoint& Scale(double s) { return *this *= s; }
    /// Scales about the origin with one factor for each direction; shorts truncate.
    constexpr TPoint& Scale(double sh, double sv) {
        h = trammel_detail::StoreCoordinate<T>(h * sh);
        v = trammel_detail::StoreCoordinate<T>(v * sv);
        return *this;
    }
    /// Rotates about the origin by `angle` radians; a positive angle turns from +h toward +v.
    ///
    /// It uses the C library's sine and cosine, so a quarter turn leaves residues near 1e-16
    /// (CMatrix3x3 rotations are exact at quarter turns). Shorts are computed in double and
    /// truncated.
    TPoint& Rotate(double angle) {
        double const s = std::sin(angle);
        double const c = std::cos(angle);
        double const oldH = h;
        double const oldV = v;
        // oldH * c - oldV * s to the last bit. It is written as a sum because of GCC 12 on
        // processors with fused operations. There GCC 12 fuses a pair of a difference and a sum, in
        // spite of -ffp-contract=off, and so gives other bits. It leaves two sums alone.
        double const minusS = -s;
        h = trammel_detail::StoreCoordinate<T>(oldH * c + oldV * minusS);
        v = trammel_detail::StoreCoordinate<T>(oldH * s + oldV * c);
        return *this;
    }
    /// Rotates about `centre`: subtracts it, rotates about the origin and adds it back, each step
    /// in the point's own arithmetic.
    TPoint& Rotate(double angle, TPoint const& centre) {
        TPoint const c = centre;
        *this -= c;
        Rotate(angle);
        return *this += c;
    }
    /// Maps the point through the matrix; shorts go through double and are truncated.
    /// Defined in CMatrix3x3.h.
    TPoint& Transform(CMatrix3x3 const& m);
    /// Maps the point by the transform that carries rectangle `from` onto rectangle `to`;
    /// CMatrix3x3::Map tells about flat rectangles. Shorts are truncated. Defined in CMatrix3x3.h.
    TPoint& Map(TRect<T> const& from, TRect<T> const& to);

    // Convert

    /// Converts to the platform's integer point: each coordinate is rounded, halves away from zero,
    /// then cut to 16 bits. Choose the conversion to TPoint<short> where truncation is wanted.
    operator Point() const {
        Point out;
        if constexpr (std::is_same_v<T, short>) {
            out.v = v;
            out.h = h;
        } else {
            out.v = trammel_detail::TruncateToInt16(std::round(v));
            out.h = trammel_detail::TruncateToInt16(std::round(h));
        }
        return out;
    }
    /// Converts to a single-precision point: x = h, y = v.
    operator CGPoint() const { return CGPointMake(static_cast<float>(h), static_cast<float>(v)); }
    /// Converts to a single-precision point: x = h, y = v.
    operator _NSPoint() const {
        _NSPoint out;
        out.x = static_cast<float>(h);
        out.y = static_cast<float>(v);
        return out;
    }
    /// Returns "{h, v}", with six decimals for doubles, as integers for shorts; the same in every
    /// locale.
    std::string NSString() const;
};

/// Returns coordinate `I` of the point, 0 for h and 1 for v: in the order of all arguments, not in
/// the order of storage. Structured bindings call these functions: `auto [h, v] = p`. With `auto&
/// [h, v]` a write goes into the point.
template <std::size_t I, class T> constexpr T& get(TPoint<T>& p) noexcept {
    static_assert(I < 2, "a point has two coordinates, 0 for h and 1 for v");
    if constexpr (I == 0) {
        return p.h;
    } else {
        return p.v;
    }
}
/// Does the same for reading.
template <std::size_t I, class T> constexpr T const& get(TPoint<T> const& p) noexcept {
    static_assert(I < 2, "a point has two coordinates, 0 for h and 1 for v");
    if constexpr (I == 0) {
        return p.h;
    } else {
        return p.v;
    }
}
/// Does the same for a point that is about to end.
template <std::size_t I, class T> constexpr T&& get(TPoint<T>&& p) noexcept {
    return std::move(get<I>(p));
}

/// Tells structured bindings that a point is a pair (h, v).
template <class T> struct std::tuple_size<TPoint<T>> : std::integral_constant<std::size_t, 2> {};
/// Tells structured bindings that both coordinates have the same type.
template <std::size_t I, class T> struct std::tuple_element<I, TPoint<T>> {
    static_assert(I < 2, "a point has two coordinates, 0 for h and 1 for v");
    using type = T;
};

extern template struct TPoint<double>;
extern template struct TPoint<short>;

static_assert(sizeof(TPoint<double>) == 16 && offsetof(TPoint<double>, h) == 8);
static_assert(sizeof(TPoint<short>) == 4 && offsetof(TPoint<short>, h) == 2);
static_assert(std::is_trivially_copyable_v<TPoint<double>>);
static_assert(std::is_trivially_copyable_v<TPoint<short>>);
static_assert(std::is_standard_layout_v<TPoint<double>>);

#endif

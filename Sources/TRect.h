// SPDX-License-Identifier: MIT

// TRect: the axis-aligned rectangle.
//
// A plain value made of two TPoint corners, in the field order of the platform's Rect: top, left,
// bottom, right. v grows downward and h rightward, so top is the smaller v. Four-value constructors
// and setters take (left, top, right, bottom) and store the values as given. Nothing keeps a
// rectangle ordered.
//
// Three tests that are not interchangeable:
//   Null   all four fields are 0. The null rectangle means "no rectangle yet": union and
//          intersection treat it as absent, not as a rectangle at the origin.
//   Valid  top <= bottom and left <= right.
//   Empty  right <= left or bottom <= top: no area. The null rectangle is empty and valid.
//
// A double rectangle with a NaN field is neither null nor valid. It is empty only where the
// other direction has no extent. Short arithmetic wraps at 16 bits. Arguments are read before
// anything is written, so a rectangle's own corner may be an argument. No shared state: safe in any
// thread. Nothing here throws, except NSString when memory is short.

#ifndef TRAMMEL_TRECT_H
#define TRAMMEL_TRECT_H

#include "Records.h"
#include "TPoint.h"
#include "TrammelExport.h"
#include "UScalar.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>

class CMatrix3x3;

/// Picks a corner for TRect::operator[]; any other value picks the top-left one.
enum PointSelector : std::int32_t {
    kTopLeft = 0,     ///< the corner (left, top)
    kBottomRight = 1, ///< the corner (right, bottom)
};

/// An axis-aligned rectangle with fields of type double or short.
template <class T> struct TRAMMEL_API TRect {
    static_assert(std::is_same_v<T, double> || std::is_same_v<T, short>,
                  "TRect exists for double and short only");

    /// The coordinate type of the sister instantiation: short for double, double for short.
    using Other = std::conditional_t<std::is_same_v<T, double>, short, double>;

    // The corners overlay the fields, so that operator[] hands out a true reference. It shows a
    // write to a field at every optimisation level.
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wnested-anon-types"
#endif
    union {
        __extension__ struct {
            T top;    ///< smallest v
            T left;   ///< smallest h
            T bottom; ///< largest v
            T right;  ///< largest h
        };
        TPoint<T> mCorners[2]; ///< top-left, bottom-right
    };
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

    // Create

    /// Makes the null rectangle.
    constexpr TRect() : top(0), left(0), bottom(0), right(0) {}
    /// Stores the four values as given, ordered or not.
    constexpr TRect(T leftH, T topV, T rightH, T bottomV)
        : top(topV), left(leftH), bottom(bottomV), right(rightH) {}
    /// Makes the rectangle with corners `a` and `b`, in either order (see Rectify).
    TRect(TPoint<T> const& a, TPoint<T> const& b) { Set(a, b); }
    /// Makes the rectangle of the given half-sizes around `centre`, put in order.
    TRect(TPoint<T> const& centre, T halfWidth, T halfHeight) {
        Set(centre, halfWidth, halfHeight);
    }
    TRect(TRect const&) = default;
    TRect& operator=(TRect const&) = default;

    /// Converts from the sister type. Into double this is exact. Into short each field is truncated
    /// toward zero, and wraps at 16 bits. Apply `FloorCeil` first where the integer rectangle has
    /// to enclose.
    TRect(TRect<Other> const& r) {
        Store(static_cast<double>(r.left), static_cast<double>(r.top), static_cast<double>(r.right),
              static_cast<double>(r.bottom));
    }
    /// Converts from 16.16 fixed point, by way of single precision: 24 significant bits survive.
    TRect(FRect const& r) {
        Store(FixedToSingle(r.left), FixedToSingle(r.top), FixedToSingle(r.right),
              FixedToSingle(r.bottom));
    }
    /// Converts from a single-precision origin and size; a negative size is put in order. The far
    /// edges are summed in single precision. Shorts are truncated toward zero.
    TRect(CGRect const& r) { StoreOriginAndSize(r); }
    /// Converts as from CGRect.
    TRect(_NSRect const& r) { StoreOriginAndSize(r); }
    /// Converts from a printing rectangle: exact into double, truncated toward zero into short.
    TRect(PMRect const& r) { Store(r.left, r.top, r.right, r.bottom); }
    /// Converts from the platform's integer rectangle, exactly.
    TRect(Rect const& r) { Set(r.left, r.top, r.right, r.bottom); }

    // Set

    /// Stores the four values as given, ordered or not.
    void Set(T leftH, T topV, T rightH, T bottomV) {
        top = topV;
        left = leftH;
        bottom = bottomV;
        right = rightH;
        SetFlags();
    }
    /// Makes this the rectangle of the given half-sizes around `centre`, put in order.
    void Set(TPoint<T> const& centre, T halfWidth, T halfHeight) {
        using trammel_detail::Narrow;
        Set(Narrow<T>(centre.h - halfWidth), Narrow<T>(centre.v - halfHeight),
            Narrow<T>(centre.h + halfWidth), Narrow<T>(centre.v + halfHeight));
        Rectify();
    }
    /// Makes this the rectangle with corners `a` and `b`, in either order.
    void Set(TPoint<T> const& a, TPoint<T> const& b) {
        Set(a.h, a.v, b.h, b.v);
        Rectify();
    }
    /// Makes this the bounds of three points: the rectangle of `a` and `b`, united with `c`. When
    /// `a` and `b` both are the origin, that rectangle is null and the result is `c` alone.
    void Set(TPoint<T> const& a, TPoint<T> const& b, TPoint<T> const& c) {
        *this = TRect(a, b) | c;
    }
    /// Makes this the null rectangle.
    void SetNull() { Set(0, 0, 0, 0); }
    /// Does nothing. Set calls it after it has stored the fields, so each call marks such a place.
    void SetFlags() {}
    /// Swaps top with bottom and left with right where they are out of order; a NaN swaps nothing.
    TRect& Rectify() {
        if (top > bottom) {
            std::swap(top, bottom);
        }
        if (right < left) {
            std::swap(left, right);
        }
        return *this;
    }

    // Query

    /// True when all four fields equal 0: there is no rectangle yet.
    constexpr bool Null() const { return top == 0 && left == 0 && bottom == 0 && right == 0; }
    /// True when the corners are in order (degenerate rectangles included); false with a NaN.
    constexpr bool Valid() const { return bottom >= top && right >= left; }
    /// True when there is no area: right <= left or bottom <= top.
    constexpr bool Empty() const { return right <= left || bottom <= top; }
    /// Returns right - left; negative when out of order, cut to 16 bits for shorts.
    constexpr T Width() const { return trammel_detail::Narrow<T>(right - left); }
    /// Returns bottom - top; negative when out of order, cut to 16 bits for shorts.
    constexpr T Height() const { return trammel_detail::Narrow<T>(bottom - top); }
    /// Returns (h = Width, v = Height).
    constexpr TPoint<T> GetSize() const { return TPoint<T>(Width(), Height()); }
    /// Returns the centre, (left + right)/2 and (top + bottom)/2 in double; short sums do not wrap,
    /// double sums above 1.8e308 are infinite.
    constexpr TPoint<double> MidPt() const {
        return TPoint<double>((left + right) / 2.0, (top + bottom) / 2.0);
    }
    constexpr TPoint<T> TopLeft() const { return TPoint<T>(left, top); }
    constexpr TPoint<T> TopRight() const { return TPoint<T>(right, top); }
    constexpr TPoint<T> BottomLeft() const { return TPoint<T>(left, bottom); }
    constexpr TPoint<T> BottomRight() const { return TPoint<T>(right, bottom); }
    /// Returns a reference to the stored corner, valid while the rectangle lives. It shows later
    /// writes to the fields. Every selector except kBottomRight gives the top-left corner.
    TPoint<T> const& operator[](PointSelector which) const {
        return mCorners[which == kBottomRight ? 1 : 0];
    }
    /// True when `p` lies in the rectangle, all four edges inclusive; false with a NaN and for a
    /// rectangle out of order.
    constexpr bool Contains(TPoint<T> const& p) const {
        return top <= p.v && p.v <= bottom && left <= p.h && p.h <= right;
    }
    /// True when both stored corners of `r` lie in the rectangle, edges inclusive.
    bool Contains(TRect const& r) const {
        return Contains(r[kTopLeft]) && Contains(r[kBottomRight]);
    }
    /// True when all four fields are equal; a NaN field makes it false.
    constexpr bool operator==(TRect const& r) const {
        return top == r.top && left == r.left && bottom == r.bottom && right == r.right;
    }
    /// Returns the negation of `==`.
    constexpr bool operator!=(TRect const& r) const { return !(*this == r); }

    // Arithmetic

    /// Moves the rectangle by `d`.
    TRect& operator+=(TPoint<T> const& d) {
        TPoint<T> const by = d;
        mCorners[0] += by;
        mCorners[1] += by;
        return *this;
    }
    /// Moves the rectangle by -`d`.
    TRect& operator-=(TPoint<T> const& d) {
        TPoint<T> const by = d;
        mCorners[0] -= by;
        mCorners[1] -= by;
        return *this;
    }
    /// Multiplies left and right by `s.h`, top and bottom by `s.v`, in the rectangle's own type.
    TRect& operator*=(TPoint<T> const& s) {
        TPoint<T> const by = s;
        mCorners[0] *= by;
        mCorners[1] *= by;
        return *this;
    }
    /// Multiplies all four fields; shorts are computed in double and truncated.
    TRect& operator*=(double s) {
        mCorners[0] *= s;
        mCorners[1] *= s;
        return *this;
    }
    /// Divides all four fields; shorts are computed in double and truncated. A zero divisor gives
    /// infinities or NaN (0 in a short).
    TRect& operator/=(double s) {
        mCorners[0] /= s;
        mCorners[1] /= s;
        return *this;
    }
    TRect operator+(TPoint<T> const& d) const { return TRect(*this) += d; }
    TRect operator-(TPoint<T> const& d) const { return TRect(*this) -= d; }
    TRect operator*(double s) const { return TRect(*this) *= s; }
    TRect operator/(double s) const { return TRect(*this) /= s; }

    /// Does the same as `*= s`.
    TRect& Scale(double s) { return *this *= s; }
    /// Multiplies by one factor for each direction. For shorts each factor is first truncated to an
    /// integer: Scale(1.5, 2.7) multiplies by 1 and 2.
    TRect& Scale(double sh, double sv) { return *this *= TPoint<T>(TPoint<double>(sh, sv)); }
    /// Moves every edge inward by `dh` and `dv` (outward when negative); may turn inside out.
    TRect& Inset(T dh, T dv) {
        TPoint<T> const by(dh, dv);
        mCorners[0] += by;
        mCorners[1] -= by;
        return *this;
    }
    /// Does the same as Inset(d, d).
    TRect& Inset(T d) { return Inset(d, d); }
    /// Does the same as Inset(p.h, p.v).
    TRect& Inset(TPoint<T> const& p) { return Inset(p.h, p.v); }
    /// Moves every edge outward by `dh` and `dv`; the reverse of Inset.
    TRect& Outset(T dh, T dv) {
        TPoint<T> const by(dh, dv);
        mCorners[0] -= by;
        mCorners[1] += by;
        return *this;
    }
    /// Does the same as Outset(d, d).
    TRect& Outset(T d) { return Outset(d, d); }
    /// Moves the rectangle by (dh, dv).
    TRect& Offset(T dh, T dv) { return *this += TPoint<T>(dh, dv); }
    /// Does the same as `+= p`.
    TRect& Offset(TPoint<T> const& p) { return *this += p; }

    /// Becomes the union: the smallest rectangle around both. A null rectangle becomes `r`; a null
    /// `r` changes nothing. Neither is put in order first; ties and NaN keep this one's value.
    TRect& operator|=(TRect const& r) {
        if (Null()) {
            *this = r;
        } else if (!r.Null()) {
            top = std::min(top, r.top);
            left = std::min(left, r.left);
            bottom = std::max(bottom, r.bottom);
            right = std::max(right, r.right);
        }
        return *this;
    }
    /// Grows to include `p`. A null rectangle becomes the degenerate rectangle at `p`, so the
    /// origin is forgotten when it comes first. A rectangle that is not null overlooks a NaN
    /// coordinate.
    TRect& operator|=(TPoint<T> const& p) {
        if (Null()) {
            *this = TRect(p, p);
        } else {
            TPoint<T> const q = p;
            top = std::min(top, q.v);
            left = std::min(left, q.h);
            bottom = std::max(bottom, q.v);
            right = std::max(right, q.h);
        }
        return *this;
    }
    /// Becomes the intersection: the common part, or null when there is none. A null rectangle
    /// means no constraint: it becomes `r`, and a null `r` changes nothing. SectTRect is different:
    /// it has no null rule, and puts its operands in order.
    TRect& operator&=(TRect const& r) {
        if (Null()) {
            *this = r;
        } else if (!r.Null()) {
            top = std::max(top, r.top);
            left = std::max(left, r.left);
            bottom = std::min(bottom, r.bottom);
            right = std::min(right, r.right);
            if (!Valid()) {
                SetNull();
            }
        }
        return *this;
    }
    TRect operator|(TRect const& r) const { return TRect(*this) |= r; }
    TRect operator|(TPoint<T> const& p) const { return TRect(*this) |= p; }
    TRect operator&(TRect const& r) const { return TRect(*this) &= r; }

    /// Rounds outward to the smallest integral rectangle that encloses this one; shorts are
    /// integral already.
    TRect& FloorCeil() {
        if constexpr (std::is_same_v<T, double>) {
            Set(std::floor(left), std::floor(top), std::ceil(right), std::ceil(bottom));
        }
        return *this;
    }
    /// Maps both stored corners by the transform that carries rectangle `from` onto rectangle `to`
    /// (CMatrix3x3::Map). The result is not put in order. Defined in CMatrix3x3.h.
    TRect& Map(TRect const& from, TRect const& to);
    /// Becomes the bounds of the four transformed corners. A first corner that lands on the origin
    /// is forgotten, because the bounds are then still null. Defined in CMatrix3x3.h.
    TRect& Transform(CMatrix3x3 m);

    // Convert

    /// Converts to the platform's integer rectangle: each field is rounded, halves away from zero,
    /// and cut to 16 bits.
    operator Rect() const {
        Point const topLeft = mCorners[0];
        Point const bottomRight = mCorners[1];
        Rect out;
        out.top = topLeft.v;
        out.left = topLeft.h;
        out.bottom = bottomRight.v;
        out.right = bottomRight.h;
        return out;
    }
    /// Converts to a single-precision origin (left, top) and size.
    operator CGRect() const {
        return CGRectMake(static_cast<float>(left), static_cast<float>(top),
                          static_cast<float>(Width()), static_cast<float>(Height()));
    }
    /// Converts to a single-precision origin (left, top) and size.
    operator _NSRect() const {
        _NSRect out;
        out.origin.x = static_cast<float>(left);
        out.origin.y = static_cast<float>(top);
        out.size.width = static_cast<float>(Width());
        out.size.height = static_cast<float>(Height());
        return out;
    }
    /// Returns left, top, right, bottom as text, the same in every locale. For doubles it is
    /// "TRect<double>::NSString() {%f, %f, %f, %f}", for shorts "{%d, %d, %d, %d}".
    std::string NSString() const;

private:
    static double FixedToSingle(Fixed field) {
        return static_cast<double>(static_cast<float>(field) / 65536.0f);
    }
    void Store(double leftH, double topV, double rightH, double bottomV) {
        using trammel_detail::StoreCoordinate;
        Set(StoreCoordinate<T>(leftH), StoreCoordinate<T>(topV), StoreCoordinate<T>(rightH),
            StoreCoordinate<T>(bottomV));
    }
    template <class PlatformRect> void StoreOriginAndSize(PlatformRect const& r) {
        float const farX = r.origin.x + r.size.width;
        float const farY = r.origin.y + r.size.height;
        Store(static_cast<double>(std::min(r.origin.x, farX)),
              static_cast<double>(std::min(r.origin.y, farY)),
              static_cast<double>(std::max(r.origin.x, farX)),
              static_cast<double>(std::max(r.origin.y, farY)));
    }
};

/// Stores the common part of two rectangles in `out` and returns true when they meet; touching
/// along an edge or at a corner counts. Otherwise `out` becomes null and the result is false. The
/// corners of either may be in any order, and a null rectangle is the point at the origin. T is
/// short.
template <class T> bool SectTRect(TRect<T> const& a, TRect<T> const& b, TRect<T>& out);

/// True when two rectangles meet, touching included; their corners may be in any order. This is the
/// cheap test where only yes or no is needed. T is double or short.
///
/// A NaN in `right` or `bottom` makes that direction count as meeting. A NaN in `left` or `top`
/// shrinks that direction to its other edge (see minmax).
template <class T> bool NaiveSectTRect(TRect<T> const& a, TRect<T> const& b);

/// Applies `ValidateFloat` (UHygiene.h) to left, top, right and bottom in this order, up to the
/// first NaN or infinity. Returns true when there was one. Out-of-range fields met on the way are
/// zeroed; fields after the first NaN or infinity are not examined.
TRAMMEL_API bool ValidateRect(TRect<double>& r);

extern template struct TRect<double>;
extern template struct TRect<short>;
extern template TRAMMEL_API bool SectTRect<short>(TRect<short> const&, TRect<short> const&,
                                                  TRect<short>&);
extern template TRAMMEL_API bool NaiveSectTRect<short>(TRect<short> const&, TRect<short> const&);
extern template TRAMMEL_API bool NaiveSectTRect<double>(TRect<double> const&, TRect<double> const&);

static_assert(sizeof(TRect<double>) == 32 && offsetof(TRect<double>, left) == 8 &&
              offsetof(TRect<double>, bottom) == 16 && offsetof(TRect<double>, right) == 24);
static_assert(sizeof(TRect<short>) == 8 && offsetof(TRect<short>, left) == 2 &&
              offsetof(TRect<short>, bottom) == 4 && offsetof(TRect<short>, right) == 6);
static_assert(std::is_trivially_copyable_v<TRect<double>>);
static_assert(std::is_trivially_copyable_v<TRect<short>>);
static_assert(std::is_standard_layout_v<TRect<double>>);

#endif

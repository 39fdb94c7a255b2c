// SPDX-License-Identifier: MIT

// The geometry records of the platform's drawing, printing and user-interface layers. They are
// plain data: no constructors, uninitialised unless a value is given, copied byte by byte.

#ifndef TRAMMEL_RECORDS_H
#define TRAMMEL_RECORDS_H

#include "FixedPoint.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// A place on the integer grid: v grows downward, h to the right.
struct Point {
    std::int16_t v;
    std::int16_t h;
};

/// A rectangle on the integer grid.
struct Rect {
    std::int16_t top;
    std::int16_t left;
    std::int16_t bottom;
    std::int16_t right;
};

/// A place in fixed-point coordinates.
struct FPoint {
    Fixed v;
    Fixed h;
};

/// A rectangle in fixed-point coordinates.
struct FRect {
    Fixed top;
    Fixed left;
    Fixed bottom;
    Fixed right;
};

/// The coordinate type of the drawing layer: single precision.
typedef float CGFloat;

/// A place in the drawing layer: x grows to the right.
struct CGPoint {
    CGFloat x;
    CGFloat y;
};

/// An extent in the drawing layer; it may be negative.
struct CGSize {
    CGFloat width;
    CGFloat height;
};

/// A rectangle of the drawing layer: one corner and the extent from there.
struct CGRect {
    CGPoint origin;
    CGSize size;
};

/// A place in the user-interface layer.
struct _NSPoint {
    CGFloat x;
    CGFloat y;
};

/// An extent in the user-interface layer; it may be negative.
struct _NSSize {
    CGFloat width;
    CGFloat height;
};

/// A rectangle of the user-interface layer: one corner and the extent from there.
struct _NSRect {
    _NSPoint origin;
    _NSSize size;
};

/// A rectangle of the printing layer.
struct PMRect {
    double top;
    double left;
    double bottom;
    double right;
};

/// An affine map of the drawing layer: x' = a x + c y + tx, y' = b x + d y + ty.
struct CGAffineTransform {
    CGFloat a;
    CGFloat b;
    CGFloat c;
    CGFloat d;
    CGFloat tx;
    CGFloat ty;
};

/// A polygon on the integer grid: a header of 10 bytes, then as many points as its block holds.
///
///     offset   0          2           10            14            18
///              | polySize | polyBBox  | point 0     | point 1     | ...
struct MacPolygon {
    std::int16_t polySize; ///< the record's bytes, header and points
    Rect polyBBox;
    Point polyPoints[1];
};

/// Returns the point (x, y).
inline constexpr CGPoint CGPointMake(CGFloat x, CGFloat y) noexcept { return CGPoint{x, y}; }

/// Returns the rectangle with the corner (x, y) and the given extent. A negative extent is kept.
inline constexpr CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height) noexcept {
    return CGRect{CGPoint{x, y}, CGSize{width, height}};
}

namespace trammel_detail {

/// True for a record that may be copied byte by byte and whose fields lie in the order declared.
template <class T>
inline constexpr bool kIsPlainRecord =
    std::conjunction_v<std::is_trivial<T>, std::is_standard_layout<T>>;

} // namespace trammel_detail

static_assert(sizeof(Fixed) == 4 && sizeof(CGFloat) == 4, "coordinate types");
static_assert(trammel_detail::kIsPlainRecord<Point> && sizeof(Point) == 4, "Point");
static_assert(offsetof(Point, v) == 0 && offsetof(Point, h) == 2, "Point");
static_assert(trammel_detail::kIsPlainRecord<Rect> && sizeof(Rect) == 8, "Rect");
static_assert(offsetof(Rect, top) == 0 && offsetof(Rect, left) == 2 &&
                  offsetof(Rect, bottom) == 4 && offsetof(Rect, right) == 6,
              "Rect");
static_assert(trammel_detail::kIsPlainRecord<FPoint> && sizeof(FPoint) == 8, "FPoint");
static_assert(offsetof(FPoint, v) == 0 && offsetof(FPoint, h) == 4, "FPoint");
static_assert(trammel_detail::kIsPlainRecord<FRect> && sizeof(FRect) == 16, "FRect");
static_assert(offsetof(FRect, top) == 0 && offsetof(FRect, left) == 4 &&
                  offsetof(FRect, bottom) == 8 && offsetof(FRect, right) == 12,
              "FRect");
static_assert(trammel_detail::kIsPlainRecord<CGPoint> && sizeof(CGPoint) == 8, "CGPoint");
static_assert(offsetof(CGPoint, x) == 0 && offsetof(CGPoint, y) == 4, "CGPoint");
static_assert(trammel_detail::kIsPlainRecord<CGSize> && sizeof(CGSize) == 8, "CGSize");
static_assert(trammel_detail::kIsPlainRecord<CGRect> && sizeof(CGRect) == 16, "CGRect");
static_assert(offsetof(CGRect, origin) == 0 && offsetof(CGRect, size) == 8, "CGRect");
static_assert(trammel_detail::kIsPlainRecord<_NSPoint> && sizeof(_NSPoint) == 8, "_NSPoint");
static_assert(offsetof(_NSPoint, x) == 0 && offsetof(_NSPoint, y) == 4, "_NSPoint");
static_assert(trammel_detail::kIsPlainRecord<_NSSize> && sizeof(_NSSize) == 8, "_NSSize");
static_assert(trammel_detail::kIsPlainRecord<_NSRect> && sizeof(_NSRect) == 16, "_NSRect");
static_assert(offsetof(_NSRect, origin) == 0 && offsetof(_NSRect, size) == 8, "_NSRect");
static_assert(trammel_detail::kIsPlainRecord<PMRect> && sizeof(PMRect) == 32, "PMRect");
static_assert(offsetof(PMRect, top) == 0 && offsetof(PMRect, left) == 8 &&
                  offsetof(PMRect, bottom) == 16 && offsetof(PMRect, right) == 24,
              "PMRect");
static_assert(trammel_detail::kIsPlainRecord<CGAffineTransform> && sizeof(CGAffineTransform) == 24,
              "CGAffineTransform");
static_assert(trammel_detail::kIsPlainRecord<MacPolygon> && sizeof(MacPolygon) == 14, "MacPolygon");
static_assert(offsetof(MacPolygon, polySize) == 0 && offsetof(MacPolygon, polyBBox) == 2 &&
                  offsetof(MacPolygon, polyPoints) == 10,
              "MacPolygon: the header takes 10 bytes");

#endif

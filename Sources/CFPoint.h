// SPDX-License-Identifier: MIT

// CFPoint: the fixed-point point, 16.16 in each coordinate, with the layout of the platform's
// FPoint. A plain value; no shared state: safe in any thread. It does not derive from FPoint: a
// silent conversion to one would let truncation replace the rounding of the conversions here.

#ifndef TRAMMEL_CFPOINT_H
#define TRAMMEL_CFPOINT_H

#include "FixedPoint.h"
#include "Records.h"
#include "TPoint.h"
#include "TrammelExport.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace trammel_detail {

/// The fixed-point mark for "no value", 0x80000000.
inline constexpr Fixed kNoFixedValue = std::numeric_limits<Fixed>::min();

} // namespace trammel_detail

/// A point of two 16.16 fixed-point coordinates.
struct TRAMMEL_API CFPoint {
    Fixed v; ///< vertical coordinate
    Fixed h; ///< horizontal coordinate

    /// Makes a point without value: both fields are 0x80000000, not zero as in the null TPoint.
    CFPoint() : v(trammel_detail::kNoFixedValue), h(trammel_detail::kNoFixedValue) {}
    /// Stores the low 32 bits of two raw fixed-point values, horizontal first.
    CFPoint(long hFixed, long vFixed)
        : v(static_cast<Fixed>(vFixed)), h(static_cast<Fixed>(hFixed)) {}
    CFPoint(CFPoint const&) = default;
    CFPoint& operator=(CFPoint const&) = default;
    /// Converts from integers, exactly, because every short fits.
    CFPoint(TPoint<short> const& p) : v(Long2Fix(p.v)), h(Long2Fix(p.h)) {}
    /// Converts from doubles to the nearest fixed-point values, saturating; NaN gives 0x80000000.
    CFPoint(TPoint<double> const& p) : v(X2Fix(p.v)), h(X2Fix(p.h)) {}

    /// Converts to doubles, exactly.
    operator TPoint<double>() const { return TPoint<double>(Fix2X(h), Fix2X(v)); }
    /// True when both raw fields are equal; two points without value are equal.
    bool operator==(CFPoint const& p) const { return v == p.v && h == p.h; }
};

static_assert(sizeof(CFPoint) == sizeof(FPoint) && offsetof(CFPoint, h) == offsetof(FPoint, h));
static_assert(std::is_trivially_copyable_v<CFPoint>);
static_assert(std::is_standard_layout_v<CFPoint>);

#endif

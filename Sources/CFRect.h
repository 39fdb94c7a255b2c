// SPDX-License-Identifier: MIT

// CFRect: the fixed-point rectangle, 16.16 in each field, with the layout of the platform's FRect.
// A plain value; no shared state: safe in any thread. It does not derive from FRect: a silent
// conversion to one would let truncation replace the rounding of the conversions here.

#ifndef TRAMMEL_CFRECT_H
#define TRAMMEL_CFRECT_H

#include "CFPoint.h"
#include "FixedPoint.h"
#include "Integers.h"
#include "Records.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// A rectangle of four 16.16 fixed-point fields.
struct TRAMMEL_API CFRect {
    Fixed top;
    Fixed left;
    Fixed bottom;
    Fixed right;

    /// Makes a rectangle without value: all fields are 0x80000000, not zero as in the null TRect.
    /// It is empty.
    CFRect()
        : top(trammel_detail::kNoFixedValue), left(trammel_detail::kNoFixedValue),
          bottom(trammel_detail::kNoFixedValue), right(trammel_detail::kNoFixedValue) {}
    CFRect(CFRect const&) = default;
    CFRect& operator=(CFRect const&) = default;
    /// Converts from doubles to the nearest fixed-point values, saturating; NaN gives 0x80000000.
    CFRect(TRect<double> const& r)
        : top(X2Fix(r.top)), left(X2Fix(r.left)), bottom(X2Fix(r.bottom)), right(X2Fix(r.right)) {}

    /// Converts to integers: each field to the nearest, halves away from zero, cut to 16 bits. The
    /// result is not put in order.
    operator TRect<short>() const {
        return TRect<short>(static_cast<short>(Fix2Long(left)), static_cast<short>(Fix2Long(top)),
                            static_cast<short>(Fix2Long(right)),
                            static_cast<short>(Fix2Long(bottom)));
    }
    /// Converts to doubles by way of single precision, as the platform's rectangles come. Only 24
    /// significant bits survive, so magnitudes above 256 lose their lowest bits. CFPoint converts
    /// exactly.
    operator TRect<double>() const { return TRect<double>(FRect{top, left, bottom, right}); }

    /// True when right <= left or bottom <= top.
    bool Empty() const { return right <= left || bottom <= top; }
    /// Returns the centre. Each field is halved before the sum, so that the sum does not overflow;
    /// a sum of rounded halves beyond the range wraps.
    CFPoint MidPt() const {
        constexpr Fixed two = 0x00020000;
        return CFPoint(trammel_detail::WrappingAdd(FixDiv(left, two), FixDiv(right, two)),
                       trammel_detail::WrappingAdd(FixDiv(top, two), FixDiv(bottom, two)));
    }
};

static_assert(sizeof(CFRect) == sizeof(FRect) && offsetof(CFRect, left) == offsetof(FRect, left) &&
              offsetof(CFRect, bottom) == offsetof(FRect, bottom) &&
              offsetof(CFRect, right) == offsetof(FRect, right));
static_assert(std::is_trivially_copyable_v<CFRect>);
static_assert(std::is_standard_layout_v<CFRect>);

#endif

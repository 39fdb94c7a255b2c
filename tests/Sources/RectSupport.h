// SPDX-License-Identifier: MIT

// The tests of rectangles share these helpers.

#ifndef TRAMMEL_RECTSUPPORT_H
#define TRAMMEL_RECTSUPPORT_H

#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"

namespace trammel_test {

/// True when all four fields agree to the last bit.
inline bool SameFields(TRect<double> const& a, TRect<double> const& b) {
    return SameBits(a.left, b.left) && SameBits(a.top, b.top) && SameBits(a.right, b.right) &&
           SameBits(a.bottom, b.bottom);
}

/// A rectangle in order and not null.
inline TRect<double> RandomRect(Random& random) {
    TPoint<double> const a = random.Point(100.0);
    return {a, random.Point(100.0)};
}

/// A rectangle of any order with fields in [-reach, reach].
inline TRect<short> RandomShortRect(Random& random, int reach) {
    auto const any = [&] { return static_cast<short>(random.Integer(-reach, reach)); };
    short const left = any();
    short const top = any();
    short const right = any();
    return {left, top, right, any()};
}

} // namespace trammel_test

#endif

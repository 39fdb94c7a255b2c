// SPDX-License-Identifier: MIT

// Many points appended to a polygon at once. Not installed.

#ifndef TRAMMEL_POLYGONAPPEND_P_H
#define TRAMMEL_POLYGONAPPEND_P_H

#include "Handles.h"
#include "TPoint.h"
#include "TPoly.h"

namespace trammel_detail {

/// Appends `count` points, 1 or more, as TPolygon::AppendUnique does one after the other. It
/// appends them in one go where that gives the same: no point repeats the one before it, and memory
/// suffices for all.
inline void AppendUniquePoints(TPoint<double> const* points, int count, TPolygon<double>& poly) {
    bool unique = poly.Empty() || points[0] != poly.GetPt(poly.LastIndex());
    for (int i = 1; i < count; ++i) {
        unique &= points[i] != points[i - 1];
    }
    auto const size = static_cast<Size>(sizeof points[0]) * count;
    if (unique && PtrAndHand(points, reinterpret_cast<Handle>(poly.mHandle), size) == noErr) {
        return;
    }
    for (int i = 0; i < count; ++i) {
        poly.AppendUnique(points[i]);
    }
}

} // namespace trammel_detail

#endif

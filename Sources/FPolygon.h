// SPDX-License-Identifier: MIT

// FPolygon: the record that a handle polygon's block holds. Applications exchange it byte by byte.
// CFPolygonRef is the class to work with; this is the raw layout.
//
//      0  polyReserved1    2  polyClosed    4  polyReserved2    6  polyBoundsValid
//      8  polyBBox: top, left, bottom, right
//     40  polyPath
//     44  point 0: v, h
//     60  point 1: v, h   ...
//
// A block of n points takes 44 + 16·n bytes; n is never stored. The points are misaligned for
// doubles: read and write them through the members, never through a reference into the record.

#ifndef TRAMMEL_FPOLYGON_H
#define TRAMMEL_FPOLYGON_H

#include "TPoint.h"
#include "TRect.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace trammel_detail {

inline constexpr long kFPolygonHeaderSize = 44;
inline constexpr long kFPolygonPointSize = 16;

/// Returns the address of point `i` in a handle polygon's block. `base` is the block's first byte.
template <class Byte> Byte* FPolygonPointAt(Byte* base, long i) {
    return base + kFPolygonHeaderSize + kFPolygonPointSize * i;
}

/// Returns the number of whole points that a block of `size` bytes holds. This is one more than the
/// last index, except in blocks with less than a point behind the header. The division that gives
/// the last index rounds toward 0.
inline long FPolygonPointCount(long size) {
    return size < kFPolygonHeaderSize + kFPolygonPointSize
               ? 0
               : (size - kFPolygonHeaderSize) / kFPolygonPointSize;
}

/// Returns point `i` of the block at `base`, which must hold it.
inline TPoint<double> ReadFPolygonPoint(char const* base, long i) {
    TPoint<double> p;
    std::memcpy(&p, FPolygonPointAt(base, i), sizeof p);
    return p;
}

/// Stores point `i` of the block at `base`, which must have room for it.
inline void WriteFPolygonPoint(char* base, long i, TPoint<double> const& p) {
    std::memcpy(FPolygonPointAt(base, i), &p, sizeof p);
}

} // namespace trammel_detail

#pragma pack(push, 4)

/// The record of a handle polygon.
struct FPolygon {
    std::int16_t polyReserved1;   ///< 0 in new blocks, never read
    std::int16_t polyClosed;      ///< nonzero: closed
    std::int16_t polyReserved2;   ///< 0 in new blocks, never read
    std::int16_t polyBoundsValid; ///< nonzero: polyBBox holds the bounds of the points
    TRect<double> polyBBox;       ///< cached bounds
    std::int32_t polyPath;        ///< token of the cached drawing path, 0 for none
    TPoint<double> polyPoints[1]; ///< as many as the block has room for

    /// Returns point `i`; no checks: the block must hold it.
    TPoint<double> PolyPoints(long i) const {
        return trammel_detail::ReadFPolygonPoint(reinterpret_cast<char const*>(this), i);
    }
    /// Stores point `i` and marks the bounds invalid; no checks: the block must hold it. Unlike
    /// CFPolygonRef::SetPolyPoints, it leaves the stale bounds and the cached path in place.
    FPolygon& SetPolyPoints(long i, TPoint<double> const& p) {
        trammel_detail::WriteFPolygonPoint(reinterpret_cast<char*>(this), i, p);
        polyBoundsValid = 0;
        return *this;
    }
};

#pragma pack(pop)

static_assert(offsetof(FPolygon, polyClosed) == 2 && offsetof(FPolygon, polyReserved2) == 4 &&
              offsetof(FPolygon, polyBoundsValid) == 6 && offsetof(FPolygon, polyBBox) == 8 &&
              offsetof(FPolygon, polyPath) == 40 && offsetof(FPolygon, polyPoints) == 44);
static_assert(sizeof(FPolygon) == 60);
static_assert(std::is_trivially_copyable_v<FPolygon>);
static_assert(std::is_standard_layout_v<FPolygon>);

#endif

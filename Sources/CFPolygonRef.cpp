// SPDX-License-Identifier: MIT

#include "CFPolygonRef.h"

#include "BoundsCache_p.h"
#include "CMatrix3x3.h"
#include "Handles.h"
#include "PointRun_p.h"
#include "UHandle.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

CGPath* (*mBuildProc)(CFPolygonRef) = nullptr;

namespace {

using trammel_detail::KeptBounds;

constexpr long kHeaderSize = trammel_detail::kFPolygonHeaderSize;
constexpr long kPointSize = trammel_detail::kFPolygonPointSize;
constexpr long kQDHeaderSize = 10;
constexpr long kQDPointSize = 4;

Handle AsHandle(OpaqueCFPolygon** ref) { return reinterpret_cast<Handle>(ref); }

/// True when there is a block with a whole header in it. Shorter blocks come from elsewhere, and
/// count as no block where the header is needed.
bool HasHeader(OpaqueCFPolygon** ref) { return GetHandleSize(AsHandle(ref)) >= kHeaderSize; }

/// Returns the record in a block with a header. It is good until the block is resized.
FPolygon* Record(OpaqueCFPolygon** ref) { return reinterpret_cast<FPolygon*>(*ref); }

/// Returns the block's bytes behind a handle that is not null. They are good until the block is
/// resized.
char* Bytes(OpaqueCFPolygon** ref) { return reinterpret_cast<char*>(*ref); }

/// Returns the block size of a polygon of `n` points, or -1 when `n` is negative or the size
/// overflows.
long BlockSize(long n) {
    long size = 0;
    if (n < 0 || __builtin_mul_overflow(n, kPointSize, &size) ||
        __builtin_add_overflow(size, kHeaderSize, &size)) {
        return -1;
    }
    return size;
}

/// Releases the cached path of a block with a header.
void ReleaseCachedPath(OpaqueCFPolygon** ref) {
    auto* const token = reinterpret_cast<std::int32_t*>(Bytes(ref) + offsetof(FPolygon, polyPath));
    if (__atomic_load_n(token, __ATOMIC_RELAXED) != 0) {
        trammel_detail::ReleasePathToken(__atomic_exchange_n(token, 0, __ATOMIC_RELAXED), ref);
    }
}

/// Returns the bounds in a block with a header. Blocks begin at multiples of 8 at least, so the
/// bounds are aligned although the record is packed.
KeptBounds BoundsIn(OpaqueCFPolygon** ref) {
    static_assert(offsetof(FPolygon, polyBBox) % alignof(TRect<double>) == 0);
    char* const bytes = Bytes(ref);
    return {*reinterpret_cast<TRect<double>*>(bytes + offsetof(FPolygon, polyBBox)),
            reinterpret_cast<std::int16_t*>(bytes + offsetof(FPolygon, polyBoundsValid))};
}

/// Returns a copy of the block, whose bounds may be stored meanwhile, as const members do. The
/// copy has no cached path. Returns null when there is no block, or memory is short.
OpaqueCFPolygon** CopyBlock(OpaqueCFPolygon** source) {
    if (!HasHeader(source)) {
        return Clone(source);
    }
    long const size = GetHandleSize(AsHandle(source));
    auto** const copy =
        reinterpret_cast<OpaqueCFPolygon**>(trammel_detail::NewUnfilledHandle(size));
    if (copy != nullptr) {
        FPolygon const* const from = Record(source);
        FPolygon* const to = Record(copy);
        to->polyReserved1 = from->polyReserved1;
        to->polyClosed = from->polyClosed;
        to->polyReserved2 = from->polyReserved2;
        KeptBounds::State const kept = BoundsIn(source).Load();
        to->polyBoundsValid = kept.valid;
        to->polyBBox = kept.bounds;
        to->polyPath = 0; // the path stays the source's
        BlockMove(Bytes(source) + kHeaderSize, Bytes(copy) + kHeaderSize, size - kHeaderSize);
    }
    return copy;
}

/// Grows current bounds by a point that the polygon, which has a header, has just taken in.
void GrowBounds(OpaqueCFPolygon** ref, TPoint<double> const& p) {
    FPolygon* const record = Record(ref);
    if (record->polyBoundsValid != 0) {
        TRect<double> const bounds = record->polyBBox;
        record->polyBBox = bounds | p;
    }
}

/// Returns the number of points in the block; 0 for a null handle.
long PointCount(CFPolygonRef const& polygon) {
    return trammel_detail::FPolygonPointCount(polygon.DataSize());
}

/// Returns the place where the points begin, for loops that change them; null for a null handle.
char* PointBytes(CFPolygonRef const& polygon) {
    return polygon.mRef != nullptr ? Bytes(polygon.mRef) + kHeaderSize : nullptr;
}

/// Returns the points, which are good until the block is resized. A null handle gives none.
trammel_detail::PointRun Points(CFPolygonRef const& polygon) {
    return {PointBytes(polygon), PointCount(polygon)};
}

} // namespace

CFPolygonRef::CFPolygonRef(bool create) : mRef(nullptr) {
    if (create) {
        CFPolygonCreate(0L);
    }
}

CFPolygonRef::CFPolygonRef(FPolygon** h, bool copy) : mRef(reinterpret_cast<OpaqueCFPolygon**>(h)) {
    if (copy) {
        CFPolygonCreate(CFPolygonRef(*this));
    }
}

CFPolygonRef::CFPolygonRef(CFPolygonRef const& other, bool copy) : mRef(other.mRef) {
    if (copy) {
        CFPolygonCreate(other);
    }
}

CFPolygonRef& CFPolygonRef::CFPolygonCreate(long n) {
    mRef = reinterpret_cast<OpaqueCFPolygon**>(NewHandleClear(BlockSize(n)));
    InvalBounds();
    return *this;
}

CFPolygonRef& CFPolygonRef::CFPolygonCreate(CFPolygonRef const& src) {
    mRef = CopyBlock(src.mRef);
    return *this;
}

CFPolygonRef& CFPolygonRef::CFPolygonCreate(std::vector<TPoint<double>> const& pts) {
    CFPolygonCreate(static_cast<long>(pts.size()));
    if (mRef != nullptr) {
        BlockMove(pts.data(), Bytes(mRef) + kHeaderSize,
                  kPointSize * static_cast<long>(pts.size()));
    }
    InvalBounds();
    return *this;
}

CFPolygonRef& CFPolygonRef::CFPolygonCreate(TRect<double> const& r, double angle) {
    TPoint<double> const corners[] = {r.TopLeft(), r.TopRight(), r.BottomRight(), r.BottomLeft(),
                                      r.TopLeft()};
    TPoint<double> const centre = r.MidPt();
    CFPolygonCreate(5L);
    if (mRef == nullptr) {
        return *this;
    }
    for (long i = 0; i < 5; ++i) {
        TPoint<double> p = corners[i];
        if (angle != 0.0) {
            p.Rotate(angle, centre);
        }
        trammel_detail::WriteFPolygonPoint(Bytes(mRef), i, p);
    }
    InvalBounds();
    return *this;
}

CFPolygonRef& CFPolygonRef::Dispose() {
    if (mRef != nullptr) {
        if (HasHeader(mRef)) {
            ReleaseCachedPath(mRef);
        }
        DisposeHandle(AsHandle(mRef));
        mRef = nullptr;
    }
    return *this;
}

long CFPolygonRef::DataSize() const { return GetHandleSize(AsHandle(mRef)); }

TPoint<double> CFPolygonRef::PolyPoints(long i) const {
    if (i < 0 || i >= PointCount(*this)) {
        return TPoint<double>();
    }
    return trammel_detail::ReadFPolygonPoint(Bytes(mRef), i);
}

bool CFPolygonRef::Closed() const { return HasHeader(mRef) && Record(mRef)->polyClosed != 0; }

bool CFPolygonRef::BoundsValid() const {
    return HasHeader(mRef) && BoundsIn(mRef).Load().valid != 0;
}

TRect<double> CFPolygonRef::Bounds() const {
    if (!HasHeader(mRef)) {
        return TRect<double>();
    }
    KeptBounds::State const kept = BoundsIn(mRef).Load();
    if (kept.valid != 0) {
        return kept.bounds;
    }
    TRect<double> const bounds = trammel_detail::Union<false>(Points(*this));
    BoundsIn(mRef).Store({bounds, 1});
    return bounds;
}

TLine<double> CFPolygonRef::GetEdge(long i) const {
    return TLine<double>(PolyPoints(i), PolyPoints(i <= EdgeCount() ? i + 1 : 0));
}

long CFPolygonRef::GeometryEdgeCount() const {
    long const last = LastIndex();
    return last >= 0 && PolyPoints(0) == PolyPoints(last) ? last - 1 : last;
}

bool CFPolygonRef::Contains(TPoint<double> const& p) const {
    // Where the first point is repeated at the end, the edge between the two has no extent in v and
    // counts for nothing. So it makes no difference that GeometryEdgeCount leaves it out.
    return trammel_detail::OddCrossings(Points(*this), p.h, p.v);
}

CFPolygonRef& CFPolygonRef::SetSize(long n) {
    long const size = BlockSize(n);
    if (mRef != nullptr && size >= 0 && SetHandleSize(AsHandle(mRef), size) == noErr) {
        InvalBounds();
    }
    return *this;
}

CFPolygonRef& CFPolygonRef::SetPolyPoints(long i, TPoint<double> const& p) {
    if (i >= 0 && i < PointCount(*this)) {
        trammel_detail::WriteFPolygonPoint(Bytes(mRef), i, p);
        InvalBounds();
    }
    return *this;
}

CFPolygonRef& CFPolygonRef::Append(TPoint<double> const& p) {
    TPoint<double> const point = p;
    long const sizeBefore = DataSize();
    AppendHandle(mRef, point);
    if (DataSize() > sizeBefore && sizeBefore >= kHeaderSize) {
        if (BoundsValid()) {
            GrowBounds(mRef, point);
        }
        ReleaseCachedPath(mRef);
    }
    return *this;
}

CFPolygonRef& CFPolygonRef::Insert(long i, TPoint<double> const& p) {
    if (!HasHeader(mRef)) {
        return *this;
    }
    TPoint<double> const point = p;
    long const index = std::clamp(i, 0L, PointCount(*this));
    long const oldSize = DataSize();
    GrowHandle(AsHandle(mRef), kPointSize);
    if (DataSize() == oldSize) {
        return *this;
    }
    char* const place = trammel_detail::FPolygonPointAt(Bytes(mRef), index);
    BlockMove(place, place + kPointSize, Bytes(mRef) + oldSize - place);
    trammel_detail::WriteFPolygonPoint(Bytes(mRef), index, point);
    GrowBounds(mRef, point);
    return *this;
}

CFPolygonRef& CFPolygonRef::Delete(long i, long count) {
    long const points = PointCount(*this);
    if (i >= 0 && count >= 0 && HasHeader(mRef)) {
        if (i <= points && count <= points - i) {
            char* const place = trammel_detail::FPolygonPointAt(Bytes(mRef), i);
            char const* const rest = trammel_detail::FPolygonPointAt(Bytes(mRef), i + count);
            BlockMove(rest, place, Bytes(mRef) + DataSize() - rest);
        }
        GrowHandle(AsHandle(mRef), -kPointSize * std::min(count, points));
    }
    InvalBounds();
    return *this;
}

CFPolygonRef& CFPolygonRef::SetClosed(bool c) {
    if (HasHeader(mRef) && Closed() != c) {
        Record(mRef)->polyClosed = c ? 1 : 0;
        InvalBounds();
    }
    return *this;
}

void CFPolygonRef::InvalBounds() const {
    if (!HasHeader(mRef)) {
        return;
    }
    if (BoundsValid()) {
        BoundsIn(mRef).Store({TRect<double>(), 0});
    }
    ReleaseCachedPath(mRef);
}

void CFPolygonRef::CalcBounds() const {
    if (!HasHeader(mRef)) {
        return;
    }
    BoundsIn(mRef).Store({trammel_detail::Union<false>(Points(*this)), 1});
}

CFPolygonRef& CFPolygonRef::Offset(TPoint<double> const& d) {
    trammel_detail::OffsetRun(PointBytes(*this), PointCount(*this), d);
    InvalBounds();
    return *this;
}

CFPolygonRef& CFPolygonRef::Scale(double s) {
    if (s != 1.0) {
        Scale(s, s);
    }
    return *this;
}

CFPolygonRef& CFPolygonRef::Scale(double sx, double sy) {
    if (sx == 1.0 && sy == 1.0) {
        return *this;
    }
    trammel_detail::ScaleRun(PointBytes(*this), PointCount(*this), sx, sy);
    InvalBounds();
    return *this;
}

CFPolygonRef& CFPolygonRef::Rotate(double angle, TPoint<double> const& center) {
    trammel_detail::RotateRun(PointBytes(*this), PointCount(*this), angle, center);
    InvalBounds();
    return *this;
}

CFPolygonRef& CFPolygonRef::Map(TRect<double> const& from, TRect<double> const& to) {
    // One matrix serves all points: it is the one that TPoint::Map builds each time.
    CMatrix3x3 const m = CMatrix3x3().Map(from, to);
    trammel_detail::TransformRun(PointBytes(*this), PointCount(*this), m);
    if (PointCount(*this) > 0) {
        InvalBounds();
    }
    return *this;
}

void CFPolygonRef::SetBuilPathProc(CGPath* (*proc)(CFPolygonRef)) { mBuildProc = proc; }

CGPath* CFPolygonRef::GetPath() {
    if (!HasHeader(mRef)) {
        return nullptr;
    }
    CGPath* path = trammel_detail::PathForToken(Record(mRef)->polyPath, mRef);
    if (path == nullptr && mBuildProc != nullptr) {
        path = mBuildProc(CFPolygonRef(*this, false));
        ReleaseCachedPath(mRef); // a builder may have asked for the path that it was building
        Record(mRef)->polyPath = trammel_detail::StorePath(path, mRef);
        path = trammel_detail::PathForToken(Record(mRef)->polyPath, mRef);
    }
    return path;
}

MacPolygon** CFPolygonRef::CreateQDPoly() const {
    long const points = PointCount(*this);
    Handle const h = NewHandle(kQDHeaderSize + kQDPointSize * points);
    if (h == nullptr) {
        return nullptr;
    }
    for (long i = points - 1; i >= 0; --i) {
        Point const p = PolyPoints(i);
        BlockMove(&p, *h + kQDHeaderSize + kQDPointSize * i, kQDPointSize);
    }
    MacPolygon* const header = reinterpret_cast<MacPolygon*>(*h);
    header->polyBBox = Bounds();
    header->polySize = static_cast<std::int16_t>(GetHandleSize(h));
    return reinterpret_cast<MacPolygon**>(h);
}

CFPolygonRef CFPolygonCreateCopy(CFPolygonRef const& src) { return CFPolygonRef(src, true); }

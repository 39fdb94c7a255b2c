// SPDX-License-Identifier: MIT

#include "TPoly.h"

#include "Assertion_p.h"
#include "BoundsCache_p.h"
#include "CFPolygonRef.h"
#include "CMatrix3x3.h"
#include "CurveKernels_p.h"
#include "PointRun_p.h"
#include "UScalar.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

// Checked in every build type; the report names the function, this file, the line and the
// condition.
#define TRAMMEL_ASSERT(condition, function)                                                        \
    ((condition) ? static_cast<void>(0)                                                            \
                 : trammel_detail::trammel_assert_rtn(function, "Sources/TPoly.cpp", __LINE__,     \
                                                      #condition))

namespace {

using trammel_detail::OnceBounds;

constexpr long kHeaderSize = static_cast<long>(offsetof(CPolygon<double>, mPoints));
constexpr long kPointSize = static_cast<long>(sizeof(TPoint<double>));

/// A t nearer to 0 than this, exclusive, is the first vertex in the search by table.
constexpr double kFirstVertexFraction = 0.0001;

/// With at least this many points and vertices, Clip prepares the polygon for its questions.
constexpr std::size_t kManyPieces = 6;
constexpr long kManyVertices = 128;

Handle AsHandle(CPolygon<double>** h) { return reinterpret_cast<Handle>(h); }

/// The bounds in the header of a new polygon. They are never reported, because they are marked as
/// not current. The first two are the smallest positive number, not the most negative one: the
/// record has always held it.
constexpr TRect<double> kNoBounds(std::numeric_limits<double>::min(),
                                  std::numeric_limits<double>::min(),
                                  std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::max());

/// Returns the block of a new, open polygon with the given cached (but not current) bounds; null
/// when memory is short. The caller fills the `size` bytes of its vertices.
CPolygon<double>** NewBlock(TRect<double> const& bounds, long size = 0) {
    auto* const h =
        reinterpret_cast<CPolygon<double>**>(trammel_detail::NewUnfilledHandle(kHeaderSize + size));
    if (h != nullptr) {
        CPolygon<double>* const record = *h;
        record->mReserved = 0;
        record->mClosed = 0;
        record->mBoundsValid = 0;
        record->mBounds = bounds;
    }
    return h;
}

/// Returns the block of a new, open polygon of `count` vertices; null when memory is short.
CPolygon<double>** NewBlock(TPoint<double> const* vertices, std::size_t count) {
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<long>::max() / kPointSize);
    if (count >= kMost) {
        return nullptr;
    }
    long const size = kPointSize * static_cast<long>(count);
    CPolygon<double>** const h = NewBlock(kNoBounds, size);
    if (h != nullptr) {
        BlockMove(vertices, (*h)->mPoints, size);
    }
    return h;
}

OnceBounds KeptBounds(CPolygon<double>& record) { return {record.mBounds, record.mBoundsValid}; }

/// Returns a copy of the block with the vertices and the state; null when there is none, or memory
/// is short.
CPolygon<double>** CopyBlock(CPolygon<double>** source) {
    long const size = GetHandleSize(AsHandle(source));
    if (size < kHeaderSize) {
        return Clone(source);
    }
    // The bounds may be stored meanwhile, as const members do.
    CPolygon<double>** const copy = NewBlock(TRect<double>(), size - kHeaderSize);
    if (copy != nullptr) {
        CPolygon<double>& from = **source;
        CPolygon<double>& to = **copy;
        to.mReserved = from.mReserved;
        to.mClosed = from.mClosed;
        KeptBounds(from).CopyTo(to.mBounds, to.mBoundsValid);
        BlockMove(from.mPoints, to.mPoints, size - kHeaderSize);
    }
    return copy;
}

/// The vertices of a polygon as they lie in its block. They are good until the polygon changes.
struct Vertices {
    TPoint<double> const* points;
    long count;

    explicit Vertices(TPolygon<double> const& polygon)
        : points(polygon.mHandle != nullptr ? (*polygon.mHandle)->mPoints : nullptr),
          count(polygon.mHandle != nullptr ? polygon.LastIndex() + 1 : 0) {}

    TPoint<double> const& operator[](long i) const { return points[i]; }
    /// Returns edge `i`; the last edge leads back to vertex 0.
    TLine<double> Edge(long i) const {
        return TLine<double>(points[i], points[i + 1 < count ? i + 1 : 0]);
    }
};

/// The lengths of the edges from vertex to vertex, one after the other, without the closing edge.
/// They are computed many at a time.
class ChainEdges {
public:
    explicit ChainEdges(Vertices const& vertices) : mVertices(vertices) {}

    /// Returns the length of the next edge; to be called at most once for each edge.
    double Next() {
        if (mNext == mEnd) {
            long const some = std::min(mVertices.count - 1 - mFrom, kAtOnce);
            trammel_detail::EdgeLengths(&mVertices.points[mFrom].v, some, mLengths);
            mFrom += some;
            mEnd = some;
            mNext = 0;
        }
        return mLengths[mNext++];
    }

private:
    static constexpr long kAtOnce = 256;

    Vertices const& mVertices;
    long mFrom = 0;
    long mNext = 0;
    long mEnd = 0;
    double mLengths[kAtOnce];
};

/// Returns the sum of the distances from vertex to vertex, without the closing edge.
double ChainLength(Vertices const& vertices) {
    ChainEdges edges(vertices);
    double length = 0.0;
    for (long i = 1; i < vertices.count; ++i) {
        length += edges.Next();
    }
    return length;
}

/// Returns the vertices as a run, which is good until the polygon changes.
trammel_detail::PointRun Run(TPolygon<double> const& polygon) {
    Vertices const vertices(polygon);
    return {reinterpret_cast<char const*>(vertices.points), vertices.count};
}

/// Tells the sides of a segment's box beyond which a point lies.
///
/// For another segment with both ends beyond the same side, SegmentsIntersect is false. A crossing
/// would have to lie in both boxes, each grown by the slack, and these do not meet. The bounds of a
/// grown box are rounded, but rounding keeps order: the box's bound is the rounded bound of its
/// nearer end. A NaN coordinate is beyond no side.
class Beyond {
public:
    explicit Beyond(TLine<double> const& line) : mReach(line.Bounds()) {
        mReach.Outset(trammel_detail::kSegmentSlack);
    }
    /// Returns the sides as bits: 1 top, 2 left, 4 bottom, 8 right.
    unsigned operator()(TPoint<double> const& p) const {
        constexpr double kSlack = trammel_detail::kSegmentSlack;
        return unsigned{p.v + kSlack < mReach.top} | unsigned{p.h + kSlack < mReach.left} << 1U |
               unsigned{p.v - kSlack > mReach.bottom} << 2U |
               unsigned{p.h - kSlack > mReach.right} << 3U;
    }

private:
    TRect<double> mReach;
};

bool IsNaN(TPoint<double> const& p) { return std::isnan(p.h) || std::isnan(p.v); }

} // namespace

template <class T> TPolygon<T>::TPolygon() : mHandle(NewBlock(kNoBounds)) {}

template <class T> TPolygon<T>::TPolygon(CFPolygonRef src) {
    long const count = std::max(src.LastIndex() + 1, 0L);
    mHandle = reinterpret_cast<CPolygon<T>**>(NewHandle(kHeaderSize + kPointSize * count));
    if (mHandle == nullptr) {
        return;
    }
    TRect<T> const bounds = src.Bounds();
    CPolygon<T>* const record = *mHandle;
    for (long i = count - 1; i >= 0; --i) {
        record->mPoints[i] = src.PolyPoints(i);
    }
    record->mBounds = bounds;
}

template <class T> TPolygon<T>::TPolygon(TRect<T> const& r) : mHandle(NewBlock(r)) {
    if (mHandle != nullptr) {
        TRect<T> const rect = r;
        Append(rect[kTopLeft], true);
        Append(rect.TopRight(), true);
        Append(rect[kBottomRight], true);
        Append(rect.BottomLeft(), true);
        Close();
    }
}

template <class T>
TPolygon<T>::TPolygon(std::initializer_list<TPoint<T>> vertices)
    : mHandle(NewBlock(vertices.begin(), vertices.size())) {}

template <class T>
TPolygon<T>::TPolygon(std::vector<TPoint<T>> const& vertices)
    : mHandle(NewBlock(vertices.data(), vertices.size())) {}

template <class T>
TPolygon<T>::TPolygon(TPolygon const& other) : mHandle(CopyBlock(other.mHandle)) {}

template <class T>
TPolygon<T>::TPolygon(TPolygon&& other) noexcept : mHandle(std::exchange(other.mHandle, nullptr)) {}

template <class T> TPolygon<T>::~TPolygon() { DisposeHandle(AsHandle(mHandle)); }

template <class T> TPolygon<T>& TPolygon<T>::operator=(TPolygon const& other) {
    if (this != &other) {
        DisposeHandle(AsHandle(mHandle));
        mHandle = CopyBlock(other.mHandle);
    }
    return *this;
}

template <class T> TPolygon<T>& TPolygon<T>::operator=(TPolygon&& other) noexcept {
    if (this != &other) {
        DisposeHandle(AsHandle(mHandle));
        mHandle = std::exchange(other.mHandle, nullptr);
    }
    return *this;
}

template <class T> long TPolygon<T>::LastIndex() const {
    if (mHandle == nullptr) {
        return -1;
    }
    return (GetHandleSize(AsHandle(mHandle)) - kHeaderSize - kPointSize) / kPointSize;
}

template <class T> TPoint<T> TPolygon<T>::GetPt(long index) const {
    TRAMMEL_ASSERT(index >= 0, "GetPt");
    TRAMMEL_ASSERT(index <= LastIndex(), "GetPt");
    return (*mHandle)->mPoints[index];
}

template <class T> TPolygon<T>& TPolygon<T>::SetPt(long index, TPoint<T> const& p) {
    TRAMMEL_ASSERT(index >= 0, "SetPt");
    if (index <= LastIndex()) {
        (*mHandle)->mPoints[index] = p;
        InvalBounds();
    }
    return *this;
}

template <class T> TPolygon<T>& TPolygon<T>::Append(TPoint<T> p, bool allowDuplicate) {
    if (!allowDuplicate) {
        Vertices const vertices(*this);
        if (vertices.count > 0 && !(p != vertices[vertices.count - 1])) {
            return *this;
        }
    }
    AppendHandle(mHandle, p);
    return *this;
}

template <class T> TPolygon<T>& TPolygon<T>::AppendUnique(TPoint<T> const& p) {
    return Append(p, false);
}

template <class T> TPolygon<T>& TPolygon<T>::Close() {
    if (mHandle != nullptr) {
        (*mHandle)->mClosed = 1;
    }
    return *this;
}

template <class T> bool TPolygon<T>::Closed() const {
    return mHandle == nullptr || (*mHandle)->mClosed != 0;
}

template <class T> TPolygon<T>& TPolygon<T>::Transform(CMatrix3x3 const& m) {
    long const count = LastIndex() + 1;
    if (count > 0) {
        trammel_detail::TransformRun(reinterpret_cast<char*>((*mHandle)->mPoints), count, m);
        InvalBounds();
    }
    return *this;
}

template <class T> void TPolygon<T>::GetEdge(long index, TPoint<T>& a, TPoint<T>& b) const {
    TRAMMEL_ASSERT(index >= 0, "GetEdge");
    // Both are read before one is written: the outputs may be vertices of this polygon.
    TPoint<T> const start = GetPt(index);
    TPoint<T> const end = GetPt(index == LastIndex() ? 0 : index + 1);
    a = start;
    b = end;
}

template <class T> void TPolygon<T>::GetEdge(long index, TLine<T>& line) const {
    GetEdge(index, line.mStart, line.mEnd);
}

template <class T> TLine<T> TPolygon<T>::GetEdge(long index) const {
    TLine<T> edge;
    GetEdge(index, edge);
    return edge;
}

template <class T> double TPolygon<T>::Length() const {
    Vertices const vertices(*this);
    double length = ChainLength(vertices);
    if (Closed() && vertices.count > 0) {
        length += vertices.Edge(vertices.count - 1).Length();
    }
    return length;
}

template <class T> void TPolygon<T>::CalcBounds() const {
    if (mHandle != nullptr) {
        KeptBounds(**mHandle).Store(trammel_detail::Union<true>(Run(*this)));
    }
}

template <class T> bool TPolygon<T>::Contains(TPoint<T> p) const {
    return Bounds().Contains(p) && trammel_detail::OddCrossings(Run(*this), p.h, p.v);
}

template <class T> TPoint<T> TPolygon<T>::TPt(double t) const {
    if (t == 0.0) {
        return GetPt(0);
    }
    if (t == 1.0) {
        return GetPt(LastIndex());
    }
    double const target = t * Length();
    Vertices const vertices(*this);
    long const edgeCount = std::min(LastEdge() + 1, vertices.count);
    ChainEdges edges(vertices);
    double sum = 0.0;
    for (long i = 0; i < edgeCount; ++i) {
        double const before = sum;
        double const length = i + 1 < vertices.count ? edges.Next() : vertices.Edge(i).Length();
        sum += length;
        if (sum >= target) {
            return vertices.Edge(i).TPt((target - before) / length);
        }
    }
    return GetPt(LastIndex());
}

template <class T> TPoint<T> TPolygon<T>::TPt(double t, std::vector<double>* table) const {
    std::vector<double> ownTable;
    if (table == nullptr) {
        BuildLTable(*this, ownTable);
        table = &ownTable;
    }
    t = std::max(std::min(t, 1.0), 0.0);
    long const lastEntry = static_cast<long>(table->size()) - 1;
    long const last = std::min(LastIndex(), lastEntry);
    if (kFirstVertexFraction > std::abs(t) || last < 1) {
        return GetPt(0);
    }
    std::vector<double> const& lengths = *table;
    auto const at = [&lengths](long i) { return lengths[static_cast<std::size_t>(i)]; };
    double const target = at(last) * t;
    long lo = 0;
    long hi = lastEntry;
    long mid;
    do {
        mid = (lo + hi) / 2;
        (target > at(mid) ? lo : hi) = mid;
    } while (hi - lo > 1);
    long k = mid;
    if (at(k) > target) {
        k = std::max(k - 1, 0L);
    }
    k = std::min(k, last - 1);
    double const span = at(k + 1) - at(k);
    if (span != 0.0) {
        return ::TPt(GetPt(k), GetPt(k + 1), (target - at(k)) / span);
    }
    return GetPt(k);
}

template <class T> TPoint<T> TPolygon<T>::CalcPtFromEnd(double distance, bool fromStart) const {
    double const length = Length();
    double const f = length != 0.0 ? distance / length : 0.0;
    return TPt(fromStart ? f : 1.0 - f, nullptr);
}

template <class T> std::vector<TLine<T>> TPolygon<T>::Clip(TLine<T> line) const {
    std::vector<TLine<T>> pieces;
    if (IsNaN(line.mStart) || IsNaN(line.mEnd)) {
        return pieces;
    }
    PointSort const before(1.0 > std::abs(line.Slope()));
    std::vector<TPoint<T>> points = {line.mStart, line.mEnd};
    Vertices const vertices(*this);
    Beyond const beyond(line);
    unsigned startSides = vertices.count > 0 ? beyond(vertices[0]) : 0;
    TPoint<T> where;
    for (long i = 0; i < vertices.count; ++i) {
        TLine<T> const edge = vertices.Edge(i);
        unsigned const endSides = beyond(edge.mEnd);
        if ((startSides & endSides) == 0 && line.SegmentsIntersect(edge, where)) {
            points.push_back(where);
        }
        startSides = endSides;
    }
    std::sort(points.begin(), points.end(), before);
    auto const keepPieces = [&](auto const& contains) {
        for (std::size_t k = 1; k < points.size(); ++k) {
            TLine<T> const piece(points[k - 1], points[k]);
            if (contains(piece.MidPt())) {
                pieces.push_back(piece);
            }
        }
    };
    if (points.size() < kManyPieces || vertices.count < kManyVertices) {
        keepPieces([this](TPoint<T> const& p) { return Contains(p); });
    } else {
        TRect<T> const bounds = Bounds();
        trammel_detail::Heights const heights(Run(*this));
        keepPieces([&](TPoint<T> const& p) {
            return bounds.Contains(p) && heights.OddCrossings(p.h, p.v);
        });
    }
    return pieces;
}

template <class T> TPolygon<T>::operator CFPolygonRef() const {
    if (mHandle == nullptr) {
        return CFPolygonRef(static_cast<FPolygon**>(nullptr), false);
    }
    CFPolygonRef out(true);
    Vertices const vertices(*this);
    for (long i = 0; i < vertices.count; ++i) {
        out.Append(vertices[i]);
    }
    if (Closed() && vertices.count > 0) {
        out.Append(vertices[0]);
    }
    out.SetClosed(Closed());
    return out;
}

template <class T> void BuildLTable(TPolygon<T> const& poly, std::vector<double>& table) {
    Vertices const vertices(poly);
    if (vertices.count == 0) {
        return;
    }
    table.reserve(table.size() + static_cast<std::size_t>(vertices.count));
    double length = 0.0;
    table.push_back(length);
    for (long i = 1; i < vertices.count; ++i) {
        length += LineLength(vertices[i - 1], vertices[i]);
        table.push_back(length);
    }
}

template class TPolygon<double>;
template void BuildLTable<double>(TPolygon<double> const&, std::vector<double>&);
template CPolygon<double>** Clone<CPolygon<double>>(CPolygon<double>**);
template void AppendHandle<CPolygon<double>, TPoint<double>>(CPolygon<double>**, TPoint<double>);

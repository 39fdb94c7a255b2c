// SPDX-License-Identifier: MIT

// The answers have the bits of the formula. CrossesBefore(a, b, p) computes, for a height v = p.v
// between the edge's ends,
//
//     X(v) = a.h - (a.v - v) * slope
//
// Let m = min(a.h, b.h) and M = max(a.h, b.h). CrossesBefore returns false for p.h < m, true for
// p.h > M, else p.h > X(v). Each of the three operations of X is rounded, and rounding is monotone.
// So as long as nothing is NaN, the computed X is a monotone function of v, and falls or rises as
// the edge does. No allowance for errors is needed.
//
// Let the edge be cut at a height c. Let x = clamp(X(c), m, M), and let e be the h of one of its
// ends. With lo = min(x, e) and hi = max(x, e), all v from c to that end satisfy:
//
//     p.h < lo: false,    p.h > hi: true,    else: ask the formula.
//
// Proof: e is m or M. Let e = m; the other three cases are alike.
//   - p.h < lo = m gives false.
//   - p.h > hi = x means that p.h is above M, or not below X(c). In the second case p.h is above
//     X(v), which lies on the end's side of X(c). (Where X(c) is less than m, x = m.)
// An edge that is not cut has lo = m and hi = M.
//
// The index keeps such intervals, and the heights between which they hold, in few bits. Monotone
// mappings round them, and round the point in the same way: step(p.h) < step(lo) implies p.h < lo.
// Where the steps are equal, the formula decides.
//
// An infinite slope does no harm, nor does a product that overflows. X(c) is then infinite, on b's
// side, and x = b.h. So is X(v) for all v from c to b. The other piece leaves everything from m to
// M to the formula, which makes a NaN for v = a.v.
//
// A polygon with other coordinates that could make NaN or overflow (NaN itself, or beyond kTame)
// has no index. Its queries go through all edges.

#include "PreparedPolygon.h"

#include "EdgeCrossing_p.h"
#include "PointRun_p.h"
#include "PolygonPoints_p.h"
#include "Vector_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <vector>

namespace trammel {
namespace {

using trammel_detail::BitsOfTwo;
using trammel_detail::Double2;
using trammel_detail::Lane;
using trammel_detail::Max;
using trammel_detail::Min;
using trammel_detail::PointRun;
using trammel_detail::Short8;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Polygons of at most so many vertices have no index: going through all edges costs less.
constexpr std::size_t kFewVertices = 64;
/// At most so many vertices lie within a slab, without those where it begins. A query reads the
/// edges of all of them. More make queries slower, but the index smaller and faster to build.
constexpr std::size_t kSlabHeights = 32;
/// A bucket of heights has so many vertices when the heights are spread evenly.
constexpr std::size_t kBucketHeights = 4;
/// Up to so many slabs that begin in one bucket are searched one by one.
constexpr std::uint32_t kFewSlabs = 4;
/// Differences of coordinates up to this are far from overflow.
constexpr double kTame = 0x1p1000;

typedef std::uint32_t Id;  ///< of an edge, a slab, a node, a piece
typedef std::int16_t Step; ///< a coordinate in few bits

/// The greatest step. Steps of points are less, and greater than its negative.
constexpr Step kMost = std::numeric_limits<Step>::max();
constexpr double kMostOfPoint = kMost - 1;

/// Returns the v of a point in lane 0, and its h in lane 1.
Double2 LanesOf(TPoint<double> const& p) { return Double2::Of(p.v, p.h); }

/// A fixed number of items, not initialised.
template <class Item> class Array {
public:
    Array() = default;
    explicit Array(std::size_t size) : mItems(new Item[size]), mSize(size) {}
    Item& operator[](std::size_t i) { return mItems[i]; }
    Item const& operator[](std::size_t i) const { return mItems[i]; }
    Item* begin() { return mItems.get(); }
    Item* end() { return mItems.get() + mSize; }
    Item const* begin() const { return mItems.get(); }
    Item const* end() const { return mItems.get() + mSize; }
    std::size_t Size() const { return mSize; }
    std::size_t Bytes() const { return mSize * sizeof(Item); }

private:
    std::unique_ptr<Item[]> mItems; // NOLINT: a vector would set every item to zero first
    std::size_t mSize = 0;
};

/// Two monotone mappings: heights (lane 0) to buckets, 0 to count - 1, and coordinates h (lane 1)
/// to steps of points.
struct Mapping {
    Double2 origin = 0.0;
    Double2 scale = 0.0;
    Double2 least = 0.0;
    Double2 most = 0.0;
    Id count = 1;

    Mapping() = default;
    /// Spreads the extent from `lo` to `hi` evenly. An extent too small for that maps to 0.
    Mapping(Double2 const& lo, Double2 const& hi, std::size_t buckets) {
        double const bucketScale = static_cast<double>(buckets) / Lane<0>(hi - lo);
        double const stepScale = kMostOfPoint / (Lane<1>(hi - lo) * 0.5);
        bool const hasBuckets = bucketScale < kInfinity;
        bool const hasSteps = stepScale < kInfinity;
        origin = Double2::Of(Lane<0>(lo), Lane<1>(lo) * 0.5 + Lane<1>(hi) * 0.5);
        scale = Double2::Of(hasBuckets ? bucketScale : 0.0, hasSteps ? stepScale : 0.0);
        count = hasBuckets ? static_cast<Id>(buckets) : 1;
        least = Double2::Of(0.0, hasSteps ? -kMostOfPoint : 0.0);
        most = Double2::Of(static_cast<double>(count - 1), hasSteps ? kMostOfPoint : 0.0);
    }
    /// Returns the bucket and the step of a point. An infinite coordinate makes a NaN only where
    /// all coordinates map to 0; then the NaN maps to 0, too.
    Double2 operator()(Double2 const& p) const {
        return Min(Max((p - origin) * scale, least), most);
    }
};

/// Parts of edges. Each lies within the heights of one node.
struct Pieces {
    static constexpr unsigned kCount = 8;

    Step top[kCount];    ///< where the heights begin, in the node's steps; -1 for the node's own
    Step bottom[kCount]; ///< where the heights end; kMost for the node's own
    Step lo[kCount];     ///< the interval's ends
    Step hi[kCount];
    Id edge[kCount];

    /// Compares a point with all pieces. Returns two bits for each piece i:
    ///
    ///   bit i   bit kCount + i
    ///   1       0               the point is certainly behind the piece
    ///   0       1               the formula has to decide
    ///   0       0               the piece certainly does not count
    unsigned Compare(Step v, Step h) const {
        static_assert(kCount == 8, "a piece in each lane");
        Short8 const vs(v);
        Short8 const hs(h);
        Short8 const tops = Short8::Load(top);
        Short8 const bottoms = Short8::Load(bottom);
        Short8 const never = (tops > vs) | (vs > bottoms) | (Short8::Load(lo) > hs);
        Short8 const always = (vs > tops) & (bottoms > vs) & (hs > Short8::Load(hi));
        return BitsOfTwo(always, always | never) ^ 0xFF00U;
    }
};

/// A run of slabs.
struct Node {
    double top = 0.0;   ///< where its heights begin
    double scale = 0.0; ///< steps for a unit of height
    Id first = 0;       ///< its first piece; its pieces end at the next node's `first`
    Id next = 0;        ///< the nearest node above that has pieces, 0 for none

    /// Maps heights from `top` on to steps of points, monotonously. The height is not NaN.
    Step StepOf(double v) const {
        // Where heights are too near to each other for a finite scale, `top` makes a NaN.
        double const step = Max((v - top) * scale, 0.0);
        return static_cast<Step>(Min(step, kMostOfPoint));
    }
};

/// A vertex while the index is built.
struct Vertex {
    Id place; ///< at first its bucket; later 2j where slab j begins, 2j + 1 within slab j
    Step v;   ///< its height in the steps of its slab
    Step h;

    /// Returns v in lane 0 and h in lane 1.
    Short8 Steps() const { return Short8::LoadTwo(&v); }
};
static_assert(offsetof(Vertex, h) == offsetof(Vertex, v) + sizeof(Step));

/// Returns the number of bits without leading zeros.
unsigned BitLength(Id bits) {
    return 63U - static_cast<unsigned>(__builtin_clzll(2 * std::uint64_t{bits} + 1));
}

template <class Item> std::size_t Bytes(std::vector<Item> const& items) {
    return items.capacity() * sizeof(Item);
}

} // namespace

// The index divides the heights into slabs at heights of vertices. Slab j goes from mSlabs[j] up
// to, but without, mSlabs[j + 1]. The nodes of a binary tree are runs of slabs. An edge is a piece
// of the smallest node that holds it, or is cut into two pieces of smaller nodes. So the edges
// beside a point are in the lists of the nodes from its slab up to the root.
//
// Node 1 is the root. The children of node i are nodes 2i and 2i + 1. Node mLeaves + j is slab j.
struct PreparedPolygon::Index {
    TRect<double> mBounds;   // nothing outside of it is inside
    double mTop = kInfinity; // all edges lie between these heights
    double mBottom = -kInfinity;
    Mapping mMapping;
    Id mLeaves = 0;

    Array<TPoint<double>> mPoints; // the vertices, and vertex 0 again
    std::vector<double> mSlabs;    // empty: there is no index
    std::vector<Id> mFirstSlabs;   // of each bucket: the first slab that begins in it or later
    Array<Node> mNodes;
    Array<Pieces> mPieces;

    /// Copies the points, of which there is at least one.
    Index(TRect<double> const& bounds, PointRun points) : mBounds(bounds) {
        auto const count = static_cast<std::size_t>(points.count);
        if (count >= std::numeric_limits<std::int32_t>::max()) {
            throw std::bad_alloc();
        }
        mPoints = Array<TPoint<double>>(count + 1);
        std::memcpy(static_cast<void*>(mPoints.begin()), points.bytes,
                    count * sizeof(TPoint<double>));
        mPoints[count] = mPoints[0];
        if (count <= kFewVertices || !Measure() || !(mTop < mBottom)) {
            return; // without two different heights no point is inside
        }
        Array<Vertex> vertices(count + 1);
        CutSlabs(vertices);
        MakeNodes();
        PlaceVertices(vertices);
        CountPieces(vertices);
        ListPieces(vertices);
    }

    std::size_t Size() const {
        return sizeof(*this) + mPoints.Bytes() + Bytes(mSlabs) + Bytes(mFirstSlabs) +
               mNodes.Bytes() + mPieces.Bytes();
    }

    bool Contains(TPoint<double> const& p) const {
        if (!mBounds.Contains(p)) {
            return false;
        }
        if (mSlabs.empty()) {
            return trammel_detail::OddCrossings({reinterpret_cast<char const*>(mPoints.begin()),
                                                 static_cast<long>(mPoints.Size() - 1)},
                                                p.h, p.v);
        }
        if (!(mTop <= p.v && p.v < mBottom)) {
            return false;
        }
        Double2 const place = mMapping(LanesOf(p));
        return OddInSlab(p, static_cast<Step>(Lane<1>(place)),
                         SlabOf(p.v, static_cast<Id>(static_cast<std::int32_t>(Lane<0>(place)))));
    }

private:
    /// Returns the slab that holds `v`. Requires mTop <= v < mBottom, and the bucket of `v`.
    Id SlabOf(double v, Id bucket) const {
        // The search is for the first slab that begins above v. It begins in v's bucket, or is the
        // first one behind. Most buckets have none or one; then one step without a branch finds it.
        Id first = mFirstSlabs[bucket];
        for (Id count = mFirstSlabs[bucket + 1] - first; count > kFewSlabs;) {
            Id const half = count / 2;
            bool const below = mSlabs[first + half] <= v;
            first = below ? first + half + 1 : first;
            count = below ? count - half - 1 : half;
        }
        first += mSlabs[first] <= v ? 1 : 0;
        while (mSlabs[first] <= v) {
            ++first;
        }
        return first - 1;
    }

    /// True when an odd number of the edges beside a point in a slab are crossed before it.
    bool OddInSlab(TPoint<double> const& p, Step h, Id slab) const {
        bool odd = false;
        Id id = mLeaves + slab;
        do {
            Node const& node = mNodes[id];
            Id const last = mNodes[id + 1].first;
            if (node.first != last) {
                odd ^= OddInList(p, node.StepOf(p.v), h, node.first, last);
            }
            id = node.next;
        } while (id != 0);
        return odd;
    }

    /// True when an odd number of the pieces from `first` to `last` - 1 are crossed before the
    /// point.
    bool OddInList(TPoint<double> const& p, Step v, Step h, Id first, Id last) const {
        constexpr unsigned kAll = (1U << Pieces::kCount) - 1;
        Id const lastGroup = (last - 1) / Pieces::kCount;
        // The first group and the last group hold pieces of other nodes, too.
        unsigned mask = kAll << first % Pieces::kCount & kAll;
        unsigned odd = 0;
        for (Id group = first / Pieces::kCount; group <= lastGroup; ++group) {
            if (group == lastGroup) {
                mask &= kAll >> (Pieces::kCount - 1 - (last - 1) % Pieces::kCount);
            }
            unsigned const result = mPieces[group].Compare(v, h);
            odd ^= result & mask;
            for (unsigned asked = result >> Pieces::kCount & mask; asked != 0; asked &= asked - 1) {
                Id const edge = mPieces[group].edge[__builtin_ctz(asked)];
                // The parity of all bits counts, so any bit serves.
                odd ^= trammel_detail::CrossesBefore(mPoints[edge], mPoints[edge + 1], p) ? 1U : 0U;
            }
            mask = kAll;
        }
        return __builtin_parity(odd) != 0;
    }

    /// Computes the mapping, mTop and mBottom. False when a coordinate is not tame.
    bool Measure() {
        Double2 lo = kInfinity;
        Double2 hi = -kInfinity;
        Double2 zero = 0.0; // NaN if a coordinate is not finite
        for (TPoint<double> const& p : mPoints) {
            Double2 const x = LanesOf(p);
            lo = Min(x, lo);
            hi = Max(x, hi);
            zero = zero + x * 0.0;
        }
        Double2 const most = Min(Max(hi, 0.0 - lo), 2.0 * kTame);
        mTop = Lane<0>(lo);
        mBottom = Lane<0>(hi);
        mMapping = Mapping(lo, hi, (mPoints.Size() - 1) / kBucketHeights);
        return ((zero == 0.0) & (most <= kTame)).Bits() == 3U;
    }

    /// Chooses the slabs' heights.
    void CutSlabs(Array<Vertex>& vertices) {
        for (std::size_t i = 0; i < mPoints.Size(); ++i) {
            Double2 const place = mMapping(LanesOf(mPoints[i]));
            vertices[i].place = static_cast<Id>(static_cast<std::int32_t>(Lane<0>(place)));
            vertices[i].h = static_cast<Step>(Lane<1>(place));
        }
        struct Bucket {
            double lowest = kInfinity;
            std::size_t count = 0;
            bool IsCrowded() const { return count > kSlabHeights; }
        };
        std::vector<Bucket> buckets(mMapping.count);
        std::size_t const count = mPoints.Size() - 1;
        for (std::size_t i = 0; i < count; ++i) {
            Bucket& bucket = buckets[vertices[i].place];
            bucket.lowest = Min(mPoints[i].v, bucket.lowest);
            ++bucket.count;
        }
        std::vector<double> crowd; // all heights of the crowded buckets
        if (std::any_of(buckets.begin(), buckets.end(), std::mem_fn(&Bucket::IsCrowded))) {
            for (std::size_t i = 0; i < count; ++i) {
                if (buckets[vertices[i].place].IsCrowded()) {
                    crowd.push_back(mPoints[i].v);
                }
            }
            std::sort(crowd.begin(), crowd.end()); // which orders them by buckets, too
        }
        double const* heights = crowd.data();
        std::size_t inside = kSlabHeights;
        for (Bucket const& bucket : buckets) {
            if (bucket.IsCrowded()) {
                inside = CutBucket(heights, bucket.count);
                heights += bucket.count;
            } else if (inside + bucket.count > kSlabHeights) {
                CutAt(bucket.lowest);
                inside = bucket.count;
            } else {
                inside += bucket.count;
            }
        }
        mSlabs.push_back(mBottom);

        mFirstSlabs.resize(std::size_t{mMapping.count} + 1);
        for (double const v : mSlabs) {
            ++mFirstSlabs[static_cast<std::size_t>(Lane<0>(mMapping(Double2::Of(v, 0.0)))) + 1];
        }
        for (std::size_t b = 0; b < mMapping.count; ++b) {
            mFirstSlabs[b + 1] += mFirstSlabs[b];
        }
    }

    void CutAt(double v) {
        if (v < mBottom) {
            mSlabs.push_back(v);
        }
    }

    /// Cuts between the heights of one bucket, which are sorted. Returns the number of heights
    /// within the last slab.
    std::size_t CutBucket(double const* heights, std::size_t count) {
        std::size_t inside = kSlabHeights; // so that a slab begins here
        for (std::size_t begin = 0, end = 0; begin < count; begin = end) {
            while (end < count && heights[end] == heights[begin]) {
                ++end;
            }
            inside += end - begin;
            if (inside > kSlabHeights) {
                CutAt(heights[begin]);
                inside = 0;
            }
        }
        return inside;
    }

    void MakeNodes() {
        auto const slabs = static_cast<Id>(mSlabs.size() - 1);
        mLeaves = Id{1} << BitLength(slabs - 1);
        mNodes = Array<Node>(std::size_t{mLeaves} * 2 + 1); // one more, for the end of the last
        for (Id first = mLeaves, length = 1; first > 0; first /= 2, length *= 2) {
            for (Id slab = 0; slab < slabs; slab += length) {
                Node& node = mNodes[first + slab / length];
                node.top = mSlabs[slab];
                double const bottom = mSlabs[std::min(slab + length, slabs)];
                node.scale = kMost / (bottom - node.top);
            }
        }
    }

    /// Turns the vertices' buckets into places.
    void PlaceVertices(Array<Vertex>& vertices) const {
        for (std::size_t i = 0; i < mPoints.Size(); ++i) {
            double const v = mPoints[i].v;
            Vertex& vertex = vertices[i];
            if (v < mBottom) {
                Id const slab = SlabOf(v, vertex.place);
                vertex.place = 2 * slab + (v > mSlabs[slab] ? 1 : 0);
                vertex.v = mNodes[mLeaves + slab].StepOf(v);
            } else {
                vertex.place = 2 * static_cast<Id>(mSlabs.size() - 1);
                vertex.v = 0; // in no slab
            }
        }
    }

    /// Where an edge is cut. CutOf computes it without a branch, which could not be predicted.
    struct Cut {
        Id upper; ///< the node that holds the upper piece
        Id lower; ///< the node that begins where the edge is cut; `upper` for an edge that is not
                  ///< cut
        Id count; ///< the number of cuts: 0 or 1
    };

    /// Returns the leaf that holds an edge, 0 for none. Leaves hold most edges of outlines.
    Id LeafOf(Vertex const& a, Vertex const& b) const {
        return a.place / 2 == b.place / 2 ? mLeaves + a.place / 2 : 0;
    }

    /// Returns the cut of an edge that is not level.
    Cut CutOf(Vertex const& a, Vertex const& b) const {
        // An edge that ends where a slab begins does not reach into it.
        Id const first = mLeaves + std::min(a.place, b.place) / 2;
        Id const last = mLeaves + (std::max(a.place, b.place) - 1) / 2;
        // Nodes of this height are the smallest of which at most two neighbours hold the edge.
        unsigned const height = BitLength(last - first);
        Id const count = (last >> height) - (first >> height);
        // Each of two pieces ends at the cut. It goes to the smallest node that holds it.
        Id const cut = last >> height << height;
        Id const mask = 0 - count;
        unsigned const above = BitLength(((cut - 1) ^ first) & mask);
        unsigned const below = BitLength((cut ^ last) & mask);
        unsigned const both = height & ~mask;
        return {first >> (above + both), last >> (below + both), count};
    }

    /// Calls visit(edge, a, b) for each edge that is not level; `a` and `b` are its ends. No point
    /// is beside a level edge.
    template <class Visit> void ForEachEdge(Array<Vertex> const& vertices, Visit visit) const {
        for (std::size_t i = 0; i + 1 < mPoints.Size(); ++i) {
            Vertex const& a = vertices[i];
            Vertex const& b = vertices[i + 1];
            if (mPoints[i].v != mPoints[i + 1].v) {
                visit(static_cast<Id>(i), a, b);
            }
        }
    }

    void CountPieces(Array<Vertex> const& vertices) {
        ForEachEdge(vertices, [this](Id, Vertex const& a, Vertex const& b) {
            if (Id const leaf = LeafOf(a, b); leaf != 0) {
                ++mNodes[leaf].first;
                return;
            }
            Cut const cut = CutOf(a, b);
            ++mNodes[cut.upper].first;
            mNodes[cut.lower].first += cut.count;
        });
        // ListPieces fills each list from its end. Until then `first` is where the list ends.
        for (Id id = 1; id < mNodes.Size(); ++id) {
            Node& node = mNodes[id];
            node.first += mNodes[id - 1].first;
            Id const above = id / 2;
            bool const isEmpty = above == 0 || mNodes[above].first == mNodes[above - 1].first;
            node.next = isEmpty ? mNodes[above].next : above;
        }
        // One more group takes the lower pieces of edges that are not cut, which nothing reads.
        mPieces = Array<Pieces>(mNodes[mNodes.Size() - 1].first / Pieces::kCount + 2);
        mPieces[mPieces.Size() - 2] = Pieces();
    }

    void ListPieces(Array<Vertex> const& vertices) {
        auto const spare = static_cast<Id>(mPieces.Size() - 1) * Pieces::kCount;
        ForEachEdge(vertices, [this, spare](Id edge, Vertex const& a, Vertex const& b) {
            if (Id const leaf = LeafOf(a, b); leaf != 0) {
                Short8 const least = Min(a.Steps(), b.Steps());
                Short8 const most = Max(a.Steps(), b.Steps());
                Put(--mNodes[leaf].first, Lane<0>(least), Lane<0>(most), Lane<1>(least),
                    Lane<1>(most), edge);
                return;
            }
            TPoint<double> const& p = mPoints[edge];
            TPoint<double> const& q = mPoints[edge + 1];
            double const top = Min(p.v, q.v);
            double const bottom = Max(p.v, q.v);
            Cut const cut = CutOf(a, b);
            Node& upper = mNodes[cut.upper];
            Node& lower = mNodes[cut.lower];
            double const slope = (p.h - q.h) / (p.v - q.v);
            double const crossing = p.h - (p.v - lower.top) * slope;
            double const within = Min(Max(crossing, Min(p.h, q.h)), Max(p.h, q.h));
            int const middle = static_cast<Step>(Lane<1>(mMapping(Double2::Of(0.0, within))));
            // Masks of ones and zeros choose without a branch.
            int const isCut = -static_cast<int>(cut.count);
            int const isUp = a.place > b.place ? -1 : 0;
            int const above = a.h ^ ((a.h ^ b.h) & isUp);
            int const below = b.h ^ ((a.h ^ b.h) & isUp);
            int const between = below ^ ((middle ^ below) & isCut);
            int const end = lower.StepOf(bottom);
            int const upperLo = std::min(above, between);
            int const upperHi = std::max(above, between);
            int const lowerLo = std::min(below, between);
            int const lowerHi = std::max(below, between);
            Put(--upper.first, upper.StepOf(top), end | (kMost & isCut), upperLo, upperHi, edge);
            lower.first -= cut.count;
            Put(spare + ((lower.first - spare) & static_cast<Id>(isCut)), -1, end, lowerLo, lowerHi,
                edge);
        });
    }

    void Put(Id place, int top, int bottom, int lo, int hi, Id edge) {
        Pieces& pieces = mPieces[place / Pieces::kCount];
        Id const i = place % Pieces::kCount;
        pieces.top[i] = static_cast<Step>(top);
        pieces.bottom[i] = static_cast<Step>(bottom);
        pieces.lo[i] = static_cast<Step>(lo);
        pieces.hi[i] = static_cast<Step>(hi);
        pieces.edge[i] = edge;
    }
};

PreparedPolygon::PreparedPolygon(TPolygon<double> const& polygon) {
    PointRun const points = trammel_detail::PointsOf(polygon);
    if (points.count > 0) {
        mIndex = std::make_shared<Index const>(polygon.Bounds(), points);
    }
}

PreparedPolygon::PreparedPolygon(CFPolygonRef const& polygon) {
    // The test of this kind of polygon knows no bounds. Its first point may be repeated at the end:
    // the closing edge then is level and never counted.
    PointRun const points = trammel_detail::PointsOf(polygon);
    if (points.count > 0) {
        mIndex = std::make_shared<Index const>(
            TRect<double>(-kInfinity, -kInfinity, kInfinity, kInfinity), points);
    }
}

bool PreparedPolygon::Contains(TPoint<double> const& p) const noexcept {
    return mIndex != nullptr && mIndex->Contains(p);
}

void PreparedPolygon::Contains(TPoint<double> const* points, std::size_t count,
                               bool* inside) const noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        inside[i] = Contains(points[i]);
    }
}

std::size_t PreparedPolygon::MemorySize() const noexcept {
    return mIndex != nullptr ? mIndex->Size() : 0;
}

} // namespace trammel

// SPDX-License-Identifier: MIT

// How the answer stays that of the formula. CrossesBefore(a, b, p) computes, for a height v = p.v
// between the edge's ends,
//
//     X(v) = a.h - (a.v - v) * slope
//
// and says: false for p.h < m = min(a.h, b.h), true for p.h > M = max(a.h, b.h), else p.h > X(v).
// Each of X's three operations is rounded, and rounding is monotone, so as long as nothing is NaN
// the computed X is a monotone function of v, falling or rising as the edge does: no allowance for
// error is needed. Where an edge is cut at a height c, let x = clamp(X(c), m, M) and let e be the h
// of one of its ends. Then for all v from c to that end, with lo = min(x, e) and hi = max(x, e),
//
//     p.h < lo: false,    p.h > hi: true,    else: ask the formula.
//
// For e is m or M. If e = m, then p.h < lo = m is false; and p.h > hi = x means that p.h is above
// M, or not below X(c) and so above X(v), which lies on the end's side of X(c). (x = m where X(c)
// is less.) The other three cases likewise. For an edge that is not cut, lo = m and hi = M.
//
// Such intervals, and the heights between which they hold, are kept rounded to few bits, by way of
// monotone mappings that are applied to the point as well: step(p.h) < step(lo) implies p.h < lo.
// What equal steps leave open is left to the formula.
//
// An infinite slope does no harm, nor does a product that overflows. X(c) is infinite then, on b's
// side, and x = b.h: so is X(v) for all v from c to b, and the other piece has all from m to M left
// to the formula (which makes a NaN of v = a.v).
//
// Polygons whose coordinates could make NaN or overflow otherwise (beyond kTame, or NaN) have no
// such intervals, and are asked as a whole.

#include "PreparedPolygon.h"

#include "EdgeCrossing_p.h"
#include "FPolygon.h"
#include "PointRun_p.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace trammel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Polygons of at most so many vertices have no index: going through all edges costs less than
/// finding the right ones.
constexpr std::size_t kFewVertices = 64;
/// At most so many vertices lie within a slab, those at its lower end not counted. Their edges are
/// all looked at, so more make queries slower, and the index smaller and faster to build.
constexpr std::size_t kSlabHeights = 32;
/// So many vertices there are to a bucket of heights, where these are spread evenly.
constexpr std::size_t kBucketHeights = 4;
/// Slabs that begin in one bucket are gone through one by one when there are no more.
constexpr std::uint32_t kFewSlabs = 4;
/// No difference of coordinates up to this overflows, by far.
constexpr double kTame = 0x1p1000;

typedef std::uint32_t Id;  ///< of an edge, a slab, a node, a piece
typedef std::int16_t Step; ///< a coordinate in few bits

/// The steps of points are less than this, and more than its negative.
constexpr Step kMost = std::numeric_limits<Step>::max();
constexpr double kMostOfPoint = kMost - 1;

// Without a branch, as none of the outcomes can be foreseen; with a NaN they give `b`.
#if defined(__SSE2__)
double Lesser(double a, double b) {
    return _mm_cvtsd_f64(_mm_min_sd(_mm_set_sd(a), _mm_set_sd(b)));
}
double Greater(double a, double b) {
    return _mm_cvtsd_f64(_mm_max_sd(_mm_set_sd(a), _mm_set_sd(b)));
}
#else
double Lesser(double a, double b) { return a < b ? a : b; }
double Greater(double a, double b) { return a > b ? a : b; }
#endif

/// Two numbers, worked on at once.
#if defined(__SSE2__)
struct Pair {
    __m128d both;

    Pair(double first, double second) : both(_mm_set_pd(second, first)) {}
    explicit Pair(__m128d numbers) : both(numbers) {}
    explicit Pair(TPoint<double> const& p) : Pair(p.v, p.h) {}
    double First() const { return _mm_cvtsd_f64(both); }
    double Second() const { return _mm_cvtsd_f64(_mm_unpackhi_pd(both, both)); }
    Pair operator+(Pair x) const { return Pair(_mm_add_pd(both, x.both)); }
    Pair operator-(Pair x) const { return Pair(_mm_sub_pd(both, x.both)); }
    Pair operator*(Pair x) const { return Pair(_mm_mul_pd(both, x.both)); }
    friend Pair Lesser(Pair a, Pair b) { return Pair(_mm_min_pd(a.both, b.both)); }
    friend Pair Greater(Pair a, Pair b) { return Pair(_mm_max_pd(a.both, b.both)); }
};
#else
struct Pair {
    double first;
    double second;

    Pair(double one, double other) : first(one), second(other) {}
    explicit Pair(TPoint<double> const& p) : Pair(p.v, p.h) {}
    double First() const { return first; }
    double Second() const { return second; }
    Pair operator+(Pair x) const { return {first + x.first, second + x.second}; }
    Pair operator-(Pair x) const { return {first - x.first, second - x.second}; }
    Pair operator*(Pair x) const { return {first * x.first, second * x.second}; }
    friend Pair Lesser(Pair a, Pair b) {
        return {Lesser(a.first, b.first), Lesser(a.second, b.second)};
    }
    friend Pair Greater(Pair a, Pair b) {
        return {Greater(a.first, b.first), Greater(a.second, b.second)};
    }
};
#endif

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

/// Monotone mappings: of heights to buckets, 0..count - 1, and of coordinates h to steps of points.
struct Mapping {
    Pair origin = {0.0, 0.0};
    Pair scale = {0.0, 0.0};
    Pair least = {0.0, 0.0};
    Pair most = {0.0, 0.0};
    Id count = 1;

    /// Spreads what lies between two points evenly, where the extent can be computed with.
    Mapping() = default;
    Mapping(Pair lo, Pair hi, std::size_t buckets) {
        double const bucketScale = static_cast<double>(buckets) / (hi - lo).First();
        double const stepScale = kMostOfPoint / ((hi - lo).Second() * 0.5);
        bool const hasBuckets = bucketScale < kInfinity;
        bool const hasSteps = stepScale < kInfinity;
        origin = Pair(lo.First(), lo.Second() * 0.5 + hi.Second() * 0.5);
        scale = Pair(hasBuckets ? bucketScale : 0.0, hasSteps ? stepScale : 0.0);
        count = hasBuckets ? static_cast<Id>(buckets) : 1;
        least = Pair(0.0, hasSteps ? -kMostOfPoint : 0.0);
        most = Pair(static_cast<double>(count - 1), hasSteps ? kMostOfPoint : 0.0);
    }
    /// The bucket and the step of a point. An infinite coordinate can make a NaN only where all are
    /// at 0, as it is then.
    Pair operator()(Pair p) const { return Lesser(Greater((p - origin) * scale, least), most); }
};

/// Parts of edges that each lie within the heights of one node, side by side.
struct Pieces {
    static constexpr unsigned kCount = 8;

    Step top[kCount]; ///< between which heights, in the node's steps; -1 and kMost for the node's
    Step bottom[kCount];
    Step lo[kCount]; ///< the interval's ends
    Step hi[kCount];
    Id edge[kCount];

    /// For each piece i, bit i: a point with such steps is certainly behind it; bit kCount + i: the
    /// edge has to be asked. Neither: it certainly does not count.
    unsigned Compare(Step v, Step h) const {
#if defined(__SSE2__)
        auto const load = [](Step const* steps) {
            return _mm_loadu_si128(reinterpret_cast<__m128i const*>(steps));
        };
        __m128i const vs = _mm_set1_epi16(v);
        __m128i const hs = _mm_set1_epi16(h);
        __m128i const tops = load(top);
        __m128i const bottoms = load(bottom);
        __m128i const never =
            _mm_or_si128(_mm_or_si128(_mm_cmpgt_epi16(tops, vs), _mm_cmpgt_epi16(vs, bottoms)),
                         _mm_cmpgt_epi16(load(lo), hs));
        __m128i const always =
            _mm_and_si128(_mm_and_si128(_mm_cmpgt_epi16(vs, tops), _mm_cmpgt_epi16(bottoms, vs)),
                          _mm_cmpgt_epi16(hs, load(hi)));
        // Packing takes masks of all ones and zeros from 16 bits to 8.
        __m128i const packed = _mm_packs_epi16(always, _mm_or_si128(always, never));
        return static_cast<unsigned>(_mm_movemask_epi8(packed)) ^ 0xFF00U;
#else
        unsigned result = 0;
        for (unsigned i = 0; i < kCount; ++i) {
            bool const never = top[i] > v || v > bottom[i] || lo[i] > h;
            bool const always = v > top[i] && bottom[i] > v && h > hi[i];
            result |= (always ? 1U : 0U) << i;
            result |= (always || never ? 0U : 1U) << (kCount + i);
        }
        return result;
#endif
    }
};

/// A node's pieces are those from `first` up to the next node's `first`.
struct Node {
    double top = 0.0;   ///< where its heights begin
    double scale = 0.0; ///< steps for a unit of height
    Id first = 0;
    Id next = 0; ///< the nearest node above that has pieces, 0 for none

    /// A monotone mapping of heights (but NaN) from `top` on to steps of points.
    Step StepOf(double v) const {
        // Of heights too near to each other for a finite scale, the first makes a NaN.
        double const step = Greater((v - top) * scale, 0.0);
        return static_cast<Step>(Lesser(step, kMostOfPoint));
    }
};

/// What is known of a vertex while the index is built.
struct Vertex {
    Id place; ///< its bucket at first; then 2j at the lower end of slab j, 2j + 1 above it
    Step v;   ///< in the steps of its slab
    Step h;
};

/// The lesser of each step of two vertices, and the greater of each.
struct Box {
    Step top;
    Step lo;
    Step bottom;
    Step hi;

    Box(Vertex const& a, Vertex const& b) {
#if defined(__SSE2__)
        static_assert(offsetof(Vertex, h) == offsetof(Vertex, v) + sizeof(Step));
        auto const load = [](Vertex const& vertex) {
            int steps;
            std::memcpy(&steps, &vertex.v, sizeof steps);
            return _mm_cvtsi32_si128(steps);
        };
        int const least = _mm_cvtsi128_si32(_mm_min_epi16(load(a), load(b)));
        int const most = _mm_cvtsi128_si32(_mm_max_epi16(load(a), load(b)));
        top = static_cast<Step>(least);
        lo = static_cast<Step>(least >> 16);
        bottom = static_cast<Step>(most);
        hi = static_cast<Step>(most >> 16);
#else
        top = std::min(a.v, b.v);
        lo = std::min(a.h, b.h);
        bottom = std::max(a.v, b.v);
        hi = std::max(a.h, b.h);
#endif
    }
};

/// The number of bits without leading zeros.
unsigned BitLength(Id bits) {
    return 63U - static_cast<unsigned>(__builtin_clzll(2 * std::uint64_t{bits} + 1));
}

template <class Item> std::size_t Bytes(std::vector<Item> const& items) {
    return items.capacity() * sizeof(Item);
}

} // namespace

// Heights are cut into slabs, slab j from mSlabs[j] up to but without mSlabs[j + 1], at heights of
// vertices. The nodes of a binary tree are runs of slabs; an edge is a piece of the smallest that
// holds it, or is cut into two pieces of such nodes. A point's edges are then in the lists of the
// nodes from its slab up to the root.
//
// Node 1 is the root, those below node i are 2i and 2i + 1, and node mLeaves + j is slab j alone.
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

    /// `points` is the first byte of `count` points.
    Index(TRect<double> const& bounds, char const* points, std::size_t count) : mBounds(bounds) {
        if (count >= std::numeric_limits<std::int32_t>::max()) {
            throw std::bad_alloc();
        }
        mPoints = Array<TPoint<double>>(count + 1);
        std::memcpy(static_cast<void*>(mPoints.begin()), points, count * sizeof(TPoint<double>));
        mPoints[count] = mPoints[0];
        if (count <= kFewVertices || !Measure() || !(mTop < mBottom)) {
            return; // in the last case there is nothing between two heights
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
        Pair const place = mMapping(Pair(p));
        return OddInSlab(p, static_cast<Step>(place.Second()),
                         SlabOf(p.v, static_cast<Id>(static_cast<std::int32_t>(place.First()))));
    }

private:
    /// The slab that holds `v`, which is from mTop up to but without mBottom and in such a bucket.
    Id SlabOf(double v, Id bucket) const {
        // The first slab that begins above v: of those that begin in v's bucket, or the next one.
        // Most buckets have none or one; then a step without a branch finds it.
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

    bool OddInList(TPoint<double> const& p, Step v, Step h, Id first, Id last) const {
        constexpr unsigned kAll = (1U << Pieces::kCount) - 1;
        Id const lastGroup = (last - 1) / Pieces::kCount;
        // The lists before and behind share the first group and the last one.
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
                // Any bit will do to count by.
                odd ^= trammel_detail::CrossesBefore(mPoints[edge], mPoints[edge + 1], p) ? 1U : 0U;
            }
            mask = kAll;
        }
        return __builtin_parity(odd) != 0;
    }

    /// The mapping, and between which heights all lies; false if a coordinate is not tame.
    bool Measure() {
        Pair lo(kInfinity, kInfinity);
        Pair hi(-kInfinity, -kInfinity);
        Pair zero(0.0, 0.0); // or NaN, if a coordinate is not finite
        for (TPoint<double> const& p : mPoints) {
            Pair const x(p);
            lo = Lesser(x, lo);
            hi = Greater(x, hi);
            zero = zero + (x - x);
        }
        Pair const tame(kTame, kTame);
        Pair const most = Lesser(Greater(hi, Pair(0.0, 0.0) - lo), tame + tame);
        mTop = lo.First();
        mBottom = hi.First();
        mMapping = Mapping(lo, hi, (mPoints.Size() - 1) / kBucketHeights);
        return zero.First() == 0.0 && zero.Second() == 0.0 && most.First() <= kTame &&
               most.Second() <= kTame;
    }

    /// Chooses the slabs' heights.
    void CutSlabs(Array<Vertex>& vertices) {
        for (std::size_t i = 0; i < mPoints.Size(); ++i) {
            Pair const place = mMapping(Pair(mPoints[i]));
            vertices[i].place = static_cast<Id>(static_cast<std::int32_t>(place.First()));
            vertices[i].h = static_cast<Step>(place.Second());
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
            bucket.lowest = Lesser(mPoints[i].v, bucket.lowest);
            ++bucket.count;
        }
        std::vector<double> crowd; // of such buckets all heights
        if (std::any_of(buckets.begin(), buckets.end(), std::mem_fn(&Bucket::IsCrowded))) {
            for (std::size_t i = 0; i < count; ++i) {
                if (buckets[vertices[i].place].IsCrowded()) {
                    crowd.push_back(mPoints[i].v);
                }
            }
            std::sort(crowd.begin(), crowd.end()); // and so by buckets
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
            ++mFirstSlabs[static_cast<std::size_t>(mMapping(Pair(v, 0.0)).First()) + 1];
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

    /// Cuts between the heights of one bucket, which are sorted. Returns how many are within the
    /// last slab.
    std::size_t CutBucket(double const* heights, std::size_t count) {
        std::size_t inside = kSlabHeights; // begins with a slab
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

    /// Where an edge is cut. All is computed without a branch, as no processor can guess it.
    struct Cut {
        Id upper; ///< the node that holds the upper piece
        Id lower; ///< the node that begins where the edge is cut, or `upper`
        Id count; ///< how often it is: 0 or 1
    };

    /// The leaf that holds an edge, as those do that hold most edges of outlines; 0 for none.
    Id LeafOf(Vertex const& a, Vertex const& b) const {
        return a.place / 2 == b.place / 2 ? mLeaves + a.place / 2 : 0;
    }

    /// For an edge that any point can be beside.
    Cut CutOf(Vertex const& a, Vertex const& b) const {
        // An edge that ends where a slab begins does not reach into it.
        Id const first = mLeaves + std::min(a.place, b.place) / 2;
        Id const last = mLeaves + (std::max(a.place, b.place) - 1) / 2;
        // The smallest nodes that have no more than two side by side for the edge.
        unsigned const height = BitLength(last - first);
        Id const count = (last >> height) - (first >> height);
        // Each of two pieces then reaches to the cut, and goes to the smallest node that does.
        Id const cut = last >> height << height;
        Id const mask = 0 - count;
        unsigned const above = BitLength(((cut - 1) ^ first) & mask);
        unsigned const below = BitLength((cut ^ last) & mask);
        unsigned const both = height & ~mask;
        return {first >> (above + both), last >> (below + both), count};
    }

    /// Calls visit(edge, a, b) for each edge that any point can be beside, with what is known of
    /// its ends.
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
        // The lists are filled from their ends; until then `first` is where a list ends.
        for (Id id = 1; id < mNodes.Size(); ++id) {
            Node& node = mNodes[id];
            node.first += mNodes[id - 1].first;
            Id const above = id / 2;
            bool const isEmpty = above == 0 || mNodes[above].first == mNodes[above - 1].first;
            node.next = isEmpty ? mNodes[above].next : above;
        }
        // One more group takes the lower pieces of edges that are not cut.
        mPieces = Array<Pieces>(mNodes[mNodes.Size() - 1].first / Pieces::kCount + 2);
        mPieces[mPieces.Size() - 2] = Pieces();
    }

    void ListPieces(Array<Vertex> const& vertices) {
        auto const spare = static_cast<Id>(mPieces.Size() - 1) * Pieces::kCount;
        ForEachEdge(vertices, [this, spare](Id edge, Vertex const& a, Vertex const& b) {
            if (Id const leaf = LeafOf(a, b); leaf != 0) {
                Box const box(a, b);
                Put(--mNodes[leaf].first, box.top, box.bottom, box.lo, box.hi, edge);
                return;
            }
            TPoint<double> const& p = mPoints[edge];
            TPoint<double> const& q = mPoints[edge + 1];
            double const top = Lesser(p.v, q.v);
            double const bottom = Greater(p.v, q.v);
            Cut const cut = CutOf(a, b);
            Node& upper = mNodes[cut.upper];
            Node& lower = mNodes[cut.lower];
            double const slope = (p.h - q.h) / (p.v - q.v);
            double const crossing = p.h - (p.v - lower.top) * slope;
            double const within = Lesser(Greater(crossing, Lesser(p.h, q.h)), Greater(p.h, q.h));
            int const middle = static_cast<Step>(mMapping(Pair(0.0, within)).Second());
            // Choices by masks of ones and zeros.
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
    long const count = polygon.LastIndex() + 1;
    if (count > 0) {
        TRect<double> const bounds = polygon.Bounds();
        mIndex = std::make_shared<Index const>(
            bounds, reinterpret_cast<char const*>((*polygon.mHandle)->mPoints),
            static_cast<std::size_t>(count));
    }
}

PreparedPolygon::PreparedPolygon(CFPolygonRef const& polygon) {
    // Its test knows no bounds. Whether its first point is repeated at the end makes no difference
    // here: the closing edge then has no height and is never counted.
    long const count = trammel_detail::FPolygonPointCount(polygon.DataSize());
    if (count > 0) {
        char const* const base = reinterpret_cast<char const*>(*polygon.mRef);
        mIndex = std::make_shared<Index const>(
            TRect<double>(-kInfinity, -kInfinity, kInfinity, kInfinity),
            trammel_detail::FPolygonPointAt(base, 0), static_cast<std::size_t>(count));
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

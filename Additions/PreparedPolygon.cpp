// SPDX-License-Identifier: MIT
//
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
// Edges that could make NaN or overflow on the way (coordinates beyond kTame, NaN, infinite slopes)
// get the interval of all numbers, so that always the formula is asked.

#include "PreparedPolygon.h"

#include "Integers.h"
#include "UCrossing_p.h"
#include "UPointRun_p.h"

#include <algorithm>
#include <cmath>
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
/// No difference, quotient by a difference not tiny, or product of coordinates up to this
/// overflows in CrossesBefore.
constexpr double kTame = 0x1p1000;

typedef std::uint32_t Id;  ///< of an edge, a slab, a node, a piece
typedef std::int16_t Step; ///< a coordinate in few bits

/// The steps of points are less than this, and more than kLeast.
constexpr Step kMost = std::numeric_limits<Step>::max();
constexpr Step kLeast = std::numeric_limits<Step>::min();
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

/// A monotone mapping of doubles (but NaN) to 0..count - 1.
struct Buckets {
    double origin = 0.0;
    double scale = 0.0;
    Id count = 1;

    /// Spreads [lo, hi] evenly, if it has a length that can be computed with.
    Buckets() = default;
    Buckets(double lo, double hi, std::size_t wanted) {
        double const perUnit = static_cast<double>(wanted) / (hi - lo);
        if (perUnit > 0.0 && perUnit < kInfinity) {
            origin = lo;
            scale = perUnit;
            count = static_cast<Id>(wanted);
        }
    }
    Id operator()(double v) const {
        double const place = Greater((v - origin) * scale, 0.0);
        return static_cast<Id>(
            trammel_detail::TruncateToInt32(Lesser(place, static_cast<double>(count - 1))));
    }
};

/// A monotone mapping of coordinates h (but NaN) to steps of points.
struct Steps {
    double centre = 0.0;
    double scale = 0.0;

    /// Spreads [lo, hi] evenly, if it has a length that can be computed with.
    Steps() = default;
    Steps(double lo, double hi) {
        double const perUnit = kMostOfPoint / (hi * 0.5 - lo * 0.5);
        if (perUnit > 0.0 && perUnit < kInfinity) {
            centre = lo * 0.5 + hi * 0.5;
            scale = perUnit;
        }
    }
    Step operator()(double h) const {
        // Without a scale an infinite h makes a NaN, and is at 0 then as all others are.
        double const step = scale > 0.0 ? (h - centre) * scale : 0.0;
        return static_cast<Step>(Lesser(Greater(step, -kMostOfPoint), kMostOfPoint));
    }
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
    float scale = 0.0F; ///< steps for a unit of height
    Id first = 0;
    Id next = 0; ///< the nearest node above that has pieces, 0 for none

    /// A monotone mapping of heights (but NaN) from `top` on to steps of points.
    Step StepOf(double v) const {
        // Infinite heights can make a NaN, with all of a node's heights or only with its first.
        double const step = Greater((v - top) * static_cast<double>(scale), 0.0);
        return static_cast<Step>(Lesser(step, kMostOfPoint));
    }
};

/// What is known of a vertex while the index is built.
struct Vertex {
    Id place; ///< its bucket at first; then 2j at the lower end of slab j, 2j + 1 above it
    Step h;   ///< kLeast for coordinates that are not tame
};
constexpr Id kNowhere = std::numeric_limits<Id>::max(); ///< the place of NaN

/// The number of bits without leading zeros.
unsigned BitLength(Id bits) {
    return 63U - static_cast<unsigned>(__builtin_clzll(2 * std::uint64_t{bits} + 1));
}

/// The finite extremes of what it is given; lo > hi for nothing.
struct Extent {
    double lo = kInfinity;
    double hi = -kInfinity;

    void Add(double x) {
        bool const counts = std::abs(x) < kInfinity;
        lo = std::min(lo, counts ? x : lo);
        hi = std::max(hi, counts ? x : hi);
    }
    bool IsFinite() const { return -kInfinity < lo && hi < kInfinity; }
};

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
    Buckets mBuckets;
    Steps mSteps;
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
        if (count <= kFewVertices) {
            return;
        }
        Measure();
        if (mTop < mBottom) { // else there is nothing between two heights
            Array<Vertex> vertices(count + 1);
            CutSlabs(vertices);
            MakeNodes();
            PlaceVertices(vertices);
            CountPieces(vertices);
            ListPieces(vertices);
        }
    }

    std::size_t Size() const {
        return sizeof(*this) + mPoints.Bytes() + Bytes(mSlabs) + Bytes(mFirstSlabs) +
               mNodes.Bytes() + mPieces.Bytes();
    }

    bool Contains(TPoint<double> const& p) const {
        if (!mBounds.Contains(p)) {
            return false;
        }
        if (mPoints.Size() <= kFewVertices + 1) {
            return trammel_detail::OddCrossings({reinterpret_cast<char const*>(mPoints.begin()),
                                                 static_cast<long>(mPoints.Size() - 1)},
                                                p.h, p.v);
        }
        return mTop <= p.v && p.v < mBottom && OddInSlab(p, SlabOf(p.v, mBuckets(p.v)));
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

    bool OddInSlab(TPoint<double> const& p, Id slab) const {
        Step const h = mSteps(p.h);
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

    /// The mappings, and between which heights all lies.
    void Measure() {
        double left = kInfinity;
        double right = -kInfinity;
        for (TPoint<double> const& p : mPoints) {
            mTop = Lesser(p.v, mTop); // no NaN gets in
            mBottom = Greater(p.v, mBottom);
            left = Lesser(p.h, left);
            right = Greater(p.h, right);
        }
        Extent vs = {mTop, mBottom};
        Extent hs = {left, right};
        if (!vs.IsFinite() || !hs.IsFinite()) {
            vs = Extent();
            hs = Extent();
            for (TPoint<double> const& p : mPoints) {
                vs.Add(p.v);
                hs.Add(p.h);
            }
        }
        mBuckets = Buckets(vs.lo, vs.hi, (mPoints.Size() - 1) / kBucketHeights);
        mSteps = Steps(hs.lo, hs.hi);
    }

    /// Chooses the slabs' heights.
    void CutSlabs(Array<Vertex>& vertices) {
        for (std::size_t i = 0; i < mPoints.Size(); ++i) {
            TPoint<double> const& p = mPoints[i];
            bool const isTame = std::abs(p.h) <= kTame && std::abs(p.v) <= kTame;
            vertices[i].h = isTame ? mSteps(p.h) : kLeast;
            vertices[i].place = std::isnan(p.v) ? kNowhere : mBuckets(p.v);
        }
        struct Bucket {
            double lowest = kInfinity;
            std::size_t count = 0;
            bool IsCrowded() const { return count > kSlabHeights; }
        };
        std::vector<Bucket> buckets(mBuckets.count);
        std::size_t const count = mPoints.Size() - 1;
        for (std::size_t i = 0; i < count; ++i) {
            if (vertices[i].place != kNowhere) {
                Bucket& bucket = buckets[vertices[i].place];
                bucket.lowest = Lesser(mPoints[i].v, bucket.lowest);
                ++bucket.count;
            }
        }
        std::vector<double> crowd; // of such buckets all heights
        if (std::any_of(buckets.begin(), buckets.end(), std::mem_fn(&Bucket::IsCrowded))) {
            for (std::size_t i = 0; i < count; ++i) {
                if (vertices[i].place != kNowhere && buckets[vertices[i].place].IsCrowded()) {
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

        mFirstSlabs.resize(std::size_t{mBuckets.count} + 1);
        for (double const v : mSlabs) {
            ++mFirstSlabs[mBuckets(v) + 1];
        }
        for (std::size_t b = 0; b < mBuckets.count; ++b) {
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
                node.scale = static_cast<float>(
                    Lesser(kMost / (bottom - node.top),
                           static_cast<double>(std::numeric_limits<float>::max())));
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
            } else if (vertex.place != kNowhere) {
                vertex.place = 2 * static_cast<Id>(mSlabs.size() - 1);
            }
        }
    }

    /// Where an edge is cut. All is computed without a branch, as no processor can guess it.
    struct Cut {
        Id upper; ///< the node that holds the upper piece
        Id lower; ///< the node that begins where the edge is cut, or `upper`
        Id count; ///< how often it is: 0 or 1
    };

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
            if (a.place != kNowhere && b.place != kNowhere && mPoints[i].v != mPoints[i + 1].v) {
                visit(static_cast<Id>(i), a, b);
            }
        }
    }

    void CountPieces(Array<Vertex> const& vertices) {
        ForEachEdge(vertices, [this](Id, Vertex const& a, Vertex const& b) {
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
            TPoint<double> const& p = mPoints[edge];
            TPoint<double> const& q = mPoints[edge + 1];
            double const top = Lesser(p.v, q.v);
            double const bottom = Greater(p.v, q.v);
            Cut const cut = CutOf(a, b);
            Node& upper = mNodes[cut.upper];
            if (cut.upper >= mLeaves && cut.count == 0) { // most edges of outlines
                bool const isTame = a.h != kLeast && b.h != kLeast;
                Put(--upper.first, upper.StepOf(top), upper.StepOf(bottom), std::min(a.h, b.h),
                    isTame ? std::max(a.h, b.h) : kMost, edge);
                return;
            }
            Node& lower = mNodes[cut.lower];
            double const slope = (p.h - q.h) / (p.v - q.v);
            double const crossing = p.h - (p.v - lower.top) * slope;
            int const middle =
                mSteps(Lesser(Greater(crossing, Lesser(p.h, q.h)), Greater(p.h, q.h)));
            // Choices by masks of ones and zeros.
            int const isCut = -static_cast<int>(cut.count);
            int const isUp = a.place > b.place ? -1 : 0;
            int const above = a.h ^ ((a.h ^ b.h) & isUp);
            int const below = b.h ^ ((a.h ^ b.h) & isUp);
            int const between = below ^ ((middle ^ below) & isCut);
            int const end = lower.StepOf(bottom);
            int upperLo = std::min(above, between);
            int upperHi = std::max(above, between);
            int lowerLo = std::min(below, between);
            int lowerHi = std::max(below, between);
            if (a.h == kLeast || b.h == kLeast || !(std::abs(slope) < kInfinity)) {
                upperLo = lowerLo = kLeast;
                upperHi = lowerHi = kMost;
            }
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
    long const count = polygon.LastIndex() + 1;
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

// SPDX-License-Identifier: MIT
//
// How the answer stays that of the formula. CrossesBefore(a, b, p) computes, for a height v = p.v
// between the edge's ends,
//
//     X(v) = a.h - (a.v - v) * slope
//
// and says: false for p.h < m = min(a.h, b.h), true for p.h > M = max(a.h, b.h), else p.h > X(v).
// Each of X's three operations is rounded, and rounding is monotone, so as long as nothing is NaN
// the computed X is a monotone function of v: between the heights v0 and v1 it lies between X(v0)
// and X(v1), as computed, with no allowance for error. Hence for all v from v0 to v1, with
// lo = clamp(min(X(v0), X(v1)), m, M) and hi = clamp(max(X(v0), X(v1)), m, M),
//
//     p.h < lo: false,    p.h > hi: true,    else: ask the formula.
//
// (p.h < lo implies p.h < M; then either p.h < m, or lo is the smaller X and p.h is below it. The
// other one likewise.) Such intervals are kept rounded to float, by way of a monotone mapping q
// that is applied to p.h as well: q(p.h) < q(lo) implies p.h < lo.
//
// Edges that could make NaN or overflow on the way (coordinates beyond kTame, NaN, infinite slopes)
// get the interval of all numbers, so that always the formula is asked.

#include "PreparedPolygon.h"

#include "Integers.h"
#include "UCrossing_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

namespace trammel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// At most so many vertices lie within a slab, those at its lower end not counted. Their edges are
/// asked one by one, so more make queries slower, and the index smaller and faster to build.
constexpr std::size_t kSlabHeights = 16;
/// So many vertices there are to a bucket of heights, where these are spread evenly.
constexpr std::size_t kBucketHeights = 4;
/// Polygons of at most so many vertices are one slab: going through all edges costs less than
/// finding the right ones.
constexpr std::size_t kOneSlab = 24;
/// Slabs that begin in one bucket are gone through one by one when there are no more.
constexpr std::uint32_t kFewSlabs = 4;
/// Lists of at most so many spans are not sorted.
constexpr std::size_t kShortList = 24;
/// Spans, and blocks of them, for which one greatest `hi` is kept.
constexpr std::size_t kBlock = 16;
/// Lists from this length on are sorted digit by digit.
constexpr std::size_t kLongList = 512;
/// No difference, quotient by a difference not tiny, or product of coordinates up to this
/// overflows in CrossesBefore.
constexpr double kTame = 0x1p1000;

typedef std::uint32_t Id; ///< of an edge, a slab, a node, a span

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
        double const place = (v - origin) * scale;
        if (!(place > 0.0)) {
            return 0;
        }
        return place < static_cast<double>(count)
                   ? static_cast<Id>(trammel_detail::TruncateToInt32(place))
                   : count - 1;
    }
};

/// The monotone mapping q of coordinates h (but NaN) to finite floats.
struct Keys {
    double centre = 0.0;
    double scale = 1.0;

    Keys() = default;
    Keys(double lo, double hi) {
        if (lo <= hi) {
            centre = lo * 0.5 + hi * 0.5;
            double const perUnit = 1.0 / (hi * 0.5 - lo * 0.5);
            scale = perUnit < kInfinity && perUnit > 0.0 ? perUnit : 1.0;
        }
    }
    float operator()(double h) const {
        constexpr double kMax = static_cast<double>(std::numeric_limits<float>::max());
        return static_cast<float>(std::clamp((h - centre) * scale, -kMax, kMax));
    }
};

/// Part of an edge that crosses all heights of a node.
struct Span {
    float lo; ///< q of the interval's ends
    float hi;
    Id edge;
};

/// A node's spans are those from `first` up to the next node's `first`.
struct Node {
    Id first;
    Id next; ///< the nearest node above that has spans, 0 for none
};

/// That an edge has a span in a node's list.
struct Entry {
    Id node;
    Id edge;
};

unsigned HighestBit(Id bits) { return 31U - static_cast<unsigned>(__builtin_clz(bits)); }
unsigned LowestBit(Id bits) { return static_cast<unsigned>(__builtin_ctz(bits)); }

/// The finite extremes of what it is given; lo > hi for nothing.
struct Extent {
    double lo = kInfinity;
    double hi = -kInfinity;

    void Add(double x) {
        bool const counts = std::abs(x) < kInfinity;
        lo = std::min(lo, counts ? x : lo);
        hi = std::max(hi, counts ? x : hi);
    }
};

/// An integer whose order is that of floats (but NaN); -0 comes before 0.
std::uint32_t Ordered(float x) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &x, sizeof bits);
    return bits ^ ((bits >> 31U) != 0 ? 0xFFFFFFFFU : 0x80000000U);
}

/// Sorts spans by `lo`, digit by digit from the lowest: O(count), which keeps the whole at
/// O(n log n). `spare` has room for as many.
void SortLongList(Span* spans, Span* spare, std::size_t count) {
    constexpr unsigned kDigitBits = 8;
    constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;
    for (unsigned shift = 0; shift < 32; shift += kDigitBits) {
        auto const digit = [shift](Span const& span) {
            return (Ordered(span.lo) >> shift) & (kDigits - 1);
        };
        std::array<std::size_t, kDigits + 1> places{};
        for (std::size_t i = 0; i < count; ++i) {
            ++places[digit(spans[i]) + 1];
        }
        for (std::size_t d = 0; d < kDigits; ++d) {
            places[d + 1] += places[d];
        }
        for (std::size_t i = 0; i < count; ++i) {
            spare[places[digit(spans[i])]++] = spans[i];
        }
        std::swap(spans, spare);
    }
    // After an even number of digits all is where it was.
    static_assert((32 / kDigitBits) % 2 == 0);
}

template <class Item> std::size_t Bytes(std::vector<Item> const& items) {
    return items.capacity() * sizeof(Item);
}

} // namespace

// Heights are cut into slabs, slab j from mSlabs[j] up to but without mSlabs[j + 1], at heights of
// vertices. An edge covers some slabs as a whole and up to two in part. For the latter it stands in
// the slabs' lists mPartial. The former are put together by the nodes of a binary tree over the
// slabs, at most two of each depth; it stands in these nodes' lists of spans. A point's edges are
// then in the list of its slab and in those of the nodes from there up to the root.
//
// Node 1 is the root, those below node i are 2i and 2i + 1, and node mLeaves + 1 + j is slab j
// alone. The first and the last leaf stand for no slab, so that each run of slabs has a neighbour
// on either side.
struct PreparedPolygon::Index {
    TRect<double> mBounds;   // nothing outside of it is inside
    double mTop = kInfinity; // all edges lie between these heights
    double mBottom = -kInfinity;
    Keys mKeys;
    Buckets mBuckets;
    Id mLeaves = 0;
    std::size_t mLevels = 0;

    std::vector<TPoint<double>> mPoints; // the vertices, and vertex 0 again
    std::vector<double> mSlabs;
    std::vector<Id> mFirstSlabs; // of each bucket: the first slab that begins in it or later
    std::vector<Id> mFirstPartial;
    std::vector<Id> mPartial;
    std::vector<Node> mNodes;
    std::vector<Span> mSpans;
    // The greatest `hi` of each kBlock spans, then of each kBlock of these, and so on.
    std::array<std::vector<float>, 8> mMaxima;

    /// `points` is the first byte of `count` points.
    Index(TRect<double> const& bounds, char const* points, std::size_t count) : mBounds(bounds) {
        if (count >= std::numeric_limits<std::int32_t>::max()) {
            throw std::bad_alloc();
        }
        mPoints.resize(count + 1);
        std::memcpy(static_cast<void*>(mPoints.data()), points, count * sizeof(TPoint<double>));
        mPoints[count] = mPoints[0];
        if (CutSlabs()) {
            ListEdges(PlaceVertices());
            SortSpans();
            SumUpSpans();
        }
    }

    std::size_t Size() const {
        std::size_t size = sizeof(*this) + Bytes(mPoints) + Bytes(mSlabs) + Bytes(mFirstSlabs) +
                           Bytes(mFirstPartial) + Bytes(mPartial) + Bytes(mNodes) + Bytes(mSpans);
        for (std::vector<float> const& level : mMaxima) {
            size += Bytes(level);
        }
        return size;
    }

    /// The slab that holds `v`, which is from mTop up to but without mBottom.
    Id SlabOf(double v) const {
        // The first slab that begins above v: of those that begin in v's bucket, or the next one.
        // Most buckets have none or one; then a step without a branch finds it.
        Id const bucket = mBuckets(v);
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

    bool Contains(TPoint<double> const& p) const {
        if (!mBounds.Contains(p) || !(mTop <= p.v && p.v < mBottom)) {
            return false;
        }
        return OddInSlab(p, SlabOf(p.v));
    }

    bool OddInSlab(TPoint<double> const& p, Id slab) const {
        bool odd = false;
        for (Id i = mFirstPartial[slab]; i < mFirstPartial[slab + 1]; ++i) {
            TPoint<double> const& a = mPoints[mPartial[i]];
            TPoint<double> const& b = mPoints[mPartial[i] + 1];
            // The half-open span in v: no listed edge has a NaN there.
            if ((a.v <= p.v) != (b.v <= p.v)) {
                odd ^= trammel_detail::CrossesBefore(a, b, p);
            }
        }
        Id node = mLeaves + 1 + slab;
        if (mNodes[node].first == mNodes[node + 1].first) {
            node = mNodes[node].next;
        }
        if (node != 0) {
            float const key = mKeys(p.h);
            do {
                Id const first = mNodes[node].first;
                Id const last = mNodes[node + 1].first;
                odd ^= last - first <= kShortList ? OddInShortList(p, key, first, last)
                                                  : OddInSortedList(p, key, first, last);
                node = mNodes[node].next;
            } while (node != 0);
        }
        return odd;
    }

private:
    bool Crosses(Id edge, TPoint<double> const& p) const {
        return trammel_detail::CrossesBefore(mPoints[edge], mPoints[edge + 1], p);
    }

    bool OddInShortList(TPoint<double> const& p, float key, Id first, Id last) const {
        bool odd = false;
        for (Id i = first; i < last; ++i) {
            Span const& span = mSpans[i];
            bool const after = key > span.hi;
            odd ^= after;
            if (!after && !(key < span.lo)) {
                odd ^= Crosses(span.edge, p);
            }
        }
        return odd;
    }

    bool OddInSortedList(TPoint<double> const& p, float key, Id first, Id last) const {
        // The spans from `first` up to `end` have lo <= key. All are counted, then those that were
        // counted wrongly are taken back: these have hi >= key, and are found from the end down.
        Id end = first;
        for (Id count = last - first; count > 0;) {
            Id const half = count / 2;
            bool const before = mSpans[end + half].lo <= key;
            end = before ? end + half + 1 : end;
            count = before ? count - half - 1 : half;
        }
        bool odd = ((end - first) & 1U) != 0;
        while (end > first) {
            Id const step = BlockBefore(end, key);
            if (step > 0) {
                if (end - first <= step) {
                    break;
                }
                end -= step;
                continue;
            }
            --end;
            if (!(mSpans[end].hi < key)) {
                odd ^= !Crosses(mSpans[end].edge, p);
            }
        }
        return odd;
    }

    /// The number of spans in the greatest block that ends before `end` and whose spans all have
    /// hi < key (it may reach into the list of the node before); 0 for none.
    Id BlockBefore(Id end, float key) const {
        std::size_t step = 0;
        std::size_t place = end;
        std::size_t width = 1;
        for (std::size_t level = 0; level < mLevels && place % kBlock == 0; ++level) {
            place /= kBlock;
            width *= kBlock;
            if (!(mMaxima[level][place - 1] < key)) {
                break;
            }
            step = width;
        }
        return static_cast<Id>(step);
    }

    /// Chooses the slabs' heights; false when there is nothing between two heights.
    bool CutSlabs() {
        Extent vs;
        Extent hs;
        for (TPoint<double> const& p : mPoints) {
            mTop = p.v < mTop ? p.v : mTop; // no NaN gets in
            mBottom = p.v > mBottom ? p.v : mBottom;
            vs.Add(p.v);
            hs.Add(p.h);
        }
        mKeys = Keys(hs.lo, hs.hi);
        if (!(mTop < mBottom)) {
            return false;
        }
        std::size_t const count = mPoints.size() - 1;
        std::size_t const most = count <= kOneSlab ? kOneSlab : kSlabHeights;
        mBuckets = Buckets(vs.lo, vs.hi, count / kBucketHeights);
        struct Bucket {
            double lowest = kInfinity;
            std::size_t count = 0;
        };
        std::vector<Bucket> buckets(mBuckets.count);
        bool isCrowded = false;
        for (std::size_t i = 0; i < count; ++i) {
            double const v = mPoints[i].v;
            if (!std::isnan(v)) {
                Bucket& bucket = buckets[mBuckets(v)];
                bucket.lowest = std::min(bucket.lowest, v);
                isCrowded |= ++bucket.count > most;
            }
        }
        std::vector<double> crowd; // of such buckets all heights
        for (std::size_t i = 0; isCrowded && i < count; ++i) {
            double const v = mPoints[i].v;
            if (!std::isnan(v) && buckets[mBuckets(v)].count > most) {
                crowd.push_back(v);
            }
        }
        std::sort(crowd.begin(), crowd.end()); // and so by buckets
        double const* heights = crowd.data();
        std::size_t inside = most;
        for (Bucket const& bucket : buckets) {
            if (bucket.count > most) {
                inside = CutBucket(heights, bucket.count, most);
                heights += bucket.count;
            } else if (inside + bucket.count > most) {
                CutAt(bucket.lowest);
                inside = bucket.count;
            } else {
                inside += bucket.count;
            }
        }
        mSlabs.push_back(mBottom);

        mLeaves = 1;
        while (mLeaves < mSlabs.size() + 1) {
            mLeaves *= 2;
        }
        mFirstSlabs.resize(std::size_t{mBuckets.count} + 1);
        for (double const v : mSlabs) {
            ++mFirstSlabs[mBuckets(v) + 1];
        }
        for (std::size_t b = 0; b < mBuckets.count; ++b) {
            mFirstSlabs[b + 1] += mFirstSlabs[b];
        }
        return true;
    }

    void CutAt(double v) {
        if (v < mBottom) {
            mSlabs.push_back(v);
        }
    }

    /// Cuts between the heights of one bucket, which are sorted. Returns how many are within the
    /// last slab.
    std::size_t CutBucket(double const* heights, std::size_t count, std::size_t most) {
        std::size_t inside = most; // begins with a slab
        for (std::size_t begin = 0, end = 0; begin < count; begin = end) {
            while (end < count && heights[end] == heights[begin]) {
                ++end;
            }
            inside += end - begin;
            if (inside > most) {
                CutAt(heights[begin]);
                inside = 0;
            }
        }
        return inside;
    }

    static constexpr Id kNowhere = std::numeric_limits<Id>::max();

    /// For each vertex 2j at the lower end of slab j, 2j + 1 above it within the slab (which grows
    /// with v); kNowhere for a NaN.
    std::vector<Id> PlaceVertices() const {
        std::vector<Id> places(mPoints.size());
        for (std::size_t i = 0; i < mPoints.size(); ++i) {
            double const v = mPoints[i].v;
            if (std::isnan(v)) {
                places[i] = kNowhere;
            } else if (v == mBottom) {
                places[i] = 2 * static_cast<Id>(mSlabs.size() - 1);
            } else {
                Id const slab = SlabOf(v);
                places[i] = 2 * slab + (v > mSlabs[slab] ? 1 : 0);
            }
        }
        return places;
    }

    /// Calls visit(edge, low, high) for each edge that any point can be beside, with the places of
    /// its lower and upper end.
    template <class Visit> void ForEachEdge(std::vector<Id> const& places, Visit visit) const {
        for (std::size_t i = 0; i + 1 < mPoints.size(); ++i) {
            Id const a = places[i];
            Id const b = places[i + 1];
            if (a != kNowhere && b != kNowhere && mPoints[i].v != mPoints[i + 1].v) {
                visit(static_cast<Id>(i), std::min(a, b), std::max(a, b));
            }
        }
    }

    /// Calls visit(slab, takes part) twice, with the slabs that hold such ends of an edge: whether
    /// the edge covers a part of it (and has not been told before). Told and not asked, as no
    /// processor can guess.
    template <class Visit> static void ForEachPart(Id low, Id high, Visit visit) {
        visit(low / 2, low % 2);
        visit(high / 2, high % 2 & (low != high ? 1U : 0U));
    }

    /// Calls visit(node) for the fewest nodes that make up the slabs which the edge with such ends
    /// covers as a whole.
    template <class Visit> void ForEachNode(Id low, Id high, Visit visit) const {
        Id const first = (low + 1) / 2;
        Id const last = high / 2;
        if (first >= last) {
            return;
        }
        // From the leaf before the first one and from that behind the last up to where they meet:
        // all that hangs off between the two ways.
        Id const before = mLeaves + first;
        Id const behind = mLeaves + 1 + last;
        Id const below = (Id{1} << HighestBit(before ^ behind)) - 1;
        for (Id depths = ~before & below; depths != 0; depths &= depths - 1) {
            visit((before >> LowestBit(depths)) ^ 1U);
        }
        for (Id depths = behind & below; depths != 0; depths &= depths - 1) {
            visit((behind >> LowestBit(depths)) ^ 1U);
        }
    }

    void ListEdges(std::vector<Id> const& places) {
        mFirstPartial.resize(mSlabs.size());
        std::vector<Entry> entries;
        entries.reserve(mPoints.size() * 2);
        ForEachEdge(places, [&](Id edge, Id low, Id high) {
            ForEachPart(low, high, [&](Id slab, Id part) { mFirstPartial[slab] += part; });
            ForEachNode(low, high, [&](Id node) { entries.push_back({node, edge}); });
        });

        // The lists are filled from their ends; until then `first` is where a list ends.
        Id parts = 0; // at most two for each edge
        for (Id& first : mFirstPartial) {
            parts += first;
            first = parts;
        }
        mPartial.resize(std::size_t{parts} + 1); // the last one takes what is no part
        ForEachEdge(places, [&](Id edge, Id low, Id high) {
            ForEachPart(low, high, [&](Id slab, Id part) {
                mFirstPartial[slab] -= part;
                mPartial[part != 0 ? mFirstPartial[slab] : parts] = edge;
            });
        });

        if (entries.size() > std::numeric_limits<Id>::max()) {
            throw std::bad_alloc();
        }
        mNodes.resize(std::size_t{mLeaves} * 2 + 1);
        for (Entry const& entry : entries) {
            ++mNodes[entry.node].first;
        }
        Id spans = 0;
        for (std::size_t node = 0; node < mNodes.size(); ++node) {
            spans += mNodes[node].first;
            mNodes[node].first = spans;
            Id const above = static_cast<Id>(node / 2);
            Id const length = above > 0 ? mNodes[above].first - mNodes[above - 1].first : 0;
            mNodes[node].next = length > 0 ? above : mNodes[above].next;
        }
        mSpans.resize(entries.size());
        for (Entry const& entry : entries) {
            mSpans[--mNodes[entry.node].first] = SpanOf(entry);
        }
    }

    Span SpanOf(Entry const& entry) const {
        TPoint<double> const a = mPoints[entry.edge];
        TPoint<double> const b = mPoints[entry.edge + 1];
        double const slope = (a.h - b.h) / (a.v - b.v);
        bool const tame = std::abs(a.h) <= kTame && std::abs(b.h) <= kTame &&
                          std::abs(a.v) <= kTame && std::abs(b.v) <= kTame &&
                          std::abs(slope) < kInfinity;
        if (!tame) {
            return {mKeys(-kInfinity), mKeys(kInfinity), entry.edge};
        }
        double const left = std::min(a.h, b.h);
        double const right = std::max(a.h, b.h);
        auto const crossing = [&](double v) {
            return std::clamp(a.h - (a.v - v) * slope, left, right);
        };
        unsigned const depth = HighestBit(mLeaves) - HighestBit(entry.node);
        Id const slab = (entry.node << depth) - mLeaves - 1;
        double const x = crossing(mSlabs[slab]);
        double const y = crossing(mSlabs[slab + (Id{1} << depth)]);
        return {mKeys(std::min(x, y)), mKeys(std::max(x, y)), entry.edge};
    }

    void SortSpans() {
        std::vector<Span> spare;
        for (std::size_t node = 1; node + 1 < mNodes.size(); ++node) {
            Span* const first = mSpans.data() + mNodes[node].first;
            Span* const last = mSpans.data() + mNodes[node + 1].first;
            auto const count = static_cast<std::size_t>(last - first);
            if (count >= kLongList) {
                spare.resize(std::max(spare.size(), count));
                SortLongList(first, spare.data(), count);
            } else if (count > kShortList) {
                std::sort(first, last, [](Span const& x, Span const& y) { return x.lo < y.lo; });
            }
        }
    }

    void SumUpSpans() {
        auto const maxima = [](auto const& items, auto value) {
            std::vector<float> result(items.size() / kBlock); // whole blocks
            for (std::size_t i = 0; i < result.size(); ++i) {
                float most = value(items[i * kBlock]);
                for (std::size_t j = 1; j < kBlock; ++j) {
                    most = std::max(most, value(items[i * kBlock + j]));
                }
                result[i] = most;
            }
            return result;
        };
        mMaxima[0] = maxima(mSpans, [](Span const& span) { return span.hi; });
        for (mLevels = 1; mLevels < mMaxima.size() && mMaxima[mLevels - 1].size() >= kBlock;
             ++mLevels) {
            mMaxima[mLevels] = maxima(mMaxima[mLevels - 1], [](float hi) { return hi; });
        }
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

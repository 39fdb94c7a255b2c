// SPDX-License-Identifier: MIT

#include "PointRun_p.h"

#include "Dispatch_p.h"
#include "EdgeCrossing_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

// The loops are written for any processor. Where the compiler's own vectors fall short, those for
// x86-64 stand beside them: pairs of doubles, which every such processor has, and quadruples, which
// are taken when the one that the program runs on has them.
#if defined(__SSE2__)
#define TRAMMEL_PAIRS 1
#include <emmintrin.h>
#endif
#if defined(__x86_64__) && defined(__GNUC__)
#define TRAMMEL_QUADRUPLES 1
#include <immintrin.h>
#endif

namespace trammel_detail {

namespace {

/// A run of fewer points is looked through edge by edge.
constexpr long kShort = 8;
/// The bits of a word, one for each point.
constexpr long kWordBits = 64;
/// The points that are looked at together: few enough for the processor's nearest cache and for
/// 16-bit indexes, and enough to spread the cost of a turn.
constexpr long kBatch = 1024;

void Store(char* bytes, TPoint<double> const& p) { std::memcpy(bytes, &p, sizeof p); }

#if defined(TRAMMEL_PAIRS)
/// A point's v and h, from any address.
__m128d LoadPair(char const* bytes) { return _mm_loadu_pd(reinterpret_cast<double const*>(bytes)); }
#endif

bool NotBelow(PointRun points, long i, double v) { return points.V(i) <= v; }

#if defined(TRAMMEL_PAIRS)
/// All ones for each of points i and i + 1 that is not below, else zero.
__m128d TwoNotBelow(PointRun points, long i, double v) {
    char const* const at = points.bytes + kPointBytes * i;
    return _mm_cmple_pd(_mm_unpacklo_pd(LoadPair(at), LoadPair(at + kPointBytes)), _mm_set1_pd(v));
}
#endif

/// Bit i tells whether point i of 16 has a v of at most `v`; never with a NaN.
std::uint64_t SixteenNotBelow(PointRun points, double v) {
#if defined(TRAMMEL_PAIRS)
    // Packing takes masks of all ones and zeros from 64 bits to 8, in the order of the points.
    auto const two = [&](long i) { return _mm_castpd_si128(TwoNotBelow(points, i, v)); };
    auto const eight = [&](long i) {
        return _mm_packs_epi32(_mm_packs_epi32(two(i), two(i + 2)),
                               _mm_packs_epi32(two(i + 4), two(i + 6)));
    };
    __m128i const all = _mm_packs_epi16(eight(0), eight(8));
    return static_cast<std::uint64_t>(_mm_movemask_epi8(all));
#else
    std::uint64_t bits = 0;
    for (long i = 0; i < 16; ++i) {
        bits |= std::uint64_t{NotBelow(points, i, v)} << static_cast<unsigned>(i);
    }
    return bits;
#endif
}

/// Bit i tells whether point i has a v of at most `v`; at most 64 points, the bits beyond are 0.
std::uint64_t WordNotBelow(PointRun points, double v) {
    std::uint64_t bits = 0;
    long i = 0;
    for (; i + 16 <= points.count; i += 16) {
        bits |= SixteenNotBelow({points.bytes + kPointBytes * i, 16}, v)
                << static_cast<unsigned>(i);
    }
#if defined(TRAMMEL_PAIRS)
    for (; i + 2 <= points.count; i += 2) {
        bits |= static_cast<std::uint64_t>(_mm_movemask_pd(TwoNotBelow(points, i, v)))
                << static_cast<unsigned>(i);
    }
#endif
    for (; i < points.count; ++i) {
        bits |= std::uint64_t{NotBelow(points, i, v)} << static_cast<unsigned>(i);
    }
    return bits;
}

/// What is known of an edge whose ends lie on different sides of p.v, as long as neither v is NaN,
/// by comparing h alone: crossed before p, where both ends are; not crossed, where both come after;
/// or left to the rule. As bits, for there is no telling which it will be.
struct ByH {
    unsigned odd;  ///< 1: crossed before `p`
    unsigned left; ///< 1: CrossesBefore decides

    ByH(TPoint<double> const& a, TPoint<double> const& b, TPoint<double> const& p) {
        unsigned const numbers = __builtin_isunordered(a.v, b.v) ? 0U : 1U;
        unsigned const before = unsigned{a.h < p.h} & unsigned{b.h < p.h};
        unsigned const after = unsigned{a.h > p.h} & unsigned{b.h > p.h};
        odd = before & numbers;
        left = 1U - (before | after);
    }
};

/// The edges between neighbouring points of a batch.
[[gnu::noinline]] bool OddCrossingsInBatch(PointRun points, double h, double v) {
    TPoint<double> const p(h, v);
    // An edge can only count when one end's v is at most p.v and the other's is not. (The converse
    // fails for NaN, which ByH sorts out.) These edges are listed first, and of them those left to
    // the rule once more: walking a list costs no mispredicted branch at each of its members, as
    // walking along the polygon does.
    std::array<std::uint16_t, kBatch> list;
    std::size_t listed = 0;
    auto const wordFrom = [=](long i) {
        return i < points.count ? WordNotBelow({points.bytes + kPointBytes * i,
                                                std::min(points.count - i, kWordBits)},
                                               p.v)
                                : 0;
    };
    std::uint64_t word = wordFrom(0);
    for (long base = 0; base < points.count; base += kWordBits) {
        std::uint64_t const next = wordFrom(base + kWordBits);
        std::uint64_t differing = word ^ (word >> 1U | next << 63U);
        long const edges = points.count - 1 - base;
        if (edges < kWordBits) {
            differing &= ~(~std::uint64_t{0} << static_cast<unsigned>(edges));
        }
        while (differing != 0) {
            list[listed++] = static_cast<std::uint16_t>(base + __builtin_ctzll(differing));
            differing &= differing - 1;
        }
        word = next;
    }
    unsigned odd = 0;
    std::size_t left = 0;
    for (std::size_t k = 0; k < listed; ++k) {
        ByH const edge(points[list[k]], points[list[k] + 1], p);
        odd ^= edge.odd;
        list[left] = list[k];
        left += edge.left;
    }
    for (std::size_t k = 0; k < left; ++k) {
        odd ^= unsigned{CrossesBefore(points[list[k]], points[list[k] + 1], p)};
    }
    return odd != 0;
}

/// The edges between neighbours of at most 64 points, and with `closing` the one from the last to
/// the first; without a list.
[[gnu::noinline]] bool OddCrossingsInWord(PointRun points, bool closing, double h, double v) {
    TPoint<double> const p(h, v);
    std::uint64_t const word = WordNotBelow(points, p.v);
    unsigned const last = static_cast<unsigned>(points.count - 1) % kWordBits;
    std::uint64_t differing = word ^ (word >> 1U | (word & 1U) << last);
    if (!closing) {
        differing &= ~(std::uint64_t{1} << last);
    }
    unsigned odd = 0;
    while (differing != 0) {
        long const i = __builtin_ctzll(differing);
        differing &= differing - 1;
        TPoint<double> const a = points[i];
        TPoint<double> const b = points[i < points.count - 1 ? i + 1 : 0];
        ByH const edge(a, b, p);
        odd ^= edge.odd;
        if (edge.left != 0) {
            odd ^= unsigned{CrossesBefore(a, b, p)};
        }
    }
    return odd != 0;
}

/// All edges, one by one.
bool OddCrossingsOneByOne(PointRun points, double h, double v) {
    bool odd = false;
    long before = points.count - 1;
    bool notBelow = points.V(before) <= v;
    for (long i = 0; i < points.count; ++i) {
        bool const nextNotBelow = points.V(i) <= v;
        if (notBelow != nextNotBelow) {
            odd ^= CrossesBefore(points[before], points[i], TPoint<double>(h, v));
        }
        before = i;
        notBelow = nextNotBelow;
    }
    return odd;
}

/// The two coordinates of a point, v first, and what the union of points does with them.
#if defined(TRAMMEL_PAIRS)
struct Pair {
    __m128d both;

    static Pair Load(char const* bytes) { return {LoadPair(bytes)}; }
    // Of two zeros, and with a NaN, these instructions give their second operand: as std::min(lo,
    // p) and std::max(hi, p) give lo and hi.
    void KeepLower(Pair p) { both = _mm_min_pd(p.both, both); }
    void KeepHigher(Pair p) { both = _mm_max_pd(p.both, both); }
    TPoint<double> Point() const {
        return TPoint<double>(_mm_cvtsd_f64(_mm_unpackhi_pd(both, both)), _mm_cvtsd_f64(both));
    }
};
#else
struct Pair {
    TPoint<double> both;

    static Pair Load(char const* bytes) { return {PointRun{bytes, 1}[0]}; }
    void KeepLower(Pair p) {
        both.v = std::min(both.v, p.both.v);
        both.h = std::min(both.h, p.both.h);
    }
    void KeepHigher(Pair p) {
        both.v = std::max(both.v, p.both.v);
        both.h = std::max(both.h, p.both.h);
    }
    TPoint<double> Point() const { return both; }
};
#endif

/// The union in the order first, first + step, ... of `count` points.
TRect<double> Union(char const* first, long step, long count) {
    auto const point = [=](long i) { return PointRun{first + step * i, 1}[0]; };
    // A rectangle that is null takes over the next point, so points at the origin are forgotten
    // while nothing else has come (of them the last one stays, with the signs of its zeros). The
    // point that ends this is in the rectangle for good, and one of its fields is not 0.
    long start = 0;
    while (start < count - 1 && point(start).Null()) {
        ++start;
    }
    if (start >= count) {
        return TRect<double>();
    }
    // Lower and higher are kept in four lanes, as each is a chain of operations that wait for the
    // other. A NaN at the start is in all lanes and stays, as no number replaces it; later ones
    // replace nothing.
    constexpr std::size_t kLanes = 4;
    constexpr long kStride = static_cast<long>(kLanes);
    std::array<Pair, kLanes> low;
    low.fill(Pair::Load(first + step * start));
    std::array<Pair, kLanes> high = low;
    long i = start + 1;
    for (; i + kStride <= count; i += kStride) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            Pair const p = Pair::Load(first + step * (i + static_cast<long>(lane)));
            low[lane].KeepLower(p);
            high[lane].KeepHigher(p);
        }
    }
    for (; i < count; ++i) {
        Pair const p = Pair::Load(first + step * i);
        low[0].KeepLower(p);
        high[0].KeepHigher(p);
    }
    for (std::size_t lane = 1; lane < kLanes; ++lane) {
        low[0].KeepLower(low[lane]);
        high[0].KeepHigher(high[lane]);
    }
    TRect<double> bounds;
    bounds.mCorners[0] = low[0].Point();
    bounds.mCorners[1] = high[0].Point();
    // Lanes change the order, which shows in one thing only: which of several equal values was
    // kept, and equal values that differ are zeros. In order it is the first one, as it ended what
    // was kept before and no later one can end it.
    auto const firstZero = [=](double TPoint<double>::*coordinate) {
        for (long k = start; k < count; ++k) {
            double const value = point(k).*coordinate;
            if (value == 0.0) {
                return value;
            }
        }
        return 0.0;
    };
    if (bounds.top == 0.0 || bounds.bottom == 0.0) {
        double const zero = firstZero(&TPoint<double>::v);
        bounds.top = bounds.top == 0.0 ? zero : bounds.top;
        bounds.bottom = bounds.bottom == 0.0 ? zero : bounds.bottom;
    }
    if (bounds.left == 0.0 || bounds.right == 0.0) {
        double const zero = firstZero(&TPoint<double>::h);
        bounds.left = bounds.left == 0.0 ? zero : bounds.left;
        bounds.right = bounds.right == 0.0 ? zero : bounds.right;
    }
    return bounds;
}

/// What becomes of a point p: ((p - from) times the linear part) + to; without the subtraction
/// where `from` is known to be the origin.
template <bool kFromOrigin> struct Affine {
    TPoint<double> from;
    double hToH;
    double vToH;
    double hToV;
    double vToV;
    TPoint<double> to;

    TPoint<double> operator()(TPoint<double> const& p) const {
        double const h = kFromOrigin ? p.h : p.h - from.h;
        double const v = kFromOrigin ? p.v : p.v - from.v;
        return TPoint<double>(h * hToH + v * vToH + to.h, h * hToV + v * vToV + to.v);
    }
};

#if defined(TRAMMEL_QUADRUPLES)
/// Two points at a time; returns how many it did.
template <bool kFromOrigin>
__attribute__((target("avx"))) long ApplyToPairs(char* bytes, long count,
                                                 Affine<kFromOrigin> const& map) {
    __m256d const from = _mm256_setr_pd(map.from.v, map.from.h, map.from.v, map.from.h);
    __m256d const byH = _mm256_setr_pd(map.hToV, map.hToH, map.hToV, map.hToH);
    __m256d const byV = _mm256_setr_pd(map.vToV, map.vToH, map.vToV, map.vToH);
    __m256d const to = _mm256_setr_pd(map.to.v, map.to.h, map.to.v, map.to.h);
    long i = 0;
#pragma GCC unroll 4
    for (; i + 2 <= count; i += 2) {
        double* const at = reinterpret_cast<double*>(bytes + kPointBytes * i);
        __m256d const loaded = _mm256_loadu_pd(at);
        __m256d const p = kFromOrigin ? loaded : _mm256_sub_pd(loaded, from);
        __m256d const hs = _mm256_permute_pd(p, 0xF);
        __m256d const vs = _mm256_permute_pd(p, 0x0);
        __m256d const sum = _mm256_add_pd(_mm256_mul_pd(hs, byH), _mm256_mul_pd(vs, byV));
        _mm256_storeu_pd(at, _mm256_add_pd(sum, to));
    }
    return i;
}
#endif

template <bool kFromOrigin> void Apply(char* bytes, long count, Affine<kFromOrigin> const& map) {
    long i = 0;
#if defined(TRAMMEL_QUADRUPLES)
    if (count >= kShort && HasWideVectors()) {
        i = ApplyToPairs(bytes, count, map);
    }
#endif
    Affine<kFromOrigin> const own = map; // the points might be taken for parts of the argument
    for (; i < count; ++i) {
        char* const at = bytes + kPointBytes * i;
        Store(at, own(PointRun{at, 1}[0]));
    }
}

} // namespace

bool OddCrossings(PointRun points, double h, double v) {
    if (points.count < 2) {
        return false; // without extent in v
    }
    if (points.count < kShort) {
        return OddCrossingsOneByOne(points, h, v);
    }
    if (points.count <= kWordBits) {
        return OddCrossingsInWord(points, true, h, v);
    }
    bool odd = CrossesBefore(points[points.count - 1], points[0], TPoint<double>(h, v));
    // Batches share their end points.
    for (long i = 0; i < points.count - 1; i += kBatch - 1) {
        odd ^= OddCrossingsInBatch(
            {points.bytes + kPointBytes * i, std::min(points.count - i, kBatch)}, h, v);
    }
    return odd;
}

Heights::Heights(PointRun points) : mPoints(points) {
    mRanges.reserve(static_cast<std::size_t>(std::max(points.count, 0L) / kGroup + 1));
    for (long first = 0; first + 1 < points.count; first += kGroup) {
        Range range = {std::numeric_limits<double>::infinity(),
                       -std::numeric_limits<double>::infinity()};
        long const end = std::min(first + kGroup + 1, points.count);
        for (long i = first; i < end; ++i) {
            // With the range first, a NaN changes nothing: its edges are never crossed.
            range.low = std::min(range.low, points.V(i));
            range.high = std::max(range.high, points.V(i));
        }
        mRanges.push_back(range);
    }
}

bool Heights::OddCrossings(double h, double v) const {
    if (mPoints.count < 2) {
        return false;
    }
    bool odd = CrossesBefore(mPoints[mPoints.count - 1], mPoints[0], TPoint<double>(h, v));
    long first = 0;
    for (Range const& range : mRanges) {
        // An edge that takes part has an end at most at v and another above it.
        if (range.low <= v && v < range.high) {
            PointRun const group = {mPoints.bytes + kPointBytes * first,
                                    std::min(mPoints.count - first, kGroup + 1)};
            odd ^= OddCrossingsInWord(group, false, h, v);
        }
        first += kGroup;
    }
    return odd;
}

TRect<double> UnionForward(PointRun points) {
    return Union(points.bytes, kPointBytes, points.count);
}

TRect<double> UnionBackward(PointRun points) {
    return Union(points.bytes + kPointBytes * (points.count - 1), -kPointBytes, points.count);
}

void TransformRun(char* bytes, long count, CMatrix3x3 const& m) {
    Apply(bytes, count,
          Affine<true>{TPoint<double>(), m.a, m.c, m.b, m.d, TPoint<double>(m.tx, m.ty)});
}

void RotateRun(char* bytes, long count, double angle, TPoint<double> const& centre) {
    double const s = std::sin(angle);
    double const c = std::cos(angle);
    // h·c + v·(-s) is h·c - v·s to the last bit.
    Apply(bytes, count, Affine<false>{centre, c, -s, s, c, centre});
}

void OffsetRun(char* bytes, long count, TPoint<double> const& d) {
    TPoint<double> const by = d;
    for (long i = 0; i < count; ++i) {
        char* const at = bytes + kPointBytes * i;
        Store(at, PointRun{at, 1}[0] + by);
    }
}

void ScaleRun(char* bytes, long count, double sh, double sv) {
    for (long i = 0; i < count; ++i) {
        char* const at = bytes + kPointBytes * i;
        TPoint<double> p = PointRun{at, 1}[0];
        Store(at, p.Scale(sh, sv));
    }
}

} // namespace trammel_detail

// SPDX-License-Identifier: MIT

#include "PointRun_p.h"

#include "EdgeCrossing_p.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace trammel_detail {

namespace {

/// A run of fewer points is searched edge by edge.
constexpr long kShort = 8;
/// The bits of a word; each stands for a point.
constexpr long kWordBits = 64;
/// The points of a batch: few enough for the processor's nearest cache and for 16-bit indexes, and
/// enough to spread the cost of beginning a batch.
constexpr long kBatch = 1024;

void Store(char* bytes, TPoint<double> const& p) { std::memcpy(bytes, &p, sizeof p); }

/// What h alone tells of an edge whose ends lie on different sides of p.v:
///
///   both ends before p, no v is NaN    the edge is crossed before p
///   both ends before p, a v is NaN     the edge is not crossed before p
///   both ends after p                  the edge is not crossed before p
///   otherwise                          the rule decides
///
/// The answers are bits, as a branch could not be predicted.
struct ByH {
    unsigned odd;  ///< 1: the edge is crossed before `p`
    unsigned left; ///< 1: CrossesBefore decides

    ByH(TPoint<double> const& a, TPoint<double> const& b, TPoint<double> const& p) {
        unsigned const numbers = __builtin_isunordered(a.v, b.v) ? 0U : 1U;
        unsigned const before = unsigned{a.h < p.h} & unsigned{b.h < p.h};
        unsigned const after = unsigned{a.h > p.h} & unsigned{b.h > p.h};
        odd = before & numbers;
        left = 1U - (before | after);
    }
};

/// True when an odd number of edges between neighbouring points of a batch are crossed.
[[gnu::noinline]] bool OddCrossingsInBatch(PointRun points, double h, double v) {
    TPoint<double> const p(h, v);
    // An edge only counts when one end's v is at most p.v and the other's is not. (The converse
    // fails for NaN, which ByH sorts out.) The first pass lists these edges. The second pass lists
    // the edges that are left to the rule. Walking along the polygon would cost a mispredicted
    // branch at each such edge; walking a list costs none.
    std::array<std::uint16_t, kBatch> list;
    std::size_t listed = 0;
    auto const wordFrom = [=](long i) {
        return i < points.count ? NotBelow(points.bytes + kPointBytes * i,
                                           std::min(points.count - i, kWordBits), p.v)
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

/// True when an odd number of edges between neighbours of at most 64 points are crossed. With
/// `closing` the edge from the last point to the first counts as well. This needs no list.
[[gnu::noinline]] bool OddCrossingsInWord(PointRun points, bool closing, double h, double v) {
    TPoint<double> const p(h, v);
    std::uint64_t const word = NotBelow(points.bytes, points.count, p.v);
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

/// See OddCrossings. Goes through all edges one by one.
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

template <bool kForward> long Forgotten(PointRun points) {
    long start = 0;
    while (start < points.count - 1 && IsOrigin(Double2::Load(PlaceIn<kForward>(points, start)))) {
        ++start;
    }
    return start;
}
template long Forgotten<true>(PointRun points);
template long Forgotten<false>(PointRun points);

template <bool kForward> void PutFirstZeros(PointRun points, TRect<double>& bounds) {
    long const start = Forgotten<kForward>(points);
    auto const firstZero = [=](double TPoint<double>::*coordinate) {
        for (long k = start; k < points.count; ++k) {
            double const value = PointRun{PlaceIn<kForward>(points, k), 1}[0].*coordinate;
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
}
template void PutFirstZeros<true>(PointRun points, TRect<double>& bounds);
template void PutFirstZeros<false>(PointRun points, TRect<double>& bounds);

void TransformRun(char* bytes, long count, CMatrix3x3 const& m) {
    static_assert(offsetof(CMatrix3x3, a) == 0 && offsetof(CMatrix3x3, b) == 8 &&
                      offsetof(CMatrix3x3, c) == 16 && offsetof(CMatrix3x3, d) == 24 &&
                      offsetof(CMatrix3x3, tx) == 32 && offsetof(CMatrix3x3, ty) == 40,
                  "a kernel reads the six numbers one after the other");
    TransformPoints(bytes, count, {&m.a, nullptr});
}

void RotateRun(char* bytes, long count, double angle, TPoint<double> const& centre) {
    double const s = std::sin(angle);
    double const c = std::cos(angle);
    // h·c + v·(-s) is h·c - v·s to the last bit.
    double const matrix[6] = {c, s, -s, c, centre.h, centre.v};
    double const from[2] = {centre.v, centre.h};
    TransformPoints(bytes, count, {matrix, from});
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

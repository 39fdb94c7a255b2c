// SPDX-License-Identifier: MIT

// Small vectors: two doubles, four doubles and eight 16-bit integers. Not installed.
//
// Each lane is computed as a scalar of its own, with the same rounding. So work on vectors gives
// the bits that the same work on scalars gives.
//
//   Double2, Mask2          one vector of two lanes, on every processor
//   Double4, Mask4          two such vectors, on every processor
//   WideDouble4, WideMask4  one vector of four lanes, in files that are compiled for AVX2
//   Short8                  one vector of eight 16-bit integers, on every processor
//
// WideDouble4 has all operations of Double4. A kernel is a template of either one, which the name
// Vector stands for. docs/kernels.md tells how to add a kernel, and how to add a processor.
//
// The rule on inlining: a file for AVX2 shares no function with other files unless the compiler
// inlines it. Of two equal functions the linker keeps one, which could be the one for AVX2, and
// other processors would run into it. So all functions here are always inlined, and call none of
// the standard library's.

#ifndef TRAMMEL_VECTOR_P_H
#define TRAMMEL_VECTOR_P_H

#include "VectorRaw_p.h"
#if defined(__SSE2__) && !defined(TRAMMEL_PLAIN_VECTORS)
#include "VectorX86_p.h"
#elif defined(__aarch64__) && defined(__AARCH64EL__) && !defined(TRAMMEL_PLAIN_VECTORS)
#include "VectorNeon_p.h"
#else
#include "VectorPlain_p.h"
#endif

namespace trammel_detail {

// ------------------------------------------------------------------------------------------------
// Scalars, so that a template serves these, too

/// Returns `a` where a < b, else `b`, which includes all cases with a NaN.
[[gnu::always_inline]] inline double Min(double a, double b) { return RawMin(a, b); }
/// Returns `a` where a > b, else `b`, which includes all cases with a NaN.
[[gnu::always_inline]] inline double Max(double a, double b) { return RawMax(a, b); }
[[gnu::always_inline]] inline double Abs(double a) { return __builtin_fabs(a); }

// ------------------------------------------------------------------------------------------------
// Vectors that a processor has

/// The outcome of comparing two vectors: all ones in the lanes where it holds, else all zeros.
template <class Raw> struct MaskOf {
    Raw raw;

    [[gnu::always_inline]] inline friend MaskOf operator&(MaskOf const& a, MaskOf const& b) {
        return MaskOf{a.raw & b.raw};
    }
    [[gnu::always_inline]] inline friend MaskOf operator|(MaskOf const& a, MaskOf const& b) {
        return MaskOf{a.raw | b.raw};
    }
    /// Returns a number whose bit i is lane i.
    [[gnu::always_inline]] inline unsigned Bits() const { return RawBits(raw); }
    [[gnu::always_inline]] inline void Set(int lane, bool holds) { raw[lane] = holds ? -1 : 0; }
};

template <class Raw> struct UnsignedOf;
template <> struct UnsignedOf<RawDouble2> { typedef RawUnsigned2 Type; };
template <> struct UnsignedOf<RawDouble4> { typedef RawUnsigned4 Type; };

/// A vector of doubles. A double converts to a vector that has it in all lanes.
template <class Raw, class RawMask> struct VectorOf {
    typedef MaskOf<RawMask> Mask;
    static constexpr int kLanes = sizeof(Raw) / sizeof(double);

    Raw raw;

private:
    /// The integers in the place of the doubles.
    typedef typename UnsignedOf<Raw>::Type RawUnsigned;
    static constexpr std::uint64_t kFourthRoot = 0x4FEB080000000000;

public:
    VectorOf() = default; // not initialised
    [[gnu::always_inline]] inline explicit VectorOf(Raw const& lanes) : raw(lanes) {}
    [[gnu::always_inline]] inline VectorOf(double x) {
        if constexpr (kLanes == 2) {
            raw = Raw{x, x};
        } else {
            raw = Raw{x, x, x, x};
        }
    }
    /// Returns the vector of the given lanes, as many as it has.
    template <class... Lanes> [[gnu::always_inline]] inline static VectorOf Of(Lanes... lanes) {
        static_assert(sizeof...(lanes) == kLanes);
        return VectorOf(Raw{lanes...});
    }
    /// Returns the doubles that lie at `from`, which may be any address.
    [[gnu::always_inline]] inline static VectorOf Load(void const* from) {
        VectorOf x;
        __builtin_memcpy(&x.raw, from, sizeof x.raw);
        return x;
    }
    /// Stores the lanes at `to`, which may be any address.
    [[gnu::always_inline]] inline void Store(void* to) const {
        __builtin_memcpy(to, &raw, sizeof raw);
    }
    /// Returns a lane that is known at run time only. Lane<i>(x) is faster otherwise.
    [[gnu::always_inline]] inline double operator[](int lane) const { return raw[lane]; }

    [[gnu::always_inline]] inline VectorOf operator-() const { return VectorOf(-raw); }
    [[gnu::always_inline]] inline friend VectorOf operator+(VectorOf const& a, VectorOf const& b) {
        return VectorOf(a.raw + b.raw);
    }
    [[gnu::always_inline]] inline friend VectorOf operator-(VectorOf const& a, VectorOf const& b) {
        return VectorOf(a.raw - b.raw);
    }
    [[gnu::always_inline]] inline friend VectorOf operator*(VectorOf const& a, VectorOf const& b) {
        return VectorOf(a.raw * b.raw);
    }
    [[gnu::always_inline]] inline friend VectorOf operator/(VectorOf const& a, VectorOf const& b) {
        return VectorOf(a.raw / b.raw);
    }
    [[gnu::always_inline]] inline friend Mask operator==(VectorOf const& a, VectorOf const& b) {
        return Mask{(RawMask)(a.raw == b.raw)};
    }
    [[gnu::always_inline]] inline friend Mask operator<(VectorOf const& a, VectorOf const& b) {
        return Mask{(RawMask)(a.raw < b.raw)};
    }
    [[gnu::always_inline]] inline friend Mask operator<=(VectorOf const& a, VectorOf const& b) {
        return Mask{(RawMask)(a.raw <= b.raw)};
    }
    [[gnu::always_inline]] inline friend Mask operator>(VectorOf const& a, VectorOf const& b) {
        return Mask{(RawMask)(a.raw > b.raw)};
    }
    [[gnu::always_inline]] inline friend Mask operator>=(VectorOf const& a, VectorOf const& b) {
        return Mask{(RawMask)(a.raw >= b.raw)};
    }

    /// In each lane as the scalar Min.
    [[gnu::always_inline]] inline friend VectorOf Min(VectorOf const& a, VectorOf const& b) {
        return VectorOf(RawMin(a.raw, b.raw));
    }
    /// In each lane as the scalar Max.
    [[gnu::always_inline]] inline friend VectorOf Max(VectorOf const& a, VectorOf const& b) {
        return VectorOf(RawMax(a.raw, b.raw));
    }
    [[gnu::always_inline]] inline friend VectorOf Abs(VectorOf const& a) {
        return VectorOf((Raw)((RawMask)a.raw & INT64_MAX));
    }
    [[gnu::always_inline]] inline friend VectorOf Sqrt(VectorOf const& a) {
        return VectorOf(RawSqrt(a.raw));
    }
    /// Returns a first approximation of the fourth root's inverse, off by 3 % at most, for positive
    /// numbers that are neither denormal nor infinite. It divides the exponent by -4.
    [[gnu::always_inline]] inline friend VectorOf RoughInverseFourthRoot(VectorOf const& a) {
        return VectorOf((Raw)(kFourthRoot - ((RawUnsigned)a.raw >> 2)));
    }
    /// Returns `a` in the lanes where the mask is set, else `b`.
    [[gnu::always_inline]] inline friend VectorOf Select(Mask const& mask, VectorOf const& a,
                                                         VectorOf const& b) {
        return VectorOf(RawSelect(mask.raw, a.raw, b.raw));
    }
};

/// Returns a lane.
template <int kLane, class Raw, class RawMask>
[[gnu::always_inline]] inline double Lane(VectorOf<Raw, RawMask> const& a) {
    return a.raw[kLane];
}

// ------------------------------------------------------------------------------------------------
// Two doubles

typedef VectorOf<RawDouble2, RawMask2> Double2;
typedef Double2::Mask Mask2;

/// Returns the first lanes of `a` and `b`.
[[gnu::always_inline]] inline Double2 Firsts(Double2 const& a, Double2 const& b) {
    return Double2(__builtin_shufflevector(a.raw, b.raw, 0, 2));
}
/// Returns the second lanes of `a` and `b`.
[[gnu::always_inline]] inline Double2 Seconds(Double2 const& a, Double2 const& b) {
    return Double2(__builtin_shufflevector(a.raw, b.raw, 1, 3));
}
/// Returns lane 0 in both lanes.
[[gnu::always_inline]] inline Double2 EvenTwice(Double2 const& a) { return Firsts(a, a); }
/// Returns lane 1 in both lanes.
[[gnu::always_inline]] inline Double2 OddTwice(Double2 const& a) { return Seconds(a, a); }
/// Returns the lanes in the other order.
[[gnu::always_inline]] inline Double2 Swapped(Double2 const& a) {
    return Double2(__builtin_shufflevector(a.raw, a.raw, 1, 0));
}
/// Returns a number whose bits 2i and 2i + 1 are the lanes of mask i.
[[gnu::always_inline]] inline unsigned BitsOfEight(Mask2 const (&masks)[8]) {
    RawMask2 const raw[8] = {masks[0].raw, masks[1].raw, masks[2].raw, masks[3].raw,
                             masks[4].raw, masks[5].raw, masks[6].raw, masks[7].raw};
    return RawBitsOfEight(raw);
}

// ------------------------------------------------------------------------------------------------
// Four doubles as two vectors

struct Mask4 {
    Mask2 low;
    Mask2 high;

    [[gnu::always_inline]] inline friend Mask4 operator&(Mask4 const& a, Mask4 const& b) {
        return Mask4{a.low & b.low, a.high & b.high};
    }
    [[gnu::always_inline]] inline friend Mask4 operator|(Mask4 const& a, Mask4 const& b) {
        return Mask4{a.low | b.low, a.high | b.high};
    }
    [[gnu::always_inline]] inline unsigned Bits() const { return low.Bits() | high.Bits() << 2; }
};

struct Double4 {
    typedef Mask4 Mask;

    Double2 low;  ///< lanes 0 and 1
    Double2 high; ///< lanes 2 and 3

    Double4() = default; // not initialised
    [[gnu::always_inline]] inline Double4(double x) : low(x), high(x) {}
    [[gnu::always_inline]] inline Double4(Double2 const& lanes01, Double2 const& lanes23)
        : low(lanes01), high(lanes23) {}
    [[gnu::always_inline]] inline static Double4 Of(double a, double b, double c, double d) {
        return Double4(Double2::Of(a, b), Double2::Of(c, d));
    }
    [[gnu::always_inline]] inline static Double4 Load(void const* from) {
        auto const* const bytes = static_cast<char const*>(from);
        return Double4(Double2::Load(bytes), Double2::Load(bytes + sizeof(Double2)));
    }
    [[gnu::always_inline]] inline void Store(void* to) const {
        auto* const bytes = static_cast<char*>(to);
        low.Store(bytes);
        high.Store(bytes + sizeof(Double2));
    }
    [[gnu::always_inline]] inline double operator[](int lane) const {
        return lane < 2 ? low[lane] : high[lane - 2];
    }

    [[gnu::always_inline]] inline Double4 operator-() const { return Double4(-low, -high); }
    [[gnu::always_inline]] inline friend Double4 operator+(Double4 const& a, Double4 const& b) {
        return Double4(a.low + b.low, a.high + b.high);
    }
    [[gnu::always_inline]] inline friend Double4 operator-(Double4 const& a, Double4 const& b) {
        return Double4(a.low - b.low, a.high - b.high);
    }
    [[gnu::always_inline]] inline friend Double4 operator*(Double4 const& a, Double4 const& b) {
        return Double4(a.low * b.low, a.high * b.high);
    }
    [[gnu::always_inline]] inline friend Double4 operator/(Double4 const& a, Double4 const& b) {
        return Double4(a.low / b.low, a.high / b.high);
    }
    [[gnu::always_inline]] inline friend Mask4 operator==(Double4 const& a, Double4 const& b) {
        return Mask4{a.low == b.low, a.high == b.high};
    }
    [[gnu::always_inline]] inline friend Mask4 operator<(Double4 const& a, Double4 const& b) {
        return Mask4{a.low < b.low, a.high < b.high};
    }
    [[gnu::always_inline]] inline friend Mask4 operator<=(Double4 const& a, Double4 const& b) {
        return Mask4{a.low <= b.low, a.high <= b.high};
    }
    [[gnu::always_inline]] inline friend Mask4 operator>(Double4 const& a, Double4 const& b) {
        return Mask4{a.low > b.low, a.high > b.high};
    }
    [[gnu::always_inline]] inline friend Mask4 operator>=(Double4 const& a, Double4 const& b) {
        return Mask4{a.low >= b.low, a.high >= b.high};
    }
};

template <int kLane> [[gnu::always_inline]] inline double Lane(Double4 const& a) {
    return kLane < 2 ? Lane<kLane % 2>(a.low) : Lane<kLane % 2>(a.high);
}
[[gnu::always_inline]] inline Double4 Min(Double4 const& a, Double4 const& b) {
    return Double4(Min(a.low, b.low), Min(a.high, b.high));
}
[[gnu::always_inline]] inline Double4 Max(Double4 const& a, Double4 const& b) {
    return Double4(Max(a.low, b.low), Max(a.high, b.high));
}
[[gnu::always_inline]] inline Double4 Abs(Double4 const& a) {
    return Double4(Abs(a.low), Abs(a.high));
}
[[gnu::always_inline]] inline Double4 Sqrt(Double4 const& a) {
    return Double4(Sqrt(a.low), Sqrt(a.high));
}
[[gnu::always_inline]] inline Double4 RoughInverseFourthRoot(Double4 const& a) {
    return Double4(RoughInverseFourthRoot(a.low), RoughInverseFourthRoot(a.high));
}
[[gnu::always_inline]] inline Double4 Select(Mask4 const& mask, Double4 const& a,
                                             Double4 const& b) {
    return Double4(Select(mask.low, a.low, b.low), Select(mask.high, a.high, b.high));
}
/// Returns the sum of the lanes, as (0 + 2) + (1 + 3).
[[gnu::always_inline]] inline double Sum(Double4 const& a) {
    Double2 const two = a.low + a.high;
    return Lane<0>(two) + Lane<1>(two);
}
/// Returns lane 0 of `a` and lane 0 of `b`, and both again.
[[gnu::always_inline]] inline Double4 FirstsTwice(Double4 const& a, Double4 const& b) {
    Double2 const both = Firsts(a.low, b.low);
    return Double4(both, both);
}
/// Returns lanes 0 and 1 of `a`, then those of `b`.
[[gnu::always_inline]] inline Double4 LowHalves(Double4 const& a, Double4 const& b) {
    return Double4(a.low, b.low);
}
/// Returns lane 3 of `a`, then lanes 0 to 2 of `b`: for each lane of `b` the number before it, when
/// `a` comes before `b`.
[[gnu::always_inline]] inline Double4 Preceding(Double4 const& a, Double4 const& b) {
    return Double4(Double2(__builtin_shufflevector(a.high.raw, b.low.raw, 1, 2)),
                   Double2(__builtin_shufflevector(b.low.raw, b.high.raw, 1, 2)));
}
/// Returns lanes 1 to 3 of `a`, then lane 0 of `b`: for each lane of `a` the number behind it, when
/// `b` comes behind `a`.
[[gnu::always_inline]] inline Double4 Following(Double4 const& a, Double4 const& b) {
    return Double4(Double2(__builtin_shufflevector(a.low.raw, a.high.raw, 1, 2)),
                   Double2(__builtin_shufflevector(a.high.raw, b.low.raw, 1, 2)));
}
/// Returns in lane i the sum of the lanes 0 to i: a0, a0 + a1, (a0 + a1) + a2 and
/// (a0 + a1) + (a2 + a3).
[[gnu::always_inline]] inline Double4 RunningSums(Double4 const& a) {
    Double2 const zero(0.0);
    Double2 const low = a.low + Firsts(zero, a.low);
    Double2 const high = a.high + Firsts(zero, a.high);
    return Double4(low, high + OddTwice(low));
}
/// Makes the vectors, the rows of a square, its columns.
[[gnu::always_inline]] inline void Transpose(Double4& a, Double4& b, Double4& c, Double4& d) {
    Double4 const columns[4] = {Double4(Firsts(a.low, b.low), Firsts(c.low, d.low)),
                                Double4(Seconds(a.low, b.low), Seconds(c.low, d.low)),
                                Double4(Firsts(a.high, b.high), Firsts(c.high, d.high)),
                                Double4(Seconds(a.high, b.high), Seconds(c.high, d.high))};
    a = columns[0];
    b = columns[1];
    c = columns[2];
    d = columns[3];
}
/// Reads four pairs that lie one after the other: their first members to `a`, the second to `b`.
[[gnu::always_inline]] inline void LoadPairs(double const* from, Double4& a, Double4& b) {
    Double4 const first = Double4::Load(from);
    Double4 const second = Double4::Load(from + 4);
    a = Double4(Firsts(first.low, first.high), Firsts(second.low, second.high));
    b = Double4(Seconds(first.low, first.high), Seconds(second.low, second.high));
}
/// Stores lane i of `a` and lane i of `b` side by side at `to[i]`.
[[gnu::always_inline]] inline void StorePairs(Double4 const& a, Double4 const& b,
                                              double* const (&to)[4]) {
    Firsts(a.low, b.low).Store(to[0]);
    Seconds(a.low, b.low).Store(to[1]);
    Firsts(a.high, b.high).Store(to[2]);
    Seconds(a.high, b.high).Store(to[3]);
}

// ------------------------------------------------------------------------------------------------
// Four doubles as one vector: the same operations, and five more for pairs

#if defined(__AVX2__)

typedef VectorOf<RawDouble4, RawMask4> WideDouble4;
typedef WideDouble4::Mask WideMask4;

[[gnu::always_inline]] inline double Sum(WideDouble4 const& a) {
    Double2 const two(__builtin_shufflevector(a.raw, a.raw, 0, 1) + RawHigh(a.raw));
    return Lane<0>(two) + Lane<1>(two);
}
[[gnu::always_inline]] inline WideDouble4 FirstsTwice(WideDouble4 const& a, WideDouble4 const& b) {
    return WideDouble4(__builtin_shufflevector(a.raw, b.raw, 0, 4, 0, 4));
}
[[gnu::always_inline]] inline WideDouble4 LowHalves(WideDouble4 const& a, WideDouble4 const& b) {
    return WideDouble4(__builtin_shufflevector(a.raw, b.raw, 0, 1, 4, 5));
}
[[gnu::always_inline]] inline WideDouble4 Preceding(WideDouble4 const& a, WideDouble4 const& b) {
    return WideDouble4(__builtin_shufflevector(a.raw, b.raw, 3, 4, 5, 6));
}
[[gnu::always_inline]] inline WideDouble4 Following(WideDouble4 const& a, WideDouble4 const& b) {
    return WideDouble4(__builtin_shufflevector(a.raw, b.raw, 1, 2, 3, 4));
}
[[gnu::always_inline]] inline WideDouble4 RunningSums(WideDouble4 const& a) {
    RawDouble4 const zero = {0.0, 0.0, 0.0, 0.0};
    RawDouble4 const pairs = a.raw + __builtin_shufflevector(zero, a.raw, 0, 4, 2, 6);
    return WideDouble4(pairs + __builtin_shufflevector(zero, pairs, 0, 1, 5, 5));
}
[[gnu::always_inline]] inline void Transpose(WideDouble4& a, WideDouble4& b, WideDouble4& c,
                                             WideDouble4& d) {
    RawDouble4 const evenAB = __builtin_shufflevector(a.raw, b.raw, 0, 4, 2, 6);
    RawDouble4 const oddAB = __builtin_shufflevector(a.raw, b.raw, 1, 5, 3, 7);
    RawDouble4 const evenCD = __builtin_shufflevector(c.raw, d.raw, 0, 4, 2, 6);
    RawDouble4 const oddCD = __builtin_shufflevector(c.raw, d.raw, 1, 5, 3, 7);
    a = WideDouble4(__builtin_shufflevector(evenAB, evenCD, 0, 1, 4, 5));
    b = WideDouble4(__builtin_shufflevector(oddAB, oddCD, 0, 1, 4, 5));
    c = WideDouble4(__builtin_shufflevector(evenAB, evenCD, 2, 3, 6, 7));
    d = WideDouble4(__builtin_shufflevector(oddAB, oddCD, 2, 3, 6, 7));
}
/// Returns a pair in lanes 0 and 1, and again in lanes 2 and 3.
[[gnu::always_inline]] inline WideDouble4 Repeat(Double2 const& pair) {
    return WideDouble4(RawRepeat(pair.raw));
}
/// Returns lanes 0 and 1.
[[gnu::always_inline]] inline Double2 LowHalf(WideDouble4 const& a) {
    return Double2(__builtin_shufflevector(a.raw, a.raw, 0, 1));
}
/// Returns lanes 2 and 3.
[[gnu::always_inline]] inline Double2 HighHalf(WideDouble4 const& a) {
    return Double2(RawHigh(a.raw));
}
/// Returns lanes 0, 0, 2 and 2.
[[gnu::always_inline]] inline WideDouble4 EvenTwice(WideDouble4 const& a) {
    return WideDouble4(__builtin_shufflevector(a.raw, a.raw, 0, 0, 2, 2));
}
/// Returns lanes 1, 1, 3 and 3.
[[gnu::always_inline]] inline WideDouble4 OddTwice(WideDouble4 const& a) {
    return WideDouble4(__builtin_shufflevector(a.raw, a.raw, 1, 1, 3, 3));
}
[[gnu::always_inline]] inline void LoadPairs(double const* from, WideDouble4& a, WideDouble4& b) {
    WideDouble4 const first = WideDouble4::Load(from);
    WideDouble4 const second = WideDouble4::Load(from + 4);
    a = WideDouble4(__builtin_shufflevector(first.raw, second.raw, 0, 2, 4, 6));
    b = WideDouble4(__builtin_shufflevector(first.raw, second.raw, 1, 3, 5, 7));
}
[[gnu::always_inline]] inline void StorePairs(WideDouble4 const& a, WideDouble4 const& b,
                                              double* const (&to)[4]) {
    RawDouble4 const even = __builtin_shufflevector(a.raw, b.raw, 0, 4, 2, 6);
    RawDouble4 const odd = __builtin_shufflevector(a.raw, b.raw, 1, 5, 3, 7);
    Double2(__builtin_shufflevector(even, even, 0, 1)).Store(to[0]);
    Double2(__builtin_shufflevector(odd, odd, 0, 1)).Store(to[1]);
    Double2(RawHigh(even)).Store(to[2]);
    Double2(RawHigh(odd)).Store(to[3]);
}

#endif

// ------------------------------------------------------------------------------------------------
// Eight 16-bit integers. Comparisons have all ones in the lanes where they hold, else all zeros.

struct Short8 {
    RawShort8 raw;

    Short8() = default; // not initialised
    [[gnu::always_inline]] inline explicit Short8(RawShort8 const& lanes) : raw(lanes) {}
    [[gnu::always_inline]] inline explicit Short8(std::int16_t x)
        : raw(RawShort8{x, x, x, x, x, x, x, x}) {}
    /// Returns the integers that lie at `from`, which may be any address.
    [[gnu::always_inline]] inline static Short8 Load(void const* from) {
        Short8 x;
        __builtin_memcpy(&x.raw, from, sizeof x.raw);
        return x;
    }
    /// Returns the two integers that lie at `from` in lanes 0 and 1, and 0 in the others.
    [[gnu::always_inline]] inline static Short8 LoadTwo(void const* from) {
        std::int32_t two;
        __builtin_memcpy(&two, from, sizeof two);
        return Short8((RawShort8)RawInt4{two, 0, 0, 0});
    }
    [[gnu::always_inline]] inline std::int16_t operator[](int lane) const { return raw[lane]; }

    /// The caller sees to it that no sum overflows.
    [[gnu::always_inline]] inline friend Short8 operator+(Short8 const& a, Short8 const& b) {
        return Short8(a.raw + b.raw);
    }
    [[gnu::always_inline]] inline friend Short8 operator>(Short8 const& a, Short8 const& b) {
        return Short8((RawShort8)(a.raw > b.raw));
    }
    [[gnu::always_inline]] inline friend Short8 operator&(Short8 const& a, Short8 const& b) {
        return Short8(a.raw & b.raw);
    }
    [[gnu::always_inline]] inline friend Short8 operator|(Short8 const& a, Short8 const& b) {
        return Short8(a.raw | b.raw);
    }
    [[gnu::always_inline]] inline friend Short8 Min(Short8 const& a, Short8 const& b) {
        return Short8(a.raw < b.raw ? a.raw : b.raw);
    }
    [[gnu::always_inline]] inline friend Short8 Max(Short8 const& a, Short8 const& b) {
        return Short8(a.raw > b.raw ? a.raw : b.raw);
    }
};

template <int kLane> [[gnu::always_inline]] inline std::int16_t Lane(Short8 const& a) {
    return a.raw[kLane];
}
/// Returns the upper half of each product: the product over 2^16, rounded down.
[[gnu::always_inline]] inline Short8 MultiplyHigh(Short8 const& a, Short8 const& b) {
    return Short8(RawMultiplyHigh(a.raw, b.raw));
}
/// Returns a number whose bits 0 to 7 are the lanes of `low`, and bits 8 to 15 those of `high`.
/// Both are outcomes of comparisons.
[[gnu::always_inline]] inline unsigned BitsOfTwo(Short8 const& low, Short8 const& high) {
    return RawBitsOfTwo(low.raw, high.raw);
}

} // namespace trammel_detail

#endif

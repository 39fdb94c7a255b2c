// SPDX-License-Identifier: MIT

// Integers of 128 bits: Int128 and UInt128. Not installed.
//
// GCC and Clang have them on 64-bit processors and for WebAssembly. Elsewhere PairInt128 and
// PairUInt128 take their place, which are written here and give the same numbers. Results that do
// not fit lose their upper bits, as two's complement has it.

#ifndef TRAMMEL_INT128_P_H
#define TRAMMEL_INT128_P_H

#include <cstdint>

namespace trammel_detail {

/// An unsigned integer of two halves.
struct PairUInt128 {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    constexpr PairUInt128() = default;
    constexpr PairUInt128(std::uint64_t value) : low(value) {}
    constexpr PairUInt128(std::uint64_t upper, std::uint64_t lower) : high(upper), low(lower) {}

    constexpr explicit operator std::uint64_t() const { return low; }
    constexpr explicit operator std::int64_t() const { return static_cast<std::int64_t>(low); }

    friend constexpr PairUInt128 operator+(PairUInt128 a, PairUInt128 b) {
        std::uint64_t const sum = a.low + b.low;
        return {a.high + b.high + (sum < a.low ? 1U : 0U), sum};
    }
    friend constexpr PairUInt128 operator-(PairUInt128 a, PairUInt128 b) {
        return {a.high - b.high - (a.low < b.low ? 1U : 0U), a.low - b.low};
    }
    friend constexpr PairUInt128 operator*(PairUInt128 a, PairUInt128 b) {
        constexpr std::uint64_t kHalf = 0xFFFFFFFF;
        std::uint64_t const aHigh = a.low >> 32;
        std::uint64_t const bHigh = b.low >> 32;
        std::uint64_t const bottom = (a.low & kHalf) * (b.low & kHalf);
        std::uint64_t const one = aHigh * (b.low & kHalf) + (bottom >> 32);
        std::uint64_t const other = (a.low & kHalf) * bHigh + (one & kHalf);
        return {aHigh * bHigh + (one >> 32) + (other >> 32) + a.high * b.low + a.low * b.high,
                (other << 32) | (bottom & kHalf)};
    }
    /// The quotient of division with remainder, bit by bit. `b` is not 0.
    friend constexpr PairUInt128 operator/(PairUInt128 a, PairUInt128 b) {
        PairUInt128 quotient;
        PairUInt128 rest;
        for (int i = 127; i >= 0; --i) {
            bool const carries = rest.high >> 63 != 0;
            rest = (rest << 1) + ((a >> i) & PairUInt128(1));
            quotient = quotient << 1;
            if (carries || !(rest < b)) {
                rest = rest - b;
                quotient.low |= 1;
            }
        }
        return quotient;
    }
    friend constexpr PairUInt128 operator&(PairUInt128 a, PairUInt128 b) {
        return {a.high & b.high, a.low & b.low};
    }
    /// Shifts take from 0 to 127 bits.
    friend constexpr PairUInt128 operator<<(PairUInt128 a, int bits) {
        if (bits >= 64) {
            return {a.low << (bits - 64), 0};
        }
        return bits == 0 ? a
                         : PairUInt128((a.high << bits) | (a.low >> (64 - bits)), a.low << bits);
    }
    friend constexpr PairUInt128 operator>>(PairUInt128 a, int bits) {
        if (bits >= 64) {
            return {0, a.high >> (bits - 64)};
        }
        return bits == 0 ? a
                         : PairUInt128(a.high >> bits, (a.low >> bits) | (a.high << (64 - bits)));
    }
    constexpr PairUInt128& operator>>=(int bits) { return *this = *this >> bits; }

    friend constexpr bool operator==(PairUInt128 a, PairUInt128 b) {
        return a.high == b.high && a.low == b.low;
    }
    friend constexpr bool operator!=(PairUInt128 a, PairUInt128 b) { return !(a == b); }
    friend constexpr bool operator<(PairUInt128 a, PairUInt128 b) {
        return a.high != b.high ? a.high < b.high : a.low < b.low;
    }
    friend constexpr bool operator>(PairUInt128 a, PairUInt128 b) { return b < a; }
};

/// A signed integer in two's complement.
struct PairInt128 {
    PairUInt128 bits;

    constexpr PairInt128() = default;
    constexpr PairInt128(std::int64_t value)
        : bits(value < 0 ? ~std::uint64_t{0} : 0, static_cast<std::uint64_t>(value)) {}
    constexpr explicit PairInt128(PairUInt128 value) : bits(value) {}

    constexpr bool IsNegative() const { return bits.high >> 63 != 0; }
    constexpr explicit operator PairUInt128() const { return bits; }
    constexpr explicit operator std::int64_t() const { return static_cast<std::int64_t>(bits); }
    /// Rounds to nearest.
    explicit operator double() const {
        PairUInt128 size = IsNegative() ? PairUInt128() - bits : bits;
        double scale = 1.0;
        if (size.high != 0) {
            // The upper 64 bits round as the whole does, with a bit that tells whether there is
            // more.
            int const drop = 64 - __builtin_clzll(size.high);
            PairUInt128 const kept = size >> drop;
            size = (kept << drop) == size ? kept : PairUInt128(kept.low | 1);
            scale = static_cast<double>(std::uint64_t{1} << (drop - 1)) * 2.0;
        }
        double const value = static_cast<double>(size.low) * scale;
        return IsNegative() ? -value : value;
    }

    constexpr PairInt128 operator-() const { return PairInt128(PairUInt128() - bits); }
    friend constexpr PairInt128 operator+(PairInt128 a, PairInt128 b) {
        return PairInt128(a.bits + b.bits);
    }
    friend constexpr PairInt128 operator-(PairInt128 a, PairInt128 b) {
        return PairInt128(a.bits - b.bits);
    }
    friend constexpr PairInt128 operator*(PairInt128 a, PairInt128 b) {
        return PairInt128(a.bits * b.bits);
    }
    friend constexpr PairInt128 operator<<(PairInt128 a, int count) {
        return PairInt128(a.bits << count);
    }
    /// Rounds down.
    friend constexpr PairInt128 operator>>(PairInt128 a, int count) {
        PairUInt128 const ones(~std::uint64_t{0}, ~std::uint64_t{0});
        return PairInt128(a.IsNegative() ? ones - ((ones - a.bits) >> count) : a.bits >> count);
    }
    friend constexpr bool operator==(PairInt128 a, PairInt128 b) { return a.bits == b.bits; }
    friend constexpr bool operator!=(PairInt128 a, PairInt128 b) { return a.bits != b.bits; }
    friend constexpr bool operator<(PairInt128 a, PairInt128 b) {
        return a.IsNegative() != b.IsNegative() ? a.IsNegative() : a.bits < b.bits;
    }
    friend constexpr bool operator>(PairInt128 a, PairInt128 b) { return b < a; }
    friend constexpr bool operator<=(PairInt128 a, PairInt128 b) { return !(b < a); }
    friend constexpr bool operator>=(PairInt128 a, PairInt128 b) { return !(a < b); }
};

#ifdef __SIZEOF_INT128__
__extension__ typedef __int128 Int128;
__extension__ typedef unsigned __int128 UInt128;
#else
typedef PairInt128 Int128;
typedef PairUInt128 UInt128;
#endif

} // namespace trammel_detail

#endif

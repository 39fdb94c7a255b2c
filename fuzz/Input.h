// SPDX-License-Identifier: MIT

// Reads bytes as the numbers, points and texts that the targets work on. Any bytes are an input;
// past their end it reads zeros.

#ifndef TRAMMEL_FUZZ_INPUT_H
#define TRAMMEL_FUZZ_INPUT_H

#include "TPoint.h"
#include "TRect.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

namespace fuzz {

typedef TPoint<double> Pt;
typedef TRect<double> Box;

class Input {
public:
    Input(std::uint8_t const* bytes, std::size_t size) : mNext(bytes), mLeft(size) {}

    bool Empty() const { return mLeft == 0; }
    std::uint8_t Byte() {
        if (mLeft == 0) {
            return 0;
        }
        --mLeft;
        return *mNext++;
    }
    bool Flag() { return (Byte() & 1U) != 0; }
    /// In [lo, hi], which are less than 256 apart.
    int Int(int lo, int hi) { return lo + Byte() % (hi - lo + 1); }

    /// A double of any kind: any bits, a special value, a small whole number or a fraction. Shapes
    /// are hard where things coincide, so it may also be the last number, or one just beside it.
    double Number() {
        switch (Byte() % 8) {
        case 0:
            mLast = Any<double>();
            break;
        case 1:
            mLast = Special();
            break;
        case 2:
            mLast = Any<std::int16_t>() / 256.0;
            break;
        case 3:
            mLast = Any<std::int32_t>() * 0x1p-20;
            break;
        case 4:
            mLast = std::nextafter(mLast, Flag() ? kInf : -kInf);
            break;
        case 5:
            break;
        default:
            mLast = Any<std::int8_t>();
            break;
        }
        return mLast;
    }
    /// A tolerance for a shape of `size` units: mostly at least some thousandths of the size. One
    /// in sixteen is of any kind; the finest tolerances take the longest.
    double Tolerance(double size) {
        bool const any = Int(0, 15) == 15;
        double const tolerance = std::abs(Number());
        double const least = std::isnan(size) ? kInf : size * 0x1p-8;
        return any || tolerance > least ? tolerance : least;
    }
    Pt Point() {
        double const h = Number();
        return Pt(h, Number());
    }
    Box Rect() {
        Pt const topLeft = Point();
        return Box(topLeft, Point());
    }
    /// Up to `most` points.
    std::vector<Pt> Points(int most) {
        std::vector<Pt> points(static_cast<std::size_t>(Int(0, most)));
        for (Pt& p : points) {
            p = Point();
        }
        return points;
    }
    /// The bytes that nothing has read yet.
    std::string_view Rest() {
        std::string_view const rest(reinterpret_cast<char const*>(mNext), mLeft);
        mLeft = 0;
        return rest;
    }

private:
    static constexpr double kInf = std::numeric_limits<double>::infinity();

    template <class T> T Any() {
        std::array<std::uint8_t, sizeof(T)> bytes;
        for (std::uint8_t& byte : bytes) {
            byte = Byte();
        }
        T value;
        std::memcpy(&value, bytes.data(), sizeof value);
        return value;
    }
    double Special() {
        typedef std::numeric_limits<double> Limits;
        constexpr std::array<double, 16> kSpecials = {0.0,
                                                      -0.0,
                                                      Limits::quiet_NaN(),
                                                      kInf,
                                                      -kInf,
                                                      Limits::max(),
                                                      -Limits::max(),
                                                      Limits::min(),
                                                      Limits::denorm_min(),
                                                      1e-160,
                                                      1e154,
                                                      -1e300,
                                                      0x1p53,
                                                      0x1p62,
                                                      1e11,
                                                      -2147483648.0};
        return kSpecials[Byte() % kSpecials.size()];
    }

    std::uint8_t const* mNext;
    std::size_t mLeft;
    double mLast = 0.0;
};

} // namespace fuzz

#endif

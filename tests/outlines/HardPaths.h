// SPDX-License-Identifier: MIT

// Paths that are hard to stroke, by seeded random numbers.

#ifndef TRAMMEL_HARDPATHS_H
#define TRAMMEL_HARDPATHS_H

#include "CPath.h"
#include "TPoint.h"

#include <cmath>
#include <cstdint>
#include <random>

namespace trammel_test {

/// Random numbers, the same in every run.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : mEngine(seed) {}
    double Unit() { return static_cast<double>(mEngine() >> 11) * 0x1p-53; }
    double Between(double low, double high) { return low + (high - low) * Unit(); }
    /// A power of ten with an exponent between two.
    double Decade(double low, double high) { return std::pow(10.0, Between(low, high)); }
    TPoint<double> Point() {
        double const h = Between(-1.0, 1.0);
        return TPoint<double>(h, Between(-1.0, 1.0));
    }
    bool Coin() { return mEngine() % 2 == 0; }
    int Below(int n) { return static_cast<int>(mEngine() % static_cast<std::uint64_t>(n)); }

private:
    std::mt19937_64 mEngine;
};

constexpr int kHardKinds = 10; ///< of segments

/// Appends a segment of a kind that is hard to stroke.
inline void AppendHard(CPath& path, int kind, Dice& dice) {
    TPoint<double> const from = path.CurrentPoint();
    TPoint<double> const to = dice.Point();
    switch (kind) {
    case 0: // corners
        path.LineTo(to);
        return;
    case 1: // any curve
        path.CurveTo(dice.Point(), dice.Point(), to);
        return;
    case 2: { // tight turns and loops narrower than the stroke
        TPoint<double> const middle = dice.Point();
        double const size = dice.Decade(-5.0, 0.0);
        path.CurveTo(middle + TPoint<double>(size, size), middle - TPoint<double>(size, size), to);
        return;
    }
    case 3: { // an exact cusp
        TPoint<double> const a = dice.Point();
        TPoint<double> const b = dice.Point();
        path.CurveTo(from + a + b, from + b, from + a);
        return;
    }
    case 4: { // curves that double back on a line
        TPoint<double> const d = dice.Point();
        path.CurveTo(from + d * dice.Between(-2.0, 2.0), from + d * dice.Between(-2.0, 2.0),
                     from + d * dice.Between(-1.0, 1.0));
        return;
    }
    case 5: // retracted handles
        path.CurveTo(dice.Coin() ? from : dice.Point(), dice.Coin() ? to : dice.Point(), to);
        return;
    case 6: // lines that double back
        path.LineTo(path.mPts.size() % 2 == 0 ? path.mPts[path.mPts.size() - 2] : to);
        return;
    case 7: { // details smaller than the pen
        double const size = dice.Decade(-6.0, -1.0);
        path.CurveTo(from + dice.Point() * size, from + dice.Point() * size,
                     from + dice.Point() * size);
        return;
    }
    case 8: // smooth joints
        path.CurveTo(path.mPts.size() < 2 ? to : from * 2.0 - path.mPts[path.mPts.size() - 2],
                     dice.Point(), to);
        return;
    default: { // nearly on a line
        TPoint<double> const d = dice.Point();
        double const off = dice.Decade(-9.0, -2.0);
        auto const near = [&](double most) {
            return from + d * dice.Between(-most, most) + dice.Point() * off;
        };
        TPoint<double> const c1 = near(2.0);
        TPoint<double> const c2 = near(2.0);
        path.CurveTo(c1, c2, near(1.0));
        return;
    }
    }
}

/// A path of one or two subpaths, open or closed, and a width for its stroke.
struct HardPath {
    CPath path;
    double width;

    /// The path is of any size, or within some units if it is not scaled.
    HardPath(int kind, Dice& dice, bool isScaled = true) : width(dice.Decade(-2.0, 0.7)) {
        int const subpaths = 1 + dice.Below(2);
        for (int i = 0; i < subpaths; ++i) {
            path.MoveTo(dice.Point());
            int const segments = 1 + dice.Below(4);
            for (int k = 0; k < segments; ++k) {
                AppendHard(path, kind, dice);
            }
            if (dice.Coin()) {
                path.ClosePath();
            }
        }
        if (isScaled && dice.Below(3) == 0) {
            double const scale = dice.Decade(-200.0, 200.0);
            for (TPoint<double>& p : path.mPts) {
                p *= scale;
            }
            path.InvalBounds();
            width *= scale;
        }
    }
};

} // namespace trammel_test

#endif

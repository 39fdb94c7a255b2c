// SPDX-License-Identifier: MIT

#include "ArcChain_p.h"

#include "PointMath_p.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Splits at the farthest vertex are lopsided at times. So many levels for each halving of the
/// number of vertices are allowed, and splits in the middle follow.
constexpr int kLevels = 2;
/// A distance of a point from a segment is rounded by less than that, beside their extent.
constexpr double kRounding = 0x1p-48;
/// Differences whose binary exponent is beyond that are multiplied by a power of two ...
constexpr int kMostExponent = 150;
/// ... of this exponent at most, so that it has an inverse.
constexpr int kMostScale = 1000;

} // namespace

ArcChain::ArcChain(std::vector<Pt> const& vertices, std::vector<std::size_t> const& ids,
                   double tolerance)
    : mVertices(&vertices), mIds(&ids), mTolerance(tolerance) {
    std::size_t const last = ids.size() - 1;
    ArcChord const whole = ChordOf(0, last);
    if (ids.front() == ids.back() && last > 1) {
        Append(0, whole.middle, mChords);
        Append(whole.middle, last, mChords);
    } else {
        Append(0, last, mChords);
    }
}

void ArcChain::Append(std::size_t from, std::size_t to, std::vector<ArcChord>& chords) const {
    struct Open {
        ArcChord chord;
        int level;
    };
    int most = kLevels;
    for (std::size_t n = to - from; n > 0; n /= 2) {
        most += kLevels;
    }
    std::vector<Open> open = {{ChordOf(from, to), 0}};
    while (!open.empty()) {
        ArcChord const chord = open.back().chord;
        int const level = open.back().level + 1;
        open.pop_back();
        if (chord.IsEdge() || chord.distance <= mTolerance) {
            chords.push_back(chord);
            continue;
        }
        std::size_t const split =
            level > most ? chord.from + (chord.to - chord.from) / 2 : chord.middle;
        open.push_back({ChordOf(split, chord.to), level});
        open.push_back({ChordOf(chord.from, split), level});
    }
}

void ArcChain::Refine(std::vector<char> const& isMarked, bool whole) {
    std::vector<ArcChord> chords;
    for (std::size_t k = 0; k < mChords.size(); ++k) {
        ArcChord const& chord = mChords[k];
        if (isMarked[k] == 0 || chord.IsEdge()) {
            chords.push_back(chord);
        } else if (whole) {
            for (std::size_t i = chord.from; i < chord.to; ++i) {
                chords.push_back({i, i + 1, 0.0, i});
            }
        } else { // a part may depart farther from its chord than the whole does
            Append(chord.from, chord.middle, chords);
            Append(chord.middle, chord.to, chords);
        }
    }
    mChords = std::move(chords);
}

ArcChord ArcChain::ChordOf(std::size_t from, std::size_t to) const {
    if (to == from + 1) {
        return {from, to, 0.0, from};
    }
    double scale = 1.0;
    double extent = ExtentOf(from, to, scale);
    if (!std::isfinite(extent)) {
        scale = 0x1p-4;
        extent = ExtentOf(from, to, scale);
    }
    // Squares of differences are to be numbers.
    double unit = 1.0;
    if (extent > 0.0 && std::abs(std::ilogb(extent)) > kMostExponent) {
        unit = std::ldexp(1.0, std::min(std::max(-std::ilogb(extent), -kMostScale), kMostScale));
    }
    Pt const a = At(from) * scale;
    Pt const d = (At(to) * scale - a) * unit;
    double const square = Square(d);
    double const inverse = square > 0.0 ? 1.0 / square : 0.0;
    double greatest = -1.0;
    double reach = square;
    std::size_t middle = from + 1;
    for (std::size_t i = from + 1; i < to; ++i) {
        Pt const p = (At(i) * scale - a) * unit;
        double const t = std::min(std::max(Dot(p, d) * inverse, 0.0), 1.0);
        double const here = Square(p - d * t);
        reach = std::max(reach, Square(p));
        if (here > greatest) {
            greatest = here;
            middle = i;
        }
    }
    double const distance = std::sqrt(greatest) + std::sqrt(reach) * kRounding;
    return {from, to, distance / unit / scale, middle};
}

double ArcChain::ExtentOf(std::size_t from, std::size_t to, double scale) const {
    Pt const a = At(from) * scale;
    double extent = 0.0;
    for (std::size_t i = from + 1; i <= to; ++i) {
        Pt const p = At(i) * scale - a;
        extent = std::max({extent, std::abs(p.h), std::abs(p.v)});
    }
    return extent;
}

} // namespace trammel_detail

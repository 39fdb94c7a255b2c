// SPDX-License-Identifier: MIT

#include "StrokeShape_p.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

double Length(Pt const& p) { return std::sqrt(Square(p)); }

/// Points closer together count as one where corners are sought, in tolerances.
constexpr double kCornerStep = 0.5;
/// Where a stroke stays about a place, corners are sought over so many points of the reduced
/// stroke.
constexpr std::size_t kMostCornerSteps = 32;
/// Straight runs are within so many tolerances of their chord...
constexpr double kStraightness = 0.25;
/// ... longer than so many ...
constexpr double kShortestStraight = 16.0;
/// ... and so many times as long as their neighbours.
constexpr double kStraightRatio = 4.0;

/// The points of a stroke that are some way from each other.
class ReducedStroke {
public:
    ReducedStroke(StrokePoints const& stroke, double step, double reach, bool closed)
        : mStroke(stroke), mReach(reach), mClosed(closed) {
        std::size_t const count = stroke.at.size();
        mKept.resize(count);
        mKept[0] = 0;
        std::size_t kept = 1;
        Pt last = stroke.at[0];
        for (std::size_t i = 1; i < count; ++i) {
            if (Square(stroke.at[i] - last) >= step * step) {
                mKept[kept++] = i;
                last = stroke.at[i];
            }
        }
        mKept.resize(kept);
        if (closed && kept > 2) {
            mKept.back() = count - 1;
        }
        // The lengths are sums, each term of which may be off by its rounding.
        mWithin =
            reach * (1.0 - 0x1p-20) - stroke.length.back() * static_cast<double>(count) * 0x1p-51;
    }
    std::size_t Count() const { return mKept.size(); }
    std::size_t Original(std::size_t k) const { return mKept[k]; }
    Pt const& At(std::size_t k) const { return mStroke.at[mKept[k]]; }

    /// The direction from the point toward the first point behind it that is out of reach, or
    /// before it; as long as their distance. It is null where there is no other point.
    Pt Away(std::size_t k, bool forward) const {
        std::size_t none = k;
        return forward ? Ahead(k, none) : Behind(k, none);
    }
    /// The same for points k that only grow: `last` remembers up to where points are within reach,
    /// because the stroke up to them is shorter.
    Pt Ahead(std::size_t k, std::size_t& last) const {
        last = std::max(last, k);
        double const most = LengthAt(k) + mWithin;
        std::size_t const highest = std::min(k + kMostCornerSteps, mKept.size() - 1);
        while (last < highest && LengthAt(last + 1) < most) {
            ++last;
        }
        return Search(k, last, last - k, true);
    }
    Pt Behind(std::size_t k, std::size_t& first) const {
        double const least = LengthAt(k) - mWithin;
        std::size_t const lowest = k > kMostCornerSteps ? k - kMostCornerSteps : 0;
        first = std::max(first, lowest);
        while (first < k && LengthAt(first) <= least) {
            ++first;
        }
        return Search(k, first, k - first, false);
    }

private:
    /// The length of the stroke up to the point.
    double LengthAt(std::size_t k) const { return mStroke.length[mKept[k]]; }

    /// Looks for the first point out of reach from `j` on, which is `steps` away from `k`.
    Pt Search(std::size_t k, std::size_t j, std::size_t steps, bool forward) const {
        Pt const p = At(k);
        Pt away = At(j) - p;
        for (; steps < kMostCornerSteps; ++steps) {
            if (j == (forward ? mKept.size() - 1 : 0)) {
                if (!mClosed || mKept.size() == 1) {
                    break;
                }
                j = forward ? 0 : mKept.size() - 1; // the same place
            }
            j = forward ? j + 1 : j - 1;
            away = At(j) - p;
            if (Square(away) >= mReach * mReach) {
                break;
            }
        }
        return away;
    }

    StrokePoints const& mStroke;
    double mReach;
    double mWithin; ///< a stroke of less length than that stays within reach
    bool mClosed;
    std::vector<std::size_t> mKept;
};

/// The cosine of the turn with its sign, squared; 2, no turn at all, where a direction is missing.
double SquareOfCosine(Pt const& in, Pt const& out) {
    double const both = Square(in) * Square(out);
    double const dot = Dot(in, out);
    return both > 0.0 ? dot * std::abs(dot) / both : 2.0;
}

/// Solves the equations of least squares, which are symmetric and positive, for h and v at once.
/// Returns false where they tell too little.
template <std::size_t kSize>
bool Solve(std::array<std::array<double, kSize>, kSize>& m, std::array<Pt, kSize>& b,
           std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
        double const pivot = m[i][i];
        if (!(pivot > 1e-12)) {
            return false;
        }
        for (std::size_t j = i + 1; j < size; ++j) {
            double const factor = m[j][i] / pivot;
            for (std::size_t k = i; k < size; ++k) {
                m[j][k] -= factor * m[i][k];
            }
            b[j] -= b[i] * factor;
        }
    }
    for (std::size_t i = size; i-- > 0;) {
        for (std::size_t k = i + 1; k < size; ++k) {
            b[i] -= b[k] * m[i][k];
        }
        b[i] /= m[i][i];
    }
    return true;
}

} // namespace

std::vector<std::size_t> FindCorners(StrokePoints const& stroke, double tolerance, double cosine,
                                     bool closed, bool& turnsAtStart) {
    double const reach = tolerance * kCornerReach;
    ReducedStroke const reduced(stroke, tolerance * kCornerStep, reach, closed);
    std::vector<std::size_t> corners;
    double sharpest = 2.0; // of the last corner
    std::size_t last = 0;
    // Rounding turns no exact reversal into less than a half turn.
    double const limit = cosine * std::abs(cosine) + 0x1p-50;
    turnsAtStart =
        closed && SquareOfCosine(-reduced.Away(0, false), reduced.Away(0, true)) <= limit;
    std::size_t first = 0;
    std::size_t end = 0;
    for (std::size_t k = 1; k + 1 < reduced.Count(); ++k) {
        Pt const in = -reduced.Behind(k, first);
        Pt const out = reduced.Ahead(k, end);
        double const turn = SquareOfCosine(in, out);
        if (!(turn <= limit)) {
            continue;
        }
        // The outermost of the points that the reduced one stands for
        Pt const inside = out / Length(out) - in / Length(in);
        std::size_t corner = reduced.Original(k);
        double least = 0.0;
        for (std::size_t i = reduced.Original(k - 1) + 1; i < reduced.Original(k + 1); ++i) {
            double const depth = Dot(stroke.at[i] - reduced.At(k), inside);
            if (depth < least) {
                least = depth;
                corner = i;
            }
        }
        double const at = stroke.length[corner];
        if (turnsAtStart && std::min(at, stroke.length.back() - at) <= reach) {
            continue; // the start is the corner
        }
        bool const near = !corners.empty() && at - stroke.length[last] <= reach;
        if (near && turn >= sharpest) {
            continue;
        }
        if (near) {
            corners.pop_back();
        }
        if (corners.empty() || corner > corners.back()) {
            corners.push_back(corner);
            last = corner;
            sharpest = turn;
        }
    }
    return corners;
}

void FindStraightRuns(StrokePoints const& stroke, std::size_t from, std::size_t to,
                      double tolerance, std::vector<StraightRun>& out) {
    double const wide = tolerance * kStraightness;
    std::size_t const first = out.size();
    auto const lengthOf = [&](StraightRun const& run) {
        return Length(stroke.at[run.to] - stroke.at[run.from]);
    };
    // Runs one after the other, each as long as the directions in which a line passes all points
    // allow
    for (std::size_t i = from; i < to;) {
        Pt const p = stroke.at[i];
        std::size_t end = i + 1;
        Pt low; // the cone of directions, from `low` toward `high`
        Pt high;
        bool open = true; // every direction will do
        for (std::size_t j = i + 1; j <= to; ++j) {
            Pt const d = stroke.at[j] - p;
            double const square = Square(d);
            if (square > wide * wide) {
                if (!open && (Cross(low, d) < 0.0 || Cross(d, high) < 0.0)) {
                    break;
                }
                double const along = std::sqrt(square - wide * wide);
                Pt const lowHere(d.h * along + d.v * wide, d.v * along - d.h * wide);
                Pt const highHere(d.h * along - d.v * wide, d.v * along + d.h * wide);
                if (open || Cross(low, lowHere) > 0.0) {
                    low = lowHere;
                }
                if (open || Cross(highHere, high) > 0.0) {
                    high = highHere;
                }
                open = false;
            }
            end = j;
        }
        out.push_back({i, end});
        i = end;
    }
    // Which of them stand out among two neighbours on each side. One would be too few: the steps of
    // pixels are long and short by turns.
    std::size_t kept = first;
    std::array<double, 2> before = {0.0, 0.0};
    for (std::size_t k = first; k < out.size(); ++k) {
        StraightRun const run = out[k];
        double const length = lengthOf(run);
        double neighbours = std::max(before[0], before[1]);
        for (std::size_t j = k + 1; j < std::min(k + 3, out.size()); ++j) {
            neighbours = std::max(neighbours, lengthOf(out[j]));
        }
        if (length > tolerance * kShortestStraight && length > kStraightRatio * neighbours) {
            out[kept++] = run;
        }
        before = {before[1], length};
    }
    out.resize(kept);
}

Course CourseAt(StrokePoints const& stroke, std::size_t i, std::ptrdiff_t low, std::ptrdiff_t high,
                bool through) {
    constexpr std::size_t kSize = 4;
    constexpr std::ptrdiff_t kSide = 8; // points to a side
    auto const count = static_cast<std::ptrdiff_t>(stroke.at.size());
    auto const here = static_cast<std::ptrdiff_t>(i);
    Pt const p = stroke.at[i];
    double const total = stroke.length.back();
    double const at = stroke.length[i];
    auto const lengthTo = [&](std::ptrdiff_t k) {
        double const shift = k < 0 ? -total : k >= count ? total : 0.0;
        std::ptrdiff_t const number = k < 0 ? k + count - 1 : k >= count ? k - count + 1 : k;
        return stroke.length[static_cast<std::size_t>(number)] + shift - at;
    };
    double const scale = 1.0 / std::max(-lengthTo(low), lengthTo(high));

    Pt lowPowers;
    Pt middlePowers;
    Pt highPowers;
    std::array<Pt, kSize> sum{};
    int points = 1; // the one here adds nothing else
    for (int side = 0; side < 2; ++side) {
        std::ptrdiff_t const far = (side == 0 ? low : high) - here;
        std::ptrdiff_t const many = std::min(far < 0 ? -far : far, kSide);
        for (std::ptrdiff_t k = 1; k <= many; ++k) {
            std::ptrdiff_t number = here + (many == kSide ? far * k / kSide : far < 0 ? -k : k);
            double shift = -at;
            if (number < 0) {
                number += count - 1;
                shift = -total - at;
            } else if (number >= count) {
                number -= count - 1;
                shift = total - at;
            }
            Pt const q = stroke.at[static_cast<std::size_t>(number)] - p;
            double const s = (stroke.length[static_cast<std::size_t>(number)] + shift) * scale;
            double const s2 = s * s;
            Pt const odd(s, s2); // powers in pairs, which processors take at once
            Pt const middle = odd * s2;
            lowPowers += odd;
            middlePowers += middle;
            highPowers += middle * s2;
            sum[0] += q;
            sum[1] += q * s;
            sum[2] += q * s2;
            sum[3] += q * middle.h;
        }
        points += static_cast<int>(many);
    }
    std::array<double, 7> const power = {static_cast<double>(points),
                                         lowPowers.h,
                                         lowPowers.v,
                                         middlePowers.h,
                                         middlePowers.v,
                                         highPowers.h,
                                         highPowers.v};
    std::size_t const lowest = through ? 1 : 0;
    std::size_t const highest = points >= 7 ? 3 : points >= 5 ? 2 : 1;
    std::size_t const size = highest - lowest + 1;
    std::array<std::array<double, kSize>, kSize> m;
    std::array<Pt, kSize> b;
    for (std::size_t r = 0; r < size; ++r) {
        for (std::size_t c = 0; c < size; ++c) {
            m[r][c] = power[r + c + 2 * lowest];
        }
        b[r] = sum[r + lowest];
    }
    if (points < 2 || !Solve<kSize>(m, b, size)) {
        return {p, Pt()};
    }
    Pt const direction = b[1 - lowest];
    double const length = Length(direction);
    return {through ? p : p + b[0], length > 0.0 ? direction / length : Pt()};
}

} // namespace trammel_detail

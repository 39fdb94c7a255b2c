// SPDX-License-Identifier: MIT

// A judge of regions that outlines bound: winding numbers by solving for the crossings with a ray,
// and distances from outlines by searching, both in long double.

#ifndef TRAMMEL_OUTLINEJUDGE_H
#define TRAMMEL_OUTLINEJUDGE_H

#include "CPath.h"
#include "FillRule.h"
#include "PathSegments.h"
#include "TPoint.h"
#include "Tgcp.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>
#include <random>
#include <vector>

namespace trammel_test {

/// An outline whose subpaths all begin with a move, for many questions.
class OutlineJudge {
public:
    typedef long double Wide;
    typedef TPoint<double> Pt;

    explicit OutlineJudge(CPath const& path) {
        for (trammel::Subpath const& subpath : trammel::Subpaths(path)) {
            for (trammel::PathSegment const& s : subpath.ClosedSegments()) {
                Segment segment{{s.start.h, s.control1.h, s.control2.h, s.end.h},
                                {s.start.v, s.control1.v, s.control2.v, s.end.v},
                                s.IsCurve(),
                                0,
                                {},
                                {}};
                for (int i = 0; i < 3; ++i) {
                    segment.speed =
                        std::max(segment.speed, std::abs(segment.h[i + 1] - segment.h[i]) * 4);
                }
                segment.turns = Turns(segment.v);
                for (Wide const t : segment.turns) {
                    segment.heights.push_back(segment.At(segment.v, t));
                }
                segments.push_back(segment);
            }
        }
        FillBands();
    }

    /// Returns the winding number around `p`, which is not on the outline.
    int Winding(Pt const& p) const {
        int winding = 0;
        for (std::size_t const place : mBands[BandOf(p.v)]) {
            Segment const& s = segments[place];
            // Between its turns the segment crosses the ray's line once at most.
            for (std::size_t i = 0; i + 1 < s.turns.size(); ++i) {
                bool const before = s.heights[i] > p.v;
                bool const after = s.heights[i + 1] > p.v;
                if (before == after || p.h > *std::max_element(s.h, s.h + 4)) {
                    continue;
                }
                if (p.h < *std::min_element(s.h, s.h + 4)) { // the ray crosses it anywhere
                    winding += after ? 1 : -1;
                    continue;
                }
                Wide low = s.turns[i];
                Wide high = s.turns[i + 1];
                if (!s.curve) {
                    low = (p.v - s.v[0]) / (s.v[3] - s.v[0]);
                }
                for (int k = 0; k < 64 && s.curve; ++k) {
                    Wide const middle = (low + high) / 2;
                    ((s.At(s.v, middle) > p.v) == before ? low : high) = middle;
                    // Further steps do not move the crossing past the point.
                    if (k % 4 == 3 && std::abs(s.At(s.h, low) - p.h) > s.speed * (high - low)) {
                        break;
                    }
                }
                if (s.At(s.h, low) > p.h) {
                    winding += after ? 1 : -1;
                }
            }
        }
        return winding;
    }
    bool Holds(Pt const& p, trammel::FillRule rule) const {
        return trammel::IsInside(Winding(p), rule);
    }
    /// True when the outline is nearer to `p` than `distance`.
    bool IsNear(Pt const& p, Wide distance) const {
        std::size_t const last = BandOf(p.v + distance);
        for (std::size_t band = BandOf(p.v - distance); band <= last; ++band) {
            for (std::size_t const place : mBands[band]) {
                if (DistanceOf(segments[place], p, distance) < distance) {
                    return true;
                }
            }
        }
        return false;
    }
    /// Calls visit(point) for points beside the outline, `distance` away from it on either side.
    template <class Visit>
    void ForBeside(std::mt19937& random, int count, double distance, Visit&& visit) const {
        std::uniform_real_distribution<double> anywhere(0.0, 1.0);
        for (Segment const& s : segments) {
            for (int i = 0; i < count; ++i) {
                Wide const t = anywhere(random);
                Wide const dh = s.At(s.h, t + 1e-6L) - s.At(s.h, t - 1e-6L);
                Wide const dv = s.At(s.v, t + 1e-6L) - s.At(s.v, t - 1e-6L);
                Wide const length = std::hypot(dh, dv);
                if (length > 0) {
                    for (double const off : {distance, -distance}) {
                        visit(Pt(static_cast<double>(s.At(s.h, t) - dv / length * off),
                                 static_cast<double>(s.At(s.v, t) + dh / length * off)));
                    }
                }
            }
        }
    }

    struct Segment {
        Wide h[4];
        Wide v[4];
        bool curve;
        Wide speed;                ///< more than the greatest change of h per unit of the parameter
        std::vector<Wide> turns;   ///< 0, the parameters where v turns back, 1
        std::vector<Wide> heights; ///< v there

        Wide At(Wide const (&x)[4], Wide t) const {
            Wide const u = 1 - t;
            if (!curve) {
                return x[0] * u + x[3] * t;
            }
            return u * u * u * x[0] + 3 * u * u * t * x[1] + 3 * u * t * t * x[2] +
                   t * t * t * x[3];
        }
    };
    std::vector<Segment> segments;

private:
    /// The segments, by place, that reach into each band of v. Bands are of one height.
    std::vector<std::vector<std::size_t>> mBands;
    Wide mTop = 0;
    Wide mBandsPerUnit = 0;

    void FillBands() {
        Wide bottom = 0;
        for (Segment const& s : segments) {
            bool const first = &s == &segments.front();
            mTop = std::min(first ? s.v[0] : mTop, *std::min_element(s.v, s.v + 4));
            bottom = std::max(first ? s.v[0] : bottom, *std::max_element(s.v, s.v + 4));
        }
        mBands.resize(segments.size() / 2 + 1);
        mBandsPerUnit = bottom > mTop ? static_cast<Wide>(mBands.size()) / (bottom - mTop) : 0;
        for (std::size_t i = 0; i < segments.size(); ++i) {
            Wide const(&v)[4] = segments[i].v;
            std::size_t const last = BandOf(*std::max_element(v, v + 4));
            for (std::size_t b = BandOf(*std::min_element(v, v + 4)); b <= last; ++b) {
                mBands[b].push_back(i);
            }
        }
    }
    /// Returns the band of a height. The first and the last band go on without end.
    std::size_t BandOf(Wide v) const {
        Wide const last = static_cast<Wide>(mBands.size() - 1);
        Wide const band = (v - mTop) * mBandsPerUnit;
        return band > 0 ? static_cast<std::size_t>(std::min(band, last)) : 0;
    }
    static std::vector<Wide> Turns(Wide const (&x)[4]) {
        Wide const d0 = x[1] - x[0];
        Wide const d1 = x[2] - x[1];
        Wide const d2 = x[3] - x[2];
        Wide const a = d0 - 2 * d1 + d2;
        Wide const b = d1 - d0;
        Wide const root = std::sqrt(std::max<Wide>(b * b - a * d0, 0));
        Wide const q = -(b + std::copysign(root, b));
        std::vector<Wide> turns = {0, 1};
        for (Wide const t : {q / a, d0 / q}) {
            if (t > 0 && t < 1) {
                turns.push_back(t);
            }
        }
        std::sort(turns.begin(), turns.end());
        return turns;
    }
    static Wide DistanceOf(Segment const& s, Pt const& p, Wide enough) {
        Wide const outsideH = std::max({*std::min_element(s.h, s.h + 4) - p.h,
                                        p.h - *std::max_element(s.h, s.h + 4), Wide(0)});
        Wide const outsideV = std::max({*std::min_element(s.v, s.v + 4) - p.v,
                                        p.v - *std::max_element(s.v, s.v + 4), Wide(0)});
        if (std::max(outsideH, outsideV) >= enough) {
            return enough;
        }
        auto const distance = [&](Wide t) {
            return std::hypot(s.At(s.h, t) - p.h, s.At(s.v, t) - p.v);
        };
        constexpr int kSteps = 64;
        Wide steps[kSteps + 1];
        for (int i = 0; i <= kSteps; ++i) {
            steps[i] = distance(Wide(i) / kSteps);
        }
        // Beside a cusp the nearest sample need not be beside the nearest place.
        Wide nearest = std::min(steps[0], steps[kSteps]);
        for (int i = 0; i <= kSteps; ++i) {
            if ((i > 0 && steps[i - 1] < steps[i]) || (i < kSteps && steps[i + 1] < steps[i])) {
                continue;
            }
            Wide low = Wide(std::max(i - 1, 0)) / kSteps;
            Wide high = Wide(std::min(i + 1, kSteps)) / kSteps;
            for (int k = 0; k < 60; ++k) {
                Wide const third = (high - low) / 3;
                bool const before = distance(low + third) < distance(high - third);
                (before ? high : low) = before ? high - third : low + third;
            }
            nearest = std::min(nearest, distance(low));
        }
        return nearest;
    }
};

/// Returns the point of a segment.
inline TPoint<double> PointAt(trammel::PathSegment const& s, double t) {
    double const u = 1.0 - t;
    return s.IsCurve() ? s.start * (u * u * u) + s.control1 * (3.0 * u * u * t) +
                             s.control2 * (3.0 * u * t * t) + s.end * (t * t * t)
                       : s.start + (s.end - s.start) * t;
}

/// True when the operation of two regions has a point that is in them or not.
inline bool Wants(TPolyOp op, bool inA, bool inB) {
    switch (op) {
    case kPolyDifference:
        return inA && !inB;
    case kPolyIntersection:
        return inA && inB;
    case kPolyXor:
        return inA != inB;
    default:
        return inA || inB;
    }
}

/// Returns points of a grid over the operands, and points beside all outlines: by somewhat more
/// than `distance`, and by a thousandth of the size.
inline std::vector<TPoint<double>> SamplePoints(std::vector<OutlineJudge> const& operands,
                                                OutlineJudge const& result, double distance,
                                                double size) {
    std::vector<TPoint<double>> points;
    std::mt19937 random(20261122);
    long double low[2] = {0, 0};
    long double high[2] = {0, 0};
    bool first = true;
    for (OutlineJudge const& operand : operands) {
        for (OutlineJudge::Segment const& s : operand.segments) {
            for (int i = 0; i < 4; ++i) {
                low[0] = first ? s.h[i] : std::min(low[0], s.h[i]);
                high[0] = first ? s.h[i] : std::max(high[0], s.h[i]);
                low[1] = first ? s.v[i] : std::min(low[1], s.v[i]);
                high[1] = first ? s.v[i] : std::max(high[1], s.v[i]);
                first = false;
            }
        }
    }
    constexpr int kGrid = 12;
    for (int i = 0; i < kGrid; ++i) {
        for (int j = 0; j < kGrid; ++j) {
            points.emplace_back(
                static_cast<double>(low[0] + (high[0] - low[0]) * (i + 0.5317L) / kGrid),
                static_cast<double>(low[1] + (high[1] - low[1]) * (j + 0.4683L) / kGrid));
        }
    }
    auto const take = [&](TPoint<double> const& p) { points.push_back(p); };
    for (double const off : {1.5 * distance, 1e-3 * size}) {
        for (OutlineJudge const& operand : operands) {
            operand.ForBeside(random, 2, off, take);
        }
        result.ForBeside(random, result.segments.size() > 200 ? 0 : 2, off, take);
    }
    return points;
}

/// Counts the points of the sample at which a result is wrong. Points nearer to an operand's
/// outline than `distance` do not count. At the others `result` must hold the `wanted` points by
/// either rule, and no others.
inline int WrongPoints(std::vector<OutlineJudge> const& operands, OutlineJudge const& result,
                       double distance, double size,
                       std::function<bool(TPoint<double> const&)> const& wanted) {
    int wrong = 0;
    for (TPoint<double> const& p : SamplePoints(operands, result, distance, size)) {
        int const winding = result.Winding(p);
        bool const want = wanted(p);
        if ((want != (winding != 0) || want != (winding % 2 != 0)) &&
            std::none_of(operands.begin(), operands.end(),
                         [&](OutlineJudge const& o) { return o.IsNear(p, distance); })) {
            ++wrong;
        }
    }
    return wrong;
}

} // namespace trammel_test

#endif

// SPDX-License-Identifier: MIT

// Judges whether two outlines keep within a distance of each other, with nothing from the library
// but the values. Pieces of one outline are halved until each one is near one chord of the other
// outline. So the answer holds for every point, and not for samples only.

#ifndef TRAMMEL_HAUSDORFFJUDGE_H
#define TRAMMEL_HAUSDORFFJUDGE_H

#include "CPath.h"
#include "TPoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace hausdorff {

typedef TPoint<double> Pt;

struct Element {
    std::array<Pt, 4> p;
    bool isLine;
};
typedef std::vector<Element> Elements;

inline Element LineElement(Pt const& a, Pt const& b) {
    return {{a, a + (b - a) * (1.0 / 3.0), b - (b - a) * (1.0 / 3.0), b}, true};
}

inline double Apart(Pt const& a, Pt const& b) { return std::hypot(a.h - b.h, a.v - b.v); }

/// The segments of a path; a subpath that is a mere move is a point.
inline Elements ElementsOf(CPath const& path) {
    Elements elements;
    Pt start;
    Pt current;
    std::size_t next = 0;
    for (std::size_t i = 0; i < path.mCtls.size(); ++i) {
        switch (path.mCtls[i]) {
        case kPathMove:
            start = current = path.mPts[next++];
            break;
        case kPathLine:
            elements.push_back(LineElement(current, path.mPts[next]));
            current = path.mPts[next++];
            break;
        case kPathCurve:
            elements.push_back(
                {{current, path.mPts[next], path.mPts[next + 1], path.mPts[next + 2]}, false});
            current = path.mPts[next + 2];
            next += 3;
            break;
        default:
            elements.push_back(LineElement(current, start));
            current = start;
            break;
        }
    }
    return elements;
}

inline Elements ElementsOf(std::vector<Pt> const& points) {
    Elements elements;
    for (std::size_t i = 1; i < points.size(); ++i) {
        elements.push_back(LineElement(points[i - 1], points[i]));
    }
    return elements;
}

inline Pt At(std::array<Pt, 4> const& p, double t) {
    double const s = 1.0 - t;
    return p[0] * (s * s * s) + p[1] * (3 * s * s * t) + p[2] * (3 * s * t * t) +
           p[3] * (t * t * t);
}

struct Chord {
    Pt a;
    Pt b;
};

/// The distance of a point from a chord; as a function of the point it is convex.
inline double DistanceTo(Chord const& chord, Pt const& q) {
    Pt const d = chord.b - chord.a;
    Pt const r = q - chord.a;
    double const square = d.h * d.h + d.v * d.v;
    double const t = square > 0 ? (r.h * d.h + r.v * d.v) / square : 0.0;
    return Apart(q, chord.a + d * std::min(std::max(t, 0.0), 1.0));
}

/// Chords within `error` of the elements: a chord departs from its curve by an eighth of the second
/// derivative, at most.
inline std::vector<Chord> ChordsOf(Elements const& elements, double error) {
    constexpr double kMost = 4096;
    std::vector<Chord> chords;
    for (Element const& e : elements) {
        double const bend = 6.0 * std::max(Apart(e.p[0] + e.p[2], e.p[1] * 2.0),
                                           Apart(e.p[1] + e.p[3], e.p[2] * 2.0));
        double const n = e.isLine ? 1.0 : std::ceil(std::sqrt(bend / 8.0 / error));
        auto const count = static_cast<int>(n >= 1.0 ? std::min(n, kMost) : 1.0);
        Pt last = e.p[0];
        for (int i = 1; i <= count; ++i) {
            Pt const next = i < count ? At(e.p, static_cast<double>(i) / count) : e.p[3];
            chords.push_back({last, next});
            last = next;
        }
    }
    return chords;
}

/// True when every point of `a` is within `distance` of `b`, give or take a hundredth. A piece is,
/// where all of its control points are that near to one chord.
inline bool AllWithin(Elements const& a, Elements const& b, double distance) {
    double const error = distance / 256.0;
    double const limit = distance * (1.0 + 1.0 / 128.0) - error;
    std::vector<Chord> const chords = ChordsOf(b, error);
    std::size_t hint = 0;
    auto const isNear = [&](std::array<Pt, 4> const& p) {
        for (std::size_t n = 0; n < chords.size(); ++n) {
            std::size_t const i = (hint + n) % chords.size();
            Chord const& c = chords[i];
            bool all = std::min(c.a.h, c.b.h) - limit <= p[0].h &&
                       p[0].h <= std::max(c.a.h, c.b.h) + limit;
            for (std::size_t k = 0; k < 4 && all; ++k) {
                all = DistanceTo(c, p[k]) <= limit;
            }
            if (all) {
                hint = i;
                return true;
            }
        }
        return false;
    };
    std::vector<std::array<Pt, 4>> open;
    for (Element const& e : a) {
        bool const isShared = std::any_of(b.begin(), b.end(), [&](Element const& other) {
            return e.isLine == other.isLine && e.p == other.p;
        });
        if (!isShared) {
            open.push_back(e.p);
        }
        while (!open.empty()) {
            std::array<Pt, 4> const p = open.back();
            open.pop_back();
            if (isNear(p)) {
                continue;
            }
            double const length = Apart(p[0], p[1]) + Apart(p[1], p[2]) + Apart(p[2], p[3]);
            if (!(length > error)) { // too short to be halved
                return false;
            }
            Pt const ab = (p[0] + p[1]) * 0.5;
            Pt const bc = (p[1] + p[2]) * 0.5;
            Pt const cd = (p[2] + p[3]) * 0.5;
            Pt const abc = (ab + bc) * 0.5;
            Pt const bcd = (bc + cd) * 0.5;
            Pt const halved = (abc + bcd) * 0.5;
            open.push_back({halved, bcd, cd, p[3]});
            open.push_back({p[0], ab, abc, halved});
        }
    }
    return true;
}

/// True when the Hausdorff distance is at most `distance`, give or take a hundredth of it, 2^-32 of
/// the outlines' extent, and the rounding of their coordinates.
inline bool Keeps(Elements const& a, Elements const& b, double distance) {
    double greatest = 0.0;
    double extent = 0.0;
    for (Elements const* elements : {&a, &b}) {
        for (Element const& e : *elements) {
            for (Pt const& p : e.p) {
                greatest = std::max({greatest, std::abs(p.h), std::abs(p.v)});
                extent = std::max(extent, Apart(p, a[0].p[0]));
            }
        }
    }
    double const allowed = distance + extent * 0x1p-32 + greatest * 0x1p-48;
    return AllWithin(a, b, allowed) && AllWithin(b, a, allowed);
}

} // namespace hausdorff

#endif

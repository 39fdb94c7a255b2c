// SPDX-License-Identifier: MIT

// Outlines with their true lengths and distances, by quadrature and dense samples in long double.

#ifndef TRAMMEL_OUTLINETRUTH_H
#define TRAMMEL_OUTLINETRUTH_H

#include "CPath.h"
#include "CurveTruth.h"
#include "OutlineMeasure.h"
#include "PathWalk_p.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace trammel_test {

/// The true lengths of a path's segments, by quadrature in long double.
struct Truth {
    struct Segment {
        CBezier curve;
        bool isCurve;
        std::size_t element;
        std::size_t subpath;
        Wide before;
        Wide length;
        Wide polygon;
    };
    std::vector<Segment> segments;
    Wide total = 0;

    explicit Truth(CPath const& path) {
        std::size_t subpath = trammel::OutlineMeasure::kNone;
        char last = kPathClose;
        for (trammel_detail::SegmentCursor cursor(path); cursor.NextOrMove();) {
            subpath += cursor.Code() == kPathMove || last == kPathClose ? 1 : 0;
            last = cursor.Code();
            if (last == kPathMove) {
                continue;
            }
            bool const isCurve = cursor.IsCurve();
            TLine<double> const line = cursor.Line();
            CBezier const c =
                isCurve ? cursor.Curve() : CBezier(line.mStart, line.mStart, line.mEnd, line.mEnd);
            Wide const length =
                isCurve ? TrueLength(c) : Length(Widened(line.mEnd) - Widened(line.mStart));
            segments.push_back(
                {c, isCurve, cursor.Element(), subpath, total, length, PolygonLength(c)});
            total += length;
        }
    }
    Segment const& OfElement(std::size_t element) const {
        return *std::find_if(segments.begin(), segments.end(),
                             [&](Segment const& s) { return s.element == element; });
    }
};

/// A path of curves of all kinds and lines, with gaps and closes.
inline CPath AnyPath(Random& random, int count) {
    CPath path;
    path.MoveTo(random.Point(100));
    for (int i = 0; i < count; ++i) {
        switch (random.Integer(0, 9)) {
        case 0:
            path.ClosePath();
            path.MoveTo(random.Point(100));
            break;
        case 1:
            path.MoveTo(random.Point(100));
            break;
        case 2:
        case 3:
            path.LineTo(random.Point(100));
            break;
        default: {
            CBezier const c = AnyCurve(random);
            path.LineTo(c.P0);
            path.CurveTo(c.P1, c.P2, c.P3);
            break;
        }
        }
    }
    return path;
}

/// Expects that the length up to a place is `length`, to the bound that the class states.
inline void ExpectAtLength(Truth const& truth, trammel::OutlineMeasure::Place const& place,
                           double length) {
    ASSERT_NE(place.element, trammel::OutlineMeasure::kNone);
    Truth::Segment const& s = truth.OfElement(place.element);
    Wide const part = s.isCurve ? TrueLength(s.curve, 0, Widened(place.parameter))
                                : s.length * Widened(place.parameter);
    Wide const bound = std::ldexp(s.polygon, -42) + std::ldexp(truth.total, -51);
    EXPECT_LE(Off(length, s.before + part), bound) << Text(s.curve) << " at " << length;
    EXPECT_EQ(place.subpath, s.subpath);
    WidePt const point = s.isCurve
                             ? At(s.curve, Widened(place.parameter))
                             : Widened(s.curve.P0) + (Widened(s.curve.P3) - Widened(s.curve.P0)) *
                                                         Widened(place.parameter);
    EXPECT_LE(Length(point - Widened(place.point)), 2 * (Length(point) + 200) * 0x1p-50L);
}

/// The least distance of the outline, by dense samples in long double.
inline Wide OutlineDistance(Truth const& truth, TPoint<double> const& p) {
    Wide least = Widened(kInf);
    for (Truth::Segment const& s : truth.segments) {
        least = std::min(least, s.isCurve ? TrueDistance(s.curve, p)
                                          : SegmentDistance(Widened(p), Widened(s.curve.P0),
                                                            Widened(s.curve.P3)));
    }
    return least;
}

} // namespace trammel_test

#endif

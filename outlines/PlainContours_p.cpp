// SPDX-License-Identifier: MIT

#include "PlainContours_p.h"

#include "BoxTree_p.h"
#include "Box_p.h"
#include "Cubic_p.h"
#include "PathSegments.h"
#include "PointAlgebra.h"
#include "PointMath_p.h"
#include "PreparedOutline.h"
#include "Winding.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// Hulls that are nearer to each other, in shares of the coordinates, count as meeting.
constexpr double kMargin = 0x1p-44;
/// Directions from a common point count as apart if the scalar product exceeds this share.
constexpr double kApart = 0x1p-20;
/// Winding numbers are asked for so far beside a contour, in shares of the coordinates.
constexpr double kBeside = 0x1p-40;
/// Winding numbers are counted directly for no more contours.
constexpr std::size_t kFewContours = 8;

struct Element {
    Cubic c;
    std::size_t next; ///< the element behind it in its contour

    Box<double> Bounds() const {
        Box<double> box;
        for (Pt const& p : c) {
            box.Include(p.h, p.v);
        }
        return box;
    }
    /// True when the element goes forward along its chord all the time.
    bool IsSimple() const {
        Pt const chord = c[3] - c[0];
        return Square(chord) > 0.0 && Dot(c[1] - c[0], chord) >= 0.0 &&
               Dot(c[2] - c[1], chord) >= 0.0 && Dot(c[3] - c[2], chord) >= 0.0;
    }
};

/// True when a line along the chord of `a` has both on its two sides.
bool IsSeparatedByChord(Element const& a, Element const& b, double margin) {
    Pt const chord = a.c[3] - a.c[0];
    double lowA = 0.0;
    double highA = 0.0;
    double lowB = Cross(chord, b.c[0] - a.c[0]);
    double highB = lowB;
    for (std::size_t i = 1; i < 4; ++i) {
        double const atA = Cross(chord, a.c[i] - a.c[0]);
        double const atB = Cross(chord, b.c[i] - a.c[0]);
        lowA = std::min(lowA, atA);
        highA = std::max(highA, atA);
        lowB = std::min(lowB, atB);
        highB = std::max(highB, atB);
    }
    double const room = margin * Taxicab(chord);
    return lowB > highA + room || highB < lowA - room;
}

/// True when an element, and the one that begins at its end, have no other point in common.
bool MeetAtJointOnly(Element const& before, Element const& behind) {
    Pt const joint = before.c[3];
    Pt const back = trammel::Normalize(before.c[0] - joint);
    Pt const ahead = trammel::Normalize(behind.c[3] - joint);
    Pt const axis = ahead - back;
    for (std::size_t i = 0; i < 3; ++i) {
        Pt const a = before.c[i] - joint;
        Pt const b = behind.c[i + 1] - joint;
        if ((!a.Null() && !(Dot(a, axis) < -kApart * Taxicab(a))) ||
            (!b.Null() && !(Dot(b, axis) > kApart * Taxicab(b)))) {
            return false;
        }
    }
    return true;
}

} // namespace

bool AreContoursPlain(CPath const& contours) {
    std::vector<Element> elements;
    std::vector<std::size_t> starts;
    double size = 0.0;
    for (trammel::Subpath const& contour : trammel::Subpaths(contours)) {
        std::size_t const first = elements.size();
        for (trammel::PathSegment const& s : contour) {
            if (s.IsCurve() || s.start != s.end) {
                elements.push_back(
                    {{{s.start, s.control1, s.control2, s.end}}, elements.size() + 1});
                size = std::max({size, std::abs(s.end.h), std::abs(s.end.v)});
                if (!elements.back().IsSimple()) {
                    return false;
                }
            }
        }
        if (elements.size() < first + 3) {
            return false; // two elements have two points in common
        }
        elements.back().next = first;
        starts.push_back(first);
    }
    std::vector<Box<double>> boxes;
    boxes.reserve(elements.size());
    for (Element const& element : elements) {
        boxes.push_back(element.Bounds());
    }
    bool isPlain = std::isfinite(size);
    double const margin = kMargin * size;
    BoxTree(boxes).ForMeetingPairs([&](std::size_t i, std::size_t k) {
        if (!isPlain) {
            return;
        }
        Element const& a = elements[i];
        Element const& b = elements[k];
        isPlain = a.next == k ? MeetAtJointOnly(a, b)
                  : b.next == i
                      ? MeetAtJointOnly(b, a)
                      : IsSeparatedByChord(a, b, margin) || IsSeparatedByChord(b, a, margin);
    });
    if (!isPlain) {
        return false;
    }
    // All points beside a contour have the same two winding numbers.
    bool const areMany = starts.size() > kFewContours;
    trammel::PreparedOutline const prepared =
        areMany ? trammel::PreparedOutline(contours) : trammel::PreparedOutline();
    auto const winding = [&](Pt const& p) {
        return areMany ? prepared.WindingNumber(p) : trammel::WindingNumber(contours, p);
    };
    for (std::size_t const start : starts) {
        CubicPlace const place = PlaceAt(elements[start].c, 0.5);
        Pt const aside(-place.first.v, place.first.h);
        Pt const step = trammel::Normalize(aside) * (kBeside * size);
        int const one = winding(place.point + step);
        int const other = winding(place.point - step);
        if (std::min(one, other) != 0 || std::max(one, other) != 1) {
            return false;
        }
    }
    return true;
}

} // namespace trammel_detail

// SPDX-License-Identifier: MIT

#include "PlainContours_p.h"

#include "ApartPieces_p.h"
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
/// Winding numbers are asked for so far beside a contour, in shares of the coordinates.
constexpr double kBeside = 0x1p-40;
/// Winding numbers are counted directly for no more contours.
constexpr std::size_t kFewContours = 8;

struct Element {
    Cubic c;
    std::size_t next; ///< the element behind it in its contour
};

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
                if (!GoesForward(elements.back().c)) {
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
        boxes.push_back(HullBox(element.c));
    }
    bool isPlain = std::isfinite(size);
    double const margin = kMargin * size;
    BoxTree(boxes).ForMeetingPairs([&](std::size_t i, std::size_t k) {
        if (!isPlain) {
            return;
        }
        Element const& a = elements[i];
        Element const& b = elements[k];
        isPlain = a.next == k ? MeetAtJointOnly(a.c, b.c)
                  : b.next == i
                      ? MeetAtJointOnly(b.c, a.c)
                      : ChordSeparates(a.c, b.c, margin) || ChordSeparates(b.c, a.c, margin);
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

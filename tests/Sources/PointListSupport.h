// SPDX-License-Identifier: MIT

// The tests of the point-list polygon share this fixture and these helpers.

#ifndef TRAMMEL_POINTLISTSUPPORT_H
#define TRAMMEL_POINTLISTSUPPORT_H

#include "Handles.h"
#include "TLine.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TestSupport.h"
#include "plain/PlainPolygon.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <vector>

namespace trammel_test {

/// The open chain of these vertices.
inline TPolygon<double> Open(std::vector<TPoint<double>> const& points) {
    TPolygon<double> polygon;
    for (TPoint<double> const& p : points) {
        polygon.Append(p, true);
    }
    return polygon;
}

/// The closed polygon of these vertices.
inline TPolygon<double> Closed(std::vector<TPoint<double>> const& points) {
    TPolygon<double> polygon = Open(points);
    polygon.Close();
    return polygon;
}

/// The open chain (0, 0), (10, 0), (10, 10).
inline TPolygon<double> Chain() { return Open({{0, 0}, {10, 0}, {10, 10}}); }

/// The closed square (0, 0), (10, 0), (10, 10), (0, 10).
inline TPolygon<double> ClosedSquare() { return Closed({{0, 0}, {10, 0}, {10, 10}, {0, 10}}); }

/// A polygon whose block could not be made.
inline TPolygon<double> WithoutStorage() {
    trammel_detail::FailNextAllocations(1);
    TPolygon<double> polygon;
    trammel_detail::FailNextAllocations(0);
    return polygon;
}

/// The record at the head of the block.
inline CPolygon<double>& Record(TPolygon<double> const& polygon) { return **polygon.mHandle; }

/// The plain form of Contains for points inside the bounds.
inline bool PlainContains(std::vector<TPoint<double>> const& points, TPoint<double> const& p) {
    return plain::OddCrossings(points, points.size(), p);
}

/// The pieces of the line from (h0, v0) to (h1, v1) inside the polygon.
inline std::vector<TLine<double>> Clip(TPolygon<double> const& polygon, double h0, double v0,
                                       double h1, double v1) {
    return polygon.Clip(TLine<double>(TPoint<double>(h0, v0), TPoint<double>(h1, v1)));
}

/// Points with coordinates in [low, high).
inline std::vector<TPoint<double>> RandomPoints(std::mt19937& random, std::size_t count, double low,
                                                double high) {
    std::uniform_real_distribution<double> coordinate(low, high);
    std::vector<TPoint<double>> points;
    while (points.size() < count) {
        double const h = coordinate(random);
        points.emplace_back(h, coordinate(random));
    }
    return points;
}

/// Tests that leave no block behind.
class PointListPolygon : public WithoutLeaks {};

} // namespace trammel_test

#endif

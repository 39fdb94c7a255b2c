// SPDX-License-Identifier: MIT

// The plain library: the library's operations, done step by step.
//
// The times of the library are measured against a careful, unoptimised implementation of the same
// operations. This is a shared library, compiled with -O2 and the default visibility, in which
//
// - the operations of points, rectangles, lines, matrices and polygons are ordinary exported
//   functions, called as such; points are made and copied inline (records/plain/PlainRecords.h);
// - polygons keep their vertices in a block behind a handle and are read vertex by vertex through
//   accessors, which look up the block's size and check the index;
// - curves and paths follow their definitions: recursion where the definition recurses, a new
//   polygon for every measurement, a new measurement for every question. These are the forms with
//   which the tests compare the library, compiled from tests/plain.
//
// Nothing is slower than the step that it writes out: appending takes constant time, an operator on
// points is one call. Nor do accidents of the compiler count. GCC 12 at -O2 loads a point as one
// pair where its coordinates have just been stored one by one, and the processor has to wait for
// it. This alone would make flattening three times as slow, so pairing is off
// (-fno-tree-slp-vectorize).
//
// Its results are the library's to the last bit; the benchmarks check that before they measure.

#ifndef TRAMMEL_BENCH_PLAIN_H
#define TRAMMEL_BENCH_PLAIN_H

#include "plain/PlainRecords.h"

#include <cstddef>
#include <memory>

namespace plain {

struct Bezier;
struct Path;

/// A list of curves.
class CurveList {
public:
    CurveList();
    ~CurveList();
    void Add(Pt const& p0, Pt const& p1, Pt const& p2, Pt const& p3);
    std::size_t size() const;
    Bezier const& operator[](std::size_t index) const;

private:
    struct Body;
    std::unique_ptr<Body> mBody;
};

/// A list of paths; elements are added to the last path.
class PathList {
public:
    PathList();
    ~PathList();
    void Begin();
    void MoveTo(Pt const& p);
    void LineTo(Pt const& p);
    void CurveTo(Pt const& c1, Pt const& c2, Pt const& e);
    void ClosePath();
    std::size_t size() const;
    Path const& operator[](std::size_t index) const;

private:
    struct Body;
    std::unique_ptr<Body> mBody;
};

// On a curve.

void Flatten(Bezier const& curve, Polygon& polygon, double error);
double Length(Bezier const& curve);
double PercentT(Bezier const& curve, double fraction);
double TPercent(Bezier const& curve, double t);
double FindTValue(Bezier const& curve, Pt const& pt, double tolerance, double t0, double t1);
bool HitTest(Bezier const& curve, Pt const& pt, double tolerance);
bool Intersects(Bezier const& curve, Rect const& r);

// On a path.

double Length(Path const& path);
Pt TPt(Path const& path, double t);
double FindTValue(Path const& path, Pt const& p);
std::size_t PointCount(Path const& path);
/// The piece between the two parameters: the sum of its coordinates.
double CutSum(Path const& path, double t0, double t1);

} // namespace plain

#endif

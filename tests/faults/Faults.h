// SPDX-License-Identifier: MIT

// Every public function in one table, and arguments of many kinds for them. The tests in this
// folder run the table with memory that runs out and on a small stack.

#ifndef TRAMMEL_FAULTS_H
#define TRAMMEL_FAULTS_H

#include "trammel.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace trammel_test {

/// A number for the bits of everything that was added; every NaN is the same.
class Digest {
public:
    std::uint64_t Value() const { return mValue; }

    template <class T> std::enable_if_t<std::is_arithmetic_v<T> || std::is_enum_v<T>> Add(T x) {
        if constexpr (std::is_floating_point_v<T>) {
            double const number = std::isnan(x) ? 0.125 : static_cast<double>(x);
            std::uint64_t bits = 0;
            std::memcpy(&bits, &number, sizeof bits);
            Mix(bits);
        } else {
            Mix(static_cast<std::uint64_t>(x));
        }
    }
    template <class T> void Add(TPoint<T> const& p) { All(p.h, p.v); }
    template <class T> void Add(TRect<T> const& r) { All(r.left, r.top, r.right, r.bottom); }
    void Add(TLine<double> const& line) { All(line.mStart, line.mEnd); }
    void Add(CMatrix3x3 const& m) { All(m.a, m.b, m.c, m.d, m.tx, m.ty); }
    void Add(CBezier const& b) { All(b.P0, b.P1, b.P2, b.P3); }
    void Add(CBSpline const& b) { All(b.P0, b.P1, b.P2); }
    template <class T> void Add(std::vector<T> const& items) {
        Mix(items.size());
        for (auto const& item : items) {
            Add(item);
        }
    }
    void Add(std::string const& text) {
        Mix(text.size());
        for (char const c : text) {
            Add(c);
        }
    }
    void Add(CPath const& path) { All(path.mCtls, path.mPts, path.mCurrentPt, path.mOpen); }
    void Add(TPolygon<double> const& polygon) {
        All(polygon.LastIndex(), polygon.Closed());
        for (TPoint<double> const& p : polygon) {
            Add(p);
        }
    }
    void Add(CFPolygonRef const& polygon) {
        All(polygon.LastIndex(), polygon.Closed());
        for (TPoint<double> const& p : polygon) {
            Add(p);
        }
    }
    void Add(Tgcp_contour const& contour) { All(contour.mHole, contour.mVertices); }
    void Add(Tgpc_polygon const& polygon) { Add(polygon.mContours); }
    void Add(trammel::PolygonWithHoles const& polygon) { All(polygon.outer, polygon.holes); }
    void Add(trammel::Intersection const& i) {
        All(i.kind, i.crosses, i.a.element, i.a.t, i.b.element, i.b.t, i.point, i.endPoint);
    }
    void Add(trammel::ElementSource const& s) { All(s.operand, s.element, s.from, s.to); }
    void Add(trammel::OperandWinding const& w) { All(w.operand, w.winding); }
    void Add(trammel::FlatContour const& c) { All(c.begin, c.end, c.closed); }
    void Add(trammel::AreaMoments const& m) { All(m.area, m.centroid, m.hh, m.hv, m.vv); }
    void Add(trammel::CurvePoint const& p) { All(p.t, p.point, p.distance); }
    template <class... T> void All(T const&... values) { (Add(values), ...); }

private:
    void Mix(std::uint64_t bits) {
        mValue = (mValue ^ bits) * 0x9E3779B97F4A7C15u;
        mValue ^= mValue >> 32U;
    }

    std::uint64_t mValue = 1;
};

enum class ArgumentKind {
    kSmall,    ///< a few segments, and vectors without room to spare
    kMany,     ///< thousands of points, and combs that cross each other
    kHuge,     ///< coordinates about 1e300
    kTiny,     ///< coordinates about 1e-300
    kNaN,      ///< some numbers are no numbers, some are infinite
    kOnePoint, ///< everything at one place
    kWound,    ///< spirals with stretches of any size, and curves that turn back
};
inline constexpr ArgumentKind kArgumentKinds[] = {
    ArgumentKind::kSmall, ArgumentKind::kMany,     ArgumentKind::kHuge, ArgumentKind::kTiny,
    ArgumentKind::kNaN,   ArgumentKind::kOnePoint, ArgumentKind::kWound};

/// What the functions work on: arguments, what they change, and a digest of what they return.
struct Arguments {
    explicit Arguments(ArgumentKind kind);
    Arguments(Arguments const&) = delete;
    Arguments& operator=(Arguments const&) = delete;
    ~Arguments();

    /// Of everything that a function may change.
    std::uint64_t State() const;

    /// Adds to what was returned.
    template <class... T> void Returned(T const&... values) { returned.All(values...); }
    /// The same for a new polygon, which it disposes.
    void Disposed(CFPolygonRef polygon);
    void Disposed(Handle block);

    CPath path;
    CPath other;
    CPath out; ///< for results; holds a line
    CPath second;
    std::vector<CPath> paths;
    std::vector<TPoint<double>> points;
    TPolygon<double> polygon;
    TPolygon<double> flat; ///< for results; holds a point
    std::vector<TPolygon<double>> polygons;
    std::vector<std::vector<TPolygon<double>>> operands;
    std::vector<trammel::PolygonWithHoles> map;
    std::vector<trammel::PolygonWithHoles> mapOut;
    std::vector<trammel::Ring> rings;
    std::vector<trammel::Ring> ringsOut;
    CFPolygonRef ref;
    CFPolygonRef empty; ///< of no points
    CBezier curve;
    CBSpline spline;
    TLine<double> line;
    TRect<double> rect;
    TPoint<double> p;
    Tgpc_polygon clipA;
    Tgpc_polygon clipB;
    Tgpc_polygon clipped;
    std::vector<trammel::Intersection> places;
    std::vector<trammel::ElementSource> sources;
    trammel::FlatContours contours;
    std::vector<double> table;
    trammel::StrokeStyle style;
    std::string text; ///< SVG path text
    CMatrix3x3 matrix;
    double tolerance = 0.01;
    Digest returned;
};

/// What a function does when memory is short.
enum class WhenShort {
    kThrows,     ///< std::bad_alloc, and all arguments are as before
    kUnchanged,  ///< no exception; what it would change is as before
    kThrowsPart, ///< std::bad_alloc, and the result has a part, as the docstring says
    kPartial,    ///< what the docstring says, such as a polygon without the last points
    kEndsProcess ///< it may; or std::bad_alloc
};

struct Call {
    /// The functions that `run` calls, with blanks between, as the list of symbols names them. A
    /// number behind `=` tells how many symbols of that name it calls. A name that ends in `::`
    /// means a class.
    char const* names;
    WhenShort whenShort;
    void (*run)(Arguments& a);
};

/// The table.
std::vector<Call> const& Calls();

} // namespace trammel_test

#endif

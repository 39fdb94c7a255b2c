// SPDX-License-Identifier: MIT

// Every public function over every special value: NaN, infinities, signed zeros, denormals, the
// largest and smallest numbers, and the limits that the library itself knows.
//
// Each case is a function of a Draw, which hands out one special value for each argument. The
// number n of values is prime. Argument j of run (a, b) takes value (a·j + b) mod n. Over the n²
// runs, each two arguments so meet in all n² combinations: an orthogonal array. A case passes when
// every run returns and its assertions hold. Under the sanitizers nothing undefined may happen on
// the way, either.

#ifndef TRAMMEL_SPECIALVALUES_H
#define TRAMMEL_SPECIALVALUES_H

#include <trammel/trammel.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace trammel_test {

namespace special {

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef TLine<double> Segment;

inline constexpr std::array<double, 29> kSpecials = {
    std::numeric_limits<double>::quiet_NaN(),
    -std::numeric_limits<double>::quiet_NaN(),
    std::numeric_limits<double>::infinity(),
    -std::numeric_limits<double>::infinity(),
    0.0,
    -0.0,
    std::numeric_limits<double>::denorm_min(),
    -std::numeric_limits<double>::denorm_min(),
    std::numeric_limits<double>::min(),
    1e-300,
    -1e-300,
    1e308,
    -1e308,
    std::numeric_limits<double>::max(),
    std::numeric_limits<double>::lowest(),
    113596369920.0,
    113596369920.00002,
    32767.0,
    32768.0,
    -32768.0,
    -32769.5,
    2147483647.5,
    -2147483649.0,
    0.5,
    1.0,
    -1.0,
    3.141592653589793,
    1e15,
    7.25,
};

/// Hands out the special values of one run.
class Draw {
public:
    Draw(std::size_t a, std::size_t b) : mA(a), mB(b) {}
    double Value() { return kSpecials[(mA * mArgument++ + mB) % kSpecials.size()]; }
    short Short() { return TPoint<short>(Pt(Value(), 0)).h; }
    Pt Point() {
        double const h = Value();
        return Pt(h, Value());
    }
    TPoint<short> ShortPoint() {
        short const h = Short();
        return TPoint<short>(h, Short());
    }
    Box Rect() {
        Pt const a = Point();
        Pt const b = Point();
        return Box(a.h, a.v, b.h, b.v);
    }
    TRect<short> ShortRect() { return TRect<short>(Rect()); }
    Segment Line() {
        Pt const a = Point();
        return Segment(a, Point());
    }
    CMatrix3x3 Matrix() {
        double v[6];
        for (double& x : v) {
            x = Value();
        }
        return CMatrix3x3(v[0], v[1], v[2], v[3], v[4], v[5], 0x40);
    }
    CBSpline Quadratic() {
        Pt const a = Point();
        Pt const b = Point();
        return CBSpline(a, b, Point());
    }
    CBezier Curve() {
        Pt const a = Point();
        Pt const b = Point();
        Pt const c = Point();
        return CBezier(a, b, c, Point());
    }
    /// To be disposed.
    CFPolygonRef HandlePolygon(int points) {
        CFPolygonRef polygon(true);
        for (int i = 0; i < points; ++i) {
            polygon.Append(Point());
        }
        return polygon;
    }
    TPolygon<double> Polygon(int vertices) {
        TPolygon<double> polygon;
        for (int i = 0; i < vertices; ++i) {
            polygon.Append(Point(), true);
        }
        return polygon;
    }
    CPath Path() {
        CPath path;
        path.MoveTo(Point());
        path.LineTo(Point());
        Pt const c1 = Point();
        Pt const c2 = Point();
        path.CurveTo(c1, c2, Point());
        path.ClosePath();
        path.LineTo(Point());
        return path;
    }
    int Index() { return static_cast<int>((mA + mB) % 7) - 2; }
    bool Flag() const { return (mA + mB) % 2 == 0; }

private:
    std::size_t mA;
    std::size_t mB;
    std::size_t mArgument = 0;
};

/// A name, and a check of some functions with the values of one run.
struct Case {
    char const* name;
    void (*run)(Draw&);
};

inline bool IsNaN(Pt const& p) { return std::isnan(p.h) || std::isnan(p.v); }

/// Stands for an assertion where arithmetic may give any double: the value must merely exist.
inline void Use(double value) {
    volatile double sink = value;
    static_cast<void>(sink);
}
inline void Use(Pt const& p) {
    Use(p.h);
    Use(p.v);
}

// The cases by subject.
std::vector<Case> PlaneCases();
std::vector<Case> PolygonCases();
std::vector<Case> CurveCases();
std::vector<Case> QueryCases();
std::vector<Case> OutlineCases();

} // namespace special

} // namespace trammel_test

#endif

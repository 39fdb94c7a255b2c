// SPDX-License-Identifier: MIT

// The records of the plain library: points, rectangles, lines, matrices and the two polygons, every
// operation but making and copying a point an ordinary function of the shared library. The plain
// forms of curves and paths (tests/plain) are compiled with these records in place of the library's
// own.

#ifndef TRAMMEL_BENCH_PLAINRECORDS_H
#define TRAMMEL_BENCH_PLAINRECORDS_H

#include <cstdint>
#include <vector>

namespace plain {

inline constexpr double pi = 3.141592653589793238462643383279502884;

class Matrix;

struct Pt {
    double v;
    double h;

    Pt() : v(0.0), h(0.0) {}
    Pt(double h_, double v_) : v(v_), h(h_) {}
    Pt(Pt const& p) : v(p.v), h(p.h) {}
    Pt& operator=(Pt const& p) {
        v = p.v;
        h = p.h;
        return *this;
    }
    Pt& operator+=(Pt const& p);
    Pt& operator-=(Pt const& p);
    Pt& operator*=(double s);
    Pt& operator/=(double s);
    Pt operator+(Pt const& p) const;
    Pt operator-(Pt const& p) const;
    Pt operator*(double s) const;
    Pt operator/(double s) const;
    bool operator==(Pt const& p) const;
    bool operator!=(Pt const& p) const;
    double Slope() const;
    double Hypotenuse() const;
    Pt& Rotate(double angle);
    Pt& Rotate(double angle, Pt const& centre);
    Pt& Transform(Matrix const& m);
};

struct Rect {
    double top;
    double left;
    double bottom;
    double right;

    Rect();
    Rect(Pt const& a, Pt const& b);
    Rect(double left, double top, double right, double bottom);
    void Rectify();
    bool Null() const;
    bool Contains(Pt const& p) const;
    Rect& Inset(double dh, double dv);
    Rect& Outset(double dh, double dv);
    Rect& operator|=(Pt const& p);
};

bool NaiveSectTRect(Rect const& a, Rect const& b);

struct Line {
    Pt mStart;
    Pt mEnd;

    Line();
    Line(Pt const& a, Pt const& b);
    Pt Delta() const;
    double Length() const;
    double Slope() const;
    Pt TPt(double t) const;
    Pt MidPt() const;
    Line& Rotate(double angle, Pt const& centre);
    Line Perpendicular(Pt const& centre) const;
    double Dot(Line const& other) const;
    double CosTheta(Line const& other) const;
    int HalfSpace(Pt const& p) const;
    Pt PerpendicularPt(Pt const& p) const;
    Pt PinPtToLineSeg(Pt const& p) const;
    double Distance(Pt const& p) const;
    double FindTValue(Pt const& p) const;
    bool HitTest(Pt const& p, double tolerance) const;
    void YIntersect(double x, Pt& where) const;
    bool Intersects(Line const& other, Pt& where) const;
    bool SegmentsIntersect(Line const& other, Pt& where) const;
};

class Matrix {
public:
    Matrix(double a, double b, double c, double d, double tx, double ty);
    void Transform(Pt& p) const;

private:
    double a, b, c, d, tx, ty;
};

/// A point-list polygon in a relocatable block that it owns.
class Polygon {
public:
    Polygon();
    ~Polygon();
    Polygon(Polygon const&) = delete;
    Polygon& operator=(Polygon const&) = delete;

    long LastIndex() const;
    bool Empty() const;
    Pt GetPt(long index) const;
    Polygon& SetPt(long index, Pt const& p);
    Polygon& Append(Pt p, bool allowDuplicate);
    Polygon& AppendUnique(Pt const& p);
    Polygon& Close();
    bool Closed() const;
    Polygon& Transform(Matrix const& m);
    long LastEdge() const;
    long LastGeometryEdge() const;
    void GetEdge(long index, Pt& a, Pt& b) const;
    void GetEdge(long index, Line& line) const;
    Line GetEdge(long index) const;
    double Length() const;
    Rect Bounds() const;
    bool BoundsValid() const;
    void CalcBounds() const;
    Polygon& InvalBounds();
    bool Contains(Pt const& p) const;
    Pt TPt(double t) const;
    Pt TPt(double t, std::vector<double>* table) const;
    std::vector<Line> Clip(Line const& line) const;

private:
    struct Record;
    char** mHandle;
};

void BuildLTable(Polygon const& polygon, std::vector<double>& table);

/// A handle polygon: a reference to a relocatable block, which Dispose frees.
class HandlePolygon {
public:
    explicit HandlePolygon(bool create);
    void Dispose();

    long DataSize() const;
    long LastIndex() const;
    Pt PolyPoints(long index) const;
    void SetPolyPoints(long index, Pt const& p);
    void Append(Pt const& p);
    bool BoundsValid() const;
    void InvalBounds() const;
    void CalcBounds() const;
    Rect Bounds() const;
    void Offset(Pt const& d);
    void Rotate(double angle, Pt const& centre);
    long EdgeCount() const;
    Line GetEdge(long index) const;
    long GeometryEdgeCount() const;
    bool Contains(Pt const& p) const;

private:
    struct Record;
    char** mRef;
};

/// What curves flatten into.
typedef Polygon Points;

} // namespace plain

#endif

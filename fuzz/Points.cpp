// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "CFRect.h"
#include "CMatrix3x3.h"
#include "Log.h"
#include "PointAlgebra.h"
#include "TLine.h"
#include "UGeometry.h"
#include "UHygiene.h"
#include "UScalar.h"
#include "identity/Identity.h"
#include "plain/PlainPath.h"
#include "plain/PlainPolygon.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

namespace fuzz {

namespace {

using identity::Digest;

bool IsFinite(Pt const& p) { return std::isfinite(p.h) && std::isfinite(p.v); }

/// The greatest magnitude of the entries; NaN counts as infinite.
double GreatestOf(CMatrix3x3 const& m) {
    double greatest = 0.0;
    for (double const x : {m.a, m.b, m.c, m.d, m.tx, m.ty}) {
        greatest = std::isfinite(x) ? std::max(greatest, std::abs(x)) : HUGE_VAL;
    }
    return greatest;
}

Digest DigestOf(CMatrix3x3 const& m) {
    Digest digest;
    for (double const x : {m.a, m.b, m.c, m.d, m.tx, m.ty}) {
        digest.Add(x);
    }
    return digest;
}

/// Makes one building operation.
void Build(Input& in, CMatrix3x3& m) {
    Pt const p = in.Point();
    switch (in.Int(0, 11)) {
    case 0:
        m.Translate(p);
        break;
    case 1:
        m.Scale(p);
        break;
    case 2:
        m.Rotate(p.h);
        break;
    case 3:
        m.Shear(p);
        break;
    case 4:
        m.Rotate(in.Number(), p);
        break;
    case 5: {
        double const s = in.Number();
        m.Scale(s, in.Number(), p);
        break;
    }
    case 6:
        m.Reflect(p, in.Point());
        break;
    case 7: {
        Pt const from = in.Point();
        m.Rotate(p, from, in.Point());
        break;
    }
    case 8: {
        Pt const from = in.Point();
        m.Scale(p, from, in.Point());
        break;
    }
    case 9: {
        Pt const from = in.Point();
        m.Reflect(p, from, in.Point());
        break;
    }
    case 10: {
        Pt const from = in.Point();
        m.Shear(p, from, in.Point());
        break;
    }
    default: {
        Box const from = in.Rect();
        m.Map(from, in.Rect());
    }
    }
}

void Matrices(Input& in) {
    CMatrix3x3 m;
    for (int i = in.Int(0, 4); i > 0; --i) {
        CMatrix3x3 const before = m;
        Pt const by = in.Point();
        Digest after = DigestOf(CMatrix3x3(m).Translate(by));
        Require(after == DigestOf(before * CMatrix3x3(1.0, 0.0, 0.0, 1.0, by.h, by.v, 0)),
                "a translation comes after what the matrix does");
        after = DigestOf(CMatrix3x3(m).Scale(by));
        Require(after == DigestOf(before * CMatrix3x3(by.h, 0.0, 0.0, by.v, 0.0, 0.0, 0)),
                "a scaling comes after what the matrix does");
        Build(in, m);
    }
    Pt const p = in.Point();
    Digest moved;
    Digest movedPlainly;
    moved.Add(Pt(p).Transform(m));
    movedPlainly.Add(plain::Transformed(p, m));
    Require(moved == movedPlainly, "a point is moved as plainly");

    CMatrix3x3 inverse;
    bool thrown = false;
    try {
        m.Inverse(inverse);
    } catch (char const* text) {
        thrown = std::strcmp(text, "marix_singularity") == 0;
        Require(thrown, "the text that is thrown is that of the singular matrix");
    }
    Require(thrown == m.IsSingular(), "a matrix is inverted unless it is singular");
    // The rounding of the determinant is the greatest part of the error.
    double const size = GreatestOf(m);
    double const determinant = std::abs(m.Determinant());
    if (!thrown && size < 1e30 && determinant > 1e-30 && std::abs(p.h) < 1e60 &&
        std::abs(p.v) < 1e60) {
        double const products = std::abs(m.a * m.d) + std::abs(m.b * m.c);
        double const share = products / determinant * 0x1p-48;
        double const reach = (GreatestOf(inverse) + 1.0) * (size + 1.0) * 8.0;
        Pt const back = Pt(p).Transform(m).Transform(inverse);
        double const bound = share * reach * (std::abs(p.h) + std::abs(p.v) + 1.0);
        Require(!std::isfinite(bound) || (back - p).Hypotenuse() <= bound,
                "the inverse brings a point back");
    }
}

void Lines(Input& in) {
    Pt const a = in.Point();
    Pt const b = in.Point();
    Pt const c = in.Point();
    Pt const d = in.Point();
    TLine<double> const one(a, b);
    TLine<double> const other(c, d);
    double const tolerance = in.Number();
    Digest ours;
    Pt where;
    ours.Add(one.Intersects(other, where));
    ours.Add(where);
    ours.Add(one.SegmentsIntersect(other, where));
    ours.Add(where);
    ours.Add(one.CosTheta(other));
    ours.Add(one.Length());
    ours.Add(one.PerpendicularPt(c));
    ours.Add(one.Distance(c));
    ours.Add(one.HitTest(c, tolerance));
    ours.Add(one.TPt(tolerance));
    ours.Add(one.HalfSpace(c) > 0);
    ours.Add(one.FindTValue(c));
    Digest plainly;
    Pt place;
    plainly.Add(plain::LinesIntersect(one, other, place));
    plainly.Add(place);
    plainly.Add(plain::SegmentsIntersect(one, other, place));
    plainly.Add(place);
    plainly.Add(plain::CosTheta(one, other));
    plainly.Add(plain::LineLength(a, b));
    plainly.Add(plain::Foot(a, b, c));
    plainly.Add(plain::DistanceToLine(a, b, c));
    plainly.Add(plain::LineHit(a, b, c, tolerance));
    plainly.Add(plain::LinePt(a, b, tolerance));
    plainly.Add(plain::HalfSpace(a, b, c) > 0);
    plainly.Add(plain::LineTValue(a, b, c));
    Require(ours == plainly, "a line answers as plainly");

    Pt const unit = trammel::Normalize(a);
    if (IsFinite(a) && !a.Null()) {
        Require(std::abs(unit.h * unit.h + unit.v * unit.v - 1.0) <= 0x1p-49,
                "a vector made a unit has the length 1");
        Require(std::signbit(unit.h) == std::signbit(a.h) &&
                    std::signbit(unit.v) == std::signbit(a.v),
                "a unit vector keeps its direction");
    }
    if (IsFinite(a) && IsFinite(b)) {
        Require(trammel::Dot(a, b) == trammel::Dot(b, a) || !std::isfinite(trammel::Dot(a, b)),
                "a scalar product has no order");
        Require(trammel::Cross(a, b) == -trammel::Cross(b, a) ||
                    !std::isfinite(trammel::Cross(a, b)),
                "a cross product changes its sign");
    }
}

void Rectangles(Input& in) {
    Box const a = in.Rect();
    Box const b = in.Rect();
    Pt const p = in.Point();
    if (!IsFinite(a.TopLeft()) || !IsFinite(a.BottomRight()) || !IsFinite(b.TopLeft()) ||
        !IsFinite(b.BottomRight()) || !IsFinite(p)) {
        return;
    }
    Require(a.Valid() && b.Valid(), "corners in any order make a valid rectangle");
    Box both = a;
    both |= b;
    Box same = b;
    same |= a;
    Require(both == same, "a union has no order");
    Require((a.Null() || both.Contains(a)) && (b.Null() || both.Contains(b)),
            "a union contains both");
    Box grown = a;
    grown |= p;
    Require(grown.Contains(p) || grown.Null(), "a rectangle grows to contain a point");
    Box joined = a;
    plain::Join(joined, p);
    Require(grown == joined, "a rectangle grows as plainly");

    // Fixed numbers have 16 bits behind the point, and come back by way of single precision.
    Box const back = CFRect(a);
    double const ours[] = {a.left, a.top, a.right, a.bottom};
    double const theirs[] = {back.left, back.top, back.right, back.bottom};
    for (int i = 0; i < 4; ++i) {
        Require(std::abs(ours[i]) >= 32767.0 ||
                    std::abs(theirs[i] - ours[i]) <= 0x1p-16 + std::abs(ours[i]) * 0x1p-24,
                "a fixed rectangle is near its own");
    }
}

/// Circles through points, by their bounding squares.
void Circles(Input& in) {
    Pt const a = in.Point();
    Pt const b = in.Point();
    Pt const c = in.Point();
    Box round;
    Pt3Circle(a, b, c, round);
    DiameterCircle(a, b, round);
    Box around;
    RadiusCircle(a, b, around);
    double size = 0.0;
    for (double const x : {a.h, a.v, b.h, b.v}) {
        size = std::abs(x) < 1e150 ? std::max(size, std::abs(x)) : HUGE_VAL;
    }
    if (std::isfinite(size)) {
        double const off = size * 0x1p-40 + 1e-150;
        Require(std::abs(round.Width() - (a - b).Hypotenuse()) <= off,
                "a circle is as wide as its diameter");
        Require(std::abs(around.Width() - 2.0 * (a - b).Hypotenuse()) <= off,
                "a circle is as wide as twice its radius");
    }
    // A point is made finite. Each one that was not is logged.
    Pt p = a;
    SetNSLogSink([](std::string const&) {});
    bool const wrong = ValidatePoint(p);
    SetNSLogSink(nullptr);
    Require(wrong == !IsFinite(a), "a point that is not finite is found");
    Require(wrong || IsFinite(p), "a point that is found right is finite");
}

/// Reads a matrix from any bytes, and one that was written with spaces.
void Streamed(Input& in) {
    CMatrix3x3 const m{in.Number(), in.Number(), in.Number(), in.Number(),
                       in.Number(), in.Number(), in.Byte()};
    std::ostringstream glued;
    glued << m;
    std::stringstream text;
    text.precision(17);
    for (double const x : {m.a, m.b, m.c, m.d, m.tx, m.ty}) {
        text << x << ' ';
    }
    text << m.mKind;
    CMatrix3x3 back;
    text >> back;
    double const size = GreatestOf(m);
    Require(!std::isfinite(size) || (size > 0.0 && size < 1e-300) || text.fail() ||
                DigestOf(back) == DigestOf(m),
            "a matrix comes back from its text");
    std::istringstream any{std::string(in.Rest())};
    CMatrix3x3 const read(any);
    std::ostringstream again;
    read.operator<<(again);
    Require(!again.str().empty(), "a matrix has a text");
}

} // namespace

void Points(Input& in) {
    Matrices(in);
    Lines(in);
    Rectangles(in);
    Circles(in);
    Streamed(in);
}

} // namespace fuzz

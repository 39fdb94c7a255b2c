// SPDX-License-Identifier: MIT

#include "CMatrix3x3.h"

#include "UTrigonometry.h"

#include <cmath>
#include <istream>
#include <ostream>

namespace {

// The library also exports the header's inline function, for callers that find it by name.
[[gnu::used]] CMatrix3x3 (*const kInLibrary)(CMatrix3x3 const&, CMatrix3x3 const&) = Concat;

/// The text thrown by every inversion of a singular matrix; callers compare the text, spelling
/// included.
constexpr char const* kSingular = "marix_singularity";

/// Scale(o, from, to) leaves a direction alone where `from` is closer to `o` than this: a ratio
/// over so short an arm would be noise.
constexpr double kShortestArm = 1e-15;

/// Map leaves a direction alone where the source is narrower than this. It is the epsilon of single
/// precision, in which the platform's rectangles come.
constexpr double kNarrowestMapSource = 1.1920928955078125e-07;

CMatrix3x3 Inverted(CMatrix3x3 const& m, double determinant) {
    CMatrix3x3 out;
    out.a = m.d / determinant;
    out.c = -m.c / determinant;
    out.b = -m.b / determinant;
    out.d = m.a / determinant;
    out.tx = -(m.tx * out.a + m.ty * out.c);
    out.ty = -(m.tx * out.b + m.ty * out.d);
    out.mKind = m.mKind | kMatrixInverted;
    return out;
}

} // namespace

CMatrix3x3::CMatrix3x3(std::istream& in)
    : a(0.0), b(0.0), c(0.0), d(0.0), tx(0.0), ty(0.0), mKind(0) {
    *this >> in;
}

CMatrix3x3& CMatrix3x3::Translate(double dx, double dy) {
    return PostCat(CMatrix3x3(1.0, 0.0, 0.0, 1.0, dx, dy, kMatrixTranslate));
}

CMatrix3x3& CMatrix3x3::Translate(TPoint<double> const& p) { return Translate(p.h, p.v); }

CMatrix3x3& CMatrix3x3::Scale(double sx, double sy) {
    return PostCat(CMatrix3x3(sx, 0.0, 0.0, sy, 0.0, 0.0, kMatrixScale));
}

CMatrix3x3& CMatrix3x3::Scale(TPoint<double> const& p) { return Scale(p.h, p.v); }

CMatrix3x3& CMatrix3x3::Scale(double s) { return Scale(s, s); }

CMatrix3x3& CMatrix3x3::Rotate(double angle) {
    double sine;
    double cosine;
    SinCos(angle, sine, cosine);
    return PostCat(CMatrix3x3(cosine, sine, -sine, cosine, 0.0, 0.0, kMatrixRotate));
}

CMatrix3x3& CMatrix3x3::Shear(double ax, double ay) {
    return PostCat(CMatrix3x3(1.0, std::tan(ay), std::tan(ax), 1.0, 0.0, 0.0, kMatrixShear));
}

CMatrix3x3& CMatrix3x3::Shear(TPoint<double> const& p) { return Shear(p.h, p.v); }

CMatrix3x3& CMatrix3x3::Rotate(double angle, TPoint<double> const& centre) {
    Translate(-centre).Rotate(angle).Translate(centre);
    mKind |= kMatrixRotateAbout;
    return *this;
}

CMatrix3x3& CMatrix3x3::Scale(double sx, double sy, TPoint<double> const& centre) {
    Translate(-centre).Scale(sx, sy).Translate(centre);
    mKind |= kMatrixScaleAbout;
    return *this;
}

CMatrix3x3& CMatrix3x3::Reflect(TPoint<double> const& p1, TPoint<double> const& p2) {
    double const theta = (p2 - p1).Angle();
    Translate(-p1).Rotate(-theta).Scale(1.0, -1.0).Rotate(theta).Translate(p1);
    mKind |= kMatrixReflect;
    return *this;
}

CMatrix3x3& CMatrix3x3::Rotate(TPoint<double> const& o, TPoint<double> const& from,
                               TPoint<double> const& to) {
    double const theta1 = (from - o).Angle();
    double const theta2 = (to - o).Angle();
    return Rotate(theta2 - theta1, o);
}

CMatrix3x3& CMatrix3x3::Scale(TPoint<double> const& o, TPoint<double> const& from,
                              TPoint<double> const& to) {
    TPoint<double> const f = from - o;
    TPoint<double> const t = to - o;
    double const sx = std::abs(f.h) < kShortestArm ? 1.0 : t.h / f.h;
    double const sy = std::abs(f.v) < kShortestArm ? 1.0 : t.v / f.v;
    return Scale(sx, sy, o);
}

CMatrix3x3& CMatrix3x3::Reflect(TPoint<double> const& o, TPoint<double> const& p2,
                                TPoint<double> const& p3) {
    double const theta1 = (p2 - o).Angle();
    double const theta2 = (p3 - o).Angle();
    Translate(-o).Rotate(-theta1).Scale(1.0, -1.0).Rotate(theta2).Translate(o);
    mKind |= kMatrixReflect3;
    return *this;
}

CMatrix3x3& CMatrix3x3::Shear(TPoint<double> const& o, TPoint<double> const& p2,
                              TPoint<double> const& p3) {
    double const theta = (p3 - p2).Angle();
    TPoint<double> q2 = p2;
    TPoint<double> q3 = p3;
    Translate(-o).Rotate(-theta);
    Transform(q2);
    Transform(q3);
    TPoint<double> const s = q3 - q2;
    Shear(TPoint<double>(s.h / q2.v, s.v / q2.h));
    Rotate(theta).Translate(o);
    mKind |= kMatrixShear3;
    return *this;
}

CMatrix3x3& CMatrix3x3::Map(TRect<double> const& src, TRect<double> const& dst) {
    TPoint<double> p1 = src[kTopLeft];
    TPoint<double> p2 = dst[kTopLeft];
    TPoint<double> scale(1.0, 1.0);
    if (kNarrowestMapSource > std::abs(src.Width())) {
        p1.h = 0.0;
        p2.h = 0.0;
    } else {
        scale.h = dst.Width() / src.Width();
    }
    if (kNarrowestMapSource > std::abs(src.Height())) {
        p1.v = 0.0;
        p2.v = 0.0;
    } else {
        scale.v = dst.Height() / src.Height();
    }
    Translate(-p1).Scale(scale).Translate(p2);
    mKind |= kMatrixMap;
    return *this;
}

CMatrix3x3 CMatrix3x3::Inverse() const {
    CMatrix3x3 out;
    Inverse(out);
    return out;
}

bool CMatrix3x3::Inverse(CMatrix3x3& out) const {
    double const determinant = Determinant();
    if (determinant == 0.0) {
        out.Identity();
        throw kSingular;
    }
    out = Inverted(*this, determinant);
    return true;
}

CMatrix3x3& CMatrix3x3::Invert() { return *this = Inverse(); }

std::ostream& CMatrix3x3::operator<<(std::ostream& out) const {
    return out << a << b << c << d << tx << ty << mKind;
}

std::istream& CMatrix3x3::operator>>(std::istream& in) {
    return in >> a >> b >> c >> d >> tx >> ty >> mKind;
}

std::ostream& operator<<(std::ostream& out, CMatrix3x3 const& m) { return m << out; }

std::istream& operator>>(std::istream& in, CMatrix3x3& m) { return m >> in; }

template TPoint<double>& TPoint<double>::Transform(CMatrix3x3 const&);
template TPoint<short>& TPoint<short>::Transform(CMatrix3x3 const&);
template TPoint<double>& TPoint<double>::Map(TRect<double> const&, TRect<double> const&);
template TPoint<short>& TPoint<short>::Map(TRect<short> const&, TRect<short> const&);
template TRect<double>& TRect<double>::Map(TRect<double> const&, TRect<double> const&);
template TRect<short>& TRect<short>::Map(TRect<short> const&, TRect<short> const&);
template TRect<double>& TRect<double>::Transform(CMatrix3x3);
template TRect<short>& TRect<short>::Transform(CMatrix3x3);

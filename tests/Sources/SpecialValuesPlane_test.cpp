// SPDX-License-Identifier: MIT

// Special values in scalars, points, rectangles, the matrix, lines and circles.

#include "Finite.h"
#include "SpecialValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <vector>

using trammel_test::IsFinite;
using trammel_test::special::Box;
using trammel_test::special::Case;
using trammel_test::special::Draw;
using trammel_test::special::IsNaN;
using trammel_test::special::Pt;
using trammel_test::special::Segment;
using trammel_test::special::Use;

namespace {

void TrySinCos(Draw& d) {
    double const angle = d.Value();
    double s = 2.0;
    double c = 2.0;
    SinCos(angle, s, c);
    EXPECT_EQ(std::isfinite(angle), std::isfinite(s) && std::isfinite(c));
    if (std::isfinite(angle)) {
        EXPECT_LE(std::abs(s), 1.0);
        EXPECT_LE(std::abs(c), 1.0);
    }
}

void TryDegToRadRadToDeg(Draw& d) {
    double const x = d.Value();
    EXPECT_EQ(std::isnan(x), std::isnan(DegToRad(x)));
    EXPECT_EQ(std::isnan(x), std::isnan(RadToDeg(x)));
}

void TryMinmax(Draw& d) {
    double const a = d.Value();
    double const b = d.Value();
    double lo = 1.0;
    double hi = 2.0;
    minmax(lo, hi, a, b);
    if (std::isnan(a) || std::isnan(b)) {
        EXPECT_TRUE(std::isnan(lo) == std::isnan(b) && std::isnan(hi) == std::isnan(b));
    } else {
        EXPECT_LE(lo, hi);
    }
    short sLo = 0;
    short sHi = 0;
    short const sa = d.Short();
    minmax(sLo, sHi, sa, d.Short());
    EXPECT_LE(sLo, sHi);
}

void TryPinValueToRange(Draw& d) {
    double const lo = d.Value();
    double const hi = d.Value();
    double const value = d.Value();
    double pinned = value;
    PinValueToRange(lo, hi, pinned);
    EXPECT_EQ(std::isnan(value), std::isnan(pinned));
}

void TryHygiene(Draw& d) {
    double const value = d.Value();
    double x = value;
    EXPECT_EQ(ZeroIfNaNOrInf(x), !std::isfinite(value));
    x = value;
    EXPECT_FALSE(ZeroIfOutOfRange(x));
    x = value;
    EXPECT_EQ(ValidateFloat(x), !std::isfinite(value));
    EXPECT_TRUE(std::abs(x) <= 113596369920.0);
    float const single = std::abs(value) <= 1e38 ? static_cast<float>(value)
                                                 : std::numeric_limits<float>::infinity();
    float f = single;
    EXPECT_EQ(ValidateFloat(f), !std::isfinite(single));
    EXPECT_TRUE(std::abs(f) <= 113596366848.0f);
    Pt p = d.Point();
    bool const bad = !IsFinite(p);
    EXPECT_EQ(ValidatePoint(p), bad);
    Box r = d.Rect();
    Box const before = r;
    EXPECT_EQ(ValidateRect(r), !IsFinite(before));
}

void TryPointDistances(Draw& d) {
    Pt const a = d.Point();
    Pt const b = d.Point();
    EXPECT_FALSE(EqualTPt(a, b, 0.0));
    Use(TPt(a, b, d.Value()));
    Use(MidPt(a, b));
    EXPECT_FALSE(Hypotenuse(a, b) < 0.0);
    EXPECT_FALSE(LineLength(a, b) < 0.0);
    EXPECT_FALSE(LineMagnitude(a, b) < 0.0);
    TPoint<short> const sa = d.ShortPoint();
    TPoint<short> const sb = d.ShortPoint();
    EXPECT_GE(LineLength(sa, sb), 0.0);
    EXPECT_TRUE(EqualTPt(sa, sb, 40000.0));
}

void TryTPointDouble(Draw& d) {
    Pt p = d.Point();
    Pt const q = d.Point();
    double const s = d.Value();
    EXPECT_EQ(p == p, !IsNaN(p));
    EXPECT_NE(p == q, p != q);
    Use(p + q);
    Use(p - q);
    Use(p * q);
    Use(p / q);
    Use(p * s);
    Use(p / s);
    Use(-p);
    Use(p.Slope());
    Use(p.Angle());
    Use(p.Length());
    Use(p.Hypotenuse());
    Use(Pt(p).Rotate(s));
    Use(Pt(p).Rotate(s, q));
    Use(Pt(p).Scale(s, q.h));
    Use(Pt(p).Offset(q));
    EXPECT_EQ(p.Null(), p.h == 0 && p.v == 0);
    Use(p.Transform(d.Matrix()));
    Use(p.Map(d.Rect(), d.Rect()));
    EXPECT_EQ(p.NSString().front(), '{');
}

void TryTPointShort(Draw& d) {
    TPoint<short> p = d.ShortPoint();
    TPoint<short> const q = d.ShortPoint();
    double const s = d.Value();
    EXPECT_EQ(p - q + q, p);
    EXPECT_EQ(-(-p), p);
    EXPECT_EQ((p * 1.0), p);
    p *= q;
    if (q.h != 0 && q.v != 0) {
        p /= q;
    }
    p *= s;
    p /= s;
    p.Scale(s, d.Value());
    p.Rotate(s);
    p.Rotate(s, q);
    p.Transform(d.Matrix());
    p.Map(d.ShortRect(), d.ShortRect());
    Use(p.Slope());
    Use(p.Length());
    EXPECT_GE(p.Hypotenuse(), 0.0);
    EXPECT_EQ(p.NSString().back(), '}');
}

void TryPointConversions(Draw& d) {
    Pt const p = d.Point();
    Point const rounded = p;
    Use(Pt(rounded));
    if (std::abs(p.h) < 3e38 && std::abs(p.v) < 3e38) {
        CGPoint const cg = p;
        EXPECT_EQ(cg.x, static_cast<float>(p.h));
        _NSPoint const ns = p;
        EXPECT_EQ(ns.y, static_cast<float>(p.v));
        EXPECT_EQ(TPoint<short>(cg), TPoint<short>(Pt(cg)));
        Use(Pt(ns));
    }
    CFPoint const fixed(p);
    EXPECT_TRUE(fixed == CFPoint(fixed));
    Use(Pt(fixed));
    EXPECT_EQ(Pt(CFPoint(TPoint<short>(p))), Pt(TPoint<short>(p)));
}

void TryTRectDouble(Draw& d) {
    Box r = d.Rect();
    Box const other = d.Rect();
    Pt const p = d.Point();
    double const s = d.Value();
    EXPECT_NE(r == other, r != other);
    EXPECT_FALSE(r.Null() && !r.Empty());
    Use(r.Width() + r.Height());
    Use(r.MidPt());
    Use(r.GetSize());
    EXPECT_FALSE(r.Contains(Pt(std::nan(""), 0.0)));
    Use((r + p).TopRight());
    Use((r - p).BottomLeft());
    Use((r * s).TopLeft());
    Use((r / s).BottomRight());
    Box united = r | other;
    united |= p;
    Box const common = r & other;
    EXPECT_TRUE(common == other || common == r || common.Valid() || r.Null() || other.Null());
    Use(Box(r).FloorCeil().TopLeft());
    Use(Box(r).Inset(s, p.h).TopLeft());
    Use(Box(r).Outset(s).TopLeft());
    Use(Box(r).Scale(s, p.v).TopLeft());
    Use(Box(r).Map(other, d.Rect()).TopLeft());
    Use(Box(r).Transform(d.Matrix()).TopLeft());
    EXPECT_TRUE(NaiveSectTRect(r, other) == NaiveSectTRect(other, r));
    EXPECT_EQ(r.NSString().back(), '}');
    Box rectified = r;
    rectified.Rectify();
    EXPECT_FALSE(rectified.top > rectified.bottom || rectified.left > rectified.right);
    Use(Box(p, s, s).MidPt());
    Use(Box(p, r[kTopLeft]).MidPt());
    Box three;
    three.Set(p, r[kTopLeft], r[kBottomRight]);
    Use(three.TopLeft());
}

void TryTRectShort(Draw& d) {
    TRect<short> r = d.ShortRect();
    TRect<short> const other = d.ShortRect();
    TRect<short> out;
    bool const meet = SectTRect(r, other, out);
    EXPECT_EQ(meet, NaiveSectTRect(r, other));
    EXPECT_TRUE(out.Valid());
    r += d.ShortPoint();
    r -= d.ShortPoint();
    r *= d.ShortPoint();
    r *= d.Value();
    r /= d.Value();
    double const sh = d.Value();
    r.Scale(sh, d.Value());
    r.Inset(d.Short());
    r.Outset(d.Short());
    r |= other;
    r &= other;
    r.FloorCeil();
    Use(r.MidPt());
    r.Map(other, d.ShortRect());
    r.Transform(d.Matrix());
    EXPECT_EQ(r.NSString().front(), '{');
}

void TryRectConversions(Draw& d) {
    Box const r = d.Rect();
    Rect const rounded = r;
    EXPECT_EQ(TRect<short>(rounded).top, rounded.top);
    CFRect const fixed(r);
    Use(Box(fixed).TopLeft());
    Use(Pt(fixed.MidPt()));
    TRect<short> const shorts = fixed;
    EXPECT_EQ(shorts.left, static_cast<short>(Fix2Long(fixed.left)));
    PMRect const pm = {d.Value(), d.Value(), d.Value(), d.Value()};
    Use(Box(pm).TopLeft());
    Use(Pt(TRect<short>(pm).TopLeft()));
    auto const single = [&d] {
        double const x = d.Value();
        return std::abs(x) < 3e38 ? static_cast<float>(x) : std::numeric_limits<float>::quiet_NaN();
    };
    CGRect const cg = CGRectMake(single(), single(), single(), single());
    Use(Box(cg).TopLeft());
    Use(Pt(TRect<short>(cg).TopLeft()));
}

void TryCMatrix3x3(Draw& d) {
    CMatrix3x3 m = d.Matrix();
    CMatrix3x3 const n = d.Matrix();
    Pt p = d.Point();
    m.Transform(p);
    Use(p);
    m.DTransform(p);
    Use(p);
    EXPECT_EQ((m * n).mKind, 0);
    EXPECT_EQ(Concat(m, m).mKind, 0);
    bool threw = false;
    try {
        CMatrix3x3 out;
        EXPECT_TRUE(m.Inverse(out));
        EXPECT_EQ(out.mKind, 0x440);
    } catch (char const* what) {
        threw = true;
        EXPECT_STREQ(what, "marix_singularity");
    }
    EXPECT_EQ(threw, m.IsSingular());
    Pt const a = d.Point();
    Pt const b = d.Point();
    Pt const c = d.Point();
    CMatrix3x3 built;
    built.Translate(a).Scale(b).Rotate(c.h).Shear(c);
    EXPECT_EQ(built.mKind, 0);
    EXPECT_EQ(CMatrix3x3().Rotate(a.h, b).mKind, 0x40);
    EXPECT_EQ(CMatrix3x3().Rotate(a, b, c).mKind, 0x40);
    EXPECT_EQ(CMatrix3x3().Scale(a, b, c).mKind, 0x80);
    EXPECT_EQ(CMatrix3x3().Reflect(a, b).mKind, 0x8);
    EXPECT_EQ(CMatrix3x3().Reflect(a, b, c).mKind, 0x100);
    EXPECT_EQ(CMatrix3x3().Shear(a, b, c).mKind, 0x200);
    EXPECT_EQ(CMatrix3x3().Map(d.Rect(), d.Rect()).mKind, 0x10);
    std::ostringstream text;
    text << m;
    EXPECT_FALSE(text.str().empty());
}

void TryURotation(Draw& d) {
    double const angle = d.Value();
    SetRotate(angle);
    SetUnRotate(-angle);
    Pt p = d.Point();
    bool const finite = IsFinite(p);
    Transform(p);
    EXPECT_FALSE(IsFinite(p) && !(finite && std::isfinite(angle)));
    UnTransform(p);
    Use(p);
    SetRotate(0.0);
    SetUnRotate(0.0);
}

void TryTLine(Draw& d) {
    Segment line = d.Line();
    Segment const other = d.Line();
    Pt const p = d.Point();
    double const x = d.Value();
    Use(line.Length());
    Use(line.Angle());
    Use(line.Slope());
    Use(line.TPt(x));
    Use(line.Bounds().TopLeft());
    double const cosine = line.CosTheta(other);
    Use(cosine);
    Use(line.DeltaAngle(other));
    int const side = line.HalfSpace(p);
    EXPECT_TRUE(side == 1 || side == -1);
    Use(line.PerpendicularPt(p));
    Use(line.Distance(p));
    EXPECT_FALSE(line.HitTest(Pt(std::nan(""), 0.0), x));
    EXPECT_FALSE(line.HitTest(p, std::nan("")));
    EXPECT_FALSE(Segment(p, p).Intersects(line, line.mStart) && p == p);
    line = d.Line();
    Pt where(1.5, 2.5);
    if (!line.Intersects(other, where)) {
        EXPECT_EQ(where, Pt(1.5, 2.5));
    }
    Use(line.SegmentsIntersect(other, where));
    line.YIntersect(x, where);
    Use(line.CalcPtFromEnd(x, d.Flag()));
    Use(line.FindTValue(p));
    Use(line.PinPtToLineSeg(p));
    line.TrimEnd(x, d.Flag());
    line.Rotate(x).Rotate(x, p);
    line += p;
    Use(line.PerpendicularBisector().mEnd);
    if (IsFinite(p)) {
        EXPECT_TRUE(HitTest(p, p, p, 1.0));
    } else if (IsNaN(p)) {
        EXPECT_FALSE(HitTest(p, p, p, 1.0));
    }
}

void TryCircles(Draw& d) {
    Pt const a = d.Point();
    Pt const b = d.Point();
    Box out;
    RadiusCircle(a, b, out);
    Use(out.MidPt());
    DiameterCircle(a, b, out);
    Use(out.MidPt());
    Pt3Circle(a, b, d.Point(), out);
    Use(out.MidPt());
}

} // namespace

std::vector<Case> trammel_test::special::PlaneCases() {
    return {
        {"SinCos", TrySinCos},
        {"DegToRad_RadToDeg", TryDegToRadRadToDeg},
        {"minmax", TryMinmax},
        {"PinValueToRange", TryPinValueToRange},
        {"Hygiene", TryHygiene},
        {"PointDistances", TryPointDistances},
        {"TPoint_double", TryTPointDouble},
        {"TPoint_short", TryTPointShort},
        {"PointConversions", TryPointConversions},
        {"TRect_double", TryTRectDouble},
        {"TRect_short", TryTRectShort},
        {"RectConversions", TryRectConversions},
        {"CMatrix3x3", TryCMatrix3x3},
        {"URotation", TryURotation},
        {"TLine", TryTLine},
        {"Circles", TryCircles},
    };
}

// SPDX-License-Identifier: MIT

// The flattening's guarantee, judged by root solving: the greatest distance between a curve and its
// polyline is taken at the zeros of polynomials in long double, without samples.

#include "AccurateCurve.h"

#include "AccurateCurve_p.h"
#include "CBSpline.h"
#include "CBezier.h"
#include "CurveTruth.h"
#include "TPoint.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

namespace {

using trammel_test::AnyCurve;
using trammel_test::Dot;
using trammel_test::Length;
using trammel_test::Random;
using trammel_test::SegmentDistance;
using trammel_test::Text;
using trammel_test::Wide;
using trammel_test::Widened;
using trammel_test::WidePt;

typedef TPoint<double> Pt;
/// Coefficients of a polynomial, the constant first.
typedef std::vector<Wide> Polynomial;

Wide ValueAt(Polynomial const& p, Wide t) {
    Wide value = 0;
    for (std::size_t i = p.size(); i-- > 0;) {
        value = value * t + p[i];
    }
    return value;
}

/// The zeros from `from` to `to`, and the places between where the polynomial may touch zero: those
/// of its derivatives. Between neighbours of these it is monotone, and bisection finds a zero.
std::vector<Wide> ZerosAndMore(Polynomial const& p, Wide from, Wide to) {
    if (p.size() < 2) {
        return {};
    }
    Polynomial derivative;
    for (std::size_t i = 1; i < p.size(); ++i) {
        derivative.push_back(p[i] * static_cast<Wide>(i));
    }
    std::vector<Wide> places = ZerosAndMore(derivative, from, to);
    std::vector<Wide> ends = places;
    ends.push_back(to);
    std::sort(ends.begin(), ends.end());
    Wide low = from;
    for (Wide const end : ends) {
        Wide a = low;
        Wide b = end;
        bool const rising = ValueAt(p, a) < 0;
        if (rising != (ValueAt(p, b) < 0)) {
            for (int i = 0; i < 64 && a < b; ++i) {
                Wide const middle = (a + b) / 2;
                ((ValueAt(p, middle) < 0) == rising ? a : b) = middle;
            }
            places.push_back(a);
            places.push_back(b);
        }
        low = end;
    }
    return places;
}

/// A curve relative to its start, as polynomials in both coordinates, and its points' places.
class Judge {
public:
    explicit Judge(CBezier const& c) : mStart(Widened(c.P0)) {
        WidePt const p1 = Widened(c.P1) - mStart;
        WidePt const p2 = Widened(c.P2) - mStart;
        WidePt const p3 = Widened(c.P3) - mStart;
        WidePt const b = p2 - p1 * 2;
        mH = {0, 3 * p1.h, 3 * b.h, p3.h + 3 * (p1.h - p2.h)};
        mV = {0, 3 * p1.v, 3 * b.v, p3.v + 3 * (p1.v - p2.v)};
        for (Pt const& p : {c.P0, c.P1, c.P2, c.P3}) {
            mGreatest = std::max({mGreatest, Widened(std::abs(p.h)), Widened(std::abs(p.v))});
        }
    }
    /// True when the polyline's points lie on the curve at increasing parameters, from 0 to 1, such
    /// that each piece of the curve is within the distance of its chord. A piece runs from end to
    /// end of its chord, so then the chord is near the piece, too.
    bool Keeps(std::vector<Pt> const& points, double distance) const {
        Wide const rounding = 0x1p-48L * mGreatest;
        Wide const limit = Widened(distance) * (1 + 1e-12L) + rounding;
        std::vector<Wide> reached = {0}; // the parameters at which the last point may lie
        for (std::size_t i = 1; i < points.size(); ++i) {
            WidePt const from = Widened(points[i - 1]) - mStart;
            WidePt const to = Widened(points[i]) - mStart;
            std::vector<Wide> places =
                i + 1 < points.size() ? PlacesOf(to, rounding) : Polynomial{1};
            std::vector<Wide> next;
            for (Wide const end : places) {
                for (Wide const begin : reached) {
                    if (begin <= end && Farthest(begin, end, from, to) <= limit) {
                        next.push_back(end);
                        break;
                    }
                }
            }
            if (next.empty()) {
                return false;
            }
            reached = next;
        }
        return true;
    }

private:
    WidePt At(Wide t) const { return {ValueAt(mH, t), ValueAt(mV, t)}; }
    /// h·B.h + v·B.v - less
    Polynomial Along(Wide h, Wide v, Wide less) const {
        Polynomial p = {-less, 0, 0, 0};
        for (std::size_t i = 0; i < 4; ++i) {
            p[i] += h * mH[i] + v * mV[i];
        }
        return p;
    }
    static Polynomial Derivative(Polynomial const& p) { return {p[1], 2 * p[2], 3 * p[3]}; }
    /// (B - q)·B', which is zero where the distance from q has an extreme.
    Polynomial Toward(WidePt const& q) const {
        Polynomial product(6, 0);
        Polynomial const h = Along(1, 0, q.h);
        Polynomial const v = Along(0, 1, q.v);
        Polynomial const dh = Derivative(h);
        Polynomial const dv = Derivative(v);
        for (std::size_t i = 0; i < 4; ++i) {
            for (std::size_t k = 0; k < 3; ++k) {
                product[i + k] += h[i] * dh[k] + v[i] * dv[k];
            }
        }
        return product;
    }
    /// The parameters at which the curve is at `q`, in order.
    std::vector<Wide> PlacesOf(WidePt const& q, Wide rounding) const {
        // Near a turn the zeros in one coordinate are the sharper ones.
        std::vector<Wide> places;
        for (Polynomial const& p : {Along(1, 0, q.h), Along(0, 1, q.v), Toward(q)}) {
            for (Wide const t : ZerosAndMore(p, 0, 1)) {
                if (Length(At(t) - q) <= rounding) {
                    places.push_back(t);
                }
            }
        }
        std::sort(places.begin(), places.end());
        return places;
    }
    /// The greatest distance of a piece from the segment between two points.
    Wide Farthest(Wide begin, Wide end, WidePt const& from, WidePt const& to) const {
        WidePt const d = to - from;
        Polynomial const across = Along(-d.v, d.h, 0);
        Polynomial const along = Along(d.h, d.v, Dot(from, d));
        Polynomial beyond = along;
        beyond[0] -= Dot(d, d);
        std::vector<Wide> places = {begin, end};
        auto const add = [&](Polynomial const& p) {
            for (Wide const t : ZerosAndMore(p, begin, end)) {
                places.push_back(t);
            }
        };
        add(Derivative(across));
        add(along);
        add(beyond);
        bool const within = Dot(d, d) > 0 && std::all_of(places.begin(), places.end(), [&](Wide t) {
                                return ValueAt(along, t) >= 0 && ValueAt(beyond, t) <= 0;
                            });
        if (!within) {
            add(Toward(from));
            add(Toward(to));
        }
        Wide worst = 0;
        for (Wide const t : places) {
            worst = std::max(worst, SegmentDistance(At(t), from, to));
        }
        return worst;
    }

    WidePt mStart;
    Polynomial mH;
    Polynomial mV;
    Wide mGreatest = 0;
};

/// Flattens, and judges. Returns how many points there are.
std::size_t ExpectKept(CBezier const& curve, double tolerance) {
    std::array<Pt, 2000> points;
    trammel::Flattened const flat =
        trammel::FlattenInto(curve, tolerance, points.data(), points.size());
    EXPECT_LE(flat.count, points.size());
    EXPECT_EQ(flat.distance, tolerance);
    EXPECT_TRUE(Judge(curve).Keeps({points.begin(), points.begin() + static_cast<long>(flat.count)},
                                   flat.distance))
        << Text(curve) << " at " << tolerance;
    return flat.count;
}

TEST(FlatteningJudge, RejectsAPolylineThatIsBarelyTooFar) {
    // v = 12t(1 - t), so 3 above its chord.
    CBezier const curve({0, 0}, {10, 4}, {20, 4}, {30, 0});
    Judge const judge(curve);
    EXPECT_TRUE(judge.Keeps({{0, 0}, {30, 0}}, 3.0));
    EXPECT_FALSE(judge.Keeps({{0, 0}, {30, 0}}, 3.0 - 1e-9));
    EXPECT_TRUE(judge.Keeps({{0, 0}, {15, 3}, {30, 0}}, 0.7499));
    EXPECT_FALSE(judge.Keeps({{0, 0}, {15, 3}, {30, 0}}, 0.66));
    EXPECT_FALSE(judge.Keeps({{0, 0}, {15, 3.001}, {30, 0}}, 3.0)); // not on the curve
    // h = 9t(1 - t): doubles back at 2.25.
    Judge const back(CBezier({0, 0}, {3, 0}, {3, 0}, {0, 0}));
    EXPECT_TRUE(back.Keeps({{0, 0}, {0, 0}}, 2.25));
    EXPECT_FALSE(back.Keeps({{0, 0}, {0, 0}}, 2.24));
    EXPECT_TRUE(back.Keeps({{0, 0}, {2.25, 0}, {0, 0}}, 0.0));
}

TEST(FlatteningJudge, FindsTheToleranceKeptOfAnyCurve) {
    Random random(51);
    for (int i = 0; i < 250; ++i) {
        CBezier const curve = AnyCurve(random);
        for (double const tolerance : {60.0, 3.0, 0.3, 0.03}) {
            ExpectKept(curve, tolerance);
        }
    }
}

TEST(FlatteningJudge, FindsTheToleranceKeptOfHardCurves) {
    std::vector<CBezier> const curves = {
        {{0, 0}, {100, 100}, {0, 100}, {100, 0}},      // a cusp
        {{0, 0}, {100, 100}, {1e-9, 100}, {100, 0}},   // nearly so
        {{0, 0}, {200, 100}, {-100, 100}, {100, 0}},   // a loop
        {{0, 0}, {90, 120}, {-90, 120}, {0, 0}},       // a closed one
        {{0, 0}, {60, 40}, {40, -40}, {100, 0}},       // two bends
        {{0, 0}, {50, 1e-7}, {70, -1e-7}, {100, 0}},   // nearly straight
        {{0, 0}, {300, 1e-3}, {-200, 1e-3}, {100, 0}}, // there and back and there
        {{0, 0}, {0, 0}, {100, 50}, {100, 50}},        // straight, at rest at its ends
        {{0, 0}, {0, 0}, {0, 80}, {100, 80}},          // at rest at its start
        {{0, 0}, {0, 55}, {45, 100}, {100, 100}},      // a quarter turn
        {{0, 0}, {0.2, 90}, {0.3, 90}, {0.5, 0}},      // a spike
        {{0, 0}, {1000, 0.5}, {-999, 0.5}, {1, 0}},    // a chord shorter than the tolerance
    };
    for (CBezier const& curve : curves) {
        for (double const scale : {0x1p-130, 1e-3, 1.0, 1e3, 0x1p130}) {
            for (double const tolerance : {30.0, 1.0, 0.1, 0.01, 1e-3}) {
                ExpectKept(curve * scale, tolerance * scale);
            }
        }
        for (double const far : {1e3, 1e6, 1e9}) {
            Pt const place(far, -0.7 * far);
            ExpectKept(
                CBezier(curve.P0 + place, curve.P1 + place, curve.P2 + place, curve.P3 + place),
                0.1);
        }
    }
}

/// The curves of a font's Latin glyphs, 100 units to the em.
std::vector<CBezier> GlyphCurves(char const* font) {
    struct Sink {
        Pt at;
        double scale;
        std::vector<CBezier> curves;
        Pt Of(FT_Vector const* p) const {
            return Pt(static_cast<double>(p->x), static_cast<double>(p->y)) * scale;
        }
        static Sink& From(void* user) { return *static_cast<Sink*>(user); }
        static int Move(FT_Vector const* to, void* user) {
            From(user).at = From(user).Of(to);
            return 0;
        }
        static int Conic(FT_Vector const* control, FT_Vector const* to, void* user) {
            Sink& sink = From(user);
            Pt const end = sink.Of(to);
            sink.curves.push_back(trammel_detail::Raised(CBSpline(sink.at, sink.Of(control), end)));
            sink.at = end;
            return 0;
        }
        static int Cubic(FT_Vector const* c1, FT_Vector const* c2, FT_Vector const* to,
                         void* user) {
            Sink& sink = From(user);
            Pt const end = sink.Of(to);
            sink.curves.emplace_back(sink.at, sink.Of(c1), sink.Of(c2), end);
            sink.at = end;
            return 0;
        }
    };
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    EXPECT_EQ(FT_Init_FreeType(&library), 0);
    EXPECT_EQ(FT_New_Face(library, font, 0, &face), 0);
    Sink sink = {Pt(), 100.0 / face->units_per_EM, {}};
    FT_Outline_Funcs const functions = {&Sink::Move, &Sink::Move, &Sink::Conic, &Sink::Cubic, 0, 0};
    for (FT_ULong code = 0x21; code <= 0x7E; ++code) {
        EXPECT_EQ(FT_Load_Char(face, code, FT_LOAD_NO_SCALE), 0);
        EXPECT_EQ(FT_Outline_Decompose(&face->glyph->outline, &functions, &sink), 0);
    }
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    return sink.curves;
}

// The numbers of points are those of the benchmark's tolerance; they may fall, but not rise.
TEST(FlatteningJudge, FindsTheToleranceKeptOfGlyphs) {
    struct Font {
        char const* file;
        double most;
    };
    for (Font const& font :
         {Font{"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", 4.72}, // fonts-dejavu-core
          Font{"/usr/share/fonts/opentype/ebgaramond/EBGaramond12-Regular.otf", 4.34}}) {
        if (!std::ifstream(font.file)) {
            GTEST_SKIP() << "there is no " << font.file << "; script/setup demo installs it";
        }
        std::vector<CBezier> const curves = GlyphCurves(font.file);
        ASSERT_GT(curves.size(), 500U);
        std::size_t points = 0;
        for (CBezier const& curve : curves) {
            points += ExpectKept(curve, 0.1);
            ExpectKept(curve, 1.0);
        }
        double const mean = static_cast<double>(points) / static_cast<double>(curves.size());
        EXPECT_LE(mean, font.most);
    }
}

} // namespace

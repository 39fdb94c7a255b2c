// SPDX-License-Identifier: MIT

#include "GeometryText.h"

#include "CBSpline.h"
#include "CBezier.h"
#include "CMatrix3x3.h"
#include "CPath.h"
#include "SvgPath.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

/// An application's own operators, which the library's must not displace.
static std::ostream& operator<<(std::ostream& out, TPoint<short> const& p) {
    return out << "own " << p.h;
}

namespace app {

template <class T> std::ostream& operator<<(std::ostream& out, TRect<T> const& /*r*/) {
    return out << "app's rectangle";
}

template <class T> std::string Printed(T const& value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

} // namespace app

namespace {

using trammel::ToString;
using trammel_test::kInf;
using trammel_test::kNaN;

typedef TPoint<double> Pt;

template <class T> std::string Printed(T const& value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

CPath Mixed() {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(4, -0.5)).CurveTo(Pt(5, 1), Pt(5, 2), Pt(4, 3)).ClosePath();
    return path;
}

TEST(GeometryText, EveryKindHasItsText) {
    EXPECT_EQ(ToString(Pt(1.5, -2)), "(1.5, -2)");
    EXPECT_EQ(ToString(TPoint<short>(3, -4)), "(3, -4)");
    EXPECT_EQ(ToString(TRect<double>(1, 2, 3.25, 4)), "[1, 2, 3.25, 4]");
    EXPECT_EQ(ToString(TRect<short>(1, 2, 3, 4)), "[1, 2, 3, 4]");
    EXPECT_EQ(ToString(TLine<double>(Pt(1, 2), Pt(3, 4))), "(1, 2)-(3, 4)");
    EXPECT_EQ(ToString(CBezier(Pt(0, 0), Pt(1, 0), Pt(2, 1), Pt(2, 2))),
              "(0, 0)-(1, 0)-(2, 1)-(2, 2)");
    EXPECT_EQ(ToString(CBSpline(Pt(0, 0), Pt(1, 0), Pt(2, 1))), "(0, 0)-(1, 0)-(2, 1)");
    EXPECT_EQ(ToString(CMatrix3x3(1, 0.5, -2, 1, 30, 1e20, 7)), "matrix(1 0.5 -2 1 30 1e+20)");
    EXPECT_EQ(ToString(Mixed()), "M 0 0 L 4 -0.5 C 5 1 5 2 4 3 Z");
    EXPECT_EQ(ToString(CPath()), "");
}

TEST(GeometryText, StreamsTakeTheTexts) {
    EXPECT_EQ(Printed(Pt(1.5, -2)), "(1.5, -2)");
    EXPECT_EQ(Printed(TRect<double>(1, 2, 3, 4)), "[1, 2, 3, 4]");
    EXPECT_EQ(Printed(TLine<double>(Pt(1, 2), Pt(3, 4))), "(1, 2)-(3, 4)");
    EXPECT_EQ(Printed(CBezier(Pt(0, 0), Pt(1, 0), Pt(2, 1), Pt(2, 2))),
              "(0, 0)-(1, 0)-(2, 1)-(2, 2)");
    EXPECT_EQ(Printed(CBSpline(Pt(0, 0), Pt(1, 0), Pt(2, 1))), "(0, 0)-(1, 0)-(2, 1)");
    EXPECT_EQ(Printed(Mixed()), "M 0 0 L 4 -0.5 C 5 1 5 2 4 3 Z");
    std::ostringstream chain;
    chain << Pt(1, 2) << ' ' << 3;
    EXPECT_EQ(chain.str(), "(1, 2) 3");
}

TEST(GeometryText, MatrixKeepsItsOwnStreamFormat) {
    EXPECT_EQ(Printed(CMatrix3x3()), "1001000");
    EXPECT_EQ(app::Printed(CMatrix3x3()), "1001000");
}

TEST(GeometryText, OperatorOfAnApplicationGoesFirst) {
    EXPECT_EQ(Printed(TPoint<short>(3, 4)), "own 3");
    EXPECT_EQ(app::Printed(TRect<double>(1, 2, 3, 4)), "app's rectangle");
    EXPECT_EQ(app::Printed(Pt(1, 2)), "(1, 2)") << "found from another namespace";
}

TEST(GeometryText, StreamStateNeitherCountsNorChanges) {
    std::ostringstream out;
    out << std::hex << std::showpos << std::showbase << std::uppercase << std::scientific
        << std::setprecision(2);
    std::ios::fmtflags const flags = out.flags();
    out << Pt(255, 0.123456789) << TRect<double>(10, 0, 1, 2);
    EXPECT_EQ(out.str(), "(255, 0.123456789)[10, 0, 1, 2]");
    EXPECT_EQ(out.flags(), flags);
    EXPECT_EQ(out.precision(), 2);
}

TEST(GeometryText, WidthAndFillHoldForTheWholeText) {
    std::ostringstream out;
    out << std::setfill('.') << std::setw(10) << Pt(1, 2) << Pt(3, 4);
    EXPECT_EQ(out.str(), "....(1, 2)(3, 4)");
}

/// Numbers with a decimal comma and groups of thousands.
struct Commas : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(GeometryText, LocaleDoesNotCount) {
    std::ostringstream out;
    out.imbue(std::locale(std::locale::classic(), new Commas));
    out << Pt(1234567.5, -2000) << ' ' << 1234.5;
    EXPECT_EQ(out.str(), "(1234567.5, -2000) 1.234,5") << "the number alone follows it";
}

TEST(GeometryText, NumbersReadBackToTheSameBits) {
    std::mt19937_64 random(41);
    for (int i = 0; i < 20000; ++i) {
        std::uint64_t const bits = random();
        double number = 0.0;
        std::memcpy(&number, &bits, sizeof number);
        std::string const text = ToString(Pt(number, 1));
        double const back = std::strtod(text.c_str() + 1, nullptr);
        if (number == number) {
            EXPECT_EQ(std::memcmp(&back, &number, sizeof back), 0) << text;
        } else {
            EXPECT_NE(back, back) << text;
        }
    }
    EXPECT_EQ(ToString(Pt(-0.0, 5e-324)), "(-0, 5e-324)");
    EXPECT_EQ(ToString(Pt(kInf, -kInf)), "(inf, -inf)");
    EXPECT_EQ(ToString(Pt(std::numeric_limits<double>::max(), std::abs(kNaN))),
              "(1.7976931348623157e+308, nan)");
}

TEST(GeometryText, PathTextReadsBackToTheSamePath) {
    std::mt19937_64 random(42);
    std::uniform_real_distribution<double> coordinate(-1e3, 1e3);
    auto const point = [&] { return Pt(coordinate(random), coordinate(random)); };
    for (int i = 0; i < 500; ++i) {
        CPath path;
        path.MoveTo(point()).LineTo(point()).CurveTo(point(), point(), point()).ClosePath();
        path.MoveTo(point()).CurveTo(point(), point(), point());
        trammel::SvgPathResult const read = trammel::ReadSvgPath(ToString(path));
        ASSERT_FALSE(read.error);
        EXPECT_EQ(read.path.mCtls, path.mCtls);
        EXPECT_EQ(read.path.mPts, path.mPts);
    }
}

TEST(GeometryText, PathTextHasWhatIsOddAboutAPath) {
    CPath path;
    path.CurveTo(Pt(kNaN, 0), Pt(1, 0), Pt(1, 1));
    path.AddCtl(9).AddCtl(kPathLine).AddPt(Pt(2, 2)).AddCtl(kPathCurve).AddPt(Pt(3, 3));
    EXPECT_EQ(ToString(path), "C nan 0 1 0 1 1 ? L 2 2 ...");
    CPath short0;
    short0.AddCtl(kPathMove);
    EXPECT_EQ(ToString(short0), "...");
}

} // namespace

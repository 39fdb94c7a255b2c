// SPDX-License-Identifier: MIT

#include "SvgPath.h"

#include "CMatrix3x3.h"
#include "Finite.h"
#include "PathText.h"
#include "SvgTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using trammel::ReadSvgPath;
using trammel::SvgPathResult;
using trammel::WriteSvgPath;
using trammel_test::Elements;
using trammel_test::IsFinite;
using trammel_test::Path;
using trammel_test::Raw;
using trammel_test::Same;

typedef TPoint<double> Pt;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct WriteRow {
    char const* read; // in any spelling
    char const* written;
};

void PrintTo(WriteRow const& row, std::ostream* out) { *out << '"' << row.read << '"'; }

class WriteSvgPathTable : public ::testing::TestWithParam<WriteRow> {};

TEST_P(WriteSvgPathTable, GivesTheShortestText) {
    CPath const path = Path(GetParam().read);
    std::string const written = WriteSvgPath(path);
    EXPECT_EQ(written, GetParam().written);
    EXPECT_TRUE(Same(Path(written), path));
}

INSTANTIATE_TEST_SUITE_P(
    All, WriteSvgPathTable,
    ::testing::Values(
        WriteRow{"", ""}, WriteRow{"M 1 2", "M1 2"}, WriteRow{"M 1 2 Z", "M1 2Z"},
        // Numbers.
        WriteRow{"M 0.5 -0.5", "M.5-.5"}, WriteRow{"M 0.5 0.25", "M.5.25"},
        WriteRow{"M -0 0", "M-0 0"}, WriteRow{"M 100 1000", "M100 1e3"},
        WriteRow{"M 1500 15000", "M1500 15e3"}, WriteRow{"M 0.001 0.0001", "M.001 1e-4"},
        WriteRow{"M 0.0015 0.00015", "M.0015 15e-5"}, WriteRow{"M 1e-4 0.5", "M1e-4.5"},
        WriteRow{"M 1e21 5e-324", "M1e21 5e-324"}, WriteRow{"M 12.5 1e100", "M12.5 1e100"},
        WriteRow{"M 123456789 0.1", "M123456789 .1"},
        WriteRow{"M 1.7976931348623157e308 0", "M17976931348623157e292 0"},
        // Commands.
        WriteRow{"M 1 2 L 3 4 L 5 7", "M1 2 3 4 5 7"},
        WriteRow{"M 101 102 L 103 105 L 104 101", "M101 102l2 3 1-4"},
        WriteRow{"M 1 2 L 9 2 L 9 8 L 1 8 Z", "M1 2H9V8H1Z"},
        WriteRow{"M 101 102 L 109 102 L 109 108 L 101 108 Z", "M101 102h8v6h-8Z"},
        WriteRow{"M 0 0 C 1 2 3 4 5 6", "M0 0C1 2 3 4 5 6"},
        WriteRow{"M 0 0 C 1 2 3 4 5 6 C 7 8 9 9 8 7", "M0 0C1 2 3 4 5 6S9 9 8 7"},
        WriteRow{"M 1 2 C 1 2 3 4 5 6", "M1 2S3 4 5 6"},
        WriteRow{"M 0 0 L 9 5 C 1 2 3 4 5 6 7 9 9 9 8 7", "M0 0 9 5C1 2 3 4 5 6 7 9 9 9 8 7"},
        // The start of a closed subpath is not written where something is drawn from there.
        WriteRow{"M 3 4 L 5 7 Z M 3 4 L 7 5", "M3 4 5 7ZL7 5"},
        WriteRow{"M 3 4 L 5 7 Z M 3 4 C 7 5 8 8 9 9", "M3 4 5 7ZC7 5 8 8 9 9"},
        WriteRow{"M 3 4 L 5 7 Z M 3 4", "M3 4 5 7ZM3 4"},
        WriteRow{"M 3 4 L 5 7 Z M 3 4 Z", "M3 4 5 7ZM3 4Z"},
        WriteRow{"M 3 4 L 5 7 Z M 3 5 L 7 5", "M3 4 5 7ZM3 5H7"},
        WriteRow{"M 0 4 L 5 7 Z M -0 4 L 7 5", "M0 4 5 7ZM-0 4 7 5"},
        // The relative form can have fewer digits than the difference of the doubles.
        WriteRow{"M 100.1 0 L 100.3 0", "M100.1 0h.2"},
        WriteRow{"m.1.3l.1.1.1.1.1.1", "m.1.3.1.1.1.1.1.1"},
        // Minus zero has no relative spelling from zero.
        WriteRow{"M 0 5 L -0 9", "M0 5-0 9"}));

/// Finds the shortest text of a path by trying every text. Each element comes in each command that
/// fits, with its letter and without, with every choice of separators that reads the same.
/// Coordinates and their differences must be short exact decimals.
class ShortestByForce {
public:
    explicit ShortestByForce(CPath const& path) : mPath(path) {}

    std::size_t Length() {
        mBest = std::numeric_limits<std::size_t>::max();
        Extend("", 0, 0, Pt(), Pt());
        return mBest;
    }

private:
    static std::string Spelled(double value) {
        char text[32];
        std::snprintf(text, sizeof text, "%.10g", value);
        std::string number = text;
        if (number.substr(0, 2) == "0.") {
            number.erase(0, 1);
        } else if (number.substr(0, 3) == "-0.") {
            number.erase(1, 1);
        }
        return number;
    }

    void Try(std::string const& text, char letter, std::vector<double> const& numbers,
             std::size_t element, std::size_t point, Pt current, Pt start) {
        for (bool const withLetter : {true, false}) {
            // Every choice of separators, as bits.
            for (std::size_t bits = 0; bits < std::size_t{1} << numbers.size(); ++bits) {
                std::string longer = text;
                if (withLetter) {
                    longer += letter;
                }
                for (std::size_t i = 0; i < numbers.size(); ++i) {
                    longer += (bits >> i & 1) != 0 ? " " : "";
                    longer += Spelled(numbers[i]);
                }
                if (longer.size() < mBest && ReadsSoFar(longer, element + 1, point)) {
                    Extend(longer, element + 1, point, current, start);
                    break; // other separators that read the same are as long or longer
                }
            }
        }
    }

    bool ReadsSoFar(std::string const& text, std::size_t elements, std::size_t points) {
        SvgPathResult const result = ReadSvgPath(text);
        CPath part = mPath;
        part.mCtls.resize(elements);
        part.mPts.resize(points);
        return !result.error && Same(result.path, part);
    }

    void Extend(std::string const& text, std::size_t element, std::size_t point, Pt current,
                Pt start) {
        if (element == mPath.mCtls.size()) {
            mBest = std::min(mBest, text.size());
            return;
        }
        Pt const* const p = mPath.mPts.data() + point;
        switch (mPath.mCtls[element]) {
        case kPathMove:
            Try(text, 'M', {p[0].h, p[0].v}, element, point + 1, p[0], p[0]);
            Try(text, 'm', {p[0].h - current.h, p[0].v - current.v}, element, point + 1, p[0],
                p[0]);
            break;
        case kPathLine:
            Try(text, 'L', {p[0].h, p[0].v}, element, point + 1, p[0], start);
            Try(text, 'l', {p[0].h - current.h, p[0].v - current.v}, element, point + 1, p[0],
                start);
            Try(text, 'H', {p[0].h}, element, point + 1, p[0], start);
            Try(text, 'h', {p[0].h - current.h}, element, point + 1, p[0], start);
            Try(text, 'V', {p[0].v}, element, point + 1, p[0], start);
            Try(text, 'v', {p[0].v - current.v}, element, point + 1, p[0], start);
            break;
        case kPathCurve: {
            std::vector<double> const absolute{p[0].h, p[0].v, p[1].h, p[1].v, p[2].h, p[2].v};
            std::vector<double> relative;
            for (int i = 0; i < 3; ++i) {
                relative.push_back(p[i].h - current.h);
                relative.push_back(p[i].v - current.v);
            }
            auto const tail = [](std::vector<double> const& all) {
                return std::vector<double>(all.begin() + 2, all.end());
            };
            Try(text, 'C', absolute, element, point + 3, p[2], start);
            Try(text, 'c', relative, element, point + 3, p[2], start);
            Try(text, 'S', tail(absolute), element, point + 3, p[2], start);
            Try(text, 's', tail(relative), element, point + 3, p[2], start);
            break;
        }
        default:
            Try(text, 'Z', {}, element, point, start, start);
            break;
        }
    }

    CPath const& mPath;
    std::size_t mBest = 0;
};

TEST(WriteSvgPath, NoTextIsShorter) {
    std::mt19937 random(7);
    auto const coordinate = [&] {
        double const steps[] = {1.0, 0.5, 0.25, 1.0};
        return (static_cast<int>(random() % 60) - 20) * steps[random() % 4];
    };
    auto const point = [&] {
        double const h = coordinate();
        double const v = coordinate();
        return Pt(h, v);
    };
    for (int i = 0; i < 300; ++i) {
        CPath path;
        path.MoveTo(point());
        std::size_t const count = 2 + random() % 3;
        while (path.mCtls.size() < count) {
            Pt const current = path.CurrentPoint();
            switch (random() % 4) {
            case 0:
                path.LineTo(point());
                break;
            case 1:
                path.LineTo(random() % 2 == 0 ? Pt(current.h, coordinate())
                                              : Pt(coordinate(), current.v));
                break;
            case 2:
                if (random() % 2 == 0 && path.mCtls.back() == kPathCurve) {
                    Pt const control = path.mPts[path.mPts.size() - 2];
                    path.CurveTo(current * 2.0 - control, point(), point());
                } else {
                    path.CurveTo(point(), point(), point());
                }
                break;
            default:
                if (path.mOpen && path.mCtls.back() != kPathMove) {
                    path.LineTo(point());
                }
                break;
            }
        }
        if (random() % 3 == 0) {
            path.ClosePath();
        }
        std::string const written = WriteSvgPath(path);
        EXPECT_TRUE(Same(Path(written), path)) << written;
        EXPECT_EQ(written.size(), ShortestByForce(path).Length()) << written;
    }
}

/// Returns a path from the building operations, with coordinates of one flavour.
CPath RandomPath(std::mt19937_64& random, int flavour) {
    auto const coordinate = [&]() -> double {
        switch (flavour) {
        case 0:
            return static_cast<double>(random() % 41) - 20.0;
        case 1:
            return static_cast<double>(random() % 20001) / 1000.0 - 10.0;
        case 2: { // any finite double
            double value;
            do {
                std::uint64_t const bits = random();
                std::memcpy(&value, &bits, sizeof value);
            } while (!std::isfinite(value));
            return value;
        }
        case 3: {
            double const special[] = {0.0,
                                      -0.0,
                                      5e-324,
                                      -5e-324,
                                      2.2250738585072014e-308,
                                      1.7976931348623157e308,
                                      -1.7976931348623157e308,
                                      0.1,
                                      1.0 / 3.0,
                                      9007199254740993.0,
                                      1e21,
                                      1e22,
                                      123456.0};
            return special[random() % std::size(special)];
        }
        default:
            return static_cast<double>(random() % 1000) / 7.0 + 1000.0;
        }
    };
    auto const point = [&] {
        double const h = coordinate();
        double const v = coordinate();
        return Pt(h, v);
    };
    CPath path;
    std::size_t const count = random() % 40;
    for (std::size_t i = 0; i < count; ++i) {
        Pt const current = path.CurrentPoint();
        std::uint64_t const kind = random() % 10;
        if (!path.mOpen || kind == 0) {
            path.MoveTo(path.mCtls.empty() || random() % 2 == 0
                            ? point()
                            : path.mPts[static_cast<std::size_t>(random() % path.mPts.size())]);
        } else if (kind == 1) {
            path.ClosePath();
            if (random() % 2 == 0) { // the path goes on from the start
                std::size_t p = 0;
                Pt start;
                for (char const code : path.mCtls) {
                    if (code == kPathMove) {
                        start = path.mPts[p];
                    }
                    p += code == kPathCurve ? 3 : code == kPathClose ? 0 : 1;
                }
                path.MoveTo(start);
            }
        } else if (kind < 4) {
            path.LineTo(random() % 2 == 0 ? Pt(current.h, coordinate())
                                          : Pt(coordinate(), current.v));
        } else if (kind < 6) {
            path.LineTo(point());
        } else if (kind == 6 && path.mCtls.back() == kPathCurve) {
            Pt const control = path.mPts[path.mPts.size() - 2];
            Pt const c1(2.0 * current.h - control.h, 2.0 * current.v - control.v);
            if (IsFinite(c1)) {
                path.CurveTo(c1, point(), point());
            }
        } else if (kind == 7) {
            path.CurveTo(current, point(), point());
        } else {
            path.CurveTo(point(), point(), point());
        }
    }
    return path;
}

TEST(WriteSvgPath, ReadsBackBitByBit) {
    std::mt19937_64 random(2024);
    for (int flavour = 0; flavour < 5; ++flavour) {
        for (int i = 0; i < 1000; ++i) {
            CPath const path = RandomPath(random, flavour);
            std::string const written = WriteSvgPath(path);
            CPath const back = Path(written);
            ASSERT_TRUE(Same(back, path)) << written << "\n"
                                          << Elements(path) << "\n"
                                          << Elements(back);
            EXPECT_EQ(WriteSvgPath(back), written);
        }
    }
}

TEST(WriteSvgPath, ElementsWithoutMoveStartWhereTheyAreMeasuredFrom) {
    Pt const a(1, 1);
    Pt const b(5, 2);
    Pt const c(6, 7);
    Pt const d(8, 9);
    struct Row {
        char const* codes;
        std::vector<Pt> points;
        char const* written;
    };
    for (Row const& row : {
             Row{"C", {a, b, c}, "M0 0C1 1 5 2 6 7"},
             Row{"CC", {a, b, c, a, c, d}, "M0 0C1 1 5 2 6 7 1 1 6 7 8 9"},
             Row{"CZ", {a, b, c}, "M0 0C1 1 5 2 6 7Z"},
             Row{"MLZC", {a, b, a, c, d}, "M1 1 5 2ZM5 2C1 1 6 7 8 9"},
             // The second close is measured to the first subpath's start, here (1, 1).
             Row{"MLZCZ", {a, b, a, c, d}, "M1 1 5 2ZM5 2C1 1 6 7 8 9L1 1"},
             Row{"MLZCZC",
                 {a, b, a, c, d, a, c, b},
                 "M1 1 5 2ZM5 2C1 1 6 7 8 9L1 1M8 9C1 1 6 7 5 2"},
             Row{"L", {a}, "M0 0 1 1"},
             Row{"MLZL", {a, b, c}, "M1 1 5 2ZM5 2 6 7"},
         }) {
        CPath const path = Raw(row.codes, row.points);
        std::string const written = WriteSvgPath(path);
        EXPECT_EQ(written, row.written) << row.codes;
        EXPECT_NEAR(Path(written).Length(), path.Length(), 1e-12) << row.codes;
    }
}

TEST(WriteSvgPath, LeavesOutWhatHasNoMeaning) {
    Pt const a(1, 1);
    Pt const b(5, 2);
    struct Row {
        char const* name;
        char const* codes;
        std::vector<Pt> points;
        char const* written;
    };
    for (Row const& row : {
             Row{"a close in front", "ZMLZ", {a, b}, "M1 1 5 2Z"},
             Row{"two closes", "MLZZ", {a, b}, "M1 1 5 2Z"},
             Row{"two moves", "MMLZ", {b, a, b}, "M1 1 5 2Z"},
             Row{"two moves with rubbish between", "M?ML", {b, a, b}, "M1 1 5 2"},
             Row{"an unknown code", "M?L?Z?", {a, b}, "M1 1 5 2Z"},
             Row{"a curve without its points", "MLC", {a, b, a, b}, "M1 1 5 2"},
             Row{"a move without its point", "MLM", {a, b}, "M1 1 5 2"},
             Row{"points without codes", "ML", {a, b, a, b}, "M1 1 5 2"},
             Row{"points only", "", {a, b}, ""},
             Row{"closes only", "ZZ", {}, ""},
         }) {
        EXPECT_EQ(WriteSvgPath(Raw(row.codes, row.points)), row.written) << row.name;
    }
}

TEST(WriteSvgPath, WritesWhatATransformHasFlattened) {
    CPath path = Path("M1 2L3 4C5 6 7 8 9 10Z");
    path.Transform(CMatrix3x3().Scale(0.0, 0.0));
    EXPECT_EQ(WriteSvgPath(path), "M0 0H0S0 0 0 0Z");
    EXPECT_EQ(Elements(Path(WriteSvgPath(path))), "M 0,0 Z");
}

TEST(WriteSvgPath, ThrowsAtNumbersThatHaveNoText) {
    for (double const bad : {kNaN, kInfinity, -kInfinity}) {
        for (std::size_t i = 0; i < 5; ++i) {
            for (bool const vertical : {false, true}) {
                CPath path = Path("M1 2L3 4C5 6 7 8 9 10Z");
                (vertical ? path.mPts[i].v : path.mPts[i].h) = bad;
                try {
                    WriteSvgPath(path);
                    FAIL() << "point " << i;
                } catch (std::invalid_argument const& e) {
                    EXPECT_EQ(std::string(e.what()),
                              "element " + std::to_string(std::min<std::size_t>(i, 2)) +
                                  " of the path has a coordinate that is not finite");
                }
            }
        }
    }
}

} // namespace

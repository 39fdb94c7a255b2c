// SPDX-License-Identifier: MIT

// Measures what each function costs for an element of the worst input that we could construct, at
// 1,000 to 1,000,000 elements. script/worst-cases puts the table that this program prints into
// docs/performance.md.
//
//   trammel_worst_cases [WORD]    only the cases whose name holds WORD

#include "trammel.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <functional>
#include <random>
#include <string>
#include <vector>

using namespace trammel;

namespace {

typedef TPoint<double> Pt;
typedef std::size_t Count;

// Input

double Real(Count i) { return static_cast<double>(i); }

/// Teeth side by side, four vertices each, with vertical sides.
Ring Comb(Count n, double shift, bool upright) {
    Ring ring;
    double const height = Real(n);
    auto const add = [&](double h, double v) { ring.push_back(upright ? Pt(h, v) : Pt(v, h)); };
    for (Count i = 0; i < n / 4; ++i) {
        double const h = 4 * Real(i) + shift;
        add(h, 0);
        add(h, height + shift);
        add(h + 2, height + shift);
        add(h + 2, 0);
    }
    add(Real(n), -4 - shift);
    add(0, -4 - shift);
    return ring;
}

/// A star whose edges all pass beside the centre, at the same distance. Nearly all of them cross.
Ring Star(Count n) {
    Ring ring;
    Count const odd = n | 1U;
    for (Count i = 0; i < odd; ++i) {
        double const angle = 2 * pi * Real(i * (odd / 2) % odd) / Real(odd);
        ring.emplace_back(1000 * std::cos(angle), 1000 * std::sin(angle));
    }
    return ring;
}

/// Returns a ring turned by an angle whose sine is 3/5.
Ring Turned(Ring ring) {
    for (Pt& p : ring) {
        p = Pt(0.8 * p.h - 0.6 * p.v, 0.6 * p.h + 0.8 * p.v);
    }
    return ring;
}

/// A star of random radii that does not cross itself.
Ring Ragged(Count n) {
    std::mt19937_64 random(5);
    Ring ring;
    for (Count i = 0; i < n; ++i) {
        double const angle = 2 * pi * Real(i) / Real(n);
        double const radius = 100 + Real(random() % 1000000) * 0.001;
        ring.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return ring;
}

/// A star of spikes that do not cross.
Ring Spikes(Count n) {
    Ring ring;
    for (Count i = 0; i < n; ++i) {
        double const angle = 2 * pi * Real(i) / Real(n);
        double const radius = i % 2 == 0 ? 1000 : 1;
        ring.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return ring;
}

Ring Circle(Count n, double radius) {
    Ring ring;
    for (Count i = 0; i < n; ++i) {
        double const angle = 2 * pi * Real(i) / Real(n);
        ring.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return ring;
}

/// There and back in a band, so that the ring does not cross itself.
Ring Spiral(Count n) {
    Ring ring;
    auto const point = [&](Count i, double in) {
        double const turn = 2 * pi * Real(i) / 100;
        double const radius = 10 * (turn + 7) - in;
        return Pt(radius * std::cos(turn), radius * std::sin(turn));
    };
    for (Count i = 0; i < n / 2; ++i) {
        ring.push_back(point(i, 0));
    }
    for (Count i = n / 2; i-- > 0;) {
        ring.push_back(point(i, 20));
    }
    return ring;
}

/// Long edges that are nearly parallel.
Ring Needles(Count n) {
    Ring ring;
    for (Count i = 0; i < n / 2; ++i) {
        ring.emplace_back(0, 1e-3 * Real(i));
        ring.emplace_back(1e9, 1e-3 * (Real(i) + 0.5));
    }
    ring.emplace_back(-1, Real(n));
    return ring;
}

Ring Noise(Count n) {
    std::mt19937_64 random(5);
    Ring ring;
    for (Count i = 0; i < n; ++i) {
        double const h = Real(random() % 1000000);
        ring.emplace_back(h, Real(random() % 1000000));
    }
    return ring;
}

/// Squares in squares, all of one sense.
std::vector<Ring> Nested(Count n) {
    std::vector<Ring> rings;
    for (Count i = 0; i < n / 4; ++i) {
        double const r = Real(i) + 1;
        rings.push_back({Pt(-r, -r), Pt(r, -r), Pt(r, r), Pt(-r, r)});
    }
    return rings;
}

/// Small squares in a row, and one around all.
std::vector<Ring> Row(Count n) {
    std::vector<Ring> rings = {{Pt(-9, -9), Pt(4 * Real(n), -9), Pt(4 * Real(n), 9), Pt(-9, 9)}};
    for (Count i = 0; i < n / 4; ++i) {
        double const h = 4 * Real(i);
        rings.push_back({Pt(h, 0), Pt(h + 2, 0), Pt(h + 2, 2), Pt(h, 2)});
    }
    return rings;
}

std::vector<TPolygon<double>> Polygons(std::vector<Ring> const& rings) {
    std::vector<TPolygon<double>> polygons;
    for (Ring const& ring : rings) {
        polygons.emplace_back(ring);
    }
    return polygons;
}

CPath Curved(Ring const& ring) {
    CPath path;
    path.MoveTo(ring[0]);
    for (Count i = 1; i + 3 <= ring.size(); i += 3) {
        path.CurveTo(ring[i], ring[i + 1], ring[i + 2]);
    }
    return path.ClosePath();
}

CPath Lines(std::vector<Ring> const& rings) {
    CPath path;
    for (Ring const& ring : rings) {
        path.Append(PolygonPath(ring));
    }
    return path;
}

/// Lines from one point in all directions, each a subpath.
CPath Fan(Count n) {
    CPath path;
    for (Count i = 0; i < n; ++i) {
        double const angle = 2 * pi * Real(i) / Real(n);
        path.MoveTo({0, 0}).LineTo({std::cos(angle), std::sin(angle)});
    }
    return path;
}

Tgpc_polygon Records(std::vector<Ring> const& rings) {
    Tgpc_polygon polygon;
    for (Ring const& ring : rings) {
        Tgcp_contour contour;
        contour.mVertices = ring;
        polygon.AddContour(contour);
    }
    return polygon;
}

// Measurement

/// What one call gave: how many elements are in its result.
typedef std::function<Count()> Run;

struct Case {
    char const* function;
    char const* input;
    Count largest; ///< the largest size, less than 1,000,000 where the result grows with the square
    std::function<Run(Count)> prepare;
    bool allCross = false; ///< nearly every edge crosses every other one: half of the square
};

double Now() {
    std::timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

Count ElementsOf(std::vector<TPolygon<double>> const& polygons) {
    Count count = 0;
    for (TPolygon<double> const& polygon : polygons) {
        count += static_cast<Count>(polygon.LastIndex() + 1);
    }
    return count;
}

Case Combination(char const* input, Count largest, std::function<Ring(Count)> a,
                 std::function<Ring(Count)> b, bool allCross = false) {
    return {"`Tgpc_polygon_clip`", input, largest,
            [a, b](Count n) -> Run {
                return [first = Records({a(n / 2)}), second = Records({b(n / 2)})] {
                    Tgpc_polygon result;
                    Tgpc_polygon_clip(kPolyXor, first, second, result);
                    Count count = 0;
                    for (Tgcp_contour const& contour : result.mContours) {
                        count += contour.mVertices.size();
                    }
                    return count;
                };
            },
            allCross};
}

Case Outlines(char const* input, Count largest, std::function<CPath(Count)> a,
              std::function<CPath(Count)> b) {
    return {"`Boolean` of outlines", input, largest, [a, b](Count n) -> Run {
                return [first = a(n / 2), second = b(n / 2)] {
                    CPath out;
                    Boolean(kPolyXor, first, FillRule::kEvenOdd, second, FillRule::kEvenOdd, 0.01,
                            out);
                    return static_cast<Count>(out.mPts.size());
                };
            }};
}

Case Fitting(char const* input, std::function<Ring(Count)> points, double tolerance) {
    return {"`FitCurves`", input, 1000000, [=](Count n) -> Run {
                return [all = points(n), tolerance] {
                    CPath out;
                    FitCurves(all, tolerance, 0.5, out);
                    return static_cast<Count>(out.mPts.size());
                };
            }};
}

Case Simplifying(char const* input, std::function<Ring(Count)> points, double tolerance,
                 Count largest = 1000000) {
    return {"`SimplifyRings`", input, largest, [=](Count n) -> Run {
                return [rings = std::vector<Ring>{points(n)}, tolerance] {
                    std::vector<Ring> out;
                    SimplifyRings(rings, tolerance, NewCrossings::kAvoid, out);
                    return static_cast<Count>(out.size());
                };
            }};
}

Case Merging(char const* input, std::function<CPath(Count)> path, double tolerance) {
    return {"`Simplify`", input, 1000000, [=](Count n) -> Run {
                return [outline = path(n), tolerance] {
                    CPath out;
                    Simplify(outline, tolerance, out);
                    return static_cast<Count>(out.mPts.size());
                };
            }};
}

Case Reading(char const* input, std::function<std::string(Count)> text) {
    return {"`ReadSvgPath`", input, 1000000, [text](Count n) -> Run {
                return [all = text(n)] {
                    return static_cast<Count>(ReadSvgPath(all).path.mPts.size());
                };
            }};
}

Case Asking(char const* function, char const* input,
            std::function<std::function<void(Pt)>(Count)> prepare) {
    return {function, input, 1000000, [prepare](Count n) -> Run {
                return [ask = prepare(n)] {
                    for (int i = 0; i < 10; ++i) { // ten questions near the centre
                        ask(Pt(1e-9 * i, 0));
                    }
                    return Count{0};
                };
            }};
}

Case Stroking(char const* input, Count largest, std::function<CPath(Count)> path,
              std::function<StrokeStyle(Count)> style) {
    return {"`Stroke`", input, largest, [=](Count n) -> Run {
                return [outline = path(n), pen = style(n)] {
                    CPath out;
                    Stroke(outline, pen, 0.1, out);
                    return static_cast<Count>(out.mPts.size());
                };
            }};
}

std::vector<Case> Cases() {
    auto const upright = [](Count n) { return Comb(n, 0, true); };
    auto const shifted = [](Count n) { return Comb(n, 1, true); };
    auto const lying = [](Count n) { return Comb(n, 0.5, false); };
    auto const turned = [](auto make) { return [make](Count n) { return Turned(make(n)); }; };
    auto const lines = [](auto make) { return [make](Count n) { return Lines({make(n)}); }; };
    auto const curves = [](auto make) { return [make](Count n) { return Curved(make(n)); }; };
    auto const plain = [](Count) { return StrokeStyle(); };
    auto const dashed = [](Count n) {
        StrokeStyle style;
        style.dashes = {100000 / Real(n), 100000 / Real(n)};
        return style;
    };
    return {
        Combination("combs beside each other", 100000, upright, shifted),
        Combination("combs across each other", 3000, upright, lying),
        Combination("slanted combs beside each other", 1000000, turned(upright), turned(shifted)),
        Combination("slanted combs across each other", 3000, turned(upright), turned(lying)),
        Combination("stars through one point", 1000, Star, Star, true),
        Combination("the same ragged star twice", 1000000, Ragged, Ragged),
        Combination("spikes", 1000000, Spikes, [](Count n) { return Circle(n, 500); }),
        Combination("nearly parallel edges", 1000000, Needles, Needles),
        Combination("spirals", 1000000, Spiral, Spiral),
        {"`Union` of polygons", "squares in squares", 1000000,
         [](Count n) -> Run {
             return
                 [all = Polygons(Nested(n))] { return ElementsOf(Union(all, FillRule::kNonZero)); };
         }},
        {"`ToPolygons`", "squares in squares", 1000000,
         [](Count n) -> Run {
             return [all = Polygons(Nested(n))] {
                 return static_cast<Count>(ToPolygons(all, FillRule::kEvenOdd).size());
             };
         }},
        {"`ToPolygons`", "holes in a row", 1000000,
         [](Count n) -> Run {
             return [all = Polygons(Row(n))] {
                 return static_cast<Count>(ToPolygons(all, FillRule::kEvenOdd).size());
             };
         }},
        {"`PolygonArrangement`", "squares in squares, each an operand", 10000,
         [](Count n) -> Run {
             std::vector<std::vector<TPolygon<double>>> operands;
             for (Ring const& ring : Nested(n)) {
                 operands.push_back(Polygons({ring}));
             }
             return [operands] {
                 PolygonArrangement const arrangement(operands);
                 Count count = 0;
                 for (ArrangementFace const& face : arrangement.Faces()) {
                     count += face.windings.size();
                 }
                 return count;
             };
         }},
        Outlines("combs beside each other", 100000, lines(upright), lines(shifted)),
        Outlines("combs across each other", 1000, lines(upright), lines(lying)),
        Outlines("curves between random points", 1000, curves(Noise), curves(Noise)),
        Outlines("spirals", 100000, lines(Spiral), lines(Spiral)),
        Outlines("the same curves twice", 100000, curves(Spiral), curves(Spiral)),
        {"`AppendSelfIntersections`", "lines from one point", 1000,
         [](Count n) -> Run {
             return [path = Fan(n)] {
                 std::vector<Intersection> places;
                 AppendSelfIntersections(path, 0.001, places);
                 return static_cast<Count>(places.size());
             };
         }},
        {"`AppendIntersections`", "combs across each other", 3000,
         [](Count n) -> Run {
             return [a = Lines({Comb(n / 2, 0, true)}), b = Lines({Comb(n / 2, 0.5, false)})] {
                 std::vector<Intersection> places;
                 AppendIntersections(a, b, 0.001, places);
                 return static_cast<Count>(places.size());
             };
         }},
        {"`AppendIntersections`", "nearly parallel edges", 100000,
         [](Count n) -> Run {
             return [a = Lines({Needles(n / 2)}), b = Lines({Needles(n / 2)})] {
                 std::vector<Intersection> places;
                 AppendIntersections(a, b, 1e-6, places);
                 return static_cast<Count>(places.size());
             };
         }},
        {"`AppendIntersections`", "spirals", 1000000,
         [](Count n) -> Run {
             return [a = Lines({Spiral(n / 2)}), b = Lines({Circle(n / 2, 900)})] {
                 std::vector<Intersection> places;
                 AppendIntersections(a, b, 1e-6, places);
                 return static_cast<Count>(places.size());
             };
         }},
        {"`PreparedPolygon`, made", "spikes", 1000000,
         [](Count n) -> Run {
             return [p = TPolygon<double>(Spikes(n))] {
                 return static_cast<Count>(PreparedPolygon(p).MemorySize() > 0);
             };
         }},
        {"`PreparedPolygon`, made", "a star", 1000000,
         [](Count n) -> Run {
             return [p = TPolygon<double>(Star(n))] {
                 return static_cast<Count>(PreparedPolygon(p).MemorySize() > 0);
             };
         }},
        {"`PreparedOutline`, made", "a star", 1000000,
         [](Count n) -> Run {
             return
                 [p = Star(n)] { return static_cast<Count>(PreparedOutline(p).MemorySize() > 0); };
         }},
        {"`PreparedOutline`, made", "curves between random points", 1000000,
         [](Count n) -> Run {
             return [p = Curved(Noise(n))] {
                 return static_cast<Count>(PreparedOutline(p).MemorySize() > 0);
             };
         }},
        Asking("`PreparedPolygon::Contains`, 10 points", "the middle of a star",
               [](Count n) {
                   return [p = PreparedPolygon(TPolygon<double>(Star(n)))](Pt q) { p.Contains(q); };
               }),
        Asking(
            "`PreparedOutline::WindingNumber`, 10 points", "the middle of a star",
            [](Count n) { return [p = PreparedOutline(Star(n))](Pt q) { p.WindingNumber(q); }; }),
        Asking("`PathMeasure::FindNearest`, 10 points", "the middle of a circle",
               [](Count n) {
                   return [m = PathMeasure(Lines({Circle(n, 100)}))](Pt q) { m.FindNearest(q); };
               }),
        Asking("`OutlineMeasure::FindNearest`, 10 points", "the middle of a circle",
               [](Count n) {
                   return [m = OutlineMeasure(Lines({Circle(n, 100)}))](Pt q) { m.FindNearest(q); };
               }),
        Asking(
            "`CPath::FindTValue`, 10 points", "the middle of a circle",
            [](Count n) { return [path = Lines({Circle(n, 100)})](Pt q) { path.FindTValue(q); }; }),
        {"`PathMeasure`, made", "curves between random points", 100000,
         [](Count n) -> Run {
             return
                 [p = Curved(Noise(n))] { return static_cast<Count>(PathMeasure(p).Length() > 0); };
         }},
        {"`OutlineMeasure`, made", "curves between random points", 100000,
         [](Count n) -> Run {
             return [p = Curved(Noise(n))] {
                 return static_cast<Count>(OutlineMeasure(p).Length() > 0);
             };
         }},
        {"`RegionArea`", "combs of curves", 100000,
         [](Count n) -> Run {
             return [p = Curved(Comb(n, 0, true))] {
                 return static_cast<Count>(RegionArea(p, FillRule::kNonZero, 0.01).area > 0);
             };
         }},
        {"`TPolygon::Clip`", "a comb", 1000000,
         [](Count n) -> Run {
             return [p = TPolygon<double>(Comb(n, 0, true)), n] {
                 return static_cast<Count>(
                     p.Clip(TLine<double>(Pt(-1, 1), Pt(Real(n) + 1, 1))).size());
             };
         }},
        Fitting("random points", Noise, 1),
        Fitting("random points, a loose tolerance", Noise, 1e7),
        Fitting(
            "a zigzag within the tolerance", [](Count n) { return Comb(n, 0, true); }, 1e9),
        Fitting(
            "a circle", [](Count n) { return Circle(n, 1000); }, 1e-3),
        Fitting(
            "one point", [](Count n) { return Ring(n, Pt(1, 1)); }, 1),
        Simplifying("random points", Noise, 10),
        // Of a million, two are equal, so that the ring has a node.
        Simplifying("random points, a loose tolerance", Noise, 1e7, 100000),
        Simplifying("a comb", upright, 100),
        Simplifying("a slanted comb", turned(upright), 0.1),
        Simplifying("a slanted comb, a loose tolerance", turned(upright), 100),
        Simplifying("a spiral", Spiral, 5),
        Simplifying("a spiral, a loose tolerance", Spiral, 200),
        Simplifying(
            "a circle", [](Count n) { return Circle(n, 1000); }, 1),
        Merging("curves between random points", curves(Noise), 1),
        Merging("a circle of short curves", curves([](Count n) { return Circle(n, 1000); }), 0.1),
        Merging("a spiral", curves(Spiral), 5),
        Merging("lines, a loose tolerance", lines(Noise), 1e7),
        Stroking("a comb", 100000, lines(upright), plain),
        Stroking("random lines", 300, lines(Noise), plain),
        Stroking("a spiral", 100000, lines(Spiral), plain),
        Stroking(
            "n dashes on one line", 100000,
            [](Count) {
                return Lines({{Pt(0, 0), Pt(200000, 0)}});
            },
            dashed),
        {"`Offset`", "a comb", 100000,
         [](Count n) -> Run {
             return [p = Lines({Comb(n, 0, true)})] {
                 CPath out;
                 Offset(p, FillRule::kNonZero, 0.5, StrokeJoin::kRound, 4, 0.01, out);
                 return static_cast<Count>(out.mPts.size());
             };
         }},
        {"`FlattenInto`", "curves of 1e12 within 0.1", 1000,
         [](Count n) -> Run {
             return [p = Curved(Circle(n, 1e12))] {
                 FlatContours out;
                 FlattenInto(p, 0.1, out);
                 return static_cast<Count>(out.points.size());
             };
         }},
        {"`CirclePath`", "a radius of n, tolerance 1e-300", 1000000,
         [](Count n) -> Run {
             return
                 [n] { return static_cast<Count>(CirclePath(Pt(), Real(n), 1e-300).mPts.size()); };
         }},
        {"`CBezier::Length`, `Flatten`", "10 curves of length 1e300, whatever the size", 1000,
         [](Count) -> Run {
             return [] {
                 TPolygon<double> polygon;
                 CBezier const curve({0, 0}, {1e300, 1}, {-1e300, 1}, {5, 5});
                 for (int i = 0; i < 10; ++i) {
                     curve.Flatten(polygon, 1e-300);
                     polygon.SetPt(0, Pt(curve.Length(), 0));
                 }
                 return static_cast<Count>(polygon.LastIndex() + 1);
             };
         }},
        Reading("one number of n digits", [](Count n) { return "M0 " + std::string(n, '7'); }),
        Reading("one number with n zeros",
                [](Count n) { return "M0 0." + std::string(n, '0') + "1e" + std::to_string(n); }),
        Reading("an exponent of n digits", [](Count n) { return "M0 1e-" + std::string(n, '9'); }),
        Reading(
            "the hardest numbers to round",
            [](Count n) {
                std::string text = "M0 0L";
                while (text.size() < n) {
                    text +=
                        " 9007199254740993.0000000000000000000000000000000000000000000000001e-290";
                }
                return text;
            }),
        Reading("arcs",
                [](Count n) {
                    std::string text = "M0 0";
                    while (text.size() < n) {
                        text += "a1e9 1 30 1 0 1e-9 1";
                    }
                    return text;
                }),
        Reading("commands without numbers", [](Count n) { return "M0 0" + std::string(n, 'z'); }),
        Reading("signs only", [](Count n) { return "M" + std::string(n, '-'); }),
        {"`WriteSvgPath`", "numbers of 17 digits", 1000000,
         [](Count n) -> Run {
             Ring ring = Noise(n);
             for (Pt& p : ring) {
                 p = p * 1.2345678901234567e-290;
             }
             return
                 [path = Lines({ring})] { return static_cast<Count>(WriteSvgPath(path).size()); };
         }},
        {"`SplitSubpaths`", "subpaths of a point", 1000000,
         [](Count n) -> Run {
             return [path = Fan(n)] { return static_cast<Count>(SplitSubpaths(path).size()); };
         }},
        {"`Reversed`", "subpaths of a point", 1000000,
         [](Count n) -> Run {
             return [path = Fan(n)] { return static_cast<Count>(Reversed(path).mPts.size()); };
         }},
        {"`AppendSubpaths`", "one after the other", 1000000,
         [](Count n) -> Run {
             return [n] {
                 CPath path;
                 CPath const more = Lines({{Pt(0, 0), Pt(1, 0), Pt(2, 3)}});
                 for (Count i = 0; i < n; ++i) {
                     AppendSubpaths(path, more);
                 }
                 return static_cast<Count>(path.mPts.size());
             };
         }},
        {"`CFPolygonRef::Insert`", "n points, each before all others", 100000,
         [](Count n) -> Run {
             return [n] {
                 CFPolygonRef polygon(true);
                 for (Count i = 0; i < n; ++i) {
                     polygon.Insert(0, Pt(1, 2));
                 }
                 Count const count = static_cast<Count>(polygon.LastIndex() + 1);
                 polygon.Dispose();
                 return count;
             };
         }},
    };
}

} // namespace

int main(int count, char** arguments) {
    std::string const word = count > 1 ? arguments[1] : "";
    constexpr double kMostSeconds = 10; // a size that would take longer is left out
    std::puts("| function | input | 10^3 | 10^4 | 10^5 | 10^6 |");
    std::puts("|---|---|--:|--:|--:|--:|");
    for (Case const& one : Cases()) {
        std::string const name = std::string(one.function) + " " + one.input;
        if (name.find(word) == std::string::npos) {
            continue;
        }
        std::printf("| %s | %s |", one.function, one.input);
        double before = 0;
        bool tooLong = false;
        for (Count n = 1000; n <= 1000000; n *= 10) {
            if (n > std::max<Count>(one.largest, 1000) || tooLong) {
                std::printf(tooLong ? " > |" : " |");
                continue;
            }
            Count const size = std::min(n, one.largest);
            Run const run = one.prepare(size);
            double seconds = 1e9;
            Count result = 0;
            for (int round = 0; round < 3 && (round == 0 || seconds < 0.1); ++round) {
                double const start = Now();
                result = run();
                seconds = std::min(seconds, Now() - start);
            }
            // An element is one of the input or of the result, or a crossing.
            Count const elements = size + (one.allCross ? size * size / 2 : result);
            double const cost = 1e9 * seconds / Real(elements);
            std::printf(cost < 100 ? " %.2g |" : " %.0f |", cost);
            std::fflush(stdout);
            double const growth = before > 0 ? std::max(cost / before, 1.0) : 1;
            tooLong = seconds * 10 * growth > kMostSeconds;
            before = cost;
        }
        std::puts("");
    }
    return 0;
}

// SPDX-License-Identifier: MIT

#include "Operands.h"

#include "Inputs.h"

#include <trammel/CPathActions.h>
#include <trammel/TPoly.h>
#include <trammel/Tgcp.h>
#include <trammel/UTrigonometry.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <limits>
#include <map>
#include <random>
#include <utility>

#ifdef TRAMMEL_BENCH_JSON
#include <nlohmann/json.hpp>
#endif

namespace operands {
namespace {

using Rings = std::vector<Ring>;

std::size_t VerticesIn(Rings const& rings) {
    std::size_t count = 0;
    for (Ring const& ring : rings) {
        count += ring.size();
    }
    return count;
}

Rings Moved(Rings rings, TPoint<double> const& by) {
    for (Ring& ring : rings) {
        for (TPoint<double>& p : ring) {
            p = p + by;
        }
    }
    return rings;
}

double SignedArea(Ring const& ring) {
    double twice = 0.0;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        TPoint<double> const a = ring[i] - ring[0];
        TPoint<double> const b = ring[(i + 1) % ring.size()] - ring[0];
        twice += a.h * b.v - a.v * b.h;
    }
    return twice / 2.0;
}

bool IsInside(TPoint<double> const& p, Ring const& ring) {
    bool inside = false;
    for (std::size_t i = 0, last = ring.size() - 1; i < ring.size(); last = i++) {
        TPoint<double> const& a = ring[i];
        TPoint<double> const& b = ring[last];
        if ((a.v > p.v) != (b.v > p.v) && p.h < (b.h - a.h) * (p.v - a.v) / (b.v - a.v) + a.h) {
            inside = !inside;
        }
    }
    return inside;
}

/// The contours' region, bounded by contours that do not cross. With its areas: a hole belongs to
/// the smallest contour around it.
Operand Simple(Rings const& rings) {
    Tgpc_polygon polygon;
    for (Ring const& ring : rings) {
        Tgcp_contour contour;
        contour.mVertices = ring;
        polygon.AddContour(contour);
    }
    Tgpc_polygon_clip(kPolyUnion, polygon, Tgpc_polygon(), polygon);

    Operand operand;
    std::vector<TRect<double>> boxes;
    std::vector<double> sizes;
    for (Tgcp_contour const& contour : polygon.mContours) {
        operand.rings.push_back(contour.mVertices);
        if (!contour.mHole) {
            operand.areas.push_back({contour.mVertices, {}});
            boxes.push_back(contour.Bounds());
            sizes.push_back(std::abs(SignedArea(contour.mVertices)));
        }
    }
    for (Tgcp_contour const& contour : polygon.mContours) {
        if (!contour.mHole) {
            continue;
        }
        // Contours may share a vertex, but the middle of an edge is on its own.
        TPoint<double> const p = (contour.mVertices[0] + contour.mVertices[1]) / 2.0;
        std::size_t around = boxes.size();
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            if (boxes[i].left <= p.h && p.h <= boxes[i].right && boxes[i].top <= p.v &&
                p.v <= boxes[i].bottom && (around == boxes.size() || sizes[i] < sizes[around]) &&
                IsInside(p, operand.areas[i].outer)) {
                around = i;
            }
        }
        if (around < boxes.size()) {
            operand.areas[around].holes.push_back(contour.mVertices);
        }
    }
    return operand;
}

/// Flattens the path that it visits.
class Flattener : public CPathActions {
public:
    Rings mRings;

    void MoveTo(TPoint<double> const& p) override { mRings.push_back({p}); }
    void LineTo(TPoint<double> const& p) override { mRings.back().push_back(p); }
    void CurveTo(TPoint<double> const& c1, TPoint<double> const& c2,
                 TPoint<double> const& e) override {
        TPolygon<double> polygon;
        CBezier(GetCurrentPt(), c1, c2, e).Flatten(polygon, 0.05);
        for (long i = 1; i <= polygon.LastIndex(); ++i) {
            mRings.back().push_back(polygon.GetPt(i));
        }
    }
};

/// Glyphs from number `first` on in rows that make a square, until there are `size` vertices.
Rings Page(std::vector<CPath> const& outlines, std::size_t first, std::size_t size) {
    std::vector<Rings> glyphs;
    for (std::size_t count = 0; count < size;) {
        Flattener flattener;
        outlines[(first + glyphs.size()) % outlines.size()].ForAll(flattener);
        glyphs.push_back(flattener.mRings);
        count += VerticesIn(glyphs.back());
    }
    Rings page;
    auto const columns =
        static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(glyphs.size()))));
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        TPoint<double> const at(70.0 * static_cast<double>(i % columns),
                                120.0 * static_cast<double>(i / columns));
        for (Ring const& ring : Moved(glyphs[i], at)) {
            page.push_back(ring);
        }
    }
    return page;
}

Pair Glyphs(std::size_t size) {
    Pair pair;
    std::vector<CPath> const& outlines = inputs::Outlines(inputs::Set::kTrueType);
    if (outlines.empty()) {
        pair.whyMissing = "no such font here, or built without FreeType";
        return pair;
    }
    pair.first = Simple(Page(outlines, 0, size));
    pair.second = Simple(Moved(Page(outlines, 40, size), TPoint<double>(11.0, 7.0)));
    return pair;
}

#ifdef TRAMMEL_BENCH_JSON

/// The arcs of a TopoJSON file, differences added up.
Rings Arcs(nlohmann::json const& map) {
    auto const& scale = map.at("transform").at("scale");
    auto const& translate = map.at("transform").at("translate");
    Rings arcs;
    for (auto const& arc : map.at("arcs")) {
        Ring points;
        double h = 0.0;
        double v = 0.0;
        for (auto const& step : arc) {
            h += step.at(0).get<double>();
            v += step.at(1).get<double>();
            points.emplace_back(h * scale.at(0).get<double>() + translate.at(0).get<double>(),
                                v * scale.at(1).get<double>() + translate.at(1).get<double>());
        }
        arcs.push_back(points);
    }
    return arcs;
}

/// The contours that a TopoJSON geometry's lists of arcs describe; ~i is arc i backward.
void AppendRings(nlohmann::json const& list, Rings const& arcs, Rings& rings) {
    if (list.empty() || !list.front().is_number_integer()) {
        for (auto const& inner : list) {
            AppendRings(inner, arcs, rings);
        }
        return;
    }
    Ring ring;
    for (auto const& number : list) {
        auto const i = number.get<std::ptrdiff_t>();
        Ring arc = arcs.at(static_cast<std::size_t>(i < 0 ? ~i : i));
        if (i < 0) {
            std::reverse(arc.begin(), arc.end());
        }
        // Each arc begins where the one before ends, the first where the last does.
        ring.insert(ring.end(), arc.begin() + 1, arc.end());
    }
    rings.push_back(ring);
}

/// Appends each country and all land of one file.
void ReadMap(std::ifstream& file, std::vector<Rings>& maps) {
    nlohmann::json const map = nlohmann::json::parse(file);
    Rings const arcs = Arcs(map);
    for (char const* object : {"countries", "land"}) {
        for (auto const& geometry : map.at("objects").at(object).at("geometries")) {
            if (geometry.contains("arcs")) {
                maps.emplace_back();
                AppendRings(geometry.at("arcs"), arcs, maps.back());
            }
        }
    }
}

/// The maps of world-atlas at the resolutions that are there; without any, says why.
std::vector<Rings> ReadMaps(std::string& whyMissing) {
    char const* const variable = std::getenv("TRAMMEL_MAP_DATA");
    std::string const folder = variable != nullptr ? variable : "build/data/world-atlas";
    std::vector<Rings> maps;
    for (char const* name : {"countries-110m.json", "countries-50m.json"}) {
        std::string const path = folder + "/" + name;
        std::ifstream file(path);
        if (!file) {
            whyMissing = "no " + path + " (TRAMMEL_MAP_DATA names the folder of world-atlas)";
            return {};
        }
        try {
            ReadMap(file, maps);
        } catch (std::exception const& error) {
            whyMissing = path + ": " + error.what();
            return {};
        }
    }
    return maps;
}

Pair Map(std::size_t size) {
    static std::string whyMissing;
    static std::vector<Rings> const maps = ReadMaps(whyMissing);
    Pair pair;
    pair.whyMissing = whyMissing;
    Rings const* nearest = nullptr;
    double least = std::numeric_limits<double>::infinity();
    for (Rings const& map : maps) {
        double const ratio = static_cast<double>(VerticesIn(map)) / static_cast<double>(size);
        if (std::abs(std::log(ratio)) < least) {
            least = std::abs(std::log(ratio));
            nearest = &map;
        }
    }
    if (nearest != nullptr) {
        Tgpc_polygon extent;
        for (Ring const& ring : *nearest) {
            extent.AddContour(Tgcp_contour());
            extent.mContours.back().mVertices = ring;
        }
        TRect<double> const box = extent.Bounds();
        pair.first = Simple(*nearest);
        pair.second =
            Simple(Moved(*nearest, TPoint<double>(box.Width() * 0.01, box.Height() * 0.007)));
    }
    return pair;
}

#else

Pair Map(std::size_t) {
    Pair pair;
    pair.whyMissing = "built without nlohmann-json";
    return pair;
}

#endif

/// Numbers evenly spread over an interval, made from the generator's bits so that they are the same
/// with every standard library.
class Random {
public:
    explicit Random(unsigned seed) : mEngine(seed) {}
    double operator()(double lo, double hi) {
        return lo + (hi - lo) * (static_cast<double>(mEngine() >> 11) * 0x1p-53);
    }

private:
    std::mt19937_64 mEngine;
};

/// Returns a closed walk: steps of one length in random directions. The gap between its end and its
/// start is spread over all steps.
Rings Walk(std::size_t size, unsigned seed) {
    Random random(seed);
    Ring ring;
    TPoint<double> at(0.0, 0.0);
    for (std::size_t i = 0; i < size; ++i) {
        double const angle = random(0.0, 2.0 * pi);
        ring.push_back(at);
        at = at + TPoint<double>(std::cos(angle), std::sin(angle));
    }
    for (std::size_t i = 0; i < size; ++i) {
        ring[i] = ring[i] - at * (static_cast<double>(i) / static_cast<double>(size));
    }
    return {ring};
}

Rings RandomVertices(std::size_t size, unsigned seed) {
    Random random(seed);
    Ring ring;
    for (std::size_t i = 0; i < size; ++i) {
        double const h = random(0.0, 1000.0);
        ring.emplace_back(h, random(0.0, 1000.0));
    }
    return {ring};
}

/// Teeth to the right of a spine, turned about the middle of the square they fill.
Rings Comb(std::size_t size, double angle) {
    std::size_t const teeth = std::max<std::size_t>(size / 4, 1);
    double const pitch = 1000.0 / static_cast<double>(teeth);
    Ring ring;
    for (std::size_t i = 0; i < teeth; ++i) {
        double const v = pitch * static_cast<double>(i);
        ring.emplace_back(10.0, v);
        ring.emplace_back(1000.0, v);
        ring.emplace_back(1000.0, v + pitch * 0.5);
        ring.emplace_back(10.0, v + pitch * 0.5);
    }
    ring.emplace_back(0.0, 1000.0);
    ring.emplace_back(0.0, 0.0);
    TPoint<double> const middle(500.0, 500.0);
    for (TPoint<double>& p : ring) {
        TPoint<double> const d = p - middle;
        p = middle + TPoint<double>(d.h * std::cos(angle) - d.v * std::sin(angle),
                                    d.h * std::sin(angle) + d.v * std::cos(angle));
    }
    return {ring};
}

/// A bar along v = `back` with teeth towards the other side.
Rings Saw(std::size_t size, double back, double root, double tip, double shift) {
    std::size_t const points = std::max<std::size_t>(size, 5) - 2;
    double const pitch = 1000.0 / static_cast<double>(points);
    Ring ring;
    for (std::size_t i = 0; i < points; ++i) {
        ring.emplace_back(pitch * (static_cast<double>(i) + shift), i % 2 == 0 ? root : tip);
    }
    ring.emplace_back(1000.0, back);
    ring.emplace_back(0.0, back);
    return {ring};
}

/// Returns thin bars at an angle of 0.6 radians across a box, with `size` vertices in all.
Rings Bars(std::size_t size, TRect<double> const& box) {
    TPoint<double> const middle = box.MidPt();
    double const reach = 0.5 * std::hypot(box.Width(), box.Height());
    std::size_t const count = std::max<std::size_t>(size / 4, 1);
    double const pitch = 2.0 * reach / static_cast<double>(count);
    Rings rings;
    for (std::size_t i = 0; i < count; ++i) {
        double const at = pitch * static_cast<double>(i) - reach;
        Ring bar;
        for (TPoint<double> const& p :
             {TPoint<double>(-reach, at), TPoint<double>(reach, at),
              TPoint<double>(reach, at + 0.3 * pitch), TPoint<double>(-reach, at + 0.3 * pitch)}) {
            bar.push_back((middle + p).Rotate(0.6, middle));
        }
        rings.push_back(bar);
    }
    return rings;
}

/// Returns a ring of an odd number of vertices on a circle, of which each edge crosses all others.
Rings Star(std::size_t size) {
    std::size_t const count = size | 1;
    Ring ring;
    for (std::size_t i = 0; i < count; ++i) {
        double const angle =
            2.0 * pi * static_cast<double>(i * (count / 2) % count) / static_cast<double>(count);
        ring.emplace_back(std::cos(angle), std::sin(angle));
    }
    return {ring};
}

/// Returns turned squares around (0, 0), the outermost of which reaches `reach` from it.
Rings NestedSquares(std::size_t size, double reach) {
    std::size_t const count = std::max<std::size_t>(size / 4, 1);
    Rings rings;
    for (std::size_t i = 0; i < count; ++i) {
        double const radius = reach * static_cast<double>(count - i) / static_cast<double>(count);
        Ring square;
        for (int corner = 0; corner < 4; ++corner) {
            double const angle = 0.5 + pi / 2.0 * corner;
            square.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
        }
        rings.push_back(square);
    }
    return rings;
}

Pair Make(Kind kind, std::size_t size) {
    Pair pair;
    switch (kind) {
    case Kind::kGlyphs:
        return Glyphs(size);
    case Kind::kMap:
        return Map(size);
    case Kind::kWalk:
        pair.crossing = true;
        pair.first.rings = Walk(size, 11);
        pair.second.rings = Walk(size, 12);
        break;
    case Kind::kRandom:
        pair.crossing = true;
        pair.first.rings = RandomVertices(size, 13);
        pair.second.rings = RandomVertices(size, 14);
        break;
    case Kind::kCombs:
        pair.first = Simple(Comb(size, 0.1));
        pair.second = Simple(Comb(size, 0.1 + pi / 2.0));
        break;
    case Kind::kSaws:
        pair.first = Simple(Saw(size, 0.0, 100.0, 900.0, 0.0));
        pair.second = Simple(Saw(size, 1000.0, 900.0, 100.0, 0.37));
        break;
    case Kind::kHatch: {
        Pair const glyphs = Glyphs(size);
        pair.whyMissing = glyphs.whyMissing;
        pair.second = glyphs.first;
        TRect<double> box;
        for (Ring const& ring : pair.second.rings) {
            for (TPoint<double> const& p : ring) {
                box |= p;
            }
        }
        pair.first = Simple(Bars(size, box));
        break;
    }
    case Kind::kGrid:
        pair.first = Simple(Bars(size, TRect<double>(0.0, 0.0, 1000.0, 1000.0)));
        pair.second.rings = pair.first.rings;
        for (Ring& bar : pair.second.rings) {
            for (TPoint<double>& p : bar) {
                p = TPoint<double>(1000.0 - p.v, p.h);
            }
        }
        pair.second = Simple(pair.second.rings);
        break;
    case Kind::kStar:
        pair.crossing = true;
        pair.first.rings = Star(size);
        pair.second.rings = {{{3.0, 0.0}, {4.0, 0.0}, {4.0, 1.0}}};
        break;
    case Kind::kStrips:
        pair.first = Simple(Bars(size, TRect<double>(0.0, 0.0, 1000.0, 1000.0)));
        pair.second = Simple(NestedSquares(4, 1.0));
        break;
    case Kind::kNested:
        pair.crossing = true; // no areas: GEOS is to find out by itself which ring is a hole
        pair.first.rings = NestedSquares(size, 1000.0);
        pair.second.rings = {{{-0.1, -0.1}, {0.1, -0.1}, {0.1, 0.1}, {-0.1, 0.1}}};
        break;
    }
    return pair;
}

} // namespace

std::size_t Operand::Size() const { return VerticesIn(rings); }

Pair const& Get(Kind kind, std::size_t size) {
    static std::map<std::pair<Kind, std::size_t>, Pair> made;
    auto const key = std::make_pair(kind, size);
    auto found = made.find(key);
    if (found == made.end()) {
        found = made.emplace(key, Make(kind, size)).first;
    }
    return found->second;
}

} // namespace operands

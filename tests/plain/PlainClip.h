// SPDX-License-Identifier: MIT

// Polygons as vectors, plain areas, and the file of reference cases, for the clipper's tests.
#ifndef TRAMMEL_PLAINCLIP_H
#define TRAMMEL_PLAINCLIP_H

#include "gpc.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace plain {

struct Vertex {
    double x;
    double y;
};
inline bool operator==(Vertex a, Vertex b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(Vertex a, Vertex b) { return !(a == b); }
/// By y, then by x.
inline bool operator<(Vertex a, Vertex b) { return a.y != b.y ? a.y < b.y : a.x < b.x; }

typedef std::vector<Vertex> Contour;
typedef std::vector<Contour> Polygon;

/// A result: contours and hole flags.
struct Region {
    Polygon contours;
    std::vector<int> holes;
};

inline char const* const kOperationNames[] = {"a - b", "a * b", "a xor b", "a + b"};
inline gpc_op const kOperations[] = {GPC_DIFF, GPC_INT, GPC_XOR, GPC_UNION};

/// True when a point is in the result, given whether it is in each operand.
inline bool Combine(gpc_op operation, bool a, bool b) {
    switch (operation) {
    case GPC_DIFF:
        return a && !b;
    case GPC_INT:
        return a && b;
    case GPC_XOR:
        return a != b;
    case GPC_UNION:
        break;
    }
    return a || b;
}

/// The C record of a polygon, in exactly fitting blocks from malloc.
inline gpc_polygon ToRecord(Polygon const& polygon) {
    gpc_polygon record{static_cast<int>(polygon.size()), nullptr, nullptr};
    if (!polygon.empty()) {
        record.hole = static_cast<int*>(std::calloc(polygon.size(), sizeof(int)));
        record.contour =
            static_cast<gpc_vertex_list*>(std::malloc(polygon.size() * sizeof(gpc_vertex_list)));
    }
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        Contour const& contour = polygon[i];
        gpc_vertex* vertices = nullptr;
        if (!contour.empty()) {
            vertices = static_cast<gpc_vertex*>(std::malloc(contour.size() * sizeof(gpc_vertex)));
            for (std::size_t k = 0; k < contour.size(); ++k) {
                vertices[k] = {contour[k].x, contour[k].y};
            }
        }
        record.contour[i] = {static_cast<int>(contour.size()), vertices};
    }
    return record;
}

inline Region FromRecord(gpc_polygon const& record) {
    Region region;
    for (int i = 0; i < record.num_contours; ++i) {
        Contour contour;
        gpc_vertex_list const& list = record.contour[i];
        contour.reserve(static_cast<std::size_t>(list.num_vertices));
        for (int k = 0; k < list.num_vertices; ++k) {
            contour.push_back({list.vertex[k].x, list.vertex[k].y});
        }
        region.contours.push_back(std::move(contour));
        region.holes.push_back(record.hole[i]);
    }
    return region;
}

/// The clip, with fresh records that are released again.
inline Region Clip(gpc_op operation, Polygon const& a, Polygon const& b) {
    gpc_polygon recordA = ToRecord(a);
    gpc_polygon recordB = ToRecord(b);
    gpc_polygon result{-1, nullptr, nullptr};
    gpc_polygon_clip(operation, &recordA, &recordB, &result);
    Region const region = FromRecord(result);
    gpc_free_polygon(&recordA);
    gpc_free_polygon(&recordB);
    gpc_free_polygon(&result);
    return region;
}

// ------------------------------------------------------------------------------------------------
// Areas.

struct Box {
    double lowX = std::numeric_limits<double>::infinity();
    double lowY = std::numeric_limits<double>::infinity();
    double highX = -std::numeric_limits<double>::infinity();
    double highY = -std::numeric_limits<double>::infinity();

    void Include(Polygon const& polygon) {
        for (Contour const& contour : polygon) {
            for (Vertex const& v : contour) {
                lowX = std::min(lowX, v.x);
                lowY = std::min(lowY, v.y);
                highX = std::max(highX, v.x);
                highY = std::max(highY, v.y);
            }
        }
    }
    bool HasArea() const { return lowX < highX && lowY < highY; }
};

/// Maps coordinates of any size and place to coordinates between 0 and 1. It takes a difference and
/// a power of two on each axis. Areas then neither vanish nor drown in their distance from the
/// origin.
struct Normalised {
    explicit Normalised(Box const& box)
        : lowX(box.lowX), lowY(box.lowY), exponentX(std::ilogb(box.highX - box.lowX) + 1),
          exponentY(std::ilogb(box.highY - box.lowY) + 1) {}

    Polygon operator()(Polygon const& polygon) const {
        Polygon result = polygon;
        for (Contour& contour : result) {
            for (Vertex& v : contour) {
                v = {std::ldexp(v.x - lowX, -exponentX), std::ldexp(v.y - lowY, -exponentY)};
            }
        }
        return result;
    }
    /// An area as it is in these coordinates.
    double Area(double area) const { return std::ldexp(area, -exponentX - exponentY); }

    double lowX;
    double lowY;
    int exponentX;
    int exponentY;
};

/// The signed area: positive for a counterclockwise contour (y up).
inline double SignedArea(Contour const& contour) {
    double twice = 0;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        // Around the first vertex, so that nothing cancels that need not.
        Vertex const o = contour[0];
        Vertex const p = contour[i];
        Vertex const q = contour[i + 1 == contour.size() ? 0 : i + 1];
        twice += (p.x - o.x) * (q.y - o.y) - (p.y - o.y) * (q.x - o.x);
    }
    return twice / 2;
}

/// The area that the hole flags tell.
inline double AreaByFlags(Region const& region) {
    double area = 0;
    for (std::size_t i = 0; i < region.contours.size(); ++i) {
        double const size = std::fabs(SignedArea(region.contours[i]));
        area += region.holes[i] != 0 ? -size : size;
    }
    return area;
}

/// The area that is inside by the even-odd rule. Contours may cross.
///
/// The plane is cut into strips at the heights of vertices and crossings. In each strip every
/// second gap between edges counts. The error is about 1e-12 of the box. The cost is proportional
/// to the strips times the edges in a strip.
inline double EvenOddArea(Polygon const& polygon) {
    struct Edge {
        Vertex low;
        Vertex high;
        double At(double y) const {
            double const t = (y - low.y) / (high.y - low.y);
            return low.x + t * (high.x - low.x);
        }
    };
    std::vector<Edge> edges;
    std::vector<double> heights;
    for (Contour const& contour : polygon) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            Vertex const p = contour[i];
            Vertex const q = contour[i + 1 == contour.size() ? 0 : i + 1];
            heights.push_back(p.y);
            if (p.y != q.y) {
                edges.push_back(p.y < q.y ? Edge{p, q} : Edge{q, p});
            }
        }
    }
    std::sort(edges.begin(), edges.end(),
              [](Edge const& e, Edge const& f) { return e.low.y < f.low.y; });
    for (std::size_t i = 0; i < edges.size(); ++i) {
        for (std::size_t j = i + 1; j < edges.size() && edges[j].low.y < edges[i].high.y; ++j) {
            double const low = std::max(edges[i].low.y, edges[j].low.y);
            double const high = std::min(edges[i].high.y, edges[j].high.y);
            double const below = edges[i].At(low) - edges[j].At(low);
            double const above = edges[i].At(high) - edges[j].At(high);
            if ((below < 0 && above > 0) || (below > 0 && above < 0)) {
                heights.push_back(low + (high - low) * (below / (below - above)));
            }
        }
    }
    std::sort(heights.begin(), heights.end());
    heights.erase(std::unique(heights.begin(), heights.end()), heights.end());

    double area = 0;
    std::vector<std::size_t> active;
    std::size_t next = 0;
    std::vector<double> middles;
    for (std::size_t i = 0; i + 1 < heights.size(); ++i) {
        double const low = heights[i];
        double const high = heights[i + 1];
        for (; next < edges.size() && edges[next].low.y <= low; ++next) {
            active.push_back(next);
        }
        active.erase(std::remove_if(active.begin(), active.end(),
                                    [&](std::size_t e) { return edges[e].high.y <= low; }),
                     active.end());
        middles.clear();
        for (std::size_t const e : active) {
            middles.push_back(edges[e].At(low + (high - low) / 2));
        }
        std::sort(middles.begin(), middles.end());
        for (std::size_t k = 0; k + 1 < middles.size(); k += 2) {
            area += (middles[k + 1] - middles[k]) * (high - low);
        }
    }
    return area;
}

/// How much the area can change when every vertex moves by at most one unit in the last place of
/// its coordinates. An edge sweeps over dx * (its shift in y) + dy * (its shift in x) at most.
inline double RoundingOfArea(Polygon const& polygon) {
    auto const unit = [](double a, double b) {
        double const v = std::max(std::fabs(a), std::fabs(b));
        return std::nextafter(v, std::numeric_limits<double>::infinity()) - v;
    };
    double sum = 0;
    for (Contour const& contour : polygon) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            Vertex const p = contour[i];
            Vertex const q = contour[i + 1 == contour.size() ? 0 : i + 1];
            sum += std::fabs(p.x - q.x) * unit(p.y, q.y) + std::fabs(p.y - q.y) * unit(p.x, q.x);
        }
    }
    return sum;
}

/// True when a point is inside by the even-odd rule.
inline bool Inside(Polygon const& polygon, Vertex p) {
    bool inside = false;
    for (Contour const& contour : polygon) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            Vertex const a = contour[i];
            Vertex const b = contour[i + 1 == contour.size() ? 0 : i + 1];
            if ((a.y > p.y) != (b.y > p.y)) {
                double const side = (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
                inside ^= (side < 0) == (b.y > a.y);
            }
        }
    }
    return inside;
}

// ------------------------------------------------------------------------------------------------
// The same contour, whatever its first vertex.

/// The contour with its least vertex first.
inline Contour Rotated(Contour contour) {
    std::rotate(contour.begin(), std::min_element(contour.begin(), contour.end()), contour.end());
    return contour;
}

/// True when two contours have the same vertices in the same order, to within a tolerance.
inline bool Same(Contour const& a, Contour const& b, double toleranceX, double toleranceY) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!(std::fabs(a[i].x - b[i].x) <= toleranceX) ||
            !(std::fabs(a[i].y - b[i].y) <= toleranceY)) {
            return false;
        }
    }
    return true;
}

// ------------------------------------------------------------------------------------------------
// The file of reference cases. Its first lines tell the format.

struct ReferenceResult {
    bool crashed = false; ///< the reference engine's own run
    double exactArea = 0;
    double regionError = 0;
    std::size_t contours = 0;
    bool listed = false;
    Region region;
};

struct ReferenceCase {
    std::string group;
    std::string name;
    Polygon a;
    Polygon b;
    ReferenceResult results[4];
};

/// Reads all cases. On a malformed file the message names the line; it is empty otherwise.
inline std::vector<ReferenceCase> ReadReferenceCases(std::string const& path,
                                                     std::string& message) {
    std::vector<ReferenceCase> cases;
    std::ifstream file(path);
    std::string line;
    std::size_t number = 0;
    message.clear();
    auto const nextLine = [&] {
        while (std::getline(file, line)) {
            ++number;
            if (!line.empty() && line[0] != '#') {
                return true;
            }
        }
        return false;
    };
    auto const fail = [&](char const* what) {
        message = path + ":" + std::to_string(number) + ": " + what;
        return cases;
    };
    // Streams do not read "nan"; strtod does.
    auto const number64 = [](std::istringstream& in, double& value) {
        std::string word;
        char* end = nullptr;
        if (!(in >> word)) {
            return false;
        }
        value = std::strtod(word.c_str(), &end);
        return *end == '\0';
    };
    auto const readContour = [&](std::istringstream& in, Contour& contour) {
        std::size_t count = 0;
        if (!(in >> count)) {
            return false;
        }
        contour.resize(count);
        for (Vertex& v : contour) {
            if (!number64(in, v.x) || !number64(in, v.y)) {
                return false;
            }
        }
        return true;
    };
    if (!file) {
        return fail("cannot be read");
    }
    bool more = nextLine();
    while (more) {
        ReferenceCase c;
        std::istringstream head(line);
        std::string word;
        if (!(head >> word >> c.group >> c.name) || word != "case") {
            return fail("'case GROUP NAME' expected");
        }
        for (Polygon* const operand : {&c.a, &c.b}) {
            std::size_t count = 0;
            if (!nextLine()) {
                return fail("operand expected");
            }
            std::istringstream operandLine(line);
            if (!(operandLine >> word >> count)) {
                return fail("operand expected");
            }
            operand->resize(count);
            for (Contour& contour : *operand) {
                if (!nextLine()) {
                    return fail("contour expected");
                }
                std::istringstream contourLine(line);
                if (!readContour(contourLine, contour)) {
                    return fail("contour expected");
                }
            }
        }
        for (int k = 0; k < 4; ++k) {
            ReferenceResult& result = c.results[k];
            int operation = 0;
            int vertices = 0;
            int listed = 0;
            double area = 0;
            if (!nextLine()) {
                return fail("'op' expected");
            }
            std::istringstream in(line);
            std::string status;
            if (!(in >> word >> operation >> status) || word != "op" || operation != k ||
                !number64(in, result.exactArea)) {
                return fail("'op K STATUS ...' expected");
            }
            result.crashed = status == "crash";
            if (number64(in, area) && number64(in, result.regionError) &&
                (in >> result.contours >> vertices >> listed)) {
                result.listed = listed != 0 && !result.crashed;
            }
            for (std::size_t i = 0; result.listed && i < result.contours; ++i) {
                int hole = 0;
                Contour contour;
                if (!nextLine()) {
                    return fail("contour expected");
                }
                std::istringstream contourLine(line);
                if (!(contourLine >> hole) || !readContour(contourLine, contour)) {
                    return fail("contour expected");
                }
                result.region.contours.push_back(std::move(contour));
                result.region.holes.push_back(hole);
            }
        }
        cases.push_back(std::move(c));
        more = nextLine();
    }
    return cases;
}

} // namespace plain

#endif

// SPDX-License-Identifier: MIT

#include "Reading.h"

#include "MapReader.h"

#include <cstdint>
#include <vector>

namespace fuzz {

namespace {

typedef std::vector<Pt> Line;

/// The text of a map and the outlines that it holds.
struct Map {
    std::string text;
    std::vector<CPath> paths;
};

std::string PointText(Pt const& p) { return "[" + tool::Exact(p.h) + "," + tool::Exact(p.v) + "]"; }

std::string Listed(std::vector<std::string> const& items) {
    std::string text = "[";
    for (std::string const& item : items) {
        text += (text.size() > 1 ? "," : "") + item;
    }
    return text + "]";
}

std::string LineText(Line const& line) {
    std::vector<std::string> items;
    for (Pt const& p : line) {
        items.push_back(PointText(p));
    }
    return Listed(items);
}

/// Adds a line or ring with north up. A ring does not repeat its first point.
void Add(CPath& path, Line line, bool closed) {
    if (line.empty()) {
        return;
    }
    if (closed && line.size() > 1 && line.front() == line.back()) {
        line.pop_back();
    }
    for (std::size_t i = 0; i < line.size(); ++i) {
        Pt const p(line[i].h, 0.0 - line[i].v);
        i == 0 ? path.MoveTo(p) : path.LineTo(p);
    }
    if (closed) {
        path.ClosePath();
    }
}

Line AnyLine(Input& in) {
    Line line(static_cast<std::size_t>(in.Int(0, 6)));
    for (Pt& p : line) {
        p = in.Point();
        // A zero has no sign in JSON.
        p = Pt(std::isfinite(p.h) ? p.h + 0.0 : 1.0, std::isfinite(p.v) ? p.v + 0.0 : 1.0);
    }
    if (!line.empty() && in.Flag()) {
        line.push_back(line.front());
    }
    return line;
}

/// The members of a feature by which it has a name, sometimes.
std::string Names(Input& in) {
    static char const* const kNames[] = {"",
                                         "",
                                         R"("properties":{"name":"a"},)",
                                         R"("properties":null,)",
                                         R"("id":7,)",
                                         R"("id":"b",)",
                                         R"("properties":{"name":3},"id":-1e300,)"};
    return AnyOf(in, kNames);
}

/// The geometry of a feature: its type, and `coordinates` or `arcs` by the given member. Each line
/// comes from `next`, as text and as points.
template <class Next>
std::string Geometry(Input& in, char const* member, Next const& next, CPath& path) {
    int const kind = in.Int(0, 3);
    bool const closed = kind % 2 == 1;
    std::vector<std::string> parts;
    for (int i = kind == 0 ? 1 : in.Int(0, 3); i > 0; --i) {
        std::string text;
        Add(path, next(text), closed);
        parts.push_back(text);
    }
    static char const* const kTypes[] = {"LineString", "Polygon", "MultiLineString",
                                         "MultiPolygon"};
    std::string const list = kind == 0 ? parts[0] : Listed(parts);
    return std::string(R"("type":")") + kTypes[kind] + "\",\"" + member +
           "\":" + (kind == 3 ? "[" + list + "]" : list);
}

void Keep(Map& map, CPath const& path) {
    if (!path.mCtls.empty()) {
        map.paths.push_back(path);
    }
}

Map GeoJson(Input& in) {
    Map map;
    std::vector<std::string> features;
    for (int i = in.Int(0, 4); i > 0; --i) {
        CPath path;
        auto const next = [&in](std::string& text) {
            Line const line = AnyLine(in);
            text = LineText(line);
            return line;
        };
        std::string geometry = "{" + Geometry(in, "coordinates", next, path) + "}";
        if (in.Int(0, 3) == 0) { // all lines of a collection are one outline
            geometry = R"({"type":"GeometryCollection","geometries":[)" + geometry + ",{" +
                       Geometry(in, "coordinates", next, path) + "}]}";
        }
        features.push_back("{" + Names(in) + R"("type":"Feature","geometry":)" + geometry + "}");
        Keep(map, path);
    }
    map.text = R"({"type":"FeatureCollection","features":)" + Listed(features) + "}";
    return map;
}

Map TopoJson(Input& in) {
    Map map;
    bool const deltas = in.Flag();
    Pt const scale(in.Int(1, 8) * 0.125, in.Int(1, 8) * 0.5);
    Pt const shift(in.Int(-100, 100), in.Int(-100, 100));
    std::vector<Line> arcs;
    std::vector<std::string> arcTexts;
    for (int i = in.Int(0, 4); i >= 0; --i) {
        // Whole numbers, so that sums of steps have no rounding.
        Line steps(static_cast<std::size_t>(in.Int(0, 5)));
        Line points;
        Pt sum;
        for (Pt& step : steps) {
            step.h = in.Int(-100, 100);
            step.v = in.Int(-100, 100);
            sum = deltas ? sum + step : step;
            points.push_back(deltas ? sum * scale + shift : step);
        }
        arcs.push_back(points);
        arcTexts.push_back(LineText(steps));
    }
    std::vector<std::string> features;
    for (int i = in.Int(0, 4); i > 0; --i) {
        CPath path;
        auto const next = [&](std::string& text) {
            Line line;
            std::vector<std::string> indexes;
            for (int k = in.Int(0, 3); k > 0; --k) {
                auto const arc = static_cast<std::size_t>(in.Byte()) % arcs.size();
                bool const back = in.Flag();
                indexes.push_back(
                    std::to_string(back ? ~static_cast<long>(arc) : static_cast<long>(arc)));
                Line points = arcs[arc];
                if (back) {
                    std::reverse(points.begin(), points.end());
                }
                for (Pt const& p : points) {
                    if (line.empty() || line.back() != p) {
                        line.push_back(p);
                    }
                }
            }
            text = Listed(indexes);
            return line;
        };
        features.push_back("{" + Names(in) + Geometry(in, "arcs", next, path) + "}");
        Keep(map, path);
    }
    map.text = R"({"type":"Topology",)";
    if (deltas) {
        map.text += R"("transform":{"scale":)" + PointText(scale) + R"(,"translate":)" +
                    PointText(shift) + "},";
    }
    map.text += R"("arcs":)" + Listed(arcTexts) + R"(,"objects":{"countries":)" +
                R"({"type":"GeometryCollection","geometries":)" + Listed(features) + "}}}";
    return map;
}

/// The outlines as a map: lines by their subpaths.
std::string Written(tool::Drawing const& drawing) {
    std::vector<std::string> features;
    for (tool::Outline const& outline : drawing.outlines) {
        std::vector<std::string> lines;
        for (trammel::Subpath const& subpath : trammel::Subpaths(outline.path)) {
            Line line{subpath.Start()};
            for (trammel::PathSegment const& s : subpath) {
                if (s.kind == kPathLine) {
                    line.push_back(s.end);
                }
            }
            if (subpath.Closed()) {
                line.push_back(line.front());
            }
            for (Pt& p : line) {
                p.v = 0.0 - p.v;
            }
            lines.push_back(R"({"type":")" +
                            (subpath.Closed() ? R"(Polygon","coordinates":[)" + LineText(line) + "]"
                                              : R"(LineString","coordinates":)" + LineText(line)) +
                            "}");
        }
        features.push_back(R"({"type":"Feature","geometry":{"type":"GeometryCollection",)"
                           R"("geometries":)" +
                           Listed(lines) + "}}");
    }
    return R"({"type":"FeatureCollection","features":)" + Listed(features) + "}";
}

std::optional<tool::Drawing> Read(std::string const& text) {
    return DrawingOf([&text] { return tool::ReadMap(kFile, text); });
}

/// Changes a few characters.
void Spoil(Input& in, std::string& text) {
    static char const kCharacters[] = "{}[],:\"-0123456789.eEtrufalsn\\ \n\x7F";
    for (int i = in.Int(1, 6); i > 0 && !text.empty(); --i) {
        std::size_t const at = (in.Byte() * 256U + in.Byte()) % text.size();
        char const c = kCharacters[in.Byte() % (sizeof kCharacters - 1)];
        if (in.Flag()) {
            text[at] = c;
        } else if (in.Flag()) {
            text.erase(at, in.Byte());
        } else {
            text.insert(at, static_cast<std::size_t>(in.Byte()), c);
        }
    }
}

} // namespace

void Maps(Input& in) {
    int const kind = in.Int(0, 7);
    if (kind == 0) {
        Read(std::string(in.Rest()));
        return;
    }
    Map map = in.Flag() ? GeoJson(in) : TopoJson(in);
    if (kind == 1) {
        Spoil(in, map.text);
        Read(map.text);
        return;
    }
    std::optional<tool::Drawing> const drawing = Read(map.text);
    Require(drawing.has_value(), "a map can be read");
    Require(drawing->outlines.size() == map.paths.size(), "a feature is an outline");
    for (std::size_t i = 0; i < map.paths.size(); ++i) {
        Require(Same(drawing->outlines[i].path, map.paths[i]), "the points are those of the map");
    }
    std::optional<tool::Drawing> const again = Read(Written(*drawing));
    Require(again && again->outlines.size() == drawing->outlines.size(),
            "what is written can be read");
    for (std::size_t i = 0; i < map.paths.size(); ++i) {
        Require(Same(again->outlines[i].path, map.paths[i]), "the points come back, bit by bit");
    }
}

} // namespace fuzz

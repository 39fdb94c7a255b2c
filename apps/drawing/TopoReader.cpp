// SPDX-License-Identifier: MIT

#include "TopoReader.h"

#include "Error.h"

#include <trammel/CPath.h>
#include <trammel/TPoint.h>

#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <vector>

namespace tool {

namespace {

typedef nlohmann::ordered_json Json;
typedef TPoint<double> Pt;

/// The greatest depth of collections within collections. Maps in use have one level.
constexpr int kDeepest = 64;
/// The limit of vertices. Features may use arcs again and again, so a small file could ask for any
/// number.
constexpr std::size_t kMostVertices = 50'000'000;

std::string Item(std::string const& place, std::size_t i) {
    return place + "[" + std::to_string(i) + "]";
}

/// Returns the line and column of a byte.
std::string LineAndColumn(std::string const& text, std::size_t position) {
    std::size_t line = 1;
    std::size_t column = 1;
    for (std::size_t i = 0; i < position && i < text.size(); ++i) {
        ++column;
        if (text[i] == '\n') {
            ++line;
            column = 1;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

class Reader {
public:
    Reader(std::string const& file, Json const& map) : mFile(file), mMap(map) {}

    Drawing Read() {
        if (!mMap.is_object() || Text(mMap, "type") != "Topology") {
            throw Error(mFile, "", "is JSON, but no TopoJSON: its type is not \"Topology\"");
        }
        ReadTransform();
        ReadArcs();
        Json const& objects = Member(mMap, "objects", "");
        if (!objects.is_object() || objects.empty()) {
            Fail("objects", "must be an object with at least one member");
        }
        auto const countries = objects.find("countries");
        auto const chosen = countries != objects.end() ? countries : objects.begin();
        mDrawing.file = mFile;
        mDrawing.kind = "map";
        ReadFeature(*chosen, "objects." + chosen.key(), 0);
        return std::move(mDrawing);
    }

private:
    [[noreturn]] void Fail(std::string const& place, std::string const& message) const {
        throw Error(mFile, place, message);
    }

    static std::string Text(Json const& object, char const* name) {
        auto const found = object.find(name);
        return found != object.end() && found->is_string() ? found->get<std::string>() : "";
    }

    Json const& Member(Json const& object, char const* name, std::string const& place) const {
        auto const found = object.find(name);
        if (found == object.end()) {
            Fail(place, std::string("has no \"") + name + "\"");
        }
        return *found;
    }

    Json const& List(Json const& value, std::string const& place) const {
        if (!value.is_array()) {
            Fail(place, "must be a list");
        }
        return value;
    }

    /// Returns the first two numbers of a list: a position, or the transform's scale or shift.
    Pt Pair(Json const& value, std::string const& place) const {
        if (!value.is_array() || value.size() < 2 || !value[0].is_number() ||
            !value[1].is_number()) {
            Fail(place, "must be a list of two numbers");
        }
        return Pt(value[0].get<double>(), value[1].get<double>());
    }

    void ReadTransform() {
        auto const transform = mMap.find("transform");
        if (transform == mMap.end()) {
            return;
        }
        if (!transform->is_object()) {
            Fail("transform", "must be an object");
        }
        mDeltas = true;
        mScale = Pair(Member(*transform, "scale", "transform"), "transform.scale");
        mShift = Pair(Member(*transform, "translate", "transform"), "transform.translate");
    }

    void ReadArcs() {
        Json const& arcs = List(Member(mMap, "arcs", ""), "arcs");
        mArcs.reserve(arcs.size());
        for (std::size_t i = 0; i < arcs.size(); ++i) {
            Json const& arc = List(arcs[i], Item("arcs", i));
            std::vector<Pt> points;
            points.reserve(arc.size());
            Pt sum;
            std::string const place = Item("arcs", i);
            for (Json const& position : arc) {
                Pt p = Pair(position, place);
                if (mDeltas) {
                    // With a transform each position is a step from the position before.
                    sum += p;
                    p = sum * mScale + mShift;
                }
                if (!std::isfinite(p.h) || !std::isfinite(p.v)) {
                    Fail(place, "has coordinates that are too large");
                }
                points.emplace_back(p.h, 0.0 - p.v);
            }
            mArcs.push_back(std::move(points));
        }
    }

    /// Adds the points of the arcs of one line or ring. Adjoining arcs share a point, which is
    /// added once.
    void AddLine(CPath& path, Json const& indexes, bool closed, std::string const& place) {
        std::vector<Pt> points;
        for (std::size_t i = 0; i < List(indexes, place).size(); ++i) {
            Json const& value = indexes[i];
            std::int64_t const index = value.is_number_integer() ? value.get<std::int64_t>() : 0;
            // A negative index is the complement of an arc that runs the other way.
            auto const arc = static_cast<std::uint64_t>(index < 0 ? ~index : index);
            if (!value.is_number_integer() || arc >= mArcs.size()) {
                Fail(Item(place, i), "there is no arc " +
                                         value.dump(-1, ' ', true, Json::error_handler_t::replace));
            }
            std::vector<Pt> const& arcPoints = mArcs[static_cast<std::size_t>(arc)];
            mVertices += arcPoints.size();
            if (mVertices > kMostVertices) {
                Fail(Item(place, i),
                     "the map has more than " + std::to_string(kMostVertices) + " vertices");
            }
            for (std::size_t k = 0; k < arcPoints.size(); ++k) {
                Pt const& p = arcPoints[index < 0 ? arcPoints.size() - 1 - k : k];
                if (points.empty() || points.back() != p) {
                    points.push_back(p);
                }
            }
        }
        if (closed && points.size() > 1 && points.back() == points.front()) {
            points.pop_back();
        }
        if (points.empty()) {
            return;
        }
        path.MoveTo(points.front());
        for (std::size_t i = 1; i < points.size(); ++i) {
            path.LineTo(points[i]);
        }
        if (closed) {
            path.ClosePath();
        }
    }

    void AddLines(CPath& path, Json const& lines, bool closed, std::string const& place) {
        for (std::size_t i = 0; i < List(lines, place).size(); ++i) {
            AddLine(path, lines[i], closed, Item(place, i));
        }
    }

    std::string NameOf(Json const& feature) const {
        auto const properties = feature.find("properties");
        if (properties != feature.end() && properties->is_object()) {
            std::string name = Text(*properties, "name");
            if (!name.empty()) {
                return name;
            }
        }
        auto const id = feature.find("id");
        if (id != feature.end() && id->is_string() && !id->get<std::string>().empty()) {
            return id->get<std::string>();
        }
        if (id != feature.end() && id->is_number()) {
            return id->dump();
        }
        return "feature#" + std::to_string(mDrawing.outlines.size() + 1);
    }

    void ReadFeature(Json const& feature, std::string const& place, int depth) {
        if (!feature.is_object()) {
            Fail(place, "must be an object");
        }
        if (depth > kDeepest) {
            Fail(place, "is nested too deeply");
        }
        auto const typeMember = feature.find("type");
        if (typeMember != feature.end() && typeMember->is_null()) {
            return; // a feature without a geometry
        }
        std::string const type = Text(feature, "type");
        if (type == "GeometryCollection") {
            std::string const inside = place + ".geometries";
            Json const& features = List(Member(feature, "geometries", place), inside);
            for (std::size_t i = 0; i < features.size(); ++i) {
                ReadFeature(features[i], Item(inside, i), depth + 1);
            }
            return;
        }
        if (type == "Point" || type == "MultiPoint") {
            return;
        }
        if (type != "Polygon" && type != "MultiPolygon" && type != "LineString" &&
            type != "MultiLineString") {
            Fail(place, "is of no known type: '" + type + "'");
        }
        std::string const inside = place + ".arcs";
        Json const& arcs = List(Member(feature, "arcs", place), inside);
        CPath path;
        if (type == "LineString") {
            AddLine(path, arcs, false, inside);
        } else if (type == "MultiPolygon") {
            for (std::size_t i = 0; i < arcs.size(); ++i) {
                AddLines(path, arcs[i], true, Item(inside, i));
            }
        } else {
            AddLines(path, arcs, type == "Polygon", inside);
        }
        if (!path.mCtls.empty()) {
            // A country's holes are rings like its others, in either direction.
            mDrawing.outlines.push_back(
                {NameOf(feature), std::move(path), trammel::FillRule::kEvenOdd});
        }
    }

    std::string const& mFile;
    Json const& mMap;
    bool mDeltas = false;
    Pt mScale;
    Pt mShift;
    std::vector<std::vector<Pt>> mArcs; ///< decoded, v downward
    std::size_t mVertices = 0;
    Drawing mDrawing;
};

} // namespace

bool LooksLikeJson(std::string const& content) {
    std::size_t const mark = content.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
    std::size_t const first = content.find_first_not_of(" \t\r\n", mark);
    return first != std::string::npos && content[first] == '{';
}

Drawing ReadTopoJson(std::string const& file, std::string const& text) {
    Json map;
    try {
        map = Json::parse(text);
    } catch (Json::parse_error const& e) {
        throw Error(file, LineAndColumn(text, e.byte > 0 ? e.byte - 1 : 0), "is not valid JSON");
    } catch (Json::out_of_range const&) {
        throw Error(file, "", "has a number that is too large");
    }
    return Reader(file, map).Read();
}

} // namespace tool

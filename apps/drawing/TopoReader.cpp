// SPDX-License-Identifier: MIT

#include "TopoReader.h"

#include "MapJson.h"

#include <trammel/CPath.h>
#include <trammel/TPoint.h>

#include <nlohmann/json.hpp>

#include <cstdint>
#include <utility>
#include <vector>

namespace tool {

namespace {

typedef nlohmann::ordered_json Json;
typedef TPoint<double> Pt;

/// The limit of vertices. Features may use arcs again and again, so a small file could ask for any
/// number.
constexpr std::size_t kMostVertices = 50'000'000;

class TopologyReader : private MapReading {
public:
    TopologyReader(std::string const& file, Json const& map) : MapReading(file), mMap(map) {}

    Drawing Read() {
        ReadTransform();
        ReadArcs();
        Json const& objects = Member(mMap, "objects", "");
        if (!objects.is_object() || objects.empty()) {
            Fail("objects", "must be an object with at least one member");
        }
        auto const countries = objects.find("countries");
        auto const chosen = countries != objects.end() ? countries : objects.begin();
        ReadFeature(*chosen, "objects." + chosen.key(), 0);
        return std::move(mDrawing);
    }

private:
    void ReadTransform() {
        auto const transform = mMap.find("transform");
        if (transform == mMap.end()) {
            return;
        }
        if (!transform->is_object()) {
            Fail("transform", "must be an object");
        }
        mDeltas = true;
        mScale = Position(Member(*transform, "scale", "transform"), "transform.scale");
        mShift = Position(Member(*transform, "translate", "transform"), "transform.translate");
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
                Pt p = Position(position, place);
                if (mDeltas) {
                    // With a transform each position is a step from the position before.
                    sum += p;
                    p = sum * mScale + mShift;
                }
                points.push_back(OnPage(p, place));
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
        AddPoints(path, points, closed);
    }

    void AddLines(CPath& path, Json const& lines, bool closed, std::string const& place) {
        for (std::size_t i = 0; i < List(lines, place).size(); ++i) {
            AddLine(path, lines[i], closed, Item(place, i));
        }
    }

    void ReadFeature(Json const& feature, std::string const& place, int depth) {
        CheckObject(feature, place, depth);
        auto const typeMember = feature.find("type");
        if (typeMember != feature.end() && typeMember->is_null()) {
            return; // a feature without a geometry
        }
        std::string const type = TextOf(feature, "type");
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
        AddOutline(feature, std::move(path));
    }

    Json const& mMap;
    bool mDeltas = false;
    Pt mScale;
    Pt mShift;
    std::vector<std::vector<Pt>> mArcs; ///< decoded, v downward
    std::size_t mVertices = 0;
};

} // namespace

Drawing ReadTopoJson(std::string const& file, Json const& map) {
    return TopologyReader(file, map).Read();
}

} // namespace tool

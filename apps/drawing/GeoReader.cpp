// SPDX-License-Identifier: MIT

#include "GeoReader.h"

#include "MapJson.h"

#include <trammel/CPath.h>
#include <trammel/TPoint.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

namespace {

typedef nlohmann::ordered_json Json;
typedef TPoint<double> Pt;

class GeoJsonReader : private MapReading {
public:
    explicit GeoJsonReader(std::string const& file) : MapReading(file) {}

    Drawing Read(Json const& map) {
        ReadObject(map, "", 0);
        return std::move(mDrawing);
    }

private:
    /// Returns the place of a member. The outermost object has no place of its own.
    static std::string Inside(std::string const& place, char const* name) {
        return place.empty() ? name : place + "." + name;
    }

    void AddLine(CPath& path, Json const& line, bool closed, std::string const& place) const {
        std::vector<Pt> points;
        points.reserve(line.size());
        for (Json const& position : List(line, place)) {
            points.push_back(OnPage(Position(position, place), place));
        }
        AddPoints(path, points, closed);
    }

    void AddLines(CPath& path, Json const& lines, bool closed, std::string const& place) const {
        for (std::size_t i = 0; i < List(lines, place).size(); ++i) {
            AddLine(path, lines[i], closed, Item(place, i));
        }
    }

    /// Adds the lines and rings of a geometry.
    void AddGeometry(CPath& path, Json const& geometry, std::string const& place, int depth) const {
        CheckObject(geometry, place, depth);
        std::string const type = TextOf(geometry, "type");
        if (type == "GeometryCollection") {
            std::string const inside = Inside(place, "geometries");
            Json const& geometries = List(Member(geometry, "geometries", place), inside);
            for (std::size_t i = 0; i < geometries.size(); ++i) {
                AddGeometry(path, geometries[i], Item(inside, i), depth + 1);
            }
            return;
        }
        if (type == "Point" || type == "MultiPoint") {
            return;
        }
        std::string const inside = Inside(place, "coordinates");
        if (type != "LineString" && type != "MultiLineString" && type != "Polygon" &&
            type != "MultiPolygon") {
            Fail(place, "is of no known type: '" + type + "'");
        }
        Json const& coordinates = List(Member(geometry, "coordinates", place), inside);
        if (type == "LineString") {
            AddLine(path, coordinates, false, inside);
        } else if (type == "MultiPolygon") {
            for (std::size_t i = 0; i < coordinates.size(); ++i) {
                AddLines(path, coordinates[i], true, Item(inside, i));
            }
        } else {
            AddLines(path, coordinates, type == "Polygon", inside);
        }
    }

    /// Adds the outline of a geometry, by the name of the feature that it belongs to.
    void AddFeature(Json const& feature, Json const& geometry, std::string const& place,
                    int depth) {
        CPath path;
        AddGeometry(path, geometry, place, depth);
        AddOutline(feature, std::move(path));
    }

    void ReadObject(Json const& object, std::string const& place, int depth) {
        CheckObject(object, place, depth);
        std::string const type = TextOf(object, "type");
        bool const features = type == "FeatureCollection";
        if (features || type == "GeometryCollection") {
            char const* const name = features ? "features" : "geometries";
            std::string const inside = Inside(place, name);
            Json const& list = List(Member(object, name, place), inside);
            for (std::size_t i = 0; i < list.size(); ++i) {
                ReadObject(list[i], Item(inside, i), depth + 1);
            }
        } else if (type == "Feature") {
            auto const geometry = object.find("geometry");
            if (geometry != object.end() && !geometry->is_null()) {
                AddFeature(object, *geometry, Inside(place, "geometry"), depth + 1);
            }
        } else {
            AddFeature(object, object, place, depth);
        }
    }
};

} // namespace

bool IsGeoJsonType(std::string const& type) {
    static constexpr std::array<std::string_view, 9> types{
        "Feature",      "FeatureCollection", "GeometryCollection",
        "Point",        "MultiPoint",        "LineString",
        "MultiPolygon", "Polygon",           "MultiLineString"};
    return std::find(types.begin(), types.end(), type) != types.end();
}

Drawing ReadGeoJson(std::string const& file, Json const& map) {
    return GeoJsonReader(file).Read(map);
}

} // namespace tool

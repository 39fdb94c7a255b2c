// SPDX-License-Identifier: MIT

#include "MapJson.h"

#include "Error.h"

#include <cmath>
#include <utility>

namespace tool {

typedef nlohmann::ordered_json Json;

std::string Item(std::string const& place, std::size_t i) {
    return place + "[" + std::to_string(i) + "]";
}

std::string TextOf(Json const& object, char const* name) {
    auto const found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

std::string NameOf(Json const& feature, std::size_t before) {
    auto const properties = feature.find("properties");
    if (properties != feature.end() && properties->is_object()) {
        std::string name = TextOf(*properties, "name");
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
    return "feature#" + std::to_string(before + 1);
}

void AddPoints(CPath& path, std::vector<TPoint<double>> const& points, bool closed) {
    if (points.empty()) {
        return;
    }
    std::size_t const last = closed && points.size() > 1 && points.back() == points.front()
                                 ? points.size() - 1
                                 : points.size();
    path.MoveTo(points.front());
    for (std::size_t i = 1; i < last; ++i) {
        path.LineTo(points[i]);
    }
    if (closed) {
        path.ClosePath();
    }
}

MapReading::MapReading(std::string const& file) : mFile(file) {
    mDrawing.file = file;
    mDrawing.kind = "map";
}

void MapReading::Fail(std::string const& place, std::string const& message) const {
    throw Error(mFile, place, message);
}

Json const& MapReading::Member(Json const& object, char const* name,
                               std::string const& place) const {
    auto const found = object.find(name);
    if (found == object.end()) {
        Fail(place, std::string("has no \"") + name + "\"");
    }
    return *found;
}

Json const& MapReading::List(Json const& value, std::string const& place) const {
    if (!value.is_array()) {
        Fail(place, "must be a list");
    }
    return value;
}

TPoint<double> MapReading::Position(Json const& value, std::string const& place) const {
    if (!value.is_array() || value.size() < 2 || !value[0].is_number() || !value[1].is_number()) {
        Fail(place, "must be a list of two numbers");
    }
    return TPoint<double>(value[0].get<double>(), value[1].get<double>());
}

void MapReading::CheckObject(Json const& object, std::string const& place, int depth) const {
    if (!object.is_object()) {
        Fail(place, "must be an object");
    }
    if (depth > kDeepestCollection) {
        Fail(place, "is nested too deeply");
    }
}

TPoint<double> MapReading::OnPage(TPoint<double> const& p, std::string const& place) const {
    if (!std::isfinite(p.h) || !std::isfinite(p.v)) {
        Fail(place, "has coordinates that are too large");
    }
    return TPoint<double>(p.h, 0.0 - p.v);
}

void MapReading::AddOutline(Json const& feature, CPath path) {
    if (path.mCtls.empty()) {
        return;
    }
    Outline outline;
    outline.id = NameOf(feature, mDrawing.outlines.size());
    outline.path = std::move(path);
    // A country's holes are rings like its others, in either direction.
    outline.rule = trammel::FillRule::kEvenOdd;
    mDrawing.outlines.push_back(std::move(outline));
}

} // namespace tool

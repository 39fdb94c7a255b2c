// SPDX-License-Identifier: MIT

#include "MapJson.h"

#include "Error.h"

namespace tool {

typedef nlohmann::ordered_json Json;

std::string Item(std::string const& place, std::size_t i) {
    return place + "[" + std::to_string(i) + "]";
}

std::string TextOf(Json const& object, char const* name) {
    auto const found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

Json const& MemberOf(std::string const& file, Json const& object, char const* name,
                     std::string const& place) {
    auto const found = object.find(name);
    if (found == object.end()) {
        throw Error(file, place, std::string("has no \"") + name + "\"");
    }
    return *found;
}

Json const& ListOf(std::string const& file, Json const& value, std::string const& place) {
    if (!value.is_array()) {
        throw Error(file, place, "must be a list");
    }
    return value;
}

TPoint<double> PositionOf(std::string const& file, Json const& value, std::string const& place) {
    if (!value.is_array() || value.size() < 2 || !value[0].is_number() || !value[1].is_number()) {
        throw Error(file, place, "must be a list of two numbers");
    }
    return TPoint<double>(value[0].get<double>(), value[1].get<double>());
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

} // namespace tool

// SPDX-License-Identifier: MIT

// The outlines of countries, for tests on real maps. Needs the macro TRAMMEL_TEST_MAPS.

#ifndef TRAMMEL_COUNTRYOUTLINES_H
#define TRAMMEL_COUNTRYOUTLINES_H

#include "TPoint.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace trammel_test {

struct Country {
    std::string id; ///< three digits, ISO 3166-1; empty where there is none
    std::vector<std::vector<TPoint<double>>> contours;
};

/// All countries of a map in TopoJSON, which lies in the folder that the environment variable
/// TRAMMEL_MAP_DATA names, or else where script/setup puts maps. None if the map is missing.
inline std::vector<Country> EachCountryOf(std::string const& name) {
    typedef std::vector<TPoint<double>> Ring;
    char const* const variable = std::getenv("TRAMMEL_MAP_DATA");
    std::ifstream file((variable != nullptr ? variable : TRAMMEL_TEST_MAPS) + ("/" + name));
    if (!file) {
        return {};
    }
    nlohmann::json const map = nlohmann::json::parse(file);
    auto const& scale = map.at("transform").at("scale");
    auto const& origin = map.at("transform").at("translate");
    std::vector<Ring> arcs;
    for (auto const& steps : map.at("arcs")) {
        arcs.emplace_back();
        double h = 0.0;
        double v = 0.0;
        for (auto const& step : steps) {
            h += step.at(0).get<double>();
            v += step.at(1).get<double>();
            arcs.back().emplace_back(h * scale.at(0).get<double>() + origin.at(0).get<double>(),
                                     v * scale.at(1).get<double>() + origin.at(1).get<double>());
        }
    }
    std::vector<Country> countries;
    auto const add = [&](nlohmann::json const& ring) {
        std::vector<Ring>& contours = countries.back().contours;
        contours.emplace_back();
        for (auto const& number : ring) {
            int const i = number.get<int>(); // ~i is arc i backward
            Ring arc = arcs.at(static_cast<std::size_t>(i < 0 ? ~i : i));
            if (i < 0) {
                std::reverse(arc.begin(), arc.end());
            }
            contours.back().insert(contours.back().end(), arc.begin(), arc.end() - 1);
        }
    };
    for (auto const& country : map.at("objects").at("countries").at("geometries")) {
        std::string const type = country.value("type", "");
        countries.push_back({country.value("id", ""), {}});
        for (auto const& part : country.value("arcs", nlohmann::json::array())) {
            if (type == "Polygon") {
                add(part);
            } else {
                std::for_each(part.begin(), part.end(), add);
            }
        }
    }
    return countries;
}

/// All contours of all countries.
inline std::vector<std::vector<TPoint<double>>> CountriesOf(std::string const& name) {
    std::vector<std::vector<TPoint<double>>> contours;
    for (Country const& country : EachCountryOf(name)) {
        contours.insert(contours.end(), country.contours.begin(), country.contours.end());
    }
    return contours;
}

} // namespace trammel_test

#endif

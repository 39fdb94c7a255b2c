// SPDX-License-Identifier: MIT

// Parts that the readers of maps share: members of JSON objects with complaints that name the
// place, and the outlines of features. A place is written like "features[3].geometry.coordinates".

#ifndef TRAMMEL_APP_MAPJSON_H
#define TRAMMEL_APP_MAPJSON_H

#include "Drawing.h"

#include <trammel/CPath.h>
#include <trammel/TPoint.h>

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace tool {

/// The greatest depth of collections within collections. Maps in use have one level.
inline constexpr int kDeepestCollection = 64;

/// Returns the place of the list's entry `i`.
std::string Item(std::string const& place, std::size_t i);

/// Returns the member if it is a text, and otherwise nothing.
std::string TextOf(nlohmann::ordered_json const& object, char const* name);

/// Returns the feature's property "name", or else its id, or else a name made up from the number of
/// outlines before it.
std::string NameOf(nlohmann::ordered_json const& feature, std::size_t before);

/// Adds a subpath through the points. If it is closed, a last point equal to the first is left out.
/// No point adds nothing.
void AddPoints(CPath& path, std::vector<TPoint<double>> const& points, bool closed);

/// A reader of maps: the outlines so far, and complaints with the file's name.
class MapReading {
protected:
    explicit MapReading(std::string const& file);

    [[noreturn]] void Fail(std::string const& place, std::string const& message) const;
    /// Returns the member. Throws Error when the object has none of this name.
    nlohmann::ordered_json const& Member(nlohmann::ordered_json const& object, char const* name,
                                         std::string const& place) const;
    /// Returns the value. Throws Error when it is no list.
    nlohmann::ordered_json const& List(nlohmann::ordered_json const& value,
                                       std::string const& place) const;
    /// Returns the first two numbers of a list. Throws Error when there are no such.
    TPoint<double> Position(nlohmann::ordered_json const& value, std::string const& place) const;
    /// Throws Error when the value is no object, or lies too deep in collections.
    void CheckObject(nlohmann::ordered_json const& object, std::string const& place,
                     int depth) const;
    /// Returns a position with v downward. Throws Error unless it is finite.
    TPoint<double> OnPage(TPoint<double> const& p, std::string const& place) const;
    /// Adds the outline of a feature, unless the path is empty.
    void AddOutline(nlohmann::ordered_json const& feature, CPath path);

    std::string const& mFile;
    Drawing mDrawing;
};

} // namespace tool

#endif

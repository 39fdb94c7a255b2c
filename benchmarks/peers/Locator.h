// SPDX-License-Identifier: MIT

// Another library's answer to many points and one polygon, to be measured beside Trammel's. Its
// source file is compiled if the library is found.

#ifndef TRAMMEL_LOCATOR_H
#define TRAMMEL_LOCATOR_H

#include <trammel/TPoint.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace peers {

/// A polygon and points in a library's own form.
class Locator {
public:
    virtual ~Locator() = default;
    /// Prepares the polygon anew, without what it knew before. The library may leave the work to
    /// the first Contains.
    virtual void Prepare() = 0;
    /// True when point `i` is inside. Prepare comes first.
    virtual bool Contains(std::size_t i) = 0;
};

/// GEOS's prepared polygon, which answers from an indexed locator, through its C interface.
std::unique_ptr<Locator> GeosLocator(std::vector<TPoint<double>> const& vertices,
                                     std::vector<TPoint<double>> const& points);

} // namespace peers

#endif

// SPDX-License-Identifier: MIT

// Crowds of overlapping polygons, whose union is measured. They are the same in every run.

#ifndef TRAMMEL_CROWDS_H
#define TRAMMEL_CROWDS_H

#include "Operands.h"

#include <string>
#include <vector>

namespace crowds {

/// 10,000 simple rings at random places of the unit square, which run the same way. Their areas
/// make `cover` square units.
struct Crowd {
    std::vector<operands::Ring> rings;
    double area = 0.0; ///< of the union, by Trammel
};

/// Returns the names of the crowds. Squares, turned squares and buildings have a cover of 1, and of
/// 4 where the name says dense. Circles of 64 vertices and outlines of countries have a cover of 1.
std::vector<std::string> Names();

/// Returns the crowd of a name, which is made at the first call. Without map data the countries
/// have no rings.
Crowd const& Get(std::string const& name);

} // namespace crowds

#endif

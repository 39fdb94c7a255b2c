// SPDX-License-Identifier: MIT

// The area of an outline with its error, which two commands print.

#ifndef TRAMMEL_APP_OUTLINEAREA_H
#define TRAMMEL_APP_OUTLINEAREA_H

#include "Drawing.h"
#include "ManyFiles.h"

namespace tool {

/// Returns the area between the outline's curves and the arcs that they stand for, at most.
double ArcAreaError(Outline const& outline);

/// The area of what an outline encloses by its rule.
struct OutlineArea {
    double area = 0.0;
    double error = 0.0; ///< the most by which the area is off
};

/// Returns the area of the outline, to the accuracy asked for.
OutlineArea AreaOf(Outline const& outline, FigureOptions const& options);

} // namespace tool

#endif

// SPDX-License-Identifier: MIT

#include "ChangeSupport.h"
#include "Commands.h"

#include <trammel/OutlineOperations.h>

namespace tool {

namespace {

void RunOverlap(ChangeOptions const& options) {
    Change change;
    change.progress = "removing overlaps";
    change.area = true;
    change.form = [](Outline const& outline, double tolerance, CPath& out) {
        return trammel::RemoveOverlap(outline.path, outline.rule, tolerance, out);
    };
    RunChange(options, change);
}

} // namespace

void AddOverlap(Command const& app) {
    AddChangeCommand(
        app, "overlap", "Writes the outlines without overlaps, curves as they are", kFineShare,
        "The contours bound what the fill rule fills, every subpath taken as closed. They do not "
        "cross, and either\nrule fills them alike. Points farther than the tolerance from the "
        "outline stay inside or outside.\n"
        "An SVG drawing is kept: the elements with a fill get the new form, and those that --id "
        "names.\n"
        "Example: trammel overlap drawing.svg -o clean.svg",
        RunOverlap);
}

} // namespace tool

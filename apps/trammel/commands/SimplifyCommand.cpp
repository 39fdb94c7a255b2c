// SPDX-License-Identifier: MIT

#include "ChangeSupport.h"
#include "Commands.h"

#include <trammel/Simplify.h>

namespace tool {

namespace {

/// A tenth of a pixel of the PNG that this command writes.
constexpr ToleranceShare kShare{1e-4, "a 10000th"};

void Run(ChangeOptions const& options) {
    Change change;
    change.progress = "simplifying outlines";
    change.share = kShare;
    change.form = [](Outline const& outline, double tolerance, CPath& out) {
        return trammel::Simplify(outline.path, tolerance, out);
    };
    RunChange(options, change);
}

} // namespace

void AddSimplify(Command const& app) {
    AddChangeCommand(
        app, "simplify", "Writes the outlines with fewer curves and lines", kShare,
        "Curves that meet smoothly become one curve, and lines that continue each other one line. "
        "Corners stay.\nNo point of either outline is farther than the tolerance from the other.\n"
        "An SVG drawing is kept: only the forms of the elements change.\n"
        "Example: trammel simplify drawing.svg --tolerance 0.1 -o simple.svg",
        Run);
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "ChangeSupport.h"
#include "Commands.h"
#include "Drawing.h"

#include <trammel/CPath.h>
#include <trammel/Simplify.h>

#include <memory>
#include <vector>

namespace tool {

namespace {

/// A tenth of a pixel of the PNG that this command writes.
constexpr ToleranceShare kSimplifyShare{1e-4, "a 10000th"};

struct SimplifyOptions {
    ChangeOptions change;
    bool noNewCrossings = false;
};

/// Simplifies outlines that lie in one drawing or on one map, so that they do not cross anew.
double SimplifyTogether(std::vector<Outline const*> const& outlines, double tolerance,
                        std::vector<CPath>& out) {
    std::vector<CPath> paths;
    paths.reserve(outlines.size());
    for (Outline const* const outline : outlines) {
        paths.push_back(outline->path);
    }
    return trammel::SimplifyOutlines(paths, tolerance, trammel::NewCrossings::kAvoid, out);
}

void RunSimplify(SimplifyOptions const& options) {
    Change change;
    change.progress = "simplifying outlines";
    change.share = kSimplifyShare;
    change.form = [](Outline const& outline, double tolerance, CPath& out) {
        return trammel::Simplify(outline.path, tolerance, out);
    };
    if (options.noNewCrossings) {
        change.form = [](Outline const& outline, double tolerance, CPath& out) {
            return trammel::Simplify(outline.path, tolerance, trammel::NewCrossings::kAvoid, out);
        };
        change.forms = SimplifyTogether;
    }
    RunChange(options.change, change);
}

} // namespace

void AddSimplify(Command const& app) {
    auto const options = std::make_shared<SimplifyOptions>();
    Command const command =
        app.AddCommand("simplify", "Writes the outlines with fewer curves and lines");
    AddChangeOptions(command, options->change, kSimplifyShare);
    command.AddFlag("--no-new-crossings", options->noNewCrossings,
                    "Let nothing cross, touch or change sides that does not yet, among the chosen "
                    "outlines; they keep their common borders");
    AddChangeOutput(command, options->change);
    command.SetFooter(
        "Curves that meet smoothly become one curve, and lines that continue each other one line. "
        "Corners stay.\nNo point of either outline is farther than the tolerance from the other.\n"
        "With --no-new-crossings, the chosen outlines are simplified together, each glyph of a "
        "font for itself.\nOf an element that an SVG drawing shows several times, the largest copy "
        "takes part.\n"
        "An SVG drawing is kept: only the forms of the elements change.\n"
        "Example: trammel simplify drawing.svg --tolerance 0.1 -o simple.svg");
    command.SetAction([options] { RunSimplify(*options); });
}

} // namespace tool

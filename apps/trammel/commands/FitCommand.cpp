// SPDX-License-Identifier: MIT

#include "ChangeSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"

#include <trammel/FitCurves.h>
#include <trammel/PathSegments.h>
#include <trammel/UTrigonometry.h>

#include <algorithm>

namespace tool {

namespace {

/// Less than the width of a line that is drawn by hand.
constexpr ToleranceShare kFitShare{1e-3, "a 1000th"};

struct FitOptions {
    ChangeOptions change;
    std::string corner = "60";
};

/// Sets `out` to the path with curves in place of lines. Subpaths with curves stay as they are.
double Fitted(CPath const& path, double tolerance, double corner, CPath& out) {
    double distance = 0.0;
    for (CPath const& subpath : SplitSubpaths(path)) {
        if (subpath.TestContents(CPath::kContainsCurves)) {
            AppendSubpaths(out, subpath);
            continue;
        }
        std::vector<TPoint<double>> points(subpath.mPts.begin(), subpath.mPts.begin() + 1);
        for (trammel::PathSegment const& segment : trammel::Segments(subpath)) {
            points.push_back(segment.end);
        }
        distance = std::max(distance, trammel::FitCurves(points, tolerance, corner, out));
    }
    return distance;
}

void RunFit(FitOptions const& options) {
    double const degrees = NumberOf("--corner", options.corner);
    if (!(degrees > 0.0 && degrees <= 180.0)) {
        throw Error("--corner", "'" + options.corner + "'", "must be above 0 and at most 180");
    }
    double const corner = DegToRad(degrees);
    Change change;
    change.progress = "fitting curves";
    change.share = kFitShare;
    change.form = [=](Outline const& outline, double tolerance, CPath& out) {
        return Fitted(outline.path, tolerance, corner, out);
    };
    RunChange(options.change, change);
}

} // namespace

void AddFit(Command const& app) {
    auto const options = std::make_shared<FitOptions>();
    Command const command =
        app.AddCommand("fit", "Writes curves through the points of outlines of many lines");
    AddChangeOptions(command, options->change, kFitShare);
    command
        .AddOption("--corner", options->corner, "Degrees from which a turn is a corner and stays")
        .TypeName("A")
        .ShowDefault();
    AddChangeOutput(command, options->change);
    command.SetFooter(
        "Lines, such as those of a pen or a scan, become few curves and lines. No point of either "
        "outline is farther\nthan the tolerance from the other. Subpaths with curves stay, and one "
        "that returns\nto its start is closed.\n"
        "An SVG drawing is kept: only the forms of the elements change.\n"
        "Example: trammel fit scan.svg --tolerance 0.5 -o curves.svg");
    command.SetAction([options] { RunFit(*options); });
}

} // namespace tool

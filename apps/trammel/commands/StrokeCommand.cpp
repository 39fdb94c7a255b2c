// SPDX-License-Identifier: MIT

#include "ChangeSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"

#include <trammel/Stroke.h>

#include <algorithm>

namespace tool {

namespace {

/// Far below what can be seen, and above what rounding needs.
constexpr double kShare = 1e-5;

struct Options {
    ChangeOptions change;
    std::string pen;
    std::string join = "miter";
    std::string miterLimit = "4";
    std::string cap = "butt";
    std::string dash;
    std::string dashOffset = "0";
};

trammel::StrokeCap CapOf(std::string const& name) {
    if (name == "butt") {
        return trammel::StrokeCap::kButt;
    }
    if (name == "square") {
        return trammel::StrokeCap::kSquare;
    }
    if (name == "round") {
        return trammel::StrokeCap::kRound;
    }
    throw Error("--cap", "'" + name + "'", "must be butt, square or round");
}

trammel::StrokeStyle StyleOf(Options const& options) {
    trammel::StrokeStyle style;
    style.width = NumberOf("--pen", options.pen);
    if (!(style.width > 0.0)) {
        throw Error("--pen", "'" + options.pen + "'", "must be above 0");
    }
    style.join = JoinOf(options.join);
    style.miterLimit = MiterLimitOf(options.miterLimit);
    style.startCap = CapOf(options.cap);
    style.endCap = style.startCap;
    if (!options.dash.empty()) {
        style.dashes = NumbersOf("--dash", options.dash, 1, kMany);
        bool const wrong = std::any_of(style.dashes.begin(), style.dashes.end(),
                                       [](double length) { return length < 0.0; });
        if (wrong || *std::max_element(style.dashes.begin(), style.dashes.end()) == 0.0) {
            throw Error("--dash", "'" + options.dash + "'",
                        "lengths must not be negative, and one must be above 0");
        }
    }
    style.dashOffset = NumberOf("--dash-offset", options.dashOffset);
    return style;
}

/// The area has the colour that the line had.
void Paint(SvgEdit& edit, Outline const& outline) {
    if (outline.stroke != "none") {
        edit.SetProperty(outline.source.element, Property::kFill, outline.stroke);
        edit.SetProperty(outline.source.element, Property::kStroke, "none");
    }
}

void Run(Options const& options) {
    trammel::StrokeStyle const style = StyleOf(options);
    Change change;
    change.progress = "stroking outlines";
    change.share = kShare;
    change.filled = true;
    change.paint = Paint;
    change.form = [&](Outline const& outline, double tolerance, CPath& out) {
        return trammel::Stroke(outline.path, style, tolerance, out);
    };
    RunChange(options.change, change);
}

} // namespace

void AddStroke(Command const& app) {
    auto const options = std::make_shared<Options>();
    Command const command =
        app.AddCommand("stroke", "Writes what a pen paints along the outlines, as areas");
    AddChangeOptions(command, options->change, "a 100000th");
    command.AddOption("--pen", options->pen, "Width of the pen, in the drawing's units")
        .Required()
        .TypeName("W");
    command.AddOption("--join", options->join, "Corners: miter, miter-clip, round or bevel")
        .TypeName("JOIN")
        .ShowDefault();
    command
        .AddOption("--miter-limit", options->miterLimit,
                   "How long a miter may be, in widths of the pen")
        .TypeName("M")
        .ShowDefault();
    command.AddOption("--cap", options->cap, "Ends of lines: butt, square or round")
        .TypeName("CAP")
        .ShowDefault();
    command.AddOption("--dash", options->dash, "Lengths of a dash, a gap, a dash and so on")
        .TypeName("D,G,...");
    command.AddOption("--dash-offset", options->dashOffset, "Where in these lengths lines begin")
        .TypeName("S")
        .ShowDefault();
    AddChangeOutput(command, options->change);
    command.SetFooter(
        "The areas are right within the tolerance of their outlines. The pen is the one of the "
        "options: that of the\ndrawing's style is not read.\n"
        "An SVG drawing is kept: each element becomes the area of its line. Its fill gets the "
        "colour of its stroke,\nif there is one, and it has no stroke then.\n"
        "Example: trammel stroke drawing.svg --id wave --pen 2 --cap round -o areas.svg");
    command.SetAction([options] { Run(*options); });
}

} // namespace tool

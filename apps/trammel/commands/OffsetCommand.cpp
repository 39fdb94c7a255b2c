// SPDX-License-Identifier: MIT

#include "ChangeSupport.h"
#include "Commands.h"
#include "Numbers.h"

#include <trammel/Stroke.h>

namespace tool {

namespace {

struct OffsetOptions {
    ChangeOptions change;
    std::string by;
    std::string join = "round";
    std::string miterLimit = "4";
};

void RunOffset(OffsetOptions const& options) {
    double const distance = NumberOf("--by", options.by);
    trammel::StrokeJoin const join = JoinOf(options.join);
    double const miterLimit = MiterLimitOf(options.miterLimit);
    Change change;
    change.progress = "moving outlines";
    change.area = true;
    change.form = [=](Outline const& outline, double tolerance, CPath& out) {
        return trammel::Offset(outline.path, outline.rule, distance, join, miterLimit, tolerance,
                               out);
    };
    RunChange(options.change, change);
}

} // namespace

void AddOffset(Command const& app) {
    auto const options = std::make_shared<OffsetOptions>();
    Command const command = app.AddCommand("offset", "Writes the outlines grown or shrunk");
    AddChangeOptions(command, options->change, kFineShare);
    command.AddOption("--by", options->by, "How far to grow; a negative number shrinks")
        .Required()
        .TypeName("D");
    command.AddOption("--join", options->join, "Corners: miter, miter-clip, round or bevel")
        .TypeName("JOIN")
        .ShowDefault();
    command
        .AddOption("--miter-limit", options->miterLimit,
                   "How long a miter may be, in the distance that corners move")
        .TypeName("M")
        .ShowDefault();
    AddChangeOutput(command, options->change);
    command.SetFooter(
        "What the fill rule fills grows, every subpath taken as closed. The distance is in the "
        "drawing's units,\nand the new outline is right within the tolerance. An outline that "
        "shrinks to nothing has an empty form.\n"
        "An SVG drawing is kept: the elements with a fill get the new form, and those that --id "
        "names.\n"
        "Example: trammel offset drawing.svg --by -0.5 -o smaller.svg");
    command.SetAction([options] { RunOffset(*options); });
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "Clip.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "WriteSupport.h"

#include <trammel/CMatrix3x3.h>
#include <trammel/UTrigonometry.h>

#include <cmath>
#include <utility>

namespace tool {

namespace {

/// The bounds that --map takes are right to eight digits. No curves are written, unless new
/// coordinates are asked for.
ArcAccuracy const kDigits{ArcAccuracy::By::kDigits, 0.0, ""};

/// One transform option with its value.
struct Step {
    std::string option;
    std::string text;
    std::vector<double> numbers;
};

struct TransformOptions {
    Source source;
    std::vector<std::string> rotate;
    std::vector<std::string> scale;
    std::vector<std::string> translate;
    std::vector<std::string> map;
    bool coordinates = false;
    WriteOptions write;
};

Step ReadStep(std::string const& option, std::string const& text) {
    Step step{option, text, {}};
    if (option == "--rotate") {
        step.numbers = NumbersOf(option, text, 1, 3);
        if (step.numbers.size() == 2) {
            throw Error(option, "'" + text + "'", "the centre needs two numbers");
        }
    } else if (option == "--map") {
        step.numbers = NumbersOf(option, text, 4, 4);
        if (!(step.numbers[0] < step.numbers[2] && step.numbers[1] < step.numbers[3])) {
            throw Error(option, "'" + text + "'", "the rectangle must have an area");
        }
    } else if (option == "--translate") {
        step.numbers = NumbersOf(option, text, 2, 2);
    } else {
        step.numbers = NumbersOf(option, text, 1, 2);
    }
    return step;
}

/// The transform options in the order in which they stand on the command line.
std::vector<Step> StepsOf(Command const& command) {
    std::vector<Step> steps;
    for (auto const& [name, value] : command.GivenOptions()) {
        if (name == "--rotate" || name == "--scale" || name == "--translate" || name == "--map") {
            steps.push_back(ReadStep(name, value));
        }
    }
    return steps;
}

TRect<double> BoundsOf(std::vector<Outline> const& outlines) {
    TRect<double> bounds;
    for (Outline const& outline : outlines) {
        bounds = Around(bounds, DrawnBounds(outline.path));
    }
    return bounds;
}

CMatrix3x3 MatrixOf(Step const& step, Drawing const& drawing) {
    std::vector<double> const& n = step.numbers;
    CMatrix3x3 m;
    if (step.option == "--rotate") {
        if (n.size() == 3) {
            m.Rotate(DegToRad(n[0]), TPoint<double>(n[1], n[2]));
        } else {
            m.Rotate(DegToRad(n[0]));
        }
    } else if (step.option == "--scale") {
        m.Scale(n[0], n.back());
    } else if (step.option == "--translate") {
        m.Translate(n[0], n[1]);
    } else {
        m.Map(BoundsOf(drawing.outlines), TRect<double>(n[0], n[1], n[2], n[3]));
    }
    return m;
}

/// Changes the transforms in the document, so that strokes, gradients, clips, words and images move
/// along with the outlines.
void MoveElements(SvgEdit& edit, Drawing const& drawing, bool whole, CMatrix3x3 const& m) {
    if (whole) {
        edit.TransformAll(m, drawing.rootTransform);
        return;
    }
    for (Outline const* const outline : OnePerElement(drawing)) {
        OutlineSource const& source = outline->source;
        edit.SetTransform(source.element,
                          source.toDrawing * m * Undone(source.around, drawing, *outline));
    }
}

void RunTransform(Command const& command, TransformOptions const& options) {
    std::vector<Step> const steps = StepsOf(command);
    CheckWriteOptions(options.write);
    Drawing drawing = Load(options.source, options.coordinates ? ArcsOf(options.write) : kDigits);
    if (!KeepsDocument(drawing, options.write.output)) {
        ApplyClips(drawing);
    }
    std::vector<Outline> const before =
        options.coordinates ? drawing.outlines : std::vector<Outline>();
    CMatrix3x3 whole;
    for (Step const& step : steps) {
        CMatrix3x3 const m = MatrixOf(step, drawing);
        whole = whole * m;
        for (Outline& outline : drawing.outlines) {
            outline.path.Transform(m);
            for (TPoint<double> const& p : outline.path.mPts) {
                if (!std::isfinite(p.h) || !std::isfinite(p.v)) {
                    throw Error(drawing.file, outline.id,
                                step.option + " '" + step.text +
                                    "' makes coordinates that are too large");
                }
            }
        }
    }
    std::string const& output = options.write.output;
    if (!KeepsDocument(drawing, output)) {
        WriteFile(output,
                  NewFile(LinePicture(drawing.page, drawing.outlines), output, options.write));
        return;
    }
    SvgEdit edit(drawing.document, DigitsOf(options.write));
    if (options.coordinates) {
        for (Outline const* const outline : OnePerElement(drawing)) {
            auto const place = static_cast<std::size_t>(outline - drawing.outlines.data());
            KeepDashes(edit, before[place], outline->path);
            SetPath(edit, drawing, *outline, outline->path);
        }
    } else if (!IsIdentity(whole)) {
        MoveElements(edit, drawing, options.source.ids.empty(), whole);
    }
    WriteFile(output, SvgBytes(edit.Text(), output));
}

} // namespace

void AddTransform(Command const& app) {
    auto const options = std::make_shared<TransformOptions>();
    Command const command = app.AddCommand(
        "transform", "Turns, scales and moves the outlines, in the order of the options");
    AddSource(command, options->source);
    command
        .AddValues("--rotate", options->rotate,
                   "Degrees, clockwise on the page; about the origin, or about the point H,V")
        .TypeName("DEG[,H,V]");
    command
        .AddValues("--scale", options->scale, "Factor, or one for each direction; about the origin")
        .TypeName("S[,SV]");
    command.AddValues("--translate", options->translate, "Distances to the right and downward")
        .TypeName("DH,DV");
    command
        .AddValues("--map", options->map,
                   "Left, top, right, bottom of the rectangle that the outlines' bounds shall fill")
        .TypeName("L,T,R,B");
    command.AddFlag("--coordinates", options->coordinates,
                    "Write new coordinates of the outlines instead of transforms; the widths of "
                    "strokes stay");
    AddWriteOptions(command, options->write);
    AddCurveAccuracy(command, options->write);
    command.SetFooter(
        "An SVG drawing is kept: its elements get transforms, so that all that it shows "
        "moves, words and\nimages too; with --id only the elements of these outlines. "
        "The page stays as it is.\n"
        "Example: trammel transform drawing.svg --rotate 90 --map 0,0,100,100 -o "
        "turned.svg\nA value that begins with -. is given as --scale=-.5");
    command.SetAction([command, options] { RunTransform(command, *options); });
}

} // namespace tool

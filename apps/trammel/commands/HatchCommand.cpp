// SPDX-License-Identifier: MIT

#include "Clip.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Hatch.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "Progress.h"
#include "WriteSupport.h"

#include <trammel/UTrigonometry.h>

#include <utility>

namespace tool {

namespace {

struct HatchOptions {
    Source source;
    std::string angle;
    std::string spacing;
    WriteOptions write;
    bool outlines = false;
};

/// Returns the paint of hatch lines. They take the place of the fill, or lie above it.
std::string PaintOf(Outline const& outline, bool aboveFill) {
    if (!aboveFill && outline.fill != "none") {
        return outline.fill;
    }
    return outline.stroke != "none" ? outline.stroke : "black";
}

/// Returns the document with lines beside each outline. Without --outlines the outlines are no
/// longer filled.
std::string Hatched(HatchOptions const& options, Drawing const& drawing,
                    std::vector<Outline> const& lines, double width) {
    SvgEdit edit(drawing.document, DigitsOf(options.write));
    for (Outline const& outline : lines) {
        OutlineSource const& source = outline.source;
        if (outline.path.mCtls.empty()) {
            continue;
        }
        std::string const style = "fill:none;stroke:" + PaintOf(outline, options.outlines) +
                                  ";stroke-width:" + Exact(width / MeanStretch(source.beside)) +
                                  ";stroke-linecap:round;stroke-dasharray:none";
        edit.InsertPath(source.placed, {outline.id, "", style},
                        MovedBack(outline.path, source.beside, drawing, outline));
    }
    if (!options.outlines) {
        for (Outline const* const outline : OnePerElement(drawing)) {
            edit.SetProperty(outline->source.element, Property::kFill, "none");
        }
    }
    return edit.Text();
}

void RunHatch(HatchOptions const& options) {
    double const angle = NumberOf("--angle", options.angle);
    double const spacing = NumberOf("--spacing", options.spacing);
    if (!(spacing > 0.0)) {
        throw Error("--spacing", "'" + options.spacing + "'", "must be above 0");
    }
    CheckWriteOptions(options.write);
    Drawing drawing = Load(options.source, ArcAccuracy{ArcAccuracy::By::kDigits, 0.0, ""});
    ApplyClips(drawing);
    std::vector<Outline> lines; // one for each outline
    Progress progress("hatching outlines", drawing.outlines.size());
    for (Outline const& outline : drawing.outlines) {
        try {
            lines.push_back(outline);
            lines.back().id += "-hatch";
            lines.back().path = Hatch(outline.path, DegToRad(angle), spacing);
        } catch (Error const& e) {
            throw Error(drawing.file, outline.id, e.what());
        }
        progress.Update(lines.size());
    }
    std::string const& output = options.write.output;
    Page const page = LinePicture(drawing.page, drawing.outlines).page;
    double const width = LineWidth(options.write, page);
    if (KeepsDocument(drawing, output)) {
        WriteFile(output, SvgBytes(Hatched(options, drawing, lines, width), output));
        return;
    }
    std::vector<Outline> shown;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (options.outlines) {
            shown.push_back(drawing.outlines[i]);
        }
        if (!lines[i].path.mCtls.empty()) {
            shown.push_back(lines[i]);
        }
    }
    Picture picture = LinePicture(page, shown);
    for (Shape& shape : picture.shapes) {
        shape.style.strokeWidth = width;
    }
    WriteFile(output, NewFile(std::move(picture), output, options.write));
}

} // namespace

void AddHatch(Command const& app) {
    auto const options = std::make_shared<HatchOptions>();
    Command const command = app.AddCommand("hatch", "Writes parallel lines that fill the outlines");
    AddSource(command, options->source);
    command.AddOption("--angle", options->angle, "Degrees, clockwise from the horizontal")
        .Required()
        .TypeName("A");
    command.AddOption("--spacing", options->spacing, "Distance between lines")
        .Required()
        .TypeName("S");
    AddWriteOptions(command, options->write);
    command.AddFlag("--outlines", options->outlines,
                    "Keep the outlines' fill; in a new picture, draw the outlines too");
    command.SetFooter(
        "An SVG drawing is kept: the lines stand after each outline and take the place of "
        "its fill.\n"
        "Inside is decided by the even-odd rule, every subpath taken as closed.\n"
        "Example: trammel hatch drawing.svg --angle 45 --spacing 1 -o hatched.svg");
    command.SetAction([options] { RunHatch(*options); });
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "Clip.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Output.h"
#include "SvgDocument.h"
#include "Warning.h"
#include "WriteSupport.h"

#include <trammel/PathStructure.h>

#include <cstddef>
#include <set>
#include <string>

namespace tool {

namespace {

struct ReverseOptions {
    Source source;
    WriteOptions write;
};

/// Returns the elements along which the document sets text.
std::set<std::size_t> TextLines(SvgDocument const& document) {
    std::set<std::size_t> lines;
    for (pugi::xml_node const element : document.Elements()) {
        pugi::xml_node const line =
            document.LocalName(element) == "textPath" ? document.Linked(element) : pugi::xml_node();
        if (line) {
            lines.insert(document.Offset(line));
        }
    }
    return lines;
}

void RunReverse(ReverseOptions const& options) {
    CheckWriteOptions(options.write);
    Drawing drawing = Load(options.source, ArcsOf(options.write));
    std::string const& output = options.write.output;
    if (KeepsDocument(drawing, output)) {
        SvgEdit edit(drawing.document, DigitsOf(options.write));
        std::set<std::size_t> const texts = TextLines(*drawing.document);
        for (Outline const* const outline : OnePerElement(drawing)) {
            if (texts.count(outline->source.element) != 0) {
                Warn(drawing.file, outline->id, "the text along it follows the new direction");
            }
            if (!edit.TurnMarkers(outline->source.element, outline->path)) {
                Warn(drawing.file, outline->id,
                     "its markers follow the new beginning and direction");
            }
            SetPath(edit, drawing, *outline, trammel::Reversed(outline->path));
        }
        WriteFile(output, SvgBytes(edit.Text(), output));
        return;
    }
    ApplyClips(drawing);
    for (Outline& outline : drawing.outlines) {
        outline.path = trammel::Reversed(outline.path);
    }
    WriteFile(output, NewFile(LinePicture(drawing.page, drawing.outlines), output, options.write));
}

} // namespace

void AddReverse(Command const& app) {
    auto const options = std::make_shared<ReverseOptions>();
    Command const command = app.AddCommand("reverse", "Writes the outlines drawn the other way");
    AddSource(command, options->source);
    AddWriteOptions(command, options->write);
    AddCurveAccuracy(command, options->write);
    command.SetFooter("Each subpath begins where it ended, and closed ones stay closed. An SVG "
                      "drawing is kept: only the\nforms of the elements change. The markers at "
                      "both ends of a line change places, so that it\nlooks as before; a warning "
                      "tells where that cannot be.\n"
                      "Example: trammel reverse drawing.svg --id hole -o reversed.svg");
    command.SetAction([options] { RunReverse(*options); });
}

} // namespace tool

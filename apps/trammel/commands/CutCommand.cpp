// SPDX-License-Identifier: MIT

#include "Clip.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Cut.h"
#include "Error.h"
#include "Numbers.h"
#include "Output.h"
#include "SvgDocument.h"
#include "Warning.h"
#include "WriteSupport.h"

#include <trammel/AccurateCurve.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tool {

namespace {

struct CutOptions {
    Source source;
    std::string from;
    std::string to;
    WriteOptions write;
    std::string rest;
};

double Fraction(std::string const& option, std::string const& text) {
    double const t = NumberOf(option, text);
    if (!(t >= 0.0 && t <= 1.0)) {
        throw Error(option, "'" + text + "'", "a fraction must lie between 0 and 1");
    }
    return t;
}

/// Warns of an outline that has no length, and stays therefore.
void TellUncut(Drawing const& drawing, Outline const& outline) {
    Warn(drawing.file,
         drawing.document
             ? drawing.document->Place(drawing.document->ElementAt(outline.source.element))
             : outline.id,
         "the outline has no length, and stays as it is");
}

void RunCut(CutOptions const& options) {
    double const from = Fraction("--from", options.from);
    double const to = Fraction("--to", options.to);
    if (!(from < to)) {
        throw Error("--to", "'" + options.to + "'", "must be above --from");
    }
    CheckWriteOptions(options.write);
    Drawing drawing = Load(options.source, ArcsOf(options.write));
    if (!KeepsDocument(drawing, options.write.output)) {
        ApplyClips(drawing);
    }
    auto const isDot = [](Outline const& outline) {
        return trammel::ArcLength(outline.path, 0.0) == 0.0;
    };
    bool const some = !std::all_of(drawing.outlines.begin(), drawing.outlines.end(), isDot);
    std::vector<Outline> cut;
    std::vector<Outline> rest;
    for (Outline const& outline : drawing.outlines) {
        if (some && isDot(outline)) {
            TellUncut(drawing, outline);
            cut.push_back(outline);
            rest.push_back(outline);
            continue;
        }
        LengthToDivide(drawing, outline);
        Pieces pieces = CutPath(outline.path, from, to);
        cut.push_back(outline);
        cut.back().path = std::move(pieces.cut);
        rest.push_back(outline);
        rest.back().path = std::move(pieces.rest);
    }
    Page const page = LinePicture(drawing.page, drawing.outlines).page;
    OutputFiles files;
    auto const add = [&](std::string const& file, std::vector<Outline>& pieces) {
        if (KeepsDocument(drawing, file)) {
            Drawing changed = drawing;
            changed.outlines = std::move(pieces);
            SvgEdit edit(drawing.document, DigitsOf(options.write));
            for (Outline const* const outline : OnePerElement(changed)) {
                auto const place = static_cast<std::size_t>(outline - changed.outlines.data());
                if (isDot(drawing.outlines[place])) {
                    continue;
                }
                KeepDashes(edit, drawing.outlines[place], outline->path);
                SetPath(edit, changed, *outline, outline->path);
            }
            files.Add(file, SvgBytes(edit.Text(), file));
            return;
        }
        pieces.erase(std::remove_if(pieces.begin(), pieces.end(),
                                    [](Outline const& o) { return o.path.mCtls.empty(); }),
                     pieces.end());
        files.Add(file, NewFile(LinePicture(page, pieces), file, options.write));
    };
    add(options.write.output, cut);
    if (!options.rest.empty()) {
        add(options.rest, rest);
    }
    files.Commit();
}

} // namespace

void AddCut(Command const& app) {
    auto const options = std::make_shared<CutOptions>();
    Command const command =
        app.AddCommand("cut", "Cuts a piece out of each outline, and writes it and the rest");
    AddSource(command, options->source);
    command.AddOption("--from", options->from, "Where the piece begins: fraction of the length")
        .Required()
        .TypeName("A");
    command.AddOption("--to", options->to, "Where it ends: a greater fraction, at most 1")
        .Required()
        .TypeName("B");
    AddWriteOptions(command, options->write);
    AddCurveAccuracy(command, options->write);
    command.AddOption("--rest", options->rest, "The file for what remains").TypeName("FILE");
    command.SetFooter(
        "An SVG drawing is kept: in both files the elements have what was cut or what remains, "
        "and everything\nelse stays as it is.\n"
        "Example: trammel cut drawing.svg --from 0.25 --to 0.5 -o piece.svg --rest "
        "rest.svg");
    command.SetAction([options] { RunCut(*options); });
}

} // namespace tool

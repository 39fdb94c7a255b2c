// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Cut.h"
#include "Error.h"
#include "Numbers.h"
#include "Output.h"

#include <CLI/CLI.hpp>

#include <utility>

namespace tool {

namespace {

struct Options {
    Source source;
    std::string from;
    std::string to;
    std::string output;
    std::string rest;
};

double Fraction(std::string const& option, std::string const& text) {
    double const t = NumberOf(option, text);
    if (!(t >= 0.0 && t <= 1.0)) {
        throw Error(option, "'" + text + "'", "a fraction must lie between 0 and 1");
    }
    return t;
}

void Run(Options const& options) {
    double const from = Fraction("--from", options.from);
    double const to = Fraction("--to", options.to);
    if (!(from < to)) {
        throw Error("--to", "'" + options.to + "'", "must be above --from");
    }
    Drawing const drawing = Load(options.source);
    std::vector<Outline> cut;
    std::vector<Outline> rest;
    for (Outline const& outline : drawing.outlines) {
        LengthToDivide(drawing, outline);
        Pieces pieces = CutPath(outline.path, from, to);
        if (!pieces.cut.mCtls.empty()) {
            cut.push_back({outline.id, std::move(pieces.cut)});
        }
        if (!pieces.rest.mCtls.empty()) {
            rest.push_back({outline.id, std::move(pieces.rest)});
        }
    }
    Page const page = LinePicture(drawing.page, drawing.outlines).page;
    OutputFiles files;
    files.Add(options.output, PictureBytes(LinePicture(page, cut), options.output));
    if (!options.rest.empty()) {
        files.Add(options.rest, PictureBytes(LinePicture(page, rest), options.rest));
    }
    files.Commit();
}

} // namespace

void AddCut(CLI::App& app) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("cut", "Cuts a piece out of each outline, and writes it and the rest");
    AddSource(*command, options->source);
    command->add_option("--from", options->from, "Where the piece begins: fraction of the length")
        ->required()
        ->type_name("A");
    command->add_option("--to", options->to, "Where it ends: a greater fraction, at most 1")
        ->required()
        ->type_name("B");
    AddOutput(*command, options->output);
    command->add_option("--rest", options->rest, "The file for what remains")->type_name("FILE");
    command->footer("Example: trammel cut drawing.svg --from 0.25 --to 0.5 -o piece.svg --rest "
                    "rest.svg");
    command->callback([options] { Run(*options); });
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Hatch.h"
#include "Numbers.h"
#include "Output.h"
#include "Progress.h"

#include <trammel/UTrigonometry.h>

#include <CLI/CLI.hpp>

#include <utility>

namespace tool {

namespace {

struct Options {
    Source source;
    std::string angle;
    std::string spacing;
    std::string output;
    bool outlines = false;
};

void Run(Options const& options) {
    double const angle = NumberOf("--angle", options.angle);
    double const spacing = NumberOf("--spacing", options.spacing);
    if (!(spacing > 0.0)) {
        throw Error("--spacing", "'" + options.spacing + "'", "must be above 0");
    }
    Drawing const drawing = Load(options.source);
    std::vector<Outline> lines;
    Progress progress("hatching outlines", drawing.outlines.size());
    std::size_t done = 0;
    for (Outline const& outline : drawing.outlines) {
        CPath hatch;
        try {
            hatch = Hatch(outline.path, DegToRad(angle), spacing);
        } catch (Error const& e) {
            throw Error(drawing.file, outline.id, e.what());
        }
        if (options.outlines) {
            lines.push_back(outline);
        }
        if (!hatch.mCtls.empty()) {
            lines.push_back({outline.id + "-hatch", std::move(hatch)});
        }
        progress.Update(++done);
    }
    Page const page = LinePicture(drawing.page, drawing.outlines).page;
    WriteFile(options.output, PictureBytes(LinePicture(page, lines), options.output));
}

} // namespace

void AddHatch(CLI::App& app) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("hatch", "Writes parallel lines that fill the outlines");
    AddSource(*command, options->source);
    command->add_option("--angle", options->angle, "Degrees, clockwise from the horizontal")
        ->required()
        ->type_name("A");
    command->add_option("--spacing", options->spacing, "Distance between lines")
        ->required()
        ->type_name("S");
    AddOutput(*command, options->output);
    command->add_flag("--outlines", options->outlines, "Write the outlines too");
    command->footer("Inside is decided by the even-odd rule, every subpath taken as closed.\n"
                    "Example: trammel hatch drawing.svg --angle 45 --spacing 1 -o hatched.svg");
    command->callback([options] { Run(*options); });
}

} // namespace tool

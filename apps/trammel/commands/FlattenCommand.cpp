// SPDX-License-Identifier: MIT

#include "Classic.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "Progress.h"

#include <CLI/CLI.hpp>

namespace tool {

namespace {

struct Options {
    Source source;
    std::string error;
    std::string output;
    bool classic = false;
};

void Run(Options const& options) {
    double const error = NumberOf("--error", options.error);
    if (!(error > 0.0)) {
        throw Error("--error", "'" + options.error + "'", "must be above 0");
    }
    Drawing drawing = Load(options.source);
    Progress progress("flattening outlines", drawing.outlines.size());
    std::size_t done = 0;
    for (Outline& outline : drawing.outlines) {
        outline.path = PathOf(options.classic ? ClassicFlatten(outline.path, error)
                                              : Flatten(outline.path, error));
        progress.Update(++done);
    }
    WriteFile(options.output,
              PictureBytes(LinePicture(drawing.page, drawing.outlines), options.output));
}

} // namespace

void AddFlatten(CLI::App& app) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("flatten", "Writes the outlines with every curve as straight lines");
    AddSource(*command, options->source);
    command->add_option("--error", options->error, "How far the lines may deviate from the curves")
        ->required()
        ->type_name("E");
    AddOutput(*command, options->output);
    command->add_flag("--classic", options->classic,
                      "The lines of CBezier::Flatten, which may deviate by more");
    command->footer("Example: trammel flatten drawing.svg --error 0.1 -o flat.svg");
    command->callback([options] { Run(*options); });
}

} // namespace tool

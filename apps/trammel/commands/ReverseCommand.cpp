// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Output.h"

#include <trammel/PathStructure.h>

#include <CLI/CLI.hpp>

namespace tool {

namespace {

struct Options {
    Source source;
    std::string output;
};

void Run(Options const& options) {
    Drawing drawing = Load(options.source);
    for (Outline& outline : drawing.outlines) {
        outline.path = trammel::Reversed(outline.path);
    }
    WriteFile(options.output,
              PictureBytes(LinePicture(drawing.page, drawing.outlines), options.output));
}

} // namespace

void AddReverse(CLI::App& app) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("reverse", "Writes the outlines drawn the other way");
    AddSource(*command, options->source);
    AddOutput(*command, options->output);
    command->footer("Each subpath begins where it ended, and closed ones stay closed.\n"
                    "Example: trammel reverse drawing.svg --id hole -o reversed.svg");
    command->callback([options] { Run(*options); });
}

} // namespace tool

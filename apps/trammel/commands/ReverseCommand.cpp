// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Output.h"

#include <trammel/PathStructure.h>

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

void AddReverse(Command const& app) {
    auto const options = std::make_shared<Options>();
    Command const command = app.AddCommand("reverse", "Writes the outlines drawn the other way");
    AddSource(command, options->source);
    AddOutput(command, options->output);
    command.SetFooter("Each subpath begins where it ended, and closed ones stay closed.\n"
                      "Example: trammel reverse drawing.svg --id hole -o reversed.svg");
    command.SetAction([options] { Run(*options); });
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "CommandLine.h"
#include "Commands.h"
#include "Error.h"
#include "Output.h"
#include "Suggestion.h"

#include <memory>
#include <string>

namespace tool {

namespace {

void RunHelp(Command const& app, std::string const& name) {
    std::string const help = name.empty() ? app.Help() : app.HelpOf(name);
    if (help.empty()) {
        throw Error("help", "",
                    "unknown command '" + name + "'" + Suggestion(name, app.CommandNames()));
    }
    Print(help);
}

} // namespace

void AddHelp(Command const& app) {
    auto const name = std::make_shared<std::string>();
    Command const command = app.AddCommand("help", "Prints the help of a command");
    command.AddOption("COMMAND", *name, "The command (default: the list of all)").TypeName("");
    command.SetFooter("Example: trammel help measure");
    command.SetAction([app, name] { RunHelp(app, *name); });
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "Error.h"
#include "Output.h"
#include "Suggestion.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace tool {

namespace {

void Run(CLI::App const& app, std::string const& name) {
    // The parser would take the help of the command that runs, this one, for the program's.
    CLI::Formatter const formatter;
    if (name.empty()) {
        Print(formatter.make_help(&app, app.get_name(), CLI::AppFormatMode::Normal));
        return;
    }
    for (CLI::App const* const command : app.get_subcommands({})) {
        if (command->get_name() == name) {
            Print(command->help(app.get_name()));
            return;
        }
    }
    throw Error("help", "", "unknown command '" + name + "'" + Suggestion(name, CommandNames(app)));
}

} // namespace

void AddHelp(CLI::App& app) {
    auto const name = std::make_shared<std::string>();
    CLI::App* const command = app.add_subcommand("help", "Prints the help of a command");
    command->add_option("COMMAND", *name, "The command (default: the list of all)")->type_name("");
    command->footer("Example: trammel help measure");
    command->callback([&app, name] { Run(app, *name); });
}

} // namespace tool

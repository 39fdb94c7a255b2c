// SPDX-License-Identifier: MIT

// trammel: measures, cuts and shapes the outlines of drawings and fonts from the command line.
//
// Exit status 0 means that the work is done. 2 means that it is not; one line on standard error
// says why and where.

#include "CommandLine.h"
#include "Error.h"
#include "Suggestion.h"
#include "Warning.h"
#include "commands/Commands.h"
#include "commands/ManyFiles.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <csignal>
#include <exception>
#include <new>
#include <string>
#include <vector>

namespace {

constexpr int kFailed = 2;

int Fail(std::string const& message) {
    tool::PrintDiagnostic(message);
    return kFailed;
}

/// Returns the message of a wrong command line, in one line and with the command's name.
std::string UsageMessage(CLI::App& app, CLI::ParseError const& error) {
    tool::Command const program(app);
    std::string command;
    for (CLI::App const* const chosen : app.get_subcommands()) {
        command = chosen->get_name();
    }
    std::string text = error.what();
    std::replace(text.begin(), text.end(), '\n', ' ');
    // A word that the parser does not understand is the likelier mistake. The missing part that it
    // reports can follow from it.
    std::vector<std::string> const unknown = app.remaining(true);
    if (!unknown.empty()) {
        bool const option = unknown.front().compare(0, 1, "-") == 0;
        text = option            ? "unknown option "
               : command.empty() ? "unknown command "
                                 : "one argument too many: ";
        std::string const& whole = unknown.front();
        std::string const word = option ? whole.substr(0, whole.find('=')) : whole;
        text += "'" + whole + "'";
        if (option && !command.empty()) {
            text +=
                tool::Suggestion(word, tool::Command(*app.get_subcommands().back()).OptionNames());
        } else if (command.empty()) {
            text += tool::Suggestion(word, option ? program.OptionNames() : program.CommandNames());
        }
    }
    // The parser's words count what it got.
    std::size_t const twice = text.find(": At Most 1 required but received");
    if (unknown.empty() && twice != std::string::npos) {
        text = text.substr(0, twice) + " may be given only once";
    }
    if (!command.empty()) {
        command += ": ";
    }
    return command + tool::OneLine(text) + " (see trammel " +
           (command.empty() ? "" : command.substr(0, command.size() - 2) + " ") + "--help)";
}

/// Adds the options that every command has. Of both, --strict counts: the parser calls the
/// functions in the order in which the options are added.
void AddCommonOptions(CLI::App& command) {
    command
        .add_flag_callback(
            "-q,--quiet", [] { tool::SetWarningMode(tool::WarningMode::kSilent); },
            "No warnings and no progress; errors are still told")
        ->group("Every command");
    command
        .add_flag_callback(
            "--strict", [] { tool::SetWarningMode(tool::WarningMode::kError); },
            "Warnings are errors")
        ->group("Every command");
}

int Run(int argc, char** argv) {
    CLI::App app(
        "Measures, cuts, shapes and combines the outlines of SVG drawings, fonts and maps.",
        "trammel");
    app.set_version_flag("--version", "trammel " TRAMMEL_APP_VERSION);
    app.require_subcommand(1);
    app.footer("trammel COMMAND --help tells more. Coordinates are h,v: rightward and downward.");
    for (auto const add : tool::kCommands) {
        add(tool::Command(app));
    }
    for (CLI::App* const command : app.get_subcommands({})) {
        AddCommonOptions(*command);
    }
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& e) {
        if (e.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            return app.exit(e); // --help or --version
        }
        return Fail(UsageMessage(app, e));
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    // A closed pipe and a limit of the size of files are errors of a write like others.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        return Run(argc, argv);
    } catch (tool::ToldErrors const&) {
        return kFailed;
    } catch (std::bad_alloc const&) {
        return Fail("not enough memory");
    } catch (std::exception const& e) {
        return Fail(tool::OneLine(e.what()));
    }
}

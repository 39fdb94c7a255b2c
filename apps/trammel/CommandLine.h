// SPDX-License-Identifier: MIT

// Commands and their options, for the command-line parser. Commands include this small header
// instead of the parser's own, which takes longer to read than most commands to compile.

#ifndef TRAMMEL_APP_COMMANDLINE_H
#define TRAMMEL_APP_COMMANDLINE_H

#include <functional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tool {

/// An option or an argument of a command. It is a handle: copies stand for the same option.
class Option {
public:
    explicit Option(CLI::Option& option) : mOption(&option) {}

    /// Without a required option the command line is refused. Returns the option.
    Option const& Required(bool required = true) const;
    /// Sets the word that stands for the value in the help. Returns the option.
    Option const& TypeName(std::string const& name) const;
    /// Lets the help show the value that the option has now. Returns the option.
    Option const& ShowDefault() const;

    /// True when the command line has the option. Is known when the command's action runs.
    bool IsGiven() const;

private:
    CLI::Option* mOption;
};

/// An option of the command line, with its value as text.
struct GivenOption {
    std::string name;
    std::string value;
};

/// A command, or the program as a whole. It is a handle: copies stand for the same command.
class Command {
public:
    explicit Command(CLI::App& app) : mApp(&app) {}

    std::string Name() const;

    /// Adds a command of the program and returns it.
    Command AddCommand(std::string const& name, std::string const& help) const;
    /// Adds an option, which begins with a hyphen, or an argument, which does not. The variable
    /// gets the value before the action runs.
    Option AddOption(std::string const& name, std::string& value, std::string const& help) const;
    /// Adds an argument that takes all words that follow.
    Option AddArguments(std::string const& name, std::vector<std::string>& values,
                        std::string const& help) const;
    /// Adds an option that may come several times, one value each.
    Option AddValues(std::string const& name, std::vector<std::string>& values,
                     std::string const& help) const;
    /// Adds an option without a value.
    void AddFlag(std::string const& name, bool& value, std::string const& help) const;
    /// Sets what the help ends with.
    void SetFooter(std::string const& text) const;
    /// Sets what the command does.
    void SetAction(std::function<void()> const& action) const;

    /// Returns the options of the command line in their order, those with several values as often.
    std::vector<GivenOption> GivenOptions() const;

    /// Returns the names of the program's commands.
    std::vector<std::string> CommandNames() const;
    /// Returns the names of the options, hyphens included.
    std::vector<std::string> OptionNames() const;
    /// Returns the program's help.
    std::string Help() const;
    /// Returns the help of one of the program's commands. Returns none for an unknown name.
    std::string HelpOf(std::string const& command) const;

private:
    CLI::App* mApp;
};

} // namespace tool

#endif

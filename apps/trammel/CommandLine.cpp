// SPDX-License-Identifier: MIT

#include "CommandLine.h"

#include <CLI/CLI.hpp>

#include <cstddef>
#include <map>

namespace tool {

Option const& Option::Required(bool required) const {
    mOption->required(required);
    return *this;
}

Option const& Option::TypeName(std::string const& name) const {
    mOption->type_name(name);
    return *this;
}

Option const& Option::ShowDefault() const {
    mOption->capture_default_str();
    return *this;
}

bool Option::IsGiven() const { return mOption->count() > 0; }

std::string Command::Name() const { return mApp->get_name(); }

Command Command::AddCommand(std::string const& name, std::string const& help) const {
    return Command(*mApp->add_subcommand(name, help));
}

Option Command::AddOption(std::string const& name, std::string& value,
                          std::string const& help) const {
    return Option(*mApp->add_option(name, value, help));
}

Option Command::AddArguments(std::string const& name, std::vector<std::string>& values,
                             std::string const& help) const {
    return Option(*mApp->add_option(name, values, help));
}

Option Command::AddValues(std::string const& name, std::vector<std::string>& values,
                          std::string const& help) const {
    return Option(*mApp->add_option(name, values, help)
                       ->expected(1)
                       ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
                       ->allow_extra_args(false));
}

void Command::AddFlag(std::string const& name, bool& value, std::string const& help) const {
    mApp->add_flag(name, value, help);
}

void Command::SetFooter(std::string const& text) const { mApp->footer(text); }

void Command::SetAction(std::function<void()> const& action) const { mApp->callback(action); }

std::vector<GivenOption> Command::GivenOptions() const {
    std::map<CLI::Option const*, std::size_t> taken;
    std::vector<GivenOption> given;
    for (CLI::Option const* const option : mApp->parse_order()) {
        given.push_back({option->get_name(), option->results().at(taken[option]++)});
    }
    return given;
}

std::vector<std::string> Command::CommandNames() const {
    std::vector<std::string> names;
    for (CLI::App const* const command : mApp->get_subcommands({})) {
        names.push_back(command->get_name());
    }
    return names;
}

std::vector<std::string> Command::OptionNames() const {
    std::vector<std::string> names;
    for (CLI::Option const* const option : mApp->get_options()) {
        for (std::string const& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::string Command::Help() const {
    // The parser would take the help of the command that runs for the program's.
    CLI::Formatter const formatter;
    return formatter.make_help(mApp, mApp->get_name(), CLI::AppFormatMode::Normal);
}

std::string Command::HelpOf(std::string const& command) const {
    for (CLI::App const* const candidate : mApp->get_subcommands({})) {
        if (candidate->get_name() == command) {
            return candidate->help(mApp->get_name());
        }
    }
    return "";
}

} // namespace tool

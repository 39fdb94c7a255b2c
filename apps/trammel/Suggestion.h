// SPDX-License-Identifier: MIT

// Suggestions for misspelt words of the command line.

#ifndef TRAMMEL_APP_SUGGESTION_H
#define TRAMMEL_APP_SUGGESTION_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tool {

/// Returns "; did you mean 'NAME'?" with the name that is most like the word, and nothing if none
/// is much like it: more than a third of the letters differ.
std::string Suggestion(std::string const& word, std::vector<std::string> const& names);

/// Returns the names of the program's commands.
std::vector<std::string> CommandNames(CLI::App const& app);
/// Returns the names of a command's options, hyphens included.
std::vector<std::string> OptionNames(CLI::App const& command);

} // namespace tool

#endif

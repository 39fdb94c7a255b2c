// SPDX-License-Identifier: MIT

// Suggestions for misspelt words of the command line.

#ifndef TRAMMEL_APP_SUGGESTION_H
#define TRAMMEL_APP_SUGGESTION_H

#include <string>
#include <vector>

namespace tool {

/// Returns "; did you mean 'NAME'?" with the name that is most like the word, and nothing if none
/// is much like it: more than a third of the letters differ.
std::string Suggestion(std::string const& word, std::vector<std::string> const& names);

} // namespace tool

#endif

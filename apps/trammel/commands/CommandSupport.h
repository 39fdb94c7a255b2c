// SPDX-License-Identifier: MIT

// Parts that several commands share: the input file and the choice of outlines in it, the output
// file, JSON.

#ifndef TRAMMEL_APP_COMMANDSUPPORT_H
#define TRAMMEL_APP_COMMANDSUPPORT_H

#include "CommandLine.h"
#include "Drawing.h"
#include "Picture.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace tool {

typedef nlohmann::ordered_json Json;

/// A file and the outlines of it that a command is for.
struct Source {
    std::string file;
    std::vector<std::string> ids; ///< empty: all
};

/// Adds the argument FILE and the option --id.
void AddSource(Command const& command, Source& source);
/// Adds the option --id alone.
void AddIds(Command const& command, std::vector<std::string>& ids);
/// Adds the required option -o.
void AddOutput(Command const& command, std::string& output);

/// Throws Error when the drawing has no outlines.
void CheckNotEmpty(Drawing const& drawing);
/// Reads the file and keeps the chosen outlines. Throws Error when there are none.
Drawing Load(Source const& source, ArcAccuracy const& arcs = {});
/// Keeps the outlines with these ids. Throws Error for one that does not exist.
void KeepOnly(Drawing& drawing, std::vector<std::string> const& ids);

/// Returns the total length of an outline. Throws an Error that names file and outline when the
/// length is no number above 0.
double LengthToDivide(Drawing const& drawing, Outline const& outline);

/// Returns black lines on the drawing's page, with nothing filled. The page is enlarged as far as
/// the outlines ask for it.
Picture LinePicture(Page const& page, std::vector<Outline> const& outlines);

/// Returns the rule of this name, nonzero or evenodd. Throws Error.
trammel::FillRule RuleOf(std::string const& name);
/// Returns the rule's name.
char const* NameOf(trammel::FillRule rule);
/// Adds the option --rule.
void AddRule(Command const& command, std::string& rule);
/// Gives all outlines the rule of this name. They keep theirs if the name is empty.
void SetRule(Drawing& drawing, std::string const& rule);

/// Returns JSON as text with a line end. Numbers that are not finite become null, and bytes that
/// are no UTF-8 are replaced.
std::string JsonText(Json const& json);
Json ToJson(TPoint<double> const& p);
Json ToJson(TRect<double> const& r);

} // namespace tool

#endif

// SPDX-License-Identifier: MIT

// The commands of the tool. A new command NAME is a file NAMECommand.cpp in this folder, a
// declaration here and an entry in the list below.

#ifndef TRAMMEL_APP_COMMANDS_H
#define TRAMMEL_APP_COMMANDS_H

#include "CommandLine.h"

namespace tool {

// Each function adds one subcommand. Its callback does the work and throws tool::Error when the
// work cannot be done.

void AddMeasure(Command const& app);
void AddPoint(Command const& app);
void AddNearest(Command const& app);
void AddHit(Command const& app);
void AddArea(Command const& app);
void AddIntersect(Command const& app);
void AddFlatten(Command const& app);
void AddCut(Command const& app);
void AddReverse(Command const& app);
void AddOverlap(Command const& app);
void AddDivide(Command const& app);
void AddStroke(Command const& app);
void AddOffset(Command const& app);
void AddSimplify(Command const& app);
void AddFit(Command const& app);
void AddTransform(Command const& app);
void AddHatch(Command const& app);
void AddText(Command const& app);
void AddCombine(Command const& app);
void AddShape(Command const& app);
void AddPolygons(Command const& app);
void AddGallery(Command const& app);
void AddHelp(Command const& app);

/// All commands, in the order in which the help lists them.
inline constexpr void (*kCommands[])(Command const& app) = {
    AddMeasure, AddPoint,    AddNearest,  AddHit,       AddArea,   AddIntersect,
    AddFlatten, AddCut,      AddReverse,  AddOverlap,   AddDivide, AddStroke,
    AddOffset,  AddSimplify, AddFit,      AddTransform, AddHatch,  AddText,
    AddCombine, AddShape,    AddPolygons, AddGallery,   AddHelp,
};

} // namespace tool

#endif

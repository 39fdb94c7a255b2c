// SPDX-License-Identifier: MIT

// The commands of the tool. A new command NAME is a file NAMECommand.cpp in this folder, a
// declaration here and an entry in the list below.

#ifndef TRAMMEL_APP_COMMANDS_H
#define TRAMMEL_APP_COMMANDS_H

namespace CLI {
class App;
}

namespace tool {

// Each function adds one subcommand. Its callback does the work and throws tool::Error when the
// work cannot be done.

void AddMeasure(CLI::App& app);
void AddPoint(CLI::App& app);
void AddNearest(CLI::App& app);
void AddHit(CLI::App& app);
void AddArea(CLI::App& app);
void AddIntersect(CLI::App& app);
void AddFlatten(CLI::App& app);
void AddCut(CLI::App& app);
void AddReverse(CLI::App& app);
void AddTransform(CLI::App& app);
void AddHatch(CLI::App& app);
void AddText(CLI::App& app);
void AddCombine(CLI::App& app);
void AddShape(CLI::App& app);
void AddPolygons(CLI::App& app);
void AddGallery(CLI::App& app);
void AddHelp(CLI::App& app);

/// All commands, in the order in which the help lists them.
inline constexpr void (*kCommands[])(CLI::App& app) = {
    AddMeasure, AddPoint, AddNearest,  AddHit,       AddArea,  AddIntersect,
    AddFlatten, AddCut,   AddReverse,  AddTransform, AddHatch, AddText,
    AddCombine, AddShape, AddPolygons, AddGallery,   AddHelp,
};

} // namespace tool

#endif

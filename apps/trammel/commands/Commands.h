// SPDX-License-Identifier: MIT
//
// The commands of the tool. Each function adds one subcommand, whose callback does the work and
// throws tool::Error when it cannot be done.

#ifndef TRAMMEL_APP_COMMANDS_H
#define TRAMMEL_APP_COMMANDS_H

namespace CLI {
class App;
}

namespace tool {

void AddMeasure(CLI::App& app);
void AddPoint(CLI::App& app);
void AddNearest(CLI::App& app);
void AddHit(CLI::App& app);
void AddFlatten(CLI::App& app);
void AddCut(CLI::App& app);
void AddTransform(CLI::App& app);
void AddHatch(CLI::App& app);
void AddText(CLI::App& app);
void AddCombine(CLI::App& app);
void AddPolygons(CLI::App& app);
void AddGallery(CLI::App& app);

} // namespace tool

#endif

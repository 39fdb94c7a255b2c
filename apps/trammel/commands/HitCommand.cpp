// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"

#include <CLI/CLI.hpp>

namespace tool {

namespace {

struct Options {
    Source source;
    std::vector<std::string> at;
    std::string tolerance = "0";
    bool json = false;
};

void Run(Options const& options) {
    std::vector<TPoint<double>> points;
    for (std::string const& text : options.at) {
        points.push_back(PointOf("--at", text));
    }
    double const tolerance = NumberOf("--tolerance", options.tolerance);
    if (tolerance < 0.0) {
        throw Error("--tolerance", "'" + options.tolerance + "'", "must not be negative");
    }
    Drawing const drawing = Load(options.source);
    std::vector<Area> areas;
    for (Outline const& outline : drawing.outlines) {
        areas.emplace_back(outline.path, FineError(ControlBounds(outline.path)));
    }
    std::string text;
    Json results = Json::array();
    for (TPoint<double> const& p : points) {
        std::string const place = Figure(p.h) + "," + Figure(p.v) + ": ";
        std::size_t const before = text.size();
        Json hits = Json::array();
        for (std::size_t i = 0; i < areas.size(); ++i) {
            Outline const& outline = drawing.outlines[i];
            bool const inside = areas[i].Contains(p);
            bool const near = HitsOutline(outline.path, p, tolerance);
            if (!inside && !near) {
                continue;
            }
            Json json;
            json["id"] = outline.id;
            json["inside"] = inside;
            json["onOutline"] = near;
            hits.push_back(std::move(json));
            text += place + OneLine(outline.id) + (inside ? " inside" : "") +
                    (inside && near ? "," : "") + (near ? " on the outline" : "") + "\n";
        }
        if (text.size() == before) {
            text += place + "nothing\n";
        }
        Json json;
        json["at"] = ToJson(p);
        json["hits"] = std::move(hits);
        results.push_back(std::move(json));
    }
    if (options.json) {
        Json json;
        json["file"] = drawing.file;
        json["tolerance"] = tolerance;
        json["points"] = std::move(results);
        text = JsonText(json);
    }
    Print(text);
}

} // namespace

void AddHit(CLI::App& app) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("hit", "Which outlines a point lies in, or on within a tolerance");
    AddSource(*command, options->source);
    AddValues(*command, "--at", options->at, "The point (may be repeated)")
        ->required()
        ->type_name("H,V");
    command
        ->add_option("--tolerance", options->tolerance,
                     "How far from an outline still counts as on it (default 0)")
        ->type_name("D");
    command->add_flag("--json", options->json, "Print JSON");
    command->footer("Inside is decided by the even-odd rule, every subpath taken as closed.\n"
                    "Example: trammel hit drawing.svg --at 12,7.5 --tolerance 0.5");
    command->callback([options] { Run(*options); });
}

} // namespace tool

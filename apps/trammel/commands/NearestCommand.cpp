// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"

#include <trammel/UScalar.h>

#include <CLI/CLI.hpp>

#include <optional>

namespace tool {

namespace {

struct Options {
    Source source;
    std::vector<std::string> to;
    bool json = false;
};

/// The place on an outline nearest to a point.
struct Found {
    std::string id;
    double fraction;
    TPoint<double> point;
    double distance;
};

/// Returns the nearest place among all outlines that have length, and the earlier outline on a tie.
Found Nearest(Drawing const& drawing, std::vector<CPath> const& paths, TPoint<double> const& to) {
    std::optional<Found> best;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (paths[i].mCtls.empty()) {
            continue;
        }
        double const t = paths[i].FindTValue(to);
        TPoint<double> const point = paths[i].TPt(t);
        double const distance = Hypotenuse(point, to);
        if (!best || distance < best->distance) {
            best = Found{drawing.outlines[i].id, t, point, distance};
        }
    }
    if (!best) {
        throw Error(drawing.file, drawing.outlines.front().id, "the outline has no length");
    }
    return *best;
}

void Run(Options const& options) {
    std::vector<TPoint<double>> points;
    for (std::string const& text : options.to) {
        points.push_back(PointOf("--to", text));
    }
    Drawing const drawing = Load(options.source);
    std::vector<CPath> paths;
    for (Outline const& outline : drawing.outlines) {
        paths.push_back(WithoutDots(outline.path));
    }
    std::string text;
    Json results = Json::array();
    for (TPoint<double> const& to : points) {
        Found const found = Nearest(drawing, paths, to);
        Json json;
        json["to"] = ToJson(to);
        json["id"] = found.id;
        json["fraction"] = found.fraction;
        json["point"] = ToJson(found.point);
        json["distance"] = found.distance;
        results.push_back(std::move(json));
        text += OneLine(found.id) + ": fraction " + Figure(found.fraction) + ", at " +
                Figure(found.point.h) + "," + Figure(found.point.v) + ", distance " +
                Figure(found.distance) + "\n";
    }
    if (options.json) {
        Json json;
        json["file"] = drawing.file;
        json["nearest"] = std::move(results);
        text = JsonText(json);
    }
    Print(text);
}

} // namespace

void AddNearest(CLI::App& app) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("nearest", "The outline, and the place on it, nearest to a point");
    AddSource(*command, options->source);
    AddValues(*command, "--to", options->to, "The point (may be repeated)")
        ->required()
        ->type_name("H,V");
    command->add_flag("--json", options->json, "Print JSON");
    command->footer("Example: trammel nearest drawing.svg --to 12,7.5");
    command->callback([options] { Run(*options); });
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "ManyFiles.h"
#include "Numbers.h"
#include "Outlines.h"

#include <trammel/OutlineMeasure.h>
#include <trammel/UScalar.h>

#include <cmath>
#include <limits>
#include <utility>

namespace tool {

namespace {

struct Options {
    Sources sources;
    FigureOptions figures;
    std::vector<std::string> to;
};

/// The place on an outline nearest to a point.
struct Found {
    std::size_t outline = 0;
    double fraction = 0.0;
    double length = 0.0; ///< of the whole outline
    TPoint<double> point;
    double distance = std::numeric_limits<double>::infinity();
};

/// Returns the nearest place among all outlines that have length, and the earlier outline on a tie.
Found Nearest(std::vector<trammel::OutlineMeasure> const& measures, TPoint<double> const& to) {
    Found best;
    for (std::size_t i = 0; i < measures.size(); ++i) {
        double const length = measures[i].Length();
        if (!(length > 0.0)) {
            continue;
        }
        trammel::OutlineMeasure::Nearest const near = measures[i].FindNearest(to);
        if (near.distance < best.distance) {
            best = Found{i, near.length / length, length, near.point, near.distance};
        }
    }
    return best;
}

/// The same by the path's classic calls.
Found ClassicNearest(std::vector<CPath> const& paths, TPoint<double> const& to) {
    Found best;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        if (paths[i].mCtls.empty()) {
            continue;
        }
        double const t = paths[i].FindTValue(to);
        TPoint<double> const point = paths[i].TPt(t);
        double const distance = Hypotenuse(point, to);
        if (distance < best.distance) {
            best = Found{i, t, 0.0, point, distance};
        }
    }
    return best;
}

FileResult NearestIn(Options const& options, std::vector<TPoint<double>> const& points,
                     Drawing const& drawing) {
    CheckNotEmpty(drawing);
    FileResult result;
    bool const classic = options.figures.classic;
    std::vector<trammel::OutlineMeasure> measures;
    std::vector<CPath> paths;
    for (Outline const& outline : drawing.outlines) {
        if (classic) {
            paths.push_back(WithoutDots(outline.path));
        } else {
            measures.emplace_back(outline.path);
        }
    }
    Json results = Json::array();
    for (TPoint<double> const& to : points) {
        Found const found = classic ? ClassicNearest(paths, to) : Nearest(measures, to);
        if (!std::isfinite(found.distance)) {
            throw Error(drawing.file, drawing.outlines.front().id, "the outline has no length");
        }
        Outline const& outline = drawing.outlines[found.outline];
        Figures const figures(outline, options.figures, to);
        TPoint<double> const point = figures.Of(found.point);
        double const distance = figures.Of(found.distance);
        double const fraction =
            RoundedTo(found.fraction, DigitAccuracy(figures.Accuracy() / found.length));
        Json json;
        json["to"] = ToJson(to);
        json["id"] = outline.id;
        json["fraction"] = fraction;
        json["point"] = ToJson(point);
        json["distance"] = distance;
        figures.AddAccuracy(json);
        results.push_back(std::move(json));
        result.text += options.sources.Prefix(drawing.file) + OneLine(outline.id) + ": fraction " +
                       Figure(fraction) + ", at " + Figure(point.h) + "," + Figure(point.v) +
                       ", distance " + Figure(distance) + "\n";
    }
    result.json = FileJson(drawing, options.sources, options.figures);
    result.json["nearest"] = std::move(results);
    return result;
}

void Run(Options const& options) {
    std::vector<TPoint<double>> points;
    for (std::string const& text : options.to) {
        points.push_back(PointOf("--to", text));
    }
    ForEachFile(options.sources, options.figures.Arcs(),
                [&](Drawing const& drawing) { return NearestIn(options, points, drawing); });
}

} // namespace

void AddNearest(Command const& app) {
    auto const options = std::make_shared<Options>();
    Command const command =
        app.AddCommand("nearest", "The outline, and the place on it, nearest to a point");
    AddSources(command, options->sources);
    AddFigureOptions(command, options->figures, "CPath::FindTValue and CPath::TPt");
    command.AddValues("--to", options->to, "The point (may be repeated)")
        .Required()
        .TypeName("H,V");
    command.SetFooter(std::string(kAccuracyHelp) +
                      "\nExample: trammel nearest drawing.svg --to 12,7.5");
    command.SetAction([options] { Run(*options); });
}

} // namespace tool

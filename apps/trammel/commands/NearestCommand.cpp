// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "ManyFiles.h"
#include "Numbers.h"
#include "Outlines.h"

#include <trammel/OutlineMeasure.h>
#include <trammel/UScalar.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace tool {

namespace {

struct NearestOptions {
    Sources sources;
    FigureOptions figures;
    std::vector<std::string> to;
};

typedef TPoint<double> Pt;

/// The place on an outline nearest to a point.
struct Found {
    std::size_t outline = 0;
    double fraction = 0.0;
    double length = 0.0; ///< of the whole outline
    TPoint<double> point;
    double distance = std::numeric_limits<double>::infinity();
};

/// A point is about as far from all places near the nearest one where the outline bends around it
/// by nearly its distance. Where less than this share of the bend's radius is left, none of them is
/// nearer than the others by more than rounding.
constexpr double kLeastLeft = 1e-6;

/// The rounding of a direction, in radians.
constexpr double kDirectionRounding = 0x1p-44;

/// Brings a place to the zero of the derivative of the distance, and returns how far it may be from
/// there. The distance alone would leave the place unsure by the root of the distance's error.
double Settle(trammel::OutlineMeasure const& measure, Pt const& to, double accuracy, Found& found) {
    double const length = found.fraction * found.length;
    trammel::OutlineMeasure::Place const place = measure.AtLength(length);
    Pt const away = place.point - to;
    double const slope = away.h * place.tangent.h + away.v * place.tangent.v;
    double const left =
        1.0 + place.curvature * (away.v * place.tangent.h - away.h * place.tangent.v);
    if (!(left > kLeastLeft)) {
        return accuracy;
    }
    double const unsure = (accuracy + found.distance * kDirectionRounding) / left;
    double const step = -slope / left;
    double const reached = length + step;
    if (reached < 0.0 || reached > found.length) {
        return accuracy; // an end
    }
    trammel::OutlineMeasure::Place const better = measure.AtLength(reached);
    double const distance = Hypotenuse(better.point, to);
    if (better.element != place.element || distance > found.distance + accuracy) {
        return accuracy; // a corner
    }
    found.point = better.point;
    found.fraction = reached / found.length;
    found.distance = std::min(found.distance, distance);
    return accuracy + unsure + std::abs(step) * std::abs(step) / std::max(distance, std::abs(step));
}

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

FileResult NearestIn(NearestOptions const& options, std::vector<TPoint<double>> const& points,
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
        Found found = classic ? ClassicNearest(paths, to) : Nearest(measures, to);
        if (!std::isfinite(found.distance)) {
            throw Error(drawing.file, drawing.outlines.front().id, "the outline has no length");
        }
        Outline const& outline = drawing.outlines[found.outline];
        if (std::isinf(found.length)) { // no fraction tells a place
            throw Error(drawing.file, outline.id, "the outline is too long to be measured");
        }
        Figures const figures(outline, options.figures, to);
        double const unsure =
            classic ? 0.0 : Settle(measures[found.outline], to, FigureAccuracy(outline, to), found);
        Figures const places(unsure, options.figures);
        TPoint<double> const point = places.Of(found.point);
        double const distance = figures.Of(found.distance);
        double const fraction =
            RoundedTo(found.fraction, DigitAccuracy(places.Accuracy() / found.length));
        Json json;
        json["to"] = ToJson(to);
        json["id"] = outline.id;
        json["fraction"] = fraction;
        json["point"] = ToJson(point);
        if (places.Accuracy() > figures.Accuracy()) {
            json["placeAccuracy"] = places.Accuracy();
        }
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

void RunNearest(NearestOptions const& options) {
    std::vector<TPoint<double>> points;
    for (std::string const& text : options.to) {
        points.push_back(PointOf("--to", text));
    }
    ForEachFile(options.sources, options.figures, ArcAccuracy::By::kFigures,
                [&](Drawing const& drawing) { return NearestIn(options, points, drawing); });
}

} // namespace

void AddNearest(Command const& app) {
    auto const options = std::make_shared<NearestOptions>();
    Command const command =
        app.AddCommand("nearest", "The outline, and the place on it, nearest to a point");
    AddSources(command, options->sources);
    AddFigureOptions(command, options->figures, "CPath::FindTValue and CPath::TPt");
    command.AddValues("--to", options->to, "The point (may be repeated)")
        .Required()
        .TypeName("H,V");
    command.SetFooter(std::string(kAccuracyHelp) +
                      "\nExample: trammel nearest drawing.svg --to 12,7.5");
    command.SetAction([options] { RunNearest(*options); });
}

} // namespace tool

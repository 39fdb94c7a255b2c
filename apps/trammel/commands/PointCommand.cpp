// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "ManyFiles.h"
#include "Numbers.h"
#include "Outlines.h"

#include <trammel/OutlineMeasure.h>
#include <trammel/PathMeasure.h>
#include <trammel/UTrigonometry.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tool {

namespace {

struct PointOptions {
    Sources sources;
    FigureOptions figures;
    std::vector<std::string> at;
};

std::vector<double> Fractions(std::vector<std::string> const& texts) {
    std::vector<double> fractions;
    for (std::string const& text : texts) {
        for (double const t : NumbersOf("--at", text, 1, kMany)) {
            if (!(t >= 0.0 && t <= 1.0)) {
                throw Error("--at", "'" + text + "'", "a fraction must lie between 0 and 1");
            }
            fractions.push_back(t);
        }
    }
    return fractions;
}

/// The rounding of a direction, in radians.
constexpr double kRounding = 0x1p-44;

/// The most curves of a full turn.
constexpr double kMostCurves = 414.0;

/// Returns the accuracy of directions, for each unit of curvature.
///
/// The direction turns by the curvature for each unit of length. A curve that stands for an arc
/// also weaves around its direction. Its distance from the arc grows and falls within a part of its
/// sweep, so of n curves in a full turn each weaves by 1.2 n times the distance at most.
double DirectionAccuracy(Outline const& outline) {
    double const curves = std::min(kMostCurves, static_cast<double>(outline.path.mCtls.size()));
    return FigureAccuracy(outline) + 1.2 * curves * outline.arcDistance;
}

/// A place on an outline.
struct PlaceFound {
    TPoint<double> point;
    TPoint<double> direction;
    double curvature;
};

/// Returns the places at the fractions of an outline's length, and stores the length.
std::vector<PlaceFound> PlacesOf(CPath const& path, std::vector<double> const& fractions,
                                 bool classic, double& length) {
    std::vector<PlaceFound> places;
    if (classic) {
        CPath const measured = WithoutDots(path);
        trammel::PathMeasure const measure(measured);
        length = measure.Length();
        for (double const t : fractions) {
            trammel::PathMeasure::Place const place = measure.At(t);
            places.push_back({place.point, place.direction, 0.0});
        }
    } else {
        trammel::OutlineMeasure const measure(path);
        length = measure.Length();
        for (double const t : fractions) {
            trammel::OutlineMeasure::Place const place = measure.At(t);
            places.push_back({place.point, place.tangent, place.curvature});
        }
    }
    return places;
}

FileResult PointsIn(PointOptions const& options, std::vector<double> const& fractions,
                    Drawing const& drawing) {
    CheckNotEmpty(drawing);
    FileResult result;
    std::string const prefix = options.sources.Prefix(drawing.file);
    Json outlines = Json::array();
    for (Outline const& outline : drawing.outlines) {
        LengthToDivide(drawing, outline);
        Figures const figures(outline, options.figures);
        double length = 0.0;
        std::vector<PlaceFound> const places =
            PlacesOf(outline.path, fractions, options.figures.classic, length);
        Json points = Json::array();
        for (std::size_t i = 0; i < places.size(); ++i) {
            TPoint<double> const point = figures.Of(places[i].point);
            double const turn =
                DirectionAccuracy(outline) * std::abs(places[i].curvature) + kRounding;
            double const error = options.figures.classic ? 0.0 : turn;
            double const accuracy = DigitAccuracy(error);
            TPoint<double> const direction(RoundedTo(places[i].direction.h, accuracy),
                                           RoundedTo(places[i].direction.v, accuracy));
            double const degrees =
                RoundedTo(RadToDeg(places[i].direction.Angle()), DigitAccuracy(RadToDeg(error)));
            Json json;
            json["at"] = fractions[i];
            json["point"] = ToJson(point);
            json["direction"] = ToJson(direction);
            json["angle"] = degrees;
            points.push_back(std::move(json));
            result.text += prefix + OneLine(outline.id) + ": at " + Figure(fractions[i]) + ": " +
                           Figure(point.h) + "," + Figure(point.v) + " direction " +
                           Figure(direction.h) + "," + Figure(direction.v) + " (" +
                           Figure(degrees) + " degrees)\n";
        }
        Json json;
        json["id"] = outline.id;
        json["length"] = figures.Of(length);
        json["points"] = std::move(points);
        figures.AddAccuracy(json);
        outlines.push_back(std::move(json));
    }
    result.json = FileJson(drawing, options.sources, options.figures);
    result.json["outlines"] = std::move(outlines);
    return result;
}

void RunPoint(PointOptions const& options) {
    std::vector<double> const fractions = Fractions(options.at);
    ForEachFile(options.sources, options.figures, ArcAccuracy::By::kFigures,
                [&](Drawing const& drawing) { return PointsIn(options, fractions, drawing); });
}

} // namespace

void AddPoint(Command const& app) {
    auto const options = std::make_shared<PointOptions>();
    Command const command =
        app.AddCommand("point", "Position and direction at fractions of each outline's length");
    AddSources(command, options->sources);
    AddFigureOptions(command, options->figures, "CPath::Length and CPath::TPt");
    command
        .AddValues("--at", options->at,
                   "Fraction of the length, 0 to 1 (several: with commas, or the option repeated)")
        .Required()
        .TypeName("T[,T...]");
    command.SetFooter(
        "The direction is that in which the outline is drawn, as a vector of length 1 "
        "and as an angle from\nthe right, downward positive; at a corner that of the "
        "segment which ends there.\n" +
        std::string(kAccuracyHelp) + "\nExample: trammel point drawing.svg --at 0.3");
    command.SetAction([options] { RunPoint(*options); });
}

} // namespace tool

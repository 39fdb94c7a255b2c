// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "ManyFiles.h"
#include "Numbers.h"
#include "OutlineArea.h"
#include "Outlines.h"

#include <trammel/Moments.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tool {

namespace {

struct AreaOptions {
    Sources sources;
    FigureOptions figures;
    std::string rule;
};

/// Returns the greater extent, by which an error of places becomes one of areas.
double Extent(CPath const& path) {
    TRect<double> const bounds = ControlBounds(path);
    return std::max(bounds.Width(), bounds.Height());
}

/// The signed area of an outline and its centroid, which may be of any size.
struct Moments {
    double area; ///< infinite or 0 beyond the range of double
    bool hasCentroid;
    TPoint<double> centroid;
    double centroidError; ///< NaN or infinite where nothing tells it
};

Moments SignedMoments(Outline const& outline) {
    if (int const power = ExtremePower(outline.path); power != 0) {
        Outline scaled = outline;
        scaled.path = TimesPowerOfTwo(std::move(scaled.path), -power);
        scaled.arcDistance = std::ldexp(scaled.arcDistance, -power);
        Moments moments = SignedMoments(scaled);
        moments.area = std::ldexp(moments.area, 2 * power);
        moments.centroid = TPoint<double>(std::ldexp(moments.centroid.h, power),
                                          std::ldexp(moments.centroid.v, power));
        moments.centroidError = std::ldexp(moments.centroidError, power);
        return moments;
    }
    trammel::AreaMoments const found = trammel::MomentsOf(outline.path);
    double const rounding = FigureAccuracy(outline.path) * Extent(outline.path);
    double const arcs = ArcAreaError(outline);
    // The centroid is where the signed area divides its moment.
    double const error = (rounding + arcs) * Extent(outline.path) / std::abs(found.area) +
                         FigureAccuracy(outline.path);
    return {found.area, found.area != 0.0, found.centroid, error};
}

FileResult AreasIn(AreaOptions const& options, Drawing& drawing) {
    CheckNotEmpty(drawing);
    SetRule(drawing, options.rule);
    FileResult result;
    Json outlines = Json::array();
    for (Outline const& outline : drawing.outlines) {
        OutlineArea const region = AreaOf(outline, options.figures);
        Moments const moments = SignedMoments(outline);
        Figures const areas(region.error, options.figures);
        Figures const places(moments.centroidError, options.figures);
        double const area = areas.Of(region.area);
        double const signedArea = areas.Of(moments.area);
        TPoint<double> const centroid = places.Of(moments.centroid);
        Json json;
        json["id"] = outline.id;
        json["rule"] = NameOf(outline.rule);
        json["area"] = area;
        json["signedArea"] = signedArea;
        json["centroid"] = moments.hasCentroid ? ToJson(centroid) : Json();
        areas.AddAccuracy(json);
        outlines.push_back(std::move(json));
        result.text +=
            options.sources.Prefix(drawing.file) + OneLine(outline.id) + ": area " + Figure(area) +
            " (" + NameOf(outline.rule) + "), signed " + Figure(signedArea) +
            (moments.hasCentroid ? ", centroid " + Figure(centroid.h) + "," + Figure(centroid.v)
                                 : std::string(", no centroid")) +
            "\n";
    }
    result.json = FileJson(drawing, options.sources, options.figures);
    result.json["outlines"] = std::move(outlines);
    return result;
}

void RunArea(AreaOptions const& options) {
    if (!options.rule.empty()) {
        RuleOf(options.rule);
    }
    ForEachFile(options.sources, options.figures, ArcAccuracy::By::kArea,
                [&](Drawing& drawing) { return AreasIn(options, drawing); });
}

} // namespace

void AddArea(Command const& app) {
    auto const options = std::make_shared<AreaOptions>();
    Command const command =
        app.AddCommand("area", "Area and centroid of what each outline encloses");
    AddSources(command, options->sources);
    AddAccuracy(command, options->figures);
    AddRule(command, options->rule);
    command.SetFooter(
        "Every subpath counts as closed. The signed area counts each point as often as "
        "the outline runs around it,\nclockwise on the page positive; the centroid is "
        "weighted in the same way.\n" +
        std::string(kAccuracyHelp) + "\nExample: trammel area drawing.svg --json");
    command.SetAction([options] { RunArea(*options); });
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "Classic.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "ManyFiles.h"
#include "Numbers.h"
#include "Outlines.h"

#include <trammel/OutlineMeasure.h>
#include <trammel/Winding.h>

#include <string>
#include <utility>

namespace tool {

namespace {

struct HitOptions {
    Sources sources;
    FigureOptions figures;
    std::vector<std::string> at;
    std::string tolerance = "0";
    std::string rule;
};

/// How a point lies to an outline.
struct Hit {
    bool inside;
    bool near; ///< within the tolerance of the drawn outline
    int winding = 0;
    double distance = 0.0;
    double error = 0.0; ///< of the distance
};

Hit HitOf(Outline const& outline, trammel::OutlineMeasure const& measure, TPoint<double> const& p,
          double tolerance) {
    Hit hit;
    hit.winding = trammel::WindingNumber(outline.path, p);
    hit.inside = trammel::IsInside(hit.winding, outline.rule);
    hit.distance = measure.Distance(p);
    hit.error = FigureAccuracy(outline, p);
    hit.near = hit.distance <= tolerance + hit.error;
    return hit;
}

Hit ClassicHit(Outline const& outline, TPoint<double> const& p, double tolerance) {
    Hit hit;
    hit.inside = ClassicContains(outline.path, p);
    hit.near = ClassicHits(outline.path, p, tolerance);
    return hit;
}

Json JsonOf(Outline const& outline, Hit const& hit, FigureOptions const& options) {
    Json json;
    json["id"] = outline.id;
    json["inside"] = hit.inside;
    json["onOutline"] = hit.near;
    if (!options.classic) {
        json["winding"] = hit.winding;
        json["rule"] = NameOf(outline.rule);
        Figures const figures(hit.error, options);
        json["distance"] = figures.Of(hit.distance);
        figures.AddAccuracy(json);
    }
    return json;
}

FileResult HitsIn(HitOptions const& options, std::vector<TPoint<double>> const& points,
                  double tolerance, Drawing& drawing) {
    CheckNotEmpty(drawing);
    SetRule(drawing, options.rule);
    FileResult result;
    std::vector<trammel::OutlineMeasure> measures;
    for (Outline const& outline : drawing.outlines) {
        measures.emplace_back(outline.path);
    }
    Json results = Json::array();
    for (TPoint<double> const& p : points) {
        std::string const place =
            options.sources.Prefix(drawing.file) + Figure(p.h) + "," + Figure(p.v) + ": ";
        std::size_t const before = result.text.size();
        Json hits = Json::array();
        for (std::size_t i = 0; i < drawing.outlines.size(); ++i) {
            Outline const& outline = drawing.outlines[i];
            Hit const hit = options.figures.classic ? ClassicHit(outline, p, tolerance)
                                                    : HitOf(outline, measures[i], p, tolerance);
            if (!hit.inside && !hit.near) {
                continue;
            }
            hits.push_back(JsonOf(outline, hit, options.figures));
            result.text += place + OneLine(outline.id) + (hit.inside ? " inside" : "") +
                           (hit.inside && hit.near ? "," : "") +
                           (hit.near ? " on the outline" : "") + "\n";
        }
        if (result.text.size() == before) {
            result.text += place + "nothing\n";
        }
        Json json;
        json["at"] = ToJson(p);
        json["hits"] = std::move(hits);
        results.push_back(std::move(json));
    }
    result.json = FileJson(drawing, options.sources, options.figures);
    result.json["tolerance"] = tolerance;
    result.json["points"] = std::move(results);
    return result;
}

void RunHit(HitOptions const& options) {
    std::vector<TPoint<double>> points;
    for (std::string const& text : options.at) {
        points.push_back(PointOf("--at", text));
    }
    double const tolerance = NumberOf("--tolerance", options.tolerance);
    if (tolerance < 0.0) {
        throw Error("--tolerance", "'" + options.tolerance + "'", "must not be negative");
    }
    if (!options.rule.empty()) {
        RuleOf(options.rule);
        if (options.figures.classic) {
            throw Error("--rule", "", "classic hits are by the even-odd rule");
        }
    }
    ForEachFile(options.sources, options.figures, ArcAccuracy::By::kFigures,
                [&](Drawing& drawing) { return HitsIn(options, points, tolerance, drawing); });
}

} // namespace

void AddHit(Command const& app) {
    auto const options = std::make_shared<HitOptions>();
    Command const command =
        app.AddCommand("hit", "Which outlines a point lies in, or on within a tolerance");
    AddSources(command, options->sources);
    command.AddValues("--at", options->at, "The point (may be repeated)")
        .Required()
        .TypeName("H,V");
    command
        .AddOption("--tolerance", options->tolerance,
                   "How far from an outline still counts as on it (default 0)")
        .TypeName("D");
    AddRule(command, options->rule);
    AddAccuracy(command, options->figures);
    command.AddFlag("--classic", options->figures.classic,
                    "The approximate answers of TPolygon::Contains and CBezier::HitTest, by the "
                    "even-odd rule");
    command.SetFooter(
        std::string("Every subpath counts as closed. Curves are taken as they are: only "
                    "a point that rounding cannot tell from\nthe outline may be on "
                    "either side.\n") +
        kAccuracyHelp + "\nExample: trammel hit drawing.svg --at 12,7.5 --tolerance 0.5");
    command.SetAction([options] { RunHit(*options); });
}

} // namespace tool

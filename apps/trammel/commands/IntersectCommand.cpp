// SPDX-License-Identifier: MIT

#include "Clip.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "ManyFiles.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"

#include <trammel/Intersections.h>

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace tool {

namespace {

struct Options {
    Source a;
    Source b; ///< no file: the outlines of A with each other
    FigureOptions figures;
    bool itself = false;
    bool json = false;
};

char const* NameOf(trammel::IntersectionKind kind) {
    switch (kind) {
    case trammel::IntersectionKind::kCrossing:
        return "crossing";
    case trammel::IntersectionKind::kContact:
        return "contact";
    case trammel::IntersectionKind::kEnd:
        return "end";
    default:
        return "overlap";
    }
}

Json JsonOf(std::string const& id, trammel::IntersectionPlace const& place) {
    Json json;
    json["id"] = id;
    json["element"] = place.element;
    json["t"] = place.t;
    json["endT"] = place.endT;
    return json;
}

/// The places found so far.
struct Report {
    std::string text;
    Json places = Json::array();
};

void Add(Report& report, Options const& options, Outline const& a, Outline const& b) {
    bool const self = &a == &b;
    double const asked = options.figures.Accuracy();
    std::vector<trammel::Intersection> found;
    double const kept = self ? trammel::AppendSelfIntersections(a.path, asked, found)
                             : trammel::AppendIntersections(a.path, b.path, asked, found);
    Figures const figures(std::max({kept, FigureAccuracy(a), FigureAccuracy(b)}), options.figures);
    for (trammel::Intersection const& place : found) {
        TPoint<double> const point = figures.Of(place.point);
        TPoint<double> const end = figures.Of(place.endPoint);
        bool const overlap = place.kind == trammel::IntersectionKind::kOverlap;
        Json json;
        json["kind"] = NameOf(place.kind);
        json["crosses"] = place.crosses;
        json["a"] = JsonOf(a.id, place.a);
        json["b"] = JsonOf(b.id, place.b);
        json["point"] = ToJson(point);
        json["endPoint"] = ToJson(end);
        figures.AddAccuracy(json);
        report.places.push_back(std::move(json));
        report.text += OneLine(a.id) + (self ? " itself" : ", " + OneLine(b.id)) + ": " +
                       NameOf(place.kind) + " at " + Figure(point.h) + "," + Figure(point.v) +
                       (overlap ? " to " + Figure(end.h) + "," + Figure(end.v) : "") + "\n";
    }
}

void Run(Options const& options) {
    ArcAccuracy const arcs = options.figures.Arcs(); // before a file is read
    Drawing a = Load(options.a, arcs);
    ApplyClips(a);
    Report report;
    Json json;
    json["a"] = a.file;
    if (!options.b.file.empty()) {
        if (options.itself) {
            throw Error("--self", "", "is for one drawing");
        }
        Drawing b = Load(options.b, arcs);
        ApplyClips(b);
        json["b"] = b.file;
        for (Outline const& first : a.outlines) {
            for (Outline const& second : b.outlines) {
                Add(report, options, first, second);
            }
        }
    } else {
        for (std::size_t i = 0; i < a.outlines.size(); ++i) {
            if (options.itself) {
                Add(report, options, a.outlines[i], a.outlines[i]);
            }
            for (std::size_t k = i + 1; !options.itself && k < a.outlines.size(); ++k) {
                Add(report, options, a.outlines[i], a.outlines[k]);
            }
        }
    }
    json["places"] = std::move(report.places);
    Print(options.json ? JsonText(json) : report.text);
}

} // namespace

void AddIntersect(Command const& app) {
    auto const options = std::make_shared<Options>();
    Command const command = app.AddCommand(
        "intersect", "Where the outlines of two drawings, or of one, meet each other");
    command.AddOption("A", options->a.file, "SVG drawing, font or map").Required().TypeName("");
    command.AddOption("B", options->b.file, "Another one (default: the outlines of A, in pairs)")
        .TypeName("");
    command.AddValues("--id-a", options->a.ids, "Only this outline of A (may be repeated)")
        .TypeName("ID");
    command.AddValues("--id-b", options->b.ids, "Only this outline of B (may be repeated)")
        .TypeName("ID");
    command.AddFlag("--self", options->itself, "Where each outline of A meets itself");
    AddAccuracy(command, options->figures);
    command.AddFlag("--json", options->json, "Print JSON");
    command.SetFooter("A place is a crossing, a contact (the outlines touch and keep their sides), "
                      "an end, or an overlap\nalong a stretch. JSON tells the elements and the "
                      "parameters on them.\n" +
                      std::string(kAccuracyHelp) +
                      "\nExample: trammel intersect drawing.svg --json");
    command.SetAction([options] { Run(*options); });
}

} // namespace tool

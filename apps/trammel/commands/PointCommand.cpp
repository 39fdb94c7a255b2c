// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "Tracer.h"

#include <trammel/UTrigonometry.h>

#include <CLI/CLI.hpp>

namespace tool {

namespace {

struct Options {
    Source source;
    std::vector<std::string> at;
    bool json = false;
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

void Run(Options const& options) {
    std::vector<double> const fractions = Fractions(options.at);
    Drawing const drawing = Load(options.source);
    std::string text;
    Json outlines = Json::array();
    for (Outline const& outline : drawing.outlines) {
        double const length = LengthToDivide(drawing, outline);
        CPath const path = WithoutDots(outline.path);
        Tracer const tracer(path);
        Json points = Json::array();
        for (double const t : fractions) {
            TPoint<double> const point = path.TPt(t);
            TPoint<double> const direction = tracer.At(t * length).direction;
            double const degrees = RadToDeg(direction.Angle());
            Json json;
            json["at"] = t;
            json["point"] = ToJson(point);
            json["direction"] = ToJson(direction);
            json["angle"] = degrees;
            points.push_back(std::move(json));
            text += OneLine(outline.id) + ": at " + Figure(t) + ": " + Figure(point.h) + "," +
                    Figure(point.v) + " direction " + Figure(direction.h) + "," +
                    Figure(direction.v) + " (" + Figure(degrees) + " degrees)\n";
        }
        Json json;
        json["id"] = outline.id;
        json["length"] = length;
        json["points"] = std::move(points);
        outlines.push_back(std::move(json));
    }
    if (options.json) {
        Json json;
        json["file"] = drawing.file;
        json["outlines"] = std::move(outlines);
        text = JsonText(json);
    }
    Print(text);
}

} // namespace

void AddPoint(CLI::App& app) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command =
        app.add_subcommand("point", "Position and direction at fractions of each outline's length");
    AddSource(*command, options->source);
    AddValues(*command, "--at", options->at,
              "Fraction of the length, 0 to 1 (several: with commas, or the option repeated)")
        ->required()
        ->type_name("T[,T...]");
    command->add_flag("--json", options->json, "Print JSON");
    command->footer("The direction is that in which the outline is drawn, as a vector of length 1 "
                    "and as an angle from\nthe right, downward positive; at a corner that of the "
                    "segment which ends there.\nExample: trammel point drawing.svg --at 0.3");
    command->callback([options] { Run(*options); });
}

} // namespace tool

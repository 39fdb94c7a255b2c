// SPDX-License-Identifier: MIT

#include "Combine.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "Progress.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tool {

namespace {

/// The flattening error without --error, as a share of the drawings' size. It is a tenth of a pixel
/// of the PNG that this command writes.
constexpr double kErrorShare = 1e-4;

struct Operation {
    char const* name;
    TPolyOp code;
};

constexpr std::array<Operation, 4> kOperations{{{"union", kPolyUnion},
                                                {"intersection", kPolyIntersection},
                                                {"difference", kPolyDifference},
                                                {"xor", kPolyXor}}};

struct Options {
    std::string operation;
    Source a;
    Source b;
    std::string error;
    std::string output;
    bool json = false;
};

TPolyOp CodeOf(std::string const& name) {
    for (Operation const& operation : kOperations) {
        if (name == operation.name) {
            return operation.code;
        }
    }
    throw Error("combine", "'" + name + "'", "must be union, intersection, difference or xor");
}

TRect<double> BoundsOf(Drawing const& drawing) {
    TRect<double> bounds;
    for (Outline const& outline : drawing.outlines) {
        bounds = Around(bounds, DrawnBounds(outline.path));
    }
    return bounds;
}

double ErrorOf(Options const& options, TRect<double> const& bounds) {
    if (!options.error.empty()) {
        double const error = NumberOf("--error", options.error);
        if (!(error > 0.0)) {
            throw Error("--error", "'" + options.error + "'", "must be above 0");
        }
        return error;
    }
    return std::max(bounds.Width(), bounds.Height()) * kErrorShare;
}

/// Returns the area that the whole drawing covers.
Tgpc_polygon AreaOf(Drawing const& drawing, double error) {
    Tgpc_polygon polygon;
    Progress progress("flattening " + drawing.file, drawing.outlines.size());
    std::size_t done = 0;
    for (Outline const& outline : drawing.outlines) {
        for (TPoint<double> const& p : outline.path.mPts) {
            if (!std::isfinite(p.h) || !std::isfinite(p.v)) {
                throw Error(drawing.file, outline.id, "has coordinates that are too large");
            }
        }
        AddContours(polygon, outline.path, error);
        progress.Update(++done);
    }
    return polygon;
}

Json ToJson(AreaFigures const& figures) {
    Json json;
    json["area"] = figures.area;
    json["contours"] = figures.contours;
    json["holes"] = figures.holes;
    json["vertices"] = figures.vertices;
    return json;
}

Json ToJson(std::string const& file, AreaFigures const& figures) {
    Json json;
    json["file"] = file;
    json.update(ToJson(figures));
    return json;
}

Picture FilledPicture(Page const& page, TRect<double> const& bounds, std::string const& id,
                      CPath const& path) {
    Picture picture;
    picture.page = PageFor(page, bounds);
    if (!path.mCtls.empty()) {
        Style ink;
        ink.fill = Colour{};
        AddOutlines(picture, {{id, path}}, ink);
    }
    return picture;
}

void Run(Options const& options) {
    TPolyOp const code = CodeOf(options.operation);
    if (options.output.empty() && !options.json) {
        throw Error("combine", "", "nothing to do without -o or --json");
    }
    Drawing const a = Load(options.a);
    Drawing const b = Load(options.b);
    TRect<double> const bounds = Around(BoundsOf(a), BoundsOf(b));
    double const error = ErrorOf(options, bounds);
    Tgpc_polygon const areaA = AreaOf(a, error);
    Tgpc_polygon const areaB = AreaOf(b, error);

    Progress progress("clipping", 3);
    Tgpc_polygon const result = Combined(code, areaA, areaB);
    progress.Update(1);
    Json json;
    if (options.json) {
        json["operation"] = options.operation;
        json["error"] = error;
        json["a"] = ToJson(a.file, FiguresOf(Untangled(areaA)));
        progress.Update(2);
        json["b"] = ToJson(b.file, FiguresOf(Untangled(areaB)));
        json["result"] = ToJson(FiguresOf(result));
    }
    progress.Update(3);
    if (!options.output.empty()) {
        // The page is the first drawing's. If that has none, the page holds both drawings, so that
        // the results of the four operations lie over each other.
        Page const page = a.page.frame.Empty() ? PageFor(a.page, bounds) : a.page;
        CPath const path = PathOf(result);
        WriteFile(options.output,
                  PictureBytes(FilledPicture(page, DrawnBounds(path), options.operation, path),
                               options.output));
    }
    if (options.json) {
        Print(JsonText(json));
    }
}

} // namespace

void AddCombine(CLI::App& app) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand(
        "combine", "Union, intersection, difference or exclusive-or of what two drawings cover");
    command->add_option("OPERATION", options->operation, "union, intersection, difference or xor")
        ->required()
        ->type_name("");
    command->add_option("A", options->a.file, "SVG drawing, font or map")
        ->required()
        ->type_name("");
    command->add_option("B", options->b.file, "The drawing that is added to or taken from it")
        ->required()
        ->type_name("");
    AddValues(*command, "--id-a", options->a.ids, "Only this outline of A (may be repeated)")
        ->type_name("ID");
    AddValues(*command, "--id-b", options->b.ids, "Only this outline of B (may be repeated)")
        ->type_name("ID");
    command
        ->add_option("--error", options->error,
                     "How far lines may deviate from curves (default: a 10000th of the size)")
        ->type_name("E");
    command->add_option("-o,--output", options->output, "The file to write: .svg, .svgz or .png")
        ->type_name("FILE");
    command->add_flag("--json", options->json, "Print areas, contours, holes and vertices as JSON");
    command->footer("A drawing covers what lies inside an odd number of its subpaths, each taken "
                    "as closed. The result is\none path, to be filled by the even-odd rule.\n"
                    "Example: trammel combine difference plate.svg holes.svg -o drilled.svg");
    command->callback([options] { Run(*options); });
}

} // namespace tool

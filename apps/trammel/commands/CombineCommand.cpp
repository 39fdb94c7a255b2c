// SPDX-License-Identifier: MIT

#include "Clip.h"
#include "Combine.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Input.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "Progress.h"
#include "Warning.h"
#include "WriteSupport.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <utility>

namespace tool {

namespace {

/// The error without --error, as a share of the drawings' size. It is far below what can be seen,
/// and above what rounding needs.
constexpr double kErrorShare = 1e-5;

/// The part of the rest that each of the two steps takes; a little is left to rounding.
constexpr double kStepPart = 63.0 / 128.0;

struct Operation {
    char const* name;
    TPolyOp code;
};

constexpr std::array<Operation, 4> kOperations{{{"union", kPolyUnion},
                                                {"intersection", kPolyIntersection},
                                                {"difference", kPolyDifference},
                                                {"xor", kPolyXor}}};

struct CombineOptions {
    std::string operation;
    Source a;
    Source b;
    std::string error;
    std::string rule;
    WriteOptions write;
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

double ErrorOf(CombineOptions const& options, TRect<double> const& bounds) {
    if (!options.error.empty()) {
        double const error = NumberOf("--error", options.error);
        if (!(error > 0.0)) {
            throw Error("--error", "'" + options.error + "'", "must be above 0");
        }
        return error;
    }
    return std::max(bounds.Width(), bounds.Height()) * kErrorShare;
}

/// Throws Error for coordinates that polygons cannot have.
void CheckFinite(Drawing const& drawing) {
    for (Outline const& outline : drawing.outlines) {
        for (TPoint<double> const& p : outline.path.mPts) {
            if (!std::isfinite(p.h) || !std::isfinite(p.v)) {
                throw Error(drawing.file, outline.id, "has coordinates that are too large");
            }
        }
    }
}

/// Gives all outlines the rule of --rule, if there is one.
void OverrideRules(Drawing& drawing, std::string const& rule) {
    if (!rule.empty() && rule != "nonzero" && rule != "evenodd") {
        throw Error("--rule", "'" + rule + "'", "must be nonzero or evenodd");
    }
    for (Outline& outline : drawing.outlines) {
        outline.rule = rule.empty()        ? outline.rule
                       : rule == "nonzero" ? trammel::FillRule::kNonZero
                                           : trammel::FillRule::kEvenOdd;
    }
}

/// Returns the document in which the result takes the place of the first outline. The other chosen
/// outlines are part of it, and go. An outline that a `use` draws goes with the whole `use`.
/// \param clipped  the elements of which a clip hides something
std::string Merged(CombineOptions const& options, Drawing const& drawing,
                   std::set<std::size_t> const& clipped, CPath const& result) {
    std::map<std::size_t, std::size_t> chosen; // outlines by the element that places them
    for (Outline const& outline : drawing.outlines) {
        ++chosen[outline.source.placed];
    }
    Outline const* receiver = nullptr;
    for (Outline const& outline : drawing.outlines) {
        bool const own = outline.source.placed == outline.source.element;
        if (outline.source.beside.IsSingular() ||
            chosen[outline.source.placed] < outline.source.siblings) {
            throw Error(drawing.file, outline.id, "cannot be taken out of its <use> element");
        }
        if (receiver == nullptr && own && outline.source.copies == 1) {
            receiver = &outline;
        }
    }
    SvgEdit edit(drawing.document, DigitsOf(options.write));
    for (auto const& [placed, count] : chosen) {
        if (receiver == nullptr || placed != receiver->source.placed) {
            edit.Remove(placed);
        }
    }
    if (receiver != nullptr) {
        KeepDashes(edit, *receiver, result);
        SetPath(edit, drawing, *receiver, result); // rings without overlaps: any rule will do
        if (clipped.count(receiver->source.element) != 0) {
            edit.SetProperty(receiver->source.element, Property::kClipPath, "none");
            Warn(drawing.file, receiver->id,
                 "gives up its own clip; one around it would cut the result");
        }
    } else if (!result.mCtls.empty()) {
        Outline const& first = drawing.outlines.front();
        edit.InsertPath(first.source.placed,
                        {options.operation, "", "fill:" + first.fill + ";stroke:" + first.stroke},
                        MovedBack(result, first.source.beside, drawing, first));
    }
    return edit.Text();
}

Json AreaJson(AreaFigures const& figures) {
    Json json;
    json["area"] = figures.area;
    json["contours"] = figures.contours;
    json["holes"] = figures.holes;
    json["vertices"] = figures.vertices;
    json["curves"] = figures.curves;
    return json;
}

Json AreaJson(std::string const& file, AreaFigures const& figures) {
    Json json;
    json["file"] = file;
    json.update(AreaJson(figures));
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

void RunCombine(CombineOptions const& options) {
    TPolyOp const code = CodeOf(options.operation);
    if (options.write.output.empty() && !options.json) {
        throw Error("combine", "", "nothing to do without -o or --json");
    }
    if (options.write.output == kStandardStream && options.json) {
        throw Error("--json", "", "cannot go with -o -: both write to standard output");
    }
    if (!options.write.output.empty()) {
        CheckWriteOptions(options.write);
    }
    ArcAccuracy arcs; // without --error, pictures need more than this
    if (!options.error.empty()) {
        arcs = {ArcAccuracy::By::kDistance, ErrorOf(options, TRect<double>()) * kArcPart, ""};
    }
    Drawing a = Load(options.a, arcs);
    Drawing b = Load(options.b, arcs);
    OverrideRules(a, options.rule);
    OverrideRules(b, options.rule);
    std::set<std::size_t> clipped;
    for (Outline const& outline : a.outlines) {
        if (!outline.clips.empty()) {
            clipped.insert(outline.source.element);
        }
    }
    ApplyClips(a);
    ApplyClips(b);
    CheckFinite(a);
    CheckFinite(b);
    TRect<double> const bounds = Around(BoundsOf(a), BoundsOf(b));
    double const error = ErrorOf(options, bounds);
    double arcDistance = 0.0;
    for (Drawing const* const drawing : {&a, &b}) {
        for (Outline const& outline : drawing->outlines) {
            arcDistance = std::max(arcDistance, outline.arcDistance);
        }
    }
    double const step = std::max(error - arcDistance, 0.0) * kStepPart;
    Progress progress("combining", 3);
    Region const areaA = RegionOf(a.outlines, step);
    progress.Update(1);
    Region const areaB = RegionOf(b.outlines, step);
    progress.Update(2);
    Region const result = Combined(code, areaA, areaB, step);
    progress.Update(3);
    TellDistance("", "combine", result.distance, error);
    Json json;
    if (options.json) {
        json["operation"] = options.operation;
        json["error"] = error;
        json["distance"] = result.distance;
        json["a"] = AreaJson(a.file, FiguresOf(areaA));
        json["b"] = AreaJson(b.file, FiguresOf(areaB));
        json["result"] = AreaJson(FiguresOf(result));
    }
    std::string const& output = options.write.output;
    CPath const& path = result.path;
    OutputFiles files;
    if (!output.empty() && KeepsDocument(a, output)) {
        files.Add(output, SvgBytes(Merged(options, a, clipped, path), output));
    } else if (!output.empty()) {
        // The page is the first drawing's. If that has none, the page holds both drawings, so that
        // the results of the four operations lie over each other.
        Page const page = a.page.frame.Empty() ? PageFor(a.page, bounds) : a.page;
        files.Add(output, NewFile(FilledPicture(page, DrawnBounds(path), options.operation, path),
                                  output, options.write));
    }
    if (options.json) {
        Print(JsonText(json));
    }
    files.Commit();
}

} // namespace

void AddCombine(Command const& app) {
    auto const options = std::make_shared<CombineOptions>();
    Command const command = app.AddCommand(
        "combine", "Union, intersection, difference or exclusive-or of what two drawings cover");
    command.AddOption("OPERATION", options->operation, "union, intersection, difference or xor")
        .Required()
        .TypeName("");
    command.AddOption("A", options->a.file, "SVG drawing, font or map").Required().TypeName("");
    command.AddOption("B", options->b.file, "The drawing that is added to or taken from it")
        .Required()
        .TypeName("");
    command.AddValues("--id-a", options->a.ids, "Only this outline of A (may be repeated)")
        .TypeName("ID");
    command.AddValues("--id-b", options->b.ids, "Only this outline of B (may be repeated)")
        .TypeName("ID");
    command
        .AddOption(
            "--error", options->error,
            "The distance within which the result is right (default: a 100000th of the size)")
        .TypeName("E");
    command
        .AddOption("--rule", options->rule,
                   "nonzero or evenodd, for all outlines (default: as the drawings say)")
        .TypeName("RULE");
    AddWriteOptions(command, options->write, false);
    command.AddFlag("--json", options->json,
                    "Print areas, contours, holes, vertices and curves as JSON");
    command.SetFooter(
        "A drawing covers what its outlines enclose, each by its fill rule and every "
        "subpath taken as closed.\nCurves stay curves. Lines alone are combined as polygons, "
        "within rounding.\nIf A is an SVG drawing, it is kept: the result takes "
        "the place of its first outline, with id and\nstyle, and its other outlines that "
        "were combined go.\n"
        "Example: trammel combine difference plate.svg holes.svg -o drilled.svg");
    command.SetAction([options] { RunCombine(*options); });
}

} // namespace tool

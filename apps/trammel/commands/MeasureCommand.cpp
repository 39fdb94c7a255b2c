// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "Progress.h"

#include <CLI/CLI.hpp>

namespace tool {

namespace {

struct Options {
    std::vector<std::string> files;
    std::vector<std::string> ids;
    bool json = false;
};

/// The figures of one outline.
struct Figures {
    std::size_t elements;
    std::size_t subpaths;
    double length;
    TRect<double> bounds;
    TRect<double> controlBounds;
    bool closed;
    bool lines;
    bool curves;
};

Figures Measured(CPath const& path) {
    Figures figures;
    figures.elements = path.mCtls.size();
    figures.subpaths = Subpaths(path).size();
    figures.length = path.Length();
    figures.bounds = DrawnBounds(path);
    figures.controlBounds = ControlBounds(path);
    figures.closed = path.Closed();
    figures.lines = path.TestContents(CPath::kContainsLines);
    figures.curves = path.TestContents(CPath::kContainsCurves);
    return figures;
}

struct Totals {
    std::size_t files = 0;
    std::size_t outlines = 0;
    std::size_t elements = 0;
    double length = 0.0;
    TRect<double> bounds;

    void Add(Figures const& figures) {
        ++outlines;
        elements += figures.elements;
        length += figures.length;
        bounds = Around(bounds, figures.bounds);
    }
};

std::string Counted(std::size_t count, std::string const& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string BoundsText(TRect<double> const& r) {
    return "bounds " + Figure(r.left) + "," + Figure(r.top) + " to " + Figure(r.right) + "," +
           Figure(r.bottom);
}

/// Returns one line for people.
std::string LineOf(std::string const& file, Outline const& outline, Figures const& figures) {
    std::string const contents = figures.lines && figures.curves ? "lines and curves"
                                 : figures.lines                 ? "lines"
                                 : figures.curves                ? "curves"
                                                                 : "no segments";
    return OneLine(file) + ": " + OneLine(outline.id) + ": " +
           Counted(figures.elements, "element") + ", length " + Figure(figures.length) + ", " +
           BoundsText(figures.bounds) + ", " + (figures.closed ? "closed" : "open") + ", " +
           contents + "\n";
}

Json JsonOf(Outline const& outline, Figures const& figures) {
    Json json;
    json["id"] = outline.id;
    json["elements"] = figures.elements;
    json["subpaths"] = figures.subpaths;
    json["length"] = figures.length;
    json["bounds"] = ToJson(figures.bounds);
    json["controlBounds"] = ToJson(figures.controlBounds);
    json["closed"] = figures.closed;
    json["lines"] = figures.lines;
    json["curves"] = figures.curves;
    return json;
}

Json JsonOf(Totals const& totals) {
    Json json;
    json["files"] = totals.files;
    json["outlines"] = totals.outlines;
    json["elements"] = totals.elements;
    json["length"] = totals.length;
    json["bounds"] = ToJson(totals.bounds);
    return json;
}

// Everything is measured before anything is printed, so a file that cannot be read leaves no half
// report.
void Run(Options const& options) {
    std::string text;
    Json files = Json::array();
    Totals totals;
    Progress progress("measuring files", options.files.size());
    for (std::string const& file : options.files) {
        Drawing drawing = ReadDrawing(file);
        KeepOnly(drawing, options.ids);
        Json outlines = Json::array();
        Progress outlineProgress("measuring " + file, drawing.outlines.size());
        std::size_t done = 0;
        for (Outline const& outline : drawing.outlines) {
            Figures const figures = Measured(outline.path);
            totals.Add(figures);
            if (options.json) {
                outlines.push_back(JsonOf(outline, figures));
            } else {
                text += LineOf(file, outline, figures);
            }
            outlineProgress.Update(++done);
        }
        if (options.json) {
            Json entry;
            entry["file"] = file;
            entry["kind"] = drawing.kind;
            entry["outlines"] = std::move(outlines);
            files.push_back(std::move(entry));
        }
        progress.Update(++totals.files);
    }
    if (options.json) {
        Json json;
        json["files"] = std::move(files);
        json["totals"] = JsonOf(totals);
        text = JsonText(json);
    } else {
        text += Counted(totals.files, "file") + ", " + Counted(totals.outlines, "outline") + ", " +
                Counted(totals.elements, "element") + ", length " + Figure(totals.length) + ", " +
                BoundsText(totals.bounds) + "\n";
    }
    Print(text);
}

} // namespace

void AddMeasure(CLI::App& app) {
    auto const options = std::make_shared<Options>();
    CLI::App* const command = app.add_subcommand(
        "measure", "Length, bounds and contents of each outline of drawings and fonts, and totals");
    command->add_option("FILE", options->files, "SVG drawings, fonts and maps (TopoJSON)")
        ->required()
        ->type_name("");
    AddIds(*command, options->ids);
    command->add_flag("--json", options->json, "Print JSON");
    command->footer("A font's outlines are its glyphs, in font units with y down; a map's are its "
                    "countries, in\n"
                    "degrees of longitude and negative latitude. Bounds are those "
                    "of the drawn\noutline; controlBounds in JSON contain the curves' control "
                    "points too.\nExample: trammel measure drawing.svg font.ttf");
    command->callback([options] { Run(*options); });
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "ManyFiles.h"
#include "Numbers.h"
#include "OutlineArea.h"
#include "Outlines.h"
#include "Progress.h"

#include <trammel/AccurateCurve.h>

#include <utility>

namespace tool {

namespace {

struct MeasureOptions {
    Sources sources;
    FigureOptions figures;
    bool area = false;
};

/// The figures of one outline.
struct Measures {
    std::size_t elements;
    std::size_t subpaths;
    double length;
    TRect<double> bounds;
    TRect<double> controlBounds;
    bool closed;
    bool lines;
    bool curves;
    double accuracy; ///< of length and bounds; 0 for classic figures
    double area = 0.0;
    double areaAccuracy = 0.0; ///< 0 unless the area is asked for
};

Measures Measured(Outline const& outline, FigureOptions const& options) {
    CPath const& path = outline.path;
    Figures const figures(outline, options);
    Measures measures;
    measures.elements = path.mCtls.size();
    measures.subpaths = SplitSubpaths(path).size();
    measures.length = options.classic ? path.Length() : trammel::ArcLength(path, 0.0);
    measures.bounds = options.classic ? path.Bounds() : figures.Of(DrawnBounds(path));
    measures.controlBounds = ControlBounds(path);
    measures.closed = path.Closed();
    measures.lines = path.TestContents(CPath::kContainsLines);
    measures.curves = path.TestContents(CPath::kContainsCurves);
    measures.accuracy = figures.Accuracy();
    return measures;
}

struct Totals {
    std::size_t files = 0;
    std::size_t outlines = 0;
    std::size_t elements = 0;
    double length = 0.0;
    TRect<double> bounds;
    double accuracies = 0.0;

    /// Returns the accuracy of the sums.
    double Accuracy() const { return DigitAccuracy(0.5 * accuracies); }
    void Add(Measures const& measures) {
        ++outlines;
        elements += measures.elements;
        length += measures.length;
        bounds = Around(bounds, measures.bounds);
        accuracies += measures.accuracy;
    }
};

std::string Counted(std::size_t count, std::string const& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string BoundsText(TRect<double> const& r) {
    return "bounds " + Figure(r.left) + "," + Figure(r.top) + " to " + Figure(r.right) + "," +
           Figure(r.bottom);
}

/// Returns a length with its unit.
std::string LengthText(MeasureOptions const& options, double length, double accuracy) {
    std::string const& unit = options.sources.unit;
    return "length " + Figure(length, accuracy) + (unit.empty() ? "" : " " + unit);
}

/// Returns one line for people.
std::string LineOf(MeasureOptions const& options, std::string const& file, Outline const& outline,
                   Measures const& measures) {
    std::string const contents = measures.lines && measures.curves ? "lines and curves"
                                 : measures.lines                  ? "lines"
                                 : measures.curves                 ? "curves"
                                                                   : "no segments";
    return OneLine(file) + ": " + OneLine(outline.id) + ": " +
           Counted(measures.elements, "element") + ", " +
           LengthText(options, measures.length, measures.accuracy) + ", " +
           (options.area ? "area " + Figure(measures.area, measures.areaAccuracy) + ", " : "") +
           BoundsText(measures.bounds) + ", " + (measures.closed ? "closed" : "open") + ", " +
           contents + "\n";
}

/// Adds the area that the outline encloses.
void AddArea(Measures& measures, Outline const& outline, FigureOptions const& options) {
    OutlineArea const region = AreaOf(outline, options);
    Figures const figures(region.error, options);
    measures.area = figures.Of(region.area);
    measures.areaAccuracy = figures.Accuracy();
}

Json JsonOf(Outline const& outline, Measures const& measures, bool area) {
    Json json;
    json["id"] = outline.id;
    json["elements"] = measures.elements;
    json["subpaths"] = measures.subpaths;
    json["length"] = RoundedTo(measures.length, measures.accuracy);
    json["bounds"] = ToJson(measures.bounds);
    json["controlBounds"] = ToJson(measures.controlBounds);
    if (area) {
        json["area"] = measures.area;
        if (measures.areaAccuracy > 0.0) {
            json["areaAccuracy"] = measures.areaAccuracy;
        }
    }
    json["closed"] = measures.closed;
    json["lines"] = measures.lines;
    json["curves"] = measures.curves;
    if (measures.accuracy > 0.0) {
        json["accuracy"] = measures.accuracy;
    }
    return json;
}

Json JsonOf(Totals const& totals) {
    Json json;
    json["files"] = totals.files;
    json["outlines"] = totals.outlines;
    json["elements"] = totals.elements;
    json["length"] = RoundedTo(totals.length, totals.Accuracy());
    json["bounds"] = ToJson(totals.bounds);
    if (totals.Accuracy() > 0.0) {
        json["accuracy"] = totals.Accuracy();
    }
    return json;
}

FileResult MeasuredFile(MeasureOptions const& options, Drawing const& drawing, Totals& totals) {
    FileResult result;
    Json outlines = Json::array();
    std::vector<Measures> all;
    Progress progress("measuring " + drawing.file, drawing.outlines.size());
    std::size_t done = 0;
    for (Outline const& outline : drawing.outlines) {
        Measures measures = Measured(outline, options.figures);
        if (options.area) {
            AddArea(measures, outline, options.figures);
        }
        if (options.sources.json) {
            outlines.push_back(JsonOf(outline, measures, options.area));
        } else {
            result.text += LineOf(options, drawing.file, outline, measures);
        }
        all.push_back(measures);
        progress.Update(++done);
    }
    result.inTurn = [&totals, all = std::move(all)] {
        for (Measures const& measures : all) {
            totals.Add(measures);
        }
        ++totals.files;
    };
    result.json = FileJson(drawing, options.sources, options.figures);
    result.json["kind"] = drawing.kind;
    result.json["outlines"] = std::move(outlines);
    return result;
}

void RunMeasure(MeasureOptions const& options) {
    if (options.area && options.figures.classic) {
        throw Error("--area", "", "classic figures have no area");
    }
    Totals totals;
    ForEachFile(
        options.sources, options.figures, ArcAccuracy::By::kFigures,
        [&](Drawing const& drawing) { return MeasuredFile(options, drawing, totals); },
        [&] {
            Closing closing;
            closing.json["totals"] = JsonOf(totals);
            closing.text = Counted(totals.files, "file") + ", " +
                           Counted(totals.outlines, "outline") + ", " +
                           Counted(totals.elements, "element") + ", " +
                           LengthText(options, totals.length, totals.Accuracy()) + ", " +
                           BoundsText(totals.bounds) + "\n";
            return closing;
        });
}

} // namespace

void AddMeasure(Command const& app) {
    auto const options = std::make_shared<MeasureOptions>();
    Command const command = app.AddCommand(
        "measure", "Length, bounds and contents of each outline of drawings and fonts, and totals");
    AddSources(command, options->sources);
    AddFigureOptions(command, options->figures, "CPath::Length and CPath::Bounds");
    command.AddFlag("--area", options->area,
                    "Also the area that each outline encloses by its fill rule");
    command.SetFooter(
        "A font's outlines are its glyphs, in font units with y down; a map's are its "
        "countries, in\n"
        "degrees of longitude and negative latitude. Bounds are those "
        "of the drawn\noutline; controlBounds in JSON contain the curves' control "
        "points too.\n" +
        std::string(kAccuracyHelp) + "\nExample: trammel measure drawing.svg font.ttf");
    command.SetAction([options] { RunMeasure(*options); });
}

} // namespace tool

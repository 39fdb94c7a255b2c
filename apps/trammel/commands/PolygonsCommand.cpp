// SPDX-License-Identifier: MIT

#include "Clip.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Input.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "OwnedPolygon.h"
#include "Progress.h"
#include "SvgShapes.h"

#include <trammel/Handles.h>
#include <trammel/UFPoly.h>
#include <trammel/UTrigonometry.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tool {

namespace {

/// The flattening error without --error, as a share of the outline's size.
constexpr double kFlattenShare = 1e-4;

struct PolygonsOptions {
    Source source;
    bool describe = false;
    std::string angle;
    bool toQuickDraw = false;
    std::string error;
    std::string output;
    bool json = false;
};

/// A QuickDraw polygon that frees its block.
class OwnedRecord {
public:
    explicit OwnedRecord(CFPolygonRef polygon) : mRecord(FPoly2Poly(polygon)) {
        if (mRecord == nullptr) {
            throw Error("", "", "not enough memory");
        }
    }
    ~OwnedRecord() { DisposeHandle(reinterpret_cast<Handle>(mRecord)); }
    OwnedRecord(OwnedRecord const&) = delete;
    OwnedRecord& operator=(OwnedRecord const&) = delete;

    MacPolygon** Get() const { return mRecord; }
    Rect Box() const { return (*mRecord)->polyBBox; }
    int Size() const { return (*mRecord)->polySize; }

private:
    MacPolygon** mRecord;
};

/// The text, the JSON and the picture of all outlines so far.
struct PolygonsReport {
    std::string text;
    Json outlines = Json::array();
    std::vector<Outline> before; ///< drawn grey
    std::vector<Outline> after;  ///< drawn black
};

/// Returns the polygons of an outline, one for each subpath.
std::vector<TPolygon<double>> PolygonsOf(PolygonsOptions const& options, Outline const& outline) {
    TRect<double> const bounds = DrawnBounds(outline.path);
    double const error = options.error.empty()
                             ? std::max(bounds.Width(), bounds.Height()) * kFlattenShare
                             : NumberOf("--error", options.error);
    return Flatten(outline.path, error);
}

std::string PointText(TPoint<double> const& p) { return Figure(p.h) + "," + Figure(p.v); }

std::string NameOf(Outline const& outline, std::size_t i, std::size_t count) {
    return OneLine(outline.id) + (count > 1 ? " polygon " + std::to_string(i + 1) : "");
}

void Describe(PolygonsOptions const& options, Outline const& outline, PolygonsReport& report) {
    std::vector<TPolygon<double>> const polygons = PolygonsOf(options, outline);
    Json list = Json::array();
    for (std::size_t i = 0; i < polygons.size(); ++i) {
        OwnedPolygon const polygon(polygons[i]);
        CFPolygonRef const ref = polygon.Ref();
        std::string const description = PolyDescription(ref);
        long const points = LastFPolyIndex(ref) + 1;
        TRect<double> const bounds = CFPolygonRef(ref).Bounds();
        report.text += NameOf(outline, i, polygons.size()) + ": " + std::to_string(points) +
                       (points == 1 ? " point" : " points") +
                       (FPolyClosed(ref) ? ", last equal to first" : "") + "\n" + description;
        if (!description.empty() && description.back() != '\n') {
            report.text += '\n';
        }
        Json json;
        json["points"] = points;
        json["lastEqualsFirst"] = FPolyClosed(ref);
        json["bounds"] = ToJson(bounds);
        json["circular"] = IsTrueCircle(bounds);
        json["description"] = description;
        list.push_back(std::move(json));
    }
    Json json;
    json["id"] = outline.id;
    json["polygons"] = std::move(list);
    report.outlines.push_back(std::move(json));
    report.after.push_back({outline.id, PathOf(polygons)});
}

void RotateBounds(PolygonsOptions const& options, Outline const& outline, PolygonsReport& report) {
    double const degrees = NumberOf("--rotate-bounds", options.angle);
    TRect<double> const bounds = DrawnBounds(outline.path);
    OwnedPolygon const turned(RotRectToPoly(bounds, DegToRad(degrees)));
    std::vector<TPoint<double>> corners;
    Json list = Json::array();
    std::string text;
    for (long i = 0; i < LastFPolyIndex(turned.Ref()); ++i) {
        corners.push_back(turned.Ref().PolyPoints(i));
        list.push_back(ToJson(corners.back()));
        text += " " + PointText(corners.back());
    }
    TPoint<double> centre;
    double hRadius = 0.0;
    double vRadius = 0.0;
    FRectCenter(bounds, centre, hRadius, vRadius);
    bool const any = FRectInFPoly(turned.Ref(), bounds, false);
    bool const all = FRectInFPoly(turned.Ref(), bounds, true);
    report.text += OneLine(outline.id) + ": corners" + text + ", about " + PointText(centre) +
                   "; corners of the bounds inside: " +
                   (all   ? "all"
                    : any ? "some"
                          : "none") +
                   "\n";
    Json json;
    json["id"] = outline.id;
    json["angle"] = degrees;
    json["centre"] = ToJson(centre);
    json["radii"] = Json::array({hRadius, vRadius});
    json["corners"] = std::move(list);
    json["turnedBounds"] = ToJson(turned.Ref().Bounds());
    json["anyBoundsCornerInside"] = any;
    json["allBoundsCornersInside"] = all;
    report.outlines.push_back(std::move(json));
    report.before.push_back(outline);
    report.after.push_back({outline.id, PolylinePath(corners, true)});
}

void ToQuickDraw(PolygonsOptions const& options, Drawing const& drawing, Outline const& outline,
                 PolygonsReport& report) {
    std::vector<TPolygon<double>> const polygons = PolygonsOf(options, outline);
    Json list = Json::array();
    CPath rounded;
    for (std::size_t i = 0; i < polygons.size(); ++i) {
        OwnedPolygon const exact(polygons[i]);
        OwnedRecord const record(exact.Ref());
        OwnedPolygon const back(Poly2FPoly(record.Get()));
        long const last = LastPolyIndex(record.Get());
        double farthest = 0.0;
        std::vector<TPoint<double>> points;
        Json jsonPoints = Json::array();
        for (long k = 0; k <= last; ++k) {
            TPoint<double> const p = back.Ref().PolyPoints(k);
            farthest = std::max(farthest, Hypotenuse(p, exact.Ref().PolyPoints(k)));
            points.push_back(p);
            jsonPoints.push_back(ToJson(p));
        }
        // Rounding to a 16-bit integer moves a coordinate by half a unit at most. A coordinate
        // beyond the range of these integers moves by more.
        if (!(farthest < 1.0)) {
            throw Error(drawing.file, outline.id,
                        "has coordinates beyond those of a QuickDraw polygon, -32768 to 32767");
        }
        Rect const box = record.Box();
        report.text += NameOf(outline, i, polygons.size()) + ": " + std::to_string(last + 1) +
                       (last == 0 ? " point" : " points") + ", " + std::to_string(record.Size()) +
                       " bytes, box " + std::to_string(box.left) + "," + std::to_string(box.top) +
                       " to " + std::to_string(box.right) + "," + std::to_string(box.bottom) +
                       ", moved by at most " + Figure(farthest) + "\n";
        Json json;
        json["points"] = std::move(jsonPoints);
        json["bytes"] = record.Size();
        json["box"] = Json::array({box.left, box.top, box.right, box.bottom});
        json["movedByAtMost"] = farthest;
        list.push_back(std::move(json));
        AppendSubpaths(rounded, PolylinePath(points, polygons[i].Closed()));
    }
    Json json;
    json["id"] = outline.id;
    json["polygons"] = std::move(list);
    report.outlines.push_back(std::move(json));
    report.before.push_back(outline);
    report.after.push_back({outline.id, std::move(rounded)});
}

/// Returns the picture: the outlines before in grey, and the outlines after in black.
Picture PictureOf(Drawing const& drawing, PolygonsReport const& report) {
    std::vector<Outline> everything = report.before;
    everything.insert(everything.end(), report.after.begin(), report.after.end());
    Picture picture;
    picture.page = LinePicture(drawing.page, everything).page;
    Style style;
    style.strokeWidth = HairWidth(picture.page);
    style.stroke = Colour{176, 176, 176};
    for (Outline const& outline : report.before) {
        // The ids stand for the outlines that the command makes, so these have none.
        picture.shapes.push_back({outline.path, style, ""});
    }
    style.stroke = Colour{};
    AddOutlines(picture, report.after, style);
    return picture;
}

void RunPolygons(PolygonsOptions const& options) {
    bool const rotate = !options.angle.empty();
    int const modes = (options.describe ? 1 : 0) + (rotate ? 1 : 0) + (options.toQuickDraw ? 1 : 0);
    if (modes != 1) {
        throw Error("polygons", "", "needs one of --describe, --rotate-bounds and --to-quickdraw");
    }
    if (options.output == kStandardStream) {
        throw Error("-o", "'-'", "cannot be standard output, where the figures go");
    }
    if (!options.error.empty() && !(NumberOf("--error", options.error) > 0.0)) {
        throw Error("--error", "'" + options.error + "'", "must be above 0");
    }
    if (rotate) {
        NumberOf("--rotate-bounds", options.angle); // before a file is read
    }
    Drawing drawing = Load(options.source, ArcAccuracy{ArcAccuracy::By::kDigits, 0.0, ""});
    ApplyClips(drawing);
    PolygonsReport report;
    {
        Progress progress("reading outlines", drawing.outlines.size());
        for (Outline const& outline : drawing.outlines) {
            if (options.describe) {
                Describe(options, outline, report);
            } else if (rotate) {
                RotateBounds(options, outline, report);
            } else {
                ToQuickDraw(options, drawing, outline, report);
            }
            progress.Update(report.outlines.size());
        }
    }
    OutputFiles files;
    if (!options.output.empty()) {
        files.Add(options.output, PictureBytes(PictureOf(drawing, report), options.output));
    }
    if (options.json) {
        Json json;
        json["file"] = drawing.file;
        json["outlines"] = std::move(report.outlines);
        report.text = JsonText(json);
    }
    Print(report.text);
    files.Commit();
}

} // namespace

void AddPolygons(Command const& app) {
    auto const options = std::make_shared<PolygonsOptions>();
    Command const command = app.AddCommand(
        "polygons", "The outlines as handle polygons: their points, turned bounds, and rounded");
    AddSource(command, options->source);
    command.AddFlag("--describe", options->describe, "List the points of each polygon");
    command
        .AddOption("--rotate-bounds", options->angle,
                   "Turn each outline's bounds about their centre by degrees, clockwise")
        .TypeName("DEG");
    command.AddFlag("--to-quickdraw", options->toQuickDraw,
                    "Round each polygon to a QuickDraw polygon of 16-bit integers");
    command
        .AddOption("--error", options->error,
                   "How far lines may deviate from curves (default: a 10000th of the size)")
        .TypeName("E");
    command.AddOption("-o,--output", options->output, "Draw the result: .svg or .png")
        .TypeName("FILE");
    command.AddFlag("--json", options->json, "Print JSON");
    command.SetFooter("Each subpath is one polygon; a negative angle is given as "
                      "--rotate-bounds=-30.\n"
                      "Example: trammel polygons drawing.svg --rotate-bounds 30 -o turned.svg");
    command.SetAction([options] { RunPolygons(*options); });
}

} // namespace tool

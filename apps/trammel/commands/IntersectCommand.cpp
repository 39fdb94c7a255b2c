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
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace tool {

namespace {

struct IntersectOptions {
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
struct IntersectReport {
    std::string text;
    Json places = Json::array();
};

void Add(IntersectReport& report, IntersectOptions const& options, Outline const& a,
         Outline const& b) {
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

/// The outlines of a drawing, with the bounds of their control points.
class Boxed {
public:
    explicit Boxed(std::vector<Outline> const& outlines) : mOutlines(outlines) {
        mBounds.reserve(outlines.size());
        for (Outline const& outline : outlines) {
            mBounds.push_back(ControlBounds(outline.path));
        }
    }

    std::size_t size() const { return mOutlines.size(); }
    Outline const& operator[](std::size_t i) const { return mOutlines[i]; }
    /// False when outline i of this drawing and k of another one are farther apart than the
    /// accuracy, and than rounding.
    bool MayMeet(std::size_t i, Boxed const& other, std::size_t k, double accuracy) const {
        constexpr double kRounding = 0x1p-36; // the library's finest accuracy is 2^-40 of the size
        TRect<double> const& a = mBounds[i];
        TRect<double> const& b = other.mBounds[k];
        double const size =
            std::max({std::abs(a.left), std::abs(a.right), std::abs(a.top), std::abs(a.bottom),
                      std::abs(b.left), std::abs(b.right), std::abs(b.top), std::abs(b.bottom)});
        double const margin = std::max(accuracy, kRounding * size);
        return !(a.left - margin > b.right || b.left - margin > a.right ||
                 a.top - margin > b.bottom || b.top - margin > a.bottom);
    }

private:
    std::vector<Outline> const& mOutlines;
    std::vector<TRect<double>> mBounds;
};

void RunIntersect(IntersectOptions const& options) {
    double const accuracy = options.figures.Accuracy(); // before a file is read
    ArcAccuracy const arcs = options.figures.Arcs();
    Drawing a = Load(options.a, arcs);
    ApplyClips(a);
    Boxed const ofA(a.outlines);
    IntersectReport report;
    Json json;
    json["a"] = a.file;
    if (!options.b.file.empty()) {
        if (options.itself) {
            throw Error("--self", "", "is for one drawing");
        }
        Drawing b = Load(options.b, arcs);
        ApplyClips(b);
        Boxed const ofB(b.outlines);
        json["b"] = b.file;
        for (std::size_t i = 0; i < ofA.size(); ++i) {
            for (std::size_t k = 0; k < ofB.size(); ++k) {
                if (ofA.MayMeet(i, ofB, k, accuracy)) {
                    Add(report, options, ofA[i], ofB[k]);
                }
            }
        }
    } else {
        for (std::size_t i = 0; i < ofA.size(); ++i) {
            if (options.itself) {
                Add(report, options, ofA[i], ofA[i]);
            }
            for (std::size_t k = i + 1; !options.itself && k < ofA.size(); ++k) {
                if (ofA.MayMeet(i, ofA, k, accuracy)) {
                    Add(report, options, ofA[i], ofA[k]);
                }
            }
        }
    }
    json["places"] = std::move(report.places);
    Print(options.json ? JsonText(json) : report.text);
}

} // namespace

void AddIntersect(Command const& app) {
    auto const options = std::make_shared<IntersectOptions>();
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
    command.SetAction([options] { RunIntersect(*options); });
}

} // namespace tool

// SPDX-License-Identifier: MIT

#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "WriteSupport.h"

#include <trammel/Shapes.h>
#include <trammel/UTrigonometry.h>

#include <array>
#include <cmath>
#include <vector>

namespace tool {

namespace {

struct ShapeOptions {
    std::string kind;
    std::string numbers;
    std::string tolerance = "0.001";
    std::string id;
    std::string into;
    WriteOptions write;
};

typedef std::vector<double> Numbers;
typedef TPoint<double> Pt;

/// One kind of shape. Angles are in degrees.
struct Kind {
    char const* name;
    char const* numbers; ///< what it takes, for people
    std::size_t least;
    std::size_t most;
    CPath (*make)(Numbers const& n, double tolerance);
};

/// Returns a number if it was given.
double Or(Numbers const& n, std::size_t i, double otherwise) {
    return i < n.size() ? n[i] : otherwise;
}

/// The most vertices that a shape may have. Nobody sees more.
constexpr double kMostVertices = 1e6;

std::size_t Count(double number) {
    if (!(number >= 3.0 && number <= kMostVertices && std::floor(number) == number)) {
        throw Error("shape", "N", "must be a whole number from 3 to 1000000");
    }
    return static_cast<std::size_t>(number);
}

constexpr std::array<Kind, 5> kKinds{{
    {"circle", "H,V,R", 3, 3,
     [](Numbers const& n, double tolerance) {
         return trammel::CirclePath(Pt(n[0], n[1]), n[2], tolerance);
     }},
    {"ellipse", "H,V,RH,RV[,DEG]", 4, 5,
     [](Numbers const& n, double tolerance) {
         return trammel::EllipsePath(Pt(n[0], n[1]), n[2], n[3], DegToRad(Or(n, 4, 0.0)),
                                     tolerance);
     }},
    {"rect", "L,T,R,B[,RH[,RV]]", 4, 6,
     [](Numbers const& n, double tolerance) {
         double const hRadius = Or(n, 4, 0.0);
         return trammel::RoundedRectPath(TRect<double>(n[0], n[1], n[2], n[3]), hRadius,
                                         Or(n, 5, hRadius), tolerance);
     }},
    {"polygon", "H,V,R,N[,DEG]", 4, 5,
     [](Numbers const& n, double) {
         return trammel::RegularPolygonPath(Pt(n[0], n[1]), n[2], Count(n[3]),
                                            DegToRad(Or(n, 4, -90.0)));
     }},
    {"star", "H,V,R,INNER,N[,DEG]", 5, 6,
     [](Numbers const& n, double) {
         return trammel::StarPath(Pt(n[0], n[1]), n[2], n[3], Count(n[4]),
                                  DegToRad(Or(n, 5, -90.0)));
     }},
}};

/// Returns the shape as a new path at the end of the drawing, in the drawing's coordinates.
std::string Added(ShapeOptions const& options, Outline const& shape) {
    Drawing const drawing = ReadDrawing(options.into);
    if (!drawing.document) {
        throw Error(options.into, "", "is no SVG drawing");
    }
    if (!IsSvgName(options.write.output)) {
        throw Error(options.write.output, "", "must end in .svg or .svgz to hold the drawing");
    }
    if (!options.id.empty() && drawing.document->Find(options.id)) {
        throw Error("--set-id", "'" + options.id + "'", "is an element of " + options.into);
    }
    CMatrix3x3 const& root = drawing.rootTransform;
    double const scale = MeanStretch(root);
    Page const page = LinePicture(drawing.page, {shape}).page;
    SvgEdit edit(drawing.document, DigitsOf(options.write));
    edit.AppendPath(
        {shape.id, "",
         "fill:none;stroke:#000000;stroke-width:" + Exact(LineWidth(options.write, page) / scale)},
        MovedBack(shape.path, root, drawing, shape));
    return SvgBytes(edit.Text(), options.write.output);
}

void Write(ShapeOptions const& options, Outline const& shape) {
    std::string const& output = options.write.output;
    if (!options.into.empty()) {
        WriteFile(output, Added(options, shape));
        return;
    }
    Picture picture = LinePicture(Page(), {shape});
    picture.shapes.front().style.strokeWidth = LineWidth(options.write, picture.page);
    WriteFile(output, NewFile(std::move(picture), output, options.write));
}

void RunShape(ShapeOptions const& options) {
    CheckWriteOptions(options.write);
    double const tolerance = NumberOf("--tolerance", options.tolerance);
    if (!(tolerance > 0.0)) {
        throw Error("--tolerance", "'" + options.tolerance + "'", "must be above 0");
    }
    for (Kind const& kind : kKinds) {
        if (options.kind == kind.name) {
            Numbers const n = NumbersOf(options.kind, options.numbers, kind.least, kind.most);
            std::string const id = options.id.empty() ? options.kind : options.id;
            Write(options, {id, kind.make(n, tolerance)});
            return;
        }
    }
    throw Error("shape", "'" + options.kind + "'",
                "must be circle, ellipse, rect, polygon or star");
}

} // namespace

void AddShape(Command const& app) {
    auto const options = std::make_shared<ShapeOptions>();
    Command const command =
        app.AddCommand("shape", "Writes a circle, ellipse, rectangle, polygon or star");
    command.AddOption("KIND", options->kind, "circle, ellipse, rect, polygon or star")
        .Required()
        .TypeName("");
    command.AddOption("NUMBERS", options->numbers, "Its numbers, with commas between them")
        .Required()
        .TypeName("");
    command
        .AddOption("--tolerance", options->tolerance,
                   "How far curves may be from the true circle or ellipse (default 0.001)")
        .TypeName("D");
    command.AddOption("--set-id", options->id, "The id of the path (default: KIND)").TypeName("ID");
    command
        .AddOption("--into", options->into,
                   "Add the shape to this SVG drawing, and leave the rest of it as it is")
        .TypeName("DRAWING");
    AddWriteOptions(command, options->write);
    std::string footer = "The numbers:\n";
    for (Kind const& kind : kKinds) {
        footer += std::string("  ") + kind.name + " " + kind.numbers + "\n";
    }
    command.SetFooter(footer +
                      "DEG turns the shape; a polygon's first vertex is on top (-90 degrees).\n"
                      "Example: trammel shape circle 50,50,20 --tolerance 1e-6 -o circle.svg");
    command.SetAction([options] { RunShape(*options); });
}

} // namespace tool

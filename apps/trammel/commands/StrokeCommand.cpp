// SPDX-License-Identifier: MIT

#include "ChangeSupport.h"
#include "Commands.h"
#include "Css.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Warning.h"

#include <trammel/AccurateCurve.h>
#include <trammel/Stroke.h>

#include <algorithm>
#include <utility>

namespace tool {

namespace {

struct StrokeOptions {
    ChangeOptions change;
    std::string pen;
    std::string join;
    std::string miterLimit;
    std::string cap;
    std::string dash;
    std::string dashOffset;
};

/// Returns the style with what the options say of it.
trammel::StrokeStyle StyleOf(StrokeOptions const& options, trammel::StrokeStyle style) {
    if (!options.pen.empty()) {
        style.width = NumberOf("--pen", options.pen);
        if (!(style.width > 0.0)) {
            throw Error("--pen", "'" + options.pen + "'", "must be above 0");
        }
    }
    if (!options.join.empty()) {
        style.join = JoinOf(options.join);
    }
    if (!options.miterLimit.empty()) {
        style.miterLimit = MiterLimitOf(options.miterLimit);
    }
    if (!options.cap.empty()) {
        style.startCap = CapOf(options.cap);
        style.endCap = style.startCap;
    }
    if (!options.dash.empty()) {
        style.dashes = NumbersOf("--dash", options.dash, 1, kMany);
        bool const wrong = std::any_of(style.dashes.begin(), style.dashes.end(),
                                       [](double length) { return length < 0.0; });
        if (wrong || *std::max_element(style.dashes.begin(), style.dashes.end()) == 0.0) {
            throw Error("--dash", "'" + options.dash + "'",
                        "lengths must not be negative, and one must be above 0");
        }
    }
    if (!options.dashOffset.empty()) {
        style.dashOffset = NumberOf("--dash-offset", options.dashOffset);
    }
    return style;
}

bool HasStroke(Outline const& outline) {
    return outline.pen && outline.stroke != "none" && outline.pen->style.width > 0.0 &&
           !outline.source.toDrawing.IsSingular();
}

/// Sets `out` to the area of the outline's own line, and returns the distance that is kept.
double OwnStroke(StrokeOptions const& options, Outline const& outline, double tolerance,
                 CPath& out) {
    Pen const& pen = *outline.pen;
    CMatrix3x3 const toDrawing =
        pen.pixel > 0.0 ? CMatrix3x3().Scale(pen.pixel, pen.pixel) : outline.source.toDrawing;
    CMatrix3x3 own;
    if (toDrawing.IsSingular() || !toDrawing.Inverse(own)) {
        out = CPath(); // a browser draws no line there
        return 0.0;
    }
    CPath const path = Moved(outline.path, own);
    trammel::StrokeStyle style = pen.style;
    if (outline.pathLength > 0.0 && !style.dashes.empty()) {
        double const scale = trammel::ArcLength(path, 0.0) / outline.pathLength;
        for (double& dash : style.dashes) {
            dash *= scale;
        }
        style.dashOffset *= scale;
    }
    double const stretch = Stretch(toDrawing);
    double const kept =
        trammel::Stroke(path, StyleOf(options, std::move(style)), tolerance / stretch, out);
    out = Moved(std::move(out), toDrawing);
    return kept * stretch;
}

/// The area has the colour that the line had.
void Paint(SvgEdit& edit, Outline const& outline) {
    if (outline.stroke == "none") {
        return;
    }
    std::size_t const element = outline.source.element;
    std::string paint = outline.stroke;
    CMatrix3x3 own;
    if (!UrlFragment(paint).empty() && !outline.source.toDrawing.IsSingular() &&
        outline.source.toDrawing.Inverse(own)) {
        paint = edit.KeptPaint(element, paint, DrawnBounds(Moved(outline.path, own)), CMatrix3x3());
    }
    edit.SetProperty(element, Property::kFill, paint);
    edit.SetProperty(element, Property::kStroke, "none");
    if (outline.pen && outline.pen->opacity != outline.pen->fillOpacity) {
        edit.SetProperty(element, Property::kFillOpacity, outline.pen->opacity);
    }
}

/// The fill stays, as an element of its own.
void KeepFill(SvgEdit& edit, std::string const& file, Outline const& outline) {
    if (outline.fill == "none") {
        return;
    }
    if (outline.source.placed != outline.source.element || outline.source.copies > 1) {
        Warn(file, outline.id, "is drawn by <use>, which shows only the line from now on");
    }
    edit.InsertCopy(outline.source.element,
                    outline.pen->paintsFirst ? SvgEdit::Side::kAfter : SvgEdit::Side::kBefore,
                    outline.id + "-fill", std::nullopt, {{Property::kStroke, "none"}});
}

/// True when two copies of an element have lines of the same paint and pen.
bool HaveSameLine(Outline const& one, Outline const& other) {
    if (one.stroke != other.stroke || !one.pen != !other.pen) {
        return false;
    }
    if (!one.pen) {
        return true;
    }
    trammel::StrokeStyle const& a = one.pen->style;
    trammel::StrokeStyle const& b = other.pen->style;
    return a.width == b.width && a.join == b.join && a.miterLimit == b.miterLimit &&
           a.startCap == b.startCap && a.endCap == b.endCap && a.dashes == b.dashes &&
           a.dashOffset == b.dashOffset && one.pen->pixel == other.pen->pixel &&
           one.pen->opacity == other.pen->opacity;
}

void RunStroke(StrokeOptions const& options) {
    trammel::StrokeStyle const style = StyleOf(options, trammel::StrokeStyle());
    Change change;
    change.progress = "stroking outlines";
    change.filled = true;
    change.paint = Paint;
    if (!options.pen.empty()) {
        change.form = [&](Outline const& outline, double tolerance, CPath& out) {
            return trammel::Stroke(outline.path, style, tolerance, out);
        };
    } else {
        std::string const& file = options.change.source.file;
        change.wants = HasStroke;
        change.nothing = "has no strokes; --pen draws all outlines";
        change.suits = HaveSameLine;
        change.unsuited = "is drawn by <use> with other strokes, too; all copies get the same one";
        change.prepare = [&](SvgEdit& edit, Outline const& outline) {
            KeepFill(edit, file, outline);
        };
        change.form = [&](Outline const& outline, double tolerance, CPath& out) {
            return OwnStroke(options, outline, tolerance, out);
        };
    }
    RunChange(options.change, change);
}

} // namespace

void AddStroke(Command const& app) {
    auto const options = std::make_shared<StrokeOptions>();
    Command const command =
        app.AddCommand("stroke", "Writes what a pen paints along the outlines, as areas");
    AddChangeOptions(command, options->change, kFineShare);
    command
        .AddOption("--pen", options->pen,
                   "Width of a pen that draws all outlines, in the drawing's units (default: each "
                   "line as its style says)")
        .TypeName("W");
    command
        .AddOption("--join", options->join,
                   "Corners: miter, miter-clip, round or bevel (default: the style's; with --pen "
                   "miter)")
        .TypeName("JOIN");
    command
        .AddOption("--miter-limit", options->miterLimit,
                   "How long a miter may be, in widths of the pen (default: the style's; with "
                   "--pen 4)")
        .TypeName("M");
    command
        .AddOption("--cap", options->cap,
                   "Ends of lines: butt, square or round (default: the style's; with --pen butt)")
        .TypeName("CAP");
    command
        .AddOption("--dash", options->dash,
                   "Lengths of a dash, a gap, a dash and so on (default: the style's; with --pen "
                   "none)")
        .TypeName("D,G,...");
    command
        .AddOption("--dash-offset", options->dashOffset,
                   "Where in these lengths lines begin (default: the style's; with --pen 0)")
        .TypeName("S");
    AddChangeOutput(command, options->change);
    command.SetFooter(
        "Without --pen, each outline with a stroke becomes the area that its style paints: width, "
        "joins, caps and\ndashes as a browser sees them, with the options in place of parts of "
        "the style. Others stay. With --pen, one\npen draws all outlines, and the style is not "
        "read. The areas are right within the tolerance.\n"
        "An SVG drawing is kept: each element becomes the area of its line, in the colour of the "
        "stroke. Without\n--pen, the fill stays below as a copy of the element with the id "
        "ID-fill.\n"
        "Example: trammel stroke drawing.svg -o areas.svg");
    command.SetAction([options] { RunStroke(*options); });
}

} // namespace tool

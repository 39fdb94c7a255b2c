// SPDX-License-Identifier: MIT

#include "CommandSupport.h"

#include "Error.h"
#include "Outlines.h"

#include <trammel/AccurateCurve.h>

#include <limits>
#include <set>

namespace tool {

void AddIds(Command const& command, std::vector<std::string>& ids) {
    command.AddValues("--id", ids, "Only the outline with this id or glyph name (may be repeated)")
        .TypeName("ID");
}

void AddSource(Command const& command, Source& source) {
    command.AddOption("FILE", source.file, "SVG drawing, font or map; - for standard input")
        .Required()
        .TypeName("");
    AddIds(command, source.ids);
}

void AddOutput(Command const& command, std::string& output) {
    command
        .AddOption("-o,--output", output,
                   "The file to write: .svg, .svgz or .png; - for standard output")
        .Required()
        .TypeName("FILE");
}

void KeepOnly(Drawing& drawing, std::vector<std::string> const& ids) {
    if (ids.empty()) {
        return;
    }
    std::set<std::string> const wanted(ids.begin(), ids.end());
    std::set<std::string> found;
    std::vector<Outline> kept;
    for (Outline& outline : drawing.outlines) {
        if (wanted.count(outline.id) != 0) {
            found.insert(outline.id);
            kept.push_back(std::move(outline));
        }
    }
    for (std::string const& id : ids) {
        if (found.count(id) == 0) {
            throw Error(drawing.file, "", "has no outline '" + id + "'");
        }
    }
    drawing.outlines = std::move(kept);
}

void CheckNotEmpty(Drawing const& drawing) {
    if (drawing.outlines.empty()) {
        throw Error(drawing.file, "", "has no outlines");
    }
}

Drawing Load(Source const& source, ArcAccuracy const& arcs) {
    Drawing drawing = ReadDrawing(source.file, arcs);
    CheckNotEmpty(drawing);
    KeepOnly(drawing, source.ids);
    return drawing;
}

double LengthToDivide(Drawing const& drawing, Outline const& outline) {
    double const length = trammel::ArcLength(outline.path, 0.0);
    if (!(length > 0.0)) {
        throw Error(drawing.file, outline.id, "the outline has no length");
    }
    if (!(length <= std::numeric_limits<double>::max())) {
        throw Error(drawing.file, outline.id, "the outline is too long to be measured");
    }
    return length;
}

Picture LinePicture(Page const& page, std::vector<Outline> const& outlines) {
    TRect<double> bounds;
    for (Outline const& outline : outlines) {
        bounds = Around(bounds, DrawnBounds(outline.path));
    }
    Picture picture;
    picture.page = PageFor(page, bounds);
    Style style;
    style.stroke = Colour{};
    style.strokeWidth = HairWidth(picture.page);
    AddOutlines(picture, outlines, style);
    return picture;
}

trammel::FillRule RuleOf(std::string const& name) {
    if (name == "nonzero") {
        return trammel::FillRule::kNonZero;
    }
    if (name == "evenodd") {
        return trammel::FillRule::kEvenOdd;
    }
    throw Error("--rule", "'" + name + "'", "must be nonzero or evenodd");
}

char const* NameOf(trammel::FillRule rule) {
    return rule == trammel::FillRule::kNonZero ? "nonzero" : "evenodd";
}

void AddRule(Command const& command, std::string& rule) {
    command
        .AddOption("--rule", rule,
                   "What is inside: nonzero or evenodd (default: the drawing's own fill rule)")
        .TypeName("RULE");
}

void SetRule(Drawing& drawing, std::string const& rule) {
    if (!rule.empty()) {
        trammel::FillRule const value = RuleOf(rule);
        for (Outline& outline : drawing.outlines) {
            outline.rule = value;
        }
    }
}

std::string JsonText(Json const& json) {
    return json.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

Json ToJson(TPoint<double> const& p) { return Json::array({p.h, p.v}); }

Json ToJson(TRect<double> const& r) { return Json::array({r.left, r.top, r.right, r.bottom}); }

} // namespace tool

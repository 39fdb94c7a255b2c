// SPDX-License-Identifier: MIT

#include "ChangeSupport.h"

#include "Clip.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "PenNames.h"
#include "Progress.h"
#include "Warning.h"
#include "WriteSupport.h"

#include <trammel/OutlineOperations.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <optional>
#include <utility>

namespace tool {

namespace {

double ToleranceOf(ChangeOptions const& options) {
    double const tolerance = NumberOf("--tolerance", options.tolerance);
    if (!(tolerance > 0.0)) {
        throw Error("--tolerance", "'" + options.tolerance + "'", "must be above 0");
    }
    return tolerance;
}

/// Returns the drawing's greater side times `share`.
double ShareOfSize(Drawing const& drawing, double share) {
    TRect<double> bounds;
    for (Outline const& outline : drawing.outlines) {
        bounds = Around(bounds, DrawnBounds(outline.path));
    }
    return std::max(bounds.Width(), bounds.Height()) * share;
}

/// Returns the outline's new form.
CPath FormOf(Change const& change, Drawing const& drawing, Outline const& outline,
             double tolerance) {
    CPath out;
    double const rest = std::max(tolerance - outline.arcDistance, 0.0);
    double const distance =
        outline.arcDistance + change.form(outline, rest * (1.0 - kRoundingPart), out);
    TellDistance(drawing.file, outline.id, distance, tolerance);
    return out;
}

/// Returns the new forms of outlines that are made together, by outline; none where each is made
/// for itself.
std::map<Outline const*, CPath> FormsOf(Change const& change, Drawing const& drawing,
                                        std::vector<Outline const*> const& outlines,
                                        double tolerance) {
    std::map<Outline const*, CPath> forms;
    if (!change.forms || drawing.kind == "font") { // glyphs do not lie in one place
        return forms;
    }
    double arcDistance = 0.0;
    for (Outline const* const outline : outlines) {
        arcDistance = std::max(arcDistance, outline->arcDistance);
    }
    std::vector<CPath> out;
    double const rest = std::max(tolerance - arcDistance, 0.0);
    double const distance = change.forms(outlines, rest * (1.0 - kRoundingPart), out);
    TellDistance(drawing.file, "", arcDistance + distance, tolerance);
    for (std::size_t i = 0; i < outlines.size(); ++i) {
        forms.emplace(outlines[i], std::move(out[i]));
    }
    return forms;
}

/// Warns once where outlines that are made together are drawn several times, as only one copy of
/// each is compared with the others.
void TellCopies(Drawing const& drawing, std::vector<Outline const*> const& outlines) {
    Outline const* first = nullptr;
    std::size_t others = 0;
    for (Outline const* const outline : outlines) {
        if (outline->source.copies > 1) {
            others += first != nullptr ? 1 : 0;
            first = first != nullptr ? first : outline;
        }
    }
    if (first != nullptr) {
        std::string const more = std::to_string(others) + " more element" + (others > 1 ? "s" : "");
        Warn(drawing.file, first->id,
             "is drawn " + std::to_string(first->source.copies) +
                 " times; copies other than the largest one may cross others" +
                 (others > 0 ? ", as may those of " + more : ""));
    }
}

/// Warns of elements with copies that the form of the chosen one does not suit.
void TellUnsuited(Drawing const& drawing, std::vector<Outline const*> const& outlines,
                  Change const& change) {
    std::map<std::size_t, Outline const*> chosen;
    for (Outline const* const outline : outlines) {
        chosen.emplace(outline->source.element, outline);
    }
    for (Outline const& outline : drawing.outlines) {
        auto const found = chosen.find(outline.source.element);
        if (found != chosen.end() && !change.suits(*found->second, outline)) {
            Warn(drawing.file, found->second->id, change.unsuited);
            chosen.erase(found);
        }
    }
}

} // namespace

bool EnclosesNothing(Outline const& outline) {
    CPath region;
    trammel::RemoveOverlap(outline.path, outline.rule, 0.0, region);
    return region.mCtls.empty();
}

void AddChangeOptions(Command const& command, ChangeOptions& options, ToleranceShare const& share) {
    AddSource(command, options.source);
    command
        .AddOption("--tolerance", options.tolerance,
                   "The distance within which the result is right (default: " +
                       std::string(share.words) + " of the drawing's size)")
        .TypeName("T");
}

void AddChangeOutput(Command const& command, ChangeOptions& options) {
    AddWriteOptions(command, options.write);
}

void AddChangeCommand(Command const& app, std::string const& name, std::string const& help,
                      ToleranceShare const& share, std::string const& footer,
                      std::function<void(ChangeOptions const&)> const& run) {
    auto const options = std::make_shared<ChangeOptions>();
    Command const command = app.AddCommand(name, help);
    AddChangeOptions(command, *options, share);
    AddChangeOutput(command, *options);
    command.SetFooter(footer);
    command.SetAction([options, run] { run(*options); });
}

ChangeInput LoadForChange(ChangeOptions const& options, ToleranceShare const& share) {
    ArcAccuracy arcs; // the default tolerances are above what pictures need
    if (!options.tolerance.empty()) {
        arcs = {ArcAccuracy::By::kDistance, ToleranceOf(options) * kArcPart, ""};
    }
    CheckWriteOptions(options.write);
    Drawing drawing = Load(options.source, arcs);
    double const tolerance =
        options.tolerance.empty() ? ShareOfSize(drawing, share.share) : ToleranceOf(options);
    return {std::move(drawing), tolerance};
}

void RunChange(ChangeOptions const& options, Change const& change) {
    ChangeInput input = LoadForChange(options, change.share);
    Drawing& drawing = input.drawing;
    double const tolerance = input.tolerance;
    std::string const& output = options.write.output;
    bool const keeps = KeepsDocument(drawing, output);
    if (!keeps && !change.filled) {
        ApplyClips(drawing);
    }
    auto const stays = [&](Outline const& outline) {
        return (change.area && options.source.ids.empty() && outline.fill == "none") ||
               (change.wants && !change.wants(outline));
    };
    if (change.wants &&
        std::none_of(drawing.outlines.begin(), drawing.outlines.end(), change.wants)) {
        if (!keeps) {
            throw Error(drawing.file, "", change.nothing);
        }
        Warn(drawing.file, "", change.nothing);
    }
    std::vector<Outline const*> all;
    if (keeps) {
        all = OnePerElement(drawing);
    } else {
        for (Outline const& outline : drawing.outlines) {
            all.push_back(&outline);
        }
    }
    std::vector<Outline const*> changing;
    std::copy_if(all.begin(), all.end(), std::back_inserter(changing),
                 [&](Outline const* outline) { return !stays(*outline); });
    if (keeps && change.forms) {
        TellCopies(drawing, changing);
    }
    if (keeps && change.suits) {
        TellUnsuited(drawing, changing, change);
    }
    Progress progress(change.progress, drawing.outlines.size());
    std::size_t done = 0;
    std::map<Outline const*, CPath> made = FormsOf(change, drawing, changing, tolerance);
    auto const formOf = [&](Outline const& outline) {
        auto const found = made.find(&outline);
        return found != made.end() ? std::move(found->second)
                                   : FormOf(change, drawing, outline, tolerance);
    };
    // A straight line with a stroke often has the fill that it has by default.
    auto const remains = [&](Outline const& outline, CPath const& form) {
        return form.mCtls.empty() && change.area && options.source.ids.empty() &&
               outline.stroke != "none" && EnclosesNothing(outline);
    };
    if (keeps) {
        SvgEdit edit(drawing.document, DigitsOf(options.write));
        for (Outline const* const outline : all) {
            CPath form = stays(*outline) ? CPath() : formOf(*outline);
            if (!stays(*outline) && !remains(*outline, form)) {
                if (change.prepare) {
                    change.prepare(edit, *outline);
                }
                if (!change.filled) {
                    KeepDashes(edit, *outline, form);
                }
                SetPath(edit, drawing, *outline, std::move(form));
                if (change.paint) {
                    change.paint(edit, *outline);
                }
            }
            progress.Update(++done);
        }
        WriteFile(output, SvgBytes(edit.Text(), output));
        return;
    }
    Page const page = LinePicture(drawing.page, drawing.outlines).page;
    Drawing shown;
    for (Outline& outline : drawing.outlines) {
        progress.Update(++done);
        if (!stays(outline)) {
            CPath form = formOf(outline);
            if (!remains(outline, form)) {
                outline.path = std::move(form);
            }
        } else if (change.filled) {
            continue;
        }
        if (!outline.path.mCtls.empty()) {
            shown.outlines.push_back(std::move(outline));
        }
    }
    if (change.filled) {
        for (Outline& outline : shown.outlines) {
            outline.fill = "black";
            outline.rule = trammel::FillRule::kNonZero;
        }
        ApplyClips(shown);
    }
    Picture picture = LinePicture(page, shown.outlines);
    if (change.filled) {
        for (Shape& shape : picture.shapes) {
            shape.style.fill = Colour{};
            shape.style.stroke.reset();
        }
    }
    WriteFile(output, NewFile(std::move(picture), output, options.write));
}

trammel::StrokeJoin JoinOf(std::string const& name) {
    if (std::optional<trammel::StrokeJoin> const join = JoinNamed(name)) {
        return *join;
    }
    throw Error("--join", "'" + name + "'", "must be miter, miter-clip, round or bevel");
}

trammel::StrokeCap CapOf(std::string const& name) {
    if (std::optional<trammel::StrokeCap> const cap = CapNamed(name)) {
        return *cap;
    }
    throw Error("--cap", "'" + name + "'", "must be butt, square or round");
}

double MiterLimitOf(std::string const& text) {
    double const limit = NumberOf("--miter-limit", text);
    if (!(limit >= 1.0)) {
        throw Error("--miter-limit", "'" + text + "'", "must be at least 1");
    }
    return limit;
}

} // namespace tool

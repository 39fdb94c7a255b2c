// SPDX-License-Identifier: MIT

#include "Classic.h"
#include "Clip.h"
#include "CommandSupport.h"
#include "Commands.h"
#include "Error.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "Progress.h"
#include "WriteSupport.h"

#include <trammel/AccurateCurve.h>
#include <trammel/PathSegments.h>

#include <cstddef>
#include <string>

namespace tool {

namespace {

struct FlattenOptions {
    Source source;
    std::string error;
    WriteOptions write;
    bool classic = false;
};

/// The most points that the long curves of a drawing may take. That is a file of some 100 MB.
constexpr std::size_t kMostPoints = 4000000;
/// Curves of so many points or fewer are not long: a drawing may have any number of them.
constexpr std::size_t kUsualPoints = 1000;

/// Throws where the long curves take more points than that.
void CheckPoints(Drawing const& drawing, double error) {
    std::size_t points = 0;
    for (Outline const& outline : drawing.outlines) {
        double const most = error - outline.arcDistance;
        for (trammel::PathSegment const& segment : trammel::Segments(outline.path)) {
            if (!segment.IsCurve()) {
                continue;
            }
            std::size_t const count = trammel::FlattenInto(segment.Curve(), most, nullptr, 0).count;
            points += count > kUsualPoints ? count : 0;
            if (points > kMostPoints) {
                throw Error(drawing.file, outline.id,
                            "the curves take more than " + std::to_string(kMostPoints) +
                                " points; a greater --error takes fewer");
            }
        }
    }
}

void RunFlatten(FlattenOptions const& options) {
    double const error = NumberOf("--error", options.error);
    if (!(error > 0.0)) {
        throw Error("--error", "'" + options.error + "'", "must be above 0");
    }
    CheckWriteOptions(options.write);
    // The arcs take a small part of the error, and the lines the rest.
    Drawing drawing = Load(options.source, {ArcAccuracy::By::kDistance, error * kArcPart, ""});
    CheckPoints(drawing, error);
    auto const flattened = [&](Outline const& outline) {
        if (options.classic) {
            return PathOf(ClassicFlatten(outline.path, error));
        }
        CPath lines;
        double const kept =
            trammel::FlattenWithin(outline.path, error - outline.arcDistance, lines);
        TellDistance(drawing.file, outline.id, outline.arcDistance + kept, error);
        return lines;
    };
    Progress progress("flattening outlines", drawing.outlines.size());
    std::size_t done = 0;
    if (KeepsDocument(drawing, options.write.output)) {
        SvgEdit edit(drawing.document, DigitsOf(options.write));
        for (Outline const* const outline : OnePerElement(drawing)) {
            if (outline->path.TestContents(CPath::kContainsCurves)) {
                CPath const path = flattened(*outline);
                KeepDashes(edit, *outline, path);
                SetPath(edit, drawing, *outline, path);
            }
            progress.Update(++done);
        }
        WriteFile(options.write.output, SvgBytes(edit.Text(), options.write.output));
        return;
    }
    ApplyClips(drawing);
    for (Outline& outline : drawing.outlines) {
        outline.path = flattened(outline);
        progress.Update(++done);
    }
    WriteFile(options.write.output, NewFile(LinePicture(drawing.page, drawing.outlines),
                                            options.write.output, options.write));
}

} // namespace

void AddFlatten(Command const& app) {
    auto const options = std::make_shared<FlattenOptions>();
    Command const command =
        app.AddCommand("flatten", "Writes the outlines with every curve as straight lines");
    AddSource(command, options->source);
    command.AddOption("--error", options->error, "How far the lines may deviate from the curves")
        .Required()
        .TypeName("E");
    AddWriteOptions(command, options->write);
    command.AddFlag("--classic", options->classic,
                    "The lines of CBezier::Flatten, which may deviate by more");
    command.SetFooter(
        "An SVG drawing is kept: elements with curves get straight lines, everything else "
        "stays as it is.\n"
        "Example: trammel flatten drawing.svg --error 0.1 -o flat.svg");
    command.SetAction([options] { RunFlatten(*options); });
}

} // namespace tool

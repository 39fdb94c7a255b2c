// SPDX-License-Identifier: MIT

// How the commands write their results: into the document that was read, as a new document, or as
// PNG.

#ifndef TRAMMEL_APP_WRITESUPPORT_H
#define TRAMMEL_APP_WRITESUPPORT_H

#include "CommandLine.h"
#include "Drawing.h"
#include "Outlines.h"
#include "Picture.h"
#include "SvgEdit.h"

#include <optional>
#include <string>
#include <vector>

namespace tool {

/// The part of a tolerance that the curves take which stand for circles and arcs.
inline constexpr double kArcPart = 1.0 / 64.0;
/// The part of a tolerance that is left to rounding.
inline constexpr double kRoundingPart = 1.0 / 64.0;

/// The options of the commands that write drawings, as text.
struct WriteOptions {
    std::string output;
    std::string precision;
    std::string strokeWidth;
    std::string width;
    std::string height;
    std::string scale;
    std::string background;
    std::string accuracy;
};

/// Adds -o and the options of precision, line width, PNG size and background.
/// \param required  whether the command needs -o
void AddWriteOptions(Command const& command, WriteOptions& options, bool required = true);

/// Throws Error for a mistake in the options, before the work begins.
void CheckWriteOptions(WriteOptions const& options);

/// True when the result in `file` is the document that was read, with changes.
bool KeepsDocument(Drawing const& drawing, std::string const& file);

/// Returns the decimals that --precision asks for.
std::optional<int> DigitsOf(WriteOptions const& options);

/// Adds --accuracy, for a command that writes curves.
void AddCurveAccuracy(Command const& command, WriteOptions& options);
/// Returns how near written curves must be to the circles and arcs that they stand for.
ArcAccuracy ArcsOf(WriteOptions const& options);

/// Returns the width of lines that the command adds, in the drawing's coordinates: --stroke-width,
/// or a width that suits the page.
double LineWidth(WriteOptions const& options, Page const& page);

/// Returns the picture as a new file with all options. `file` may be another one than -o.
std::string NewFile(Picture picture, std::string const& file, WriteOptions const& options);

/// Warns if the distance is above the tolerance, unless that is 0.
void TellDistance(std::string const& file, std::string const& id, double distance,
                  double tolerance);

/// Returns the matrix that undoes `m`. Throws an Error that names the outline when `m` cannot
/// be undone, because it presses everything into a line.
CMatrix3x3 Undone(CMatrix3x3 const& m, Drawing const& drawing, Outline const& outline);

/// Returns the path, which is behind the matrix `m`, as it is before it. The digits that only the
/// rounding of the way there and back makes are not in it. Throws as Undone does.
CPath MovedBack(CPath path, CMatrix3x3 const& m, Drawing const& drawing, Outline const& outline);

/// Gives the outline's element another form, which is in the drawing's coordinates.
void SetPath(SvgEdit& edit, Drawing const& drawing, Outline const& outline, CPath path);

/// Gives the outline's element the `pathLength` with which its dashes are as long on `path` as they
/// were on the outline's own path. Both are in the drawing's coordinates. Nothing changes where the
/// line is not dashed, and where a dash or a gap takes the whole line: it is a share of any form.
void KeepDashes(SvgEdit& edit, Outline const& outline, CPath const& path);

/// Returns one outline for each element, the largest of several copies. Warns when copies change
/// that were not chosen. Leaves out outlines that their transform presses into a line: nobody sees
/// them.
std::vector<Outline const*> OnePerElement(Drawing const& drawing);

} // namespace tool

#endif

// SPDX-License-Identifier: MIT

// The commands that give each outline another form within a tolerance: what they share.

#ifndef TRAMMEL_APP_CHANGESUPPORT_H
#define TRAMMEL_APP_CHANGESUPPORT_H

#include "CommandSupport.h"
#include "WriteSupport.h"

#include <trammel/CPath.h>
#include <trammel/StrokeStyle.h>

#include <functional>
#include <string>
#include <vector>

namespace tool {

/// The options of such a command.
struct ChangeOptions {
    Source source;
    std::string tolerance;
    WriteOptions write;
};

/// The tolerance without --tolerance.
struct ToleranceShare {
    double share; ///< of the drawing's size
    char const* words;
};
/// Far below what can be seen, and above what rounding needs.
inline constexpr ToleranceShare kFineShare{1e-5, "a 100000th"};

/// What such a command does.
struct Change {
    std::string progress; ///< what the line of the progress says
    ToleranceShare share = kFineShare;
    /// Sets `out` to the outline's new form, and returns the distance that is kept.
    std::function<double(Outline const& outline, double tolerance, CPath& out)> form;
    /// Sets `out` to the new forms of all outlines that change, in order, and returns the distance
    /// that is kept. Empty: `form` makes one after the other.
    std::function<double(std::vector<Outline const*> const& outlines, double tolerance,
                         std::vector<CPath>& out)>
        forms = {};
    /// True for a form that bounds an area. An outline without a fill then stays as it is, unless
    /// --id names it.
    bool area = false;
    /// False for an outline that stays as it is; empty: all change.
    std::function<bool(Outline const& outline)> wants = {};
    std::string nothing = {}; ///< the complaint about a drawing in which all stay
    /// True where the form of one copy of an element suits another one; empty where it always does.
    std::function<bool(Outline const& one, Outline const& other)> suits = {};
    std::string unsuited = {}; ///< the warning about an element with other copies
    /// Change more of the element than its form, before and after that; may be empty.
    std::function<void(SvgEdit& edit, Outline const& outline)> prepare = {};
    std::function<void(SvgEdit& edit, Outline const& outline)> paint = {};
    /// True for a command that makes areas of lines. A new picture fills them, and has nothing
    /// else.
    bool filled = false;
};

/// Adds FILE, --id and --tolerance.
void AddChangeOptions(Command const& command, ChangeOptions& options, ToleranceShare const& share);
/// Adds the options of writing.
void AddChangeOutput(Command const& command, ChangeOptions& options);

/// Adds a command that has no other options.
/// \param footer  what its help ends with
void AddChangeCommand(Command const& app, std::string const& name, std::string const& help,
                      ToleranceShare const& share, std::string const& footer,
                      std::function<void(ChangeOptions const&)> const& run);

/// The drawing of a command, and the tolerance that it keeps.
struct ChangeInput {
    Drawing drawing;
    double tolerance;
};

/// Checks the options, and reads the drawing. Circles and arcs take a small part of the tolerance.
ChangeInput LoadForChange(ChangeOptions const& options, ToleranceShare const& share);

/// True for an outline whose fill has no area, such as a straight line.
bool EnclosesNothing(Outline const& outline);

/// Changes the outlines, and writes the file. Warns of an outline that does not keep the tolerance.
void RunChange(ChangeOptions const& options, Change const& change);

/// Returns the join of the name that --join has. Throws Error.
trammel::StrokeJoin JoinOf(std::string const& name);
/// Returns the cap of the name that --cap has. Throws Error.
trammel::StrokeCap CapOf(std::string const& name);
/// Returns the number of --miter-limit, which is at least 1. Throws Error.
double MiterLimitOf(std::string const& text);

} // namespace tool

#endif

// SPDX-License-Identifier: MIT

// Commands that read many files: the choice of files, the figures' unit and accuracy, and the
// report, which is printed file by file.
//
// A file that cannot be read costs one line on standard error. The run goes on, and ends with the
// status of a failure. JSON for a single file is the object of that file. For several files, and
// where --files-from names them, it is {"files": [OBJECT...]}. Files that could not be read are
// then listed as "errors".

#ifndef TRAMMEL_APP_MANYFILES_H
#define TRAMMEL_APP_MANYFILES_H

#include "CommandSupport.h"
#include "Drawing.h"

#include <exception>
#include <functional>
#include <string>
#include <vector>

namespace tool {

/// The files that a command reads, and what it is to do with each.
struct Sources {
    std::string command; ///< its name
    std::vector<std::string> files;
    std::string filesFrom;        ///< a file that names files, "-" for standard input; may be empty
    bool null = false;            ///< the names end with NUL instead of a line end
    std::vector<std::string> ids; ///< empty: all outlines
    std::string unit;             ///< of all figures; empty: the drawing's own
    bool json = false;
    std::string jobs; ///< the number of files to work on at once; empty: one for each processor

    /// True when there may be more or fewer files than one.
    bool Several() const { return files.size() != 1 || !filesFrom.empty(); }
    /// Returns what begins a line for people: the file's name if there are several.
    std::string Prefix(std::string const& file) const;
};

/// Adds FILE..., --files-from, --null, --id, --unit, --json and --jobs.
void AddSources(Command const& command, Sources& sources);

/// What a command found in one file. Only one of both needs to be set: `json` with --json, and
/// `text` without.
struct FileResult {
    std::string text;
    Json json;
    std::function<void()> inTurn = {}; ///< what to do when the result is printed; may be empty
};

/// What a report ends with: lines, and further members beside "files".
typedef FileResult Closing;

/// Is thrown at the end of a run with errors that are told already.
class ToldErrors : public std::exception {
public:
    char const* what() const noexcept override { return "errors were told"; }
};

struct FigureOptions;

/// Reads the files, keeps the chosen outlines in the unit asked for, and prints what `work` finds
/// in each. An Error of one file is told, and at the end of the run comes ToldErrors.
///
/// Several threads call `work`, each for a file of its own. Results, warnings and errors come in
/// the order of the files, and each when its turn has come. Classic figures take a setting of the
/// whole process, so those files are read one after the other.
/// \param by  how near curves must be to arcs, in the unit asked for
///
/// If there is a `closing`, JSON is always the object of several files, and what `closing` returns
/// is printed at the end. Nothing is printed if a single file cannot be read.
void ForEachFile(Sources const& sources, FigureOptions const& figures, ArcAccuracy::By by,
                 std::function<FileResult(Drawing&)> const& work,
                 std::function<Closing()> const& closing = nullptr);

/// How exact figures are.
struct FigureOptions {
    std::string accuracy;
    bool classic = false;

    /// Returns the accuracy asked for, or the next lower power of ten; 0 for the finest that there
    /// is. Throws Error.
    double Accuracy() const;
    /// Returns how near curves must be to the arcs that they stand for.
    /// \param by  what a given accuracy is of
    ArcAccuracy Arcs(ArcAccuracy::By by = ArcAccuracy::By::kFigures) const;
};

/// What the help says of figures.
inline constexpr char const* kAccuracyHelp =
    "Figures are right to the digits printed; \"accuracy\" in JSON tells how far they may be off.";

/// Adds --accuracy.
void AddAccuracy(Command const& command, FigureOptions& options);
/// Adds --accuracy and --classic. `calls` names the calls that --classic takes.
void AddFigureOptions(Command const& command, FigureOptions& options, std::string const& calls);

/// Returns the beginning of a file's object: "file", and "unit" and "classic" if they were asked
/// for.
Json FileJson(Drawing const& drawing, Sources const& sources, FigureOptions const& options);

/// The figures of one outline, rounded to the digits that are right.
class Figures {
public:
    /// Figures of the outline. Classic figures are not rounded.
    Figures(Outline const& outline, FigureOptions const& options);
    /// Figures of the outline and a point.
    Figures(Outline const& outline, FigureOptions const& options, TPoint<double> const& p);

    /// Figures that are off by at most `error` before they are rounded.
    Figures(double error, FigureOptions const& options);

    /// Returns the most by which a figure is off, in the unit of lengths: a power of ten, the place
    /// of the last digit. 0 for classic figures.
    double Accuracy() const { return mAccuracy; }
    double Of(double number) const;
    TPoint<double> Of(TPoint<double> const& p) const;
    TRect<double> Of(TRect<double> const& r) const;
    /// Adds "accuracy", unless the figures are classic.
    void AddAccuracy(Json& json) const;

private:
    double mAccuracy;
};

} // namespace tool

#endif

// SPDX-License-Identifier: MIT

#include "ManyFiles.h"

#include "Clip.h"
#include "Error.h"
#include "InOrder.h"
#include "Input.h"
#include "Numbers.h"
#include "Outlines.h"
#include "Output.h"
#include "PaperUnit.h"
#include "Progress.h"
#include "Warning.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <memory>
#include <new>
#include <optional>
#include <thread>
#include <utility>

namespace tool {

namespace {

constexpr double kMostJobs = 256.0;

/// Gives the names of the files, those of the command line first.
class Names {
public:
    explicit Names(Sources const& sources) : mSources(sources) {
        std::string const& list = sources.filesFrom;
        if (list.empty()) {
            return;
        }
        mStream.reset(list == kStandardStream ? stdin : std::fopen(list.c_str(), "rb"));
        if (!mStream) {
            throw Error(list, "", "cannot be opened: " + SystemMessage(errno));
        }
    }

    /// Returns the next name; empty at the end.
    std::optional<std::string> Next() {
        if (mNext < mSources.files.size()) {
            return mSources.files[mNext++];
        }
        char const end = mSources.null ? '\0' : '\n';
        while (mStream) {
            std::string name;
            int c = std::getc(mStream.get());
            for (; c != EOF && c != end; c = std::getc(mStream.get())) {
                name += static_cast<char>(c);
            }
            if (c == EOF && std::ferror(mStream.get()) != 0) {
                throw Error(mSources.filesFrom, "", "cannot be read: " + SystemMessage(errno));
            }
            if (!mSources.null && !name.empty() && name.back() == '\r') {
                name.pop_back();
            }
            if (name.find('\0') != std::string::npos) {
                throw Error(mSources.filesFrom, "", "has names that end with NUL: give --null");
            }
            if (!name.empty()) {
                return name;
            }
            if (c == EOF) {
                mStream.reset();
            }
        }
        return std::nullopt;
    }

private:
    struct Closer {
        void operator()(std::FILE* file) const {
            if (file != stdin) {
                std::fclose(file);
            }
        }
    };

    Sources const& mSources;
    std::size_t mNext = 0;
    std::unique_ptr<std::FILE, Closer> mStream;
};

/// Returns JSON as text without a line end, its lines after the first indented.
std::string Indented(Json const& json, std::string const& indent) {
    std::string text = JsonText(json);
    text.pop_back();
    std::string out;
    for (char const c : text) {
        out += c;
        if (c == '\n') { // texts in JSON have none
            out += indent;
        }
    }
    return out;
}

/// Prints the results of the files as they come.
class Report {
public:
    Report(Sources const& sources, bool list) : mJson(sources.json), mList(list) {}

    void Add(FileResult const& result) {
        if (!mJson) {
            Print(result.text);
        } else if (!mList) {
            Print(JsonText(result.json));
        } else {
            std::string const before = mFiles ? ",\n  " : "{\n \"files\": [\n  ";
            mFiles = true;
            Print(before + Indented(result.json, "  "));
        }
    }

    void AddError(std::string const& file, std::string const& message) {
        PrintDiagnostic(message);
        mFailed = true;
        Json json;
        json["file"] = file;
        json["message"] = message;
        mErrors.push_back(std::move(json));
    }

    bool Failed() const { return mFailed; }

    void Close(Closing closing) {
        if (mJson && mList) {
            std::string text = mFiles ? "\n ]" : "{\n \"files\": []";
            if (mFailed) {
                closing.json["errors"] = mErrors;
            }
            for (auto const& [name, value] : closing.json.items()) {
                text += ",\n \"" + name + "\": " + Indented(value, " ");
            }
            Print(text + "\n}\n");
        } else if (!mJson) {
            Print(closing.text);
        }
    }

private:
    bool mJson;
    bool mList;
    bool mFiles = false;
    bool mFailed = false;
    Json mErrors = Json::array();
};

} // namespace

std::string Sources::Prefix(std::string const& file) const {
    return Several() ? OneLine(file) + ": " : "";
}

void AddSources(Command const& command, Sources& sources) {
    command
        .AddArguments("FILE", sources.files,
                      "SVG drawings, fonts and maps (TopoJSON, GeoJSON); - for standard input")
        .TypeName("");
    command
        .AddOption("--files-from", sources.filesFrom,
                   "Read also the files that LIST names, one a line; - for standard input")
        .TypeName("LIST");
    command.AddFlag("--null", sources.null, "The names in LIST end with NUL, not with lines");
    AddIds(command, sources.ids);
    command
        .AddOption("--unit", sources.unit,
                   "All figures in mm, cm, in, pt, pc, Q or px on the drawing's page, those of "
                   "options too")
        .TypeName("U");
    command.AddFlag("--json", sources.json, "Print JSON");
    command
        .AddOption("--jobs", sources.jobs,
                   "Files to work on at the same time (default: one for each processor)")
        .TypeName("N");
    sources.command = command.Name();
}

namespace {

/// Returns the number of threads that read the files.
std::size_t ThreadsFor(Sources const& sources, bool classic) {
    std::size_t threads = std::max(std::thread::hardware_concurrency(), 1U);
    if (!sources.jobs.empty()) {
        double const jobs = NumberOf("--jobs", sources.jobs);
        if (!(jobs >= 1.0 && jobs <= kMostJobs && jobs == std::floor(jobs))) {
            throw Error("--jobs", "'" + sources.jobs + "'", "must be a whole number from 1 to 256");
        }
        threads = static_cast<std::size_t>(jobs);
    }
    if (sources.filesFrom.empty()) {
        threads = std::min(threads, sources.files.size());
    }
    return classic ? 1 : threads;
}

} // namespace

void ForEachFile(Sources const& sources, FigureOptions const& figures, ArcAccuracy::By by,
                 std::function<FileResult(Drawing&)> const& work,
                 std::function<Closing()> const& closing) {
    if (sources.files.empty() && sources.filesFrom.empty()) {
        throw Error(sources.command, "",
                    "FILE is required (see trammel " + sources.command + " --help)");
    }
    std::size_t const threads = ThreadsFor(sources, figures.classic);
    ArcAccuracy arcs = figures.Arcs(by);
    arcs.unit = sources.unit;
    Names names(sources);
    Report report(sources, sources.Several() || closing);
    Progress progress("reading files", sources.files.size());
    std::size_t done = 0;
    auto const read = [&](std::string const& name) -> Turn {
        auto const failed = [&report, name](std::string const& message) {
            return [&report, name, message] { report.AddError(name, message); };
        };
        try {
            Drawing drawing = ReadDrawing(name, arcs);
            KeepOnly(drawing, sources.ids);
            ApplyClips(drawing);
            if (!sources.unit.empty()) {
                ToPaperUnit(drawing, sources.unit);
            }
            return [&, result = work(drawing)] {
                report.Add(result);
                if (result.inTurn) {
                    result.inTurn();
                }
                if (++done <= sources.files.size()) {
                    progress.Update(done);
                }
            };
        } catch (Error const& e) {
            return failed(e.what());
        } catch (std::bad_alloc const&) {
            return failed(Error(name, "", "not enough memory").what());
        }
    };
    auto const readAside = [&](std::string const& name) -> Turn {
        HeldDiagnostics held;
        Turn turn = read(name);
        return [lines = held.Take(), turn = std::move(turn)] {
            for (std::string const& line : lines) {
                PrintDiagnostic(line);
            }
            turn();
        };
    };
    RunInOrder(threads, [&]() -> Work {
        std::optional<std::string> const name = names.Next();
        if (!name) {
            return {};
        }
        if (threads <= 1) {
            return [&read, name = *name] { return read(name); };
        }
        if (*name == kStandardStream) { // the names may come from there, too: no other thread reads
            return [turn = readAside(*name)] { return turn; };
        }
        return [&readAside, name = *name] { return readAside(name); };
    });
    if (!(report.Failed() && !sources.Several())) {
        report.Close(closing ? closing() : Closing());
    }
    if (report.Failed()) {
        throw ToldErrors();
    }
}

double FigureOptions::Accuracy() const {
    if (accuracy.empty()) {
        return 0.0;
    }
    double const asked = NumberOf("--accuracy", accuracy);
    if (!(asked > 0.0)) {
        throw Error("--accuracy", "'" + accuracy + "'", "must be above 0");
    }
    if (classic) {
        throw Error("--accuracy", "", "classic figures have no accuracy");
    }
    return std::pow(10.0, std::floor(std::log10(asked)));
}

ArcAccuracy FigureOptions::Arcs(ArcAccuracy::By by) const {
    double const most = Accuracy();
    return {most > 0.0 ? by : ArcAccuracy::By::kDigits, most, ""};
}

void AddAccuracy(Command const& command, FigureOptions& options) {
    command
        .AddOption("--accuracy", options.accuracy,
                   "How far figures may be off (default: all printed digits are right)")
        .TypeName("A");
}

void AddFigureOptions(Command const& command, FigureOptions& options, std::string const& calls) {
    AddAccuracy(command, options);
    command.AddFlag("--classic", options.classic, "The approximate figures of " + calls);
}

Json FileJson(Drawing const& drawing, Sources const& sources, FigureOptions const& options) {
    Json json;
    json["file"] = drawing.file;
    if (!sources.unit.empty()) {
        json["unit"] = sources.unit;
    }
    if (options.classic) {
        json["classic"] = true;
    }
    return json;
}

Figures::Figures(Outline const& outline, FigureOptions const& options)
    : Figures(FigureAccuracy(outline), options) {}

Figures::Figures(Outline const& outline, FigureOptions const& options, TPoint<double> const& p)
    : Figures(FigureAccuracy(outline, p), options) {}

Figures::Figures(double error, FigureOptions const& options)
    : mAccuracy(options.classic ? 0.0 : std::max(DigitAccuracy(error), options.Accuracy())) {}

void Figures::AddAccuracy(Json& json) const {
    if (mAccuracy > 0.0) {
        json["accuracy"] = mAccuracy;
    }
}

double Figures::Of(double number) const { return RoundedTo(number, mAccuracy); }

TPoint<double> Figures::Of(TPoint<double> const& p) const {
    return TPoint<double>(Of(p.h), Of(p.v));
}

TRect<double> Figures::Of(TRect<double> const& r) const {
    return TRect<double>(Of(r.left), Of(r.top), Of(r.right), Of(r.bottom));
}

} // namespace tool

// SPDX-License-Identifier: MIT

// What holds whenever the command-line tool reads a file, and texts out of the fuzzer's bytes.

#ifndef TRAMMEL_FUZZ_READING_H
#define TRAMMEL_FUZZ_READING_H

#include "Targets.h"

#include "Drawing.h"
#include "Error.h"
#include "Numbers.h"
#include "PathStructure.h"
#include "Warning.h"
#include "identity/Identity.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>

namespace fuzz {

/// The name of the files that no disk holds.
inline constexpr char const* kFile = "input";

inline void RequireMessage(std::string const& line) {
    Require(std::none_of(line.begin(), line.end(),
                         [](char c) { return static_cast<unsigned char>(c) < 0x20; }),
            "a message is one line");
    Require(line.find(kFile) != std::string::npos, "a message names the file");
}

/// Requires what every reader owes: points are numbers, and drawing begins with a move.
inline void RequireDrawing(tool::Drawing const& drawing) {
    for (tool::Outline const& outline : drawing.outlines) {
        Require(!outline.id.empty(), "an outline has a name");
        for (Pt const& p : outline.path.mPts) {
            Require(std::isfinite(p.h) && std::isfinite(p.v), "coordinates are finite");
        }
        for (trammel::Subpath const& subpath : trammel::Subpaths(outline.path)) {
            Require(subpath.BeginsWithMove(), "a subpath begins with a move");
        }
        Require(outline.arcDistance >= 0.0 && outline.arcLength >= 0.0,
                "the distance of arcs is known");
    }
}

/// Returns what the function reads; empty if it complains by an Error. An exception of another kind
/// ends the program.
template <class Read> std::optional<tool::Drawing> DrawingOf(Read const& read) {
    std::optional<tool::Drawing> drawing;
    tool::HeldDiagnostics held;
    try {
        drawing = read();
    } catch (tool::Error const& e) {
        RequireMessage(e.what());
    }
    for (std::string const& line : held.Take()) {
        RequireMessage(line);
    }
    if (drawing) {
        RequireDrawing(*drawing);
    }
    return drawing;
}

inline bool Same(CPath const& a, CPath const& b) {
    identity::Digest ours;
    identity::Digest theirs;
    ours.Add(a.mPts);
    theirs.Add(b.mPts);
    return a.mCtls == b.mCtls && ours == theirs;
}

/// One of the texts.
template <std::size_t count> std::string AnyOf(Input& in, char const* const (&texts)[count]) {
    return texts[in.Byte() % count];
}

/// The shortest text of a finite number.
inline std::string AnyNumber(Input& in) {
    double const number = in.Number();
    return tool::Exact(std::isfinite(number) ? number : 0.0);
}

} // namespace fuzz

#endif

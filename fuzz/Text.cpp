// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "SvgPath.h"
#include "identity/Identity.h"

#include <cmath>
#include <string>

namespace fuzz {

void Text(Input& in) {
    std::string const text(in.Rest());
    trammel::SvgPathResult const read = trammel::ReadSvgPath(text);
    for (Pt const& p : read.path.mPts) {
        Require(std::isfinite(p.h) && std::isfinite(p.v), "coordinates are finite");
    }
    if (read.error) {
        Require(read.error->position <= text.size(), "the error is in the text");
        Require(read.error->Message().find('\n') == std::string::npos, "a message is one line");
    }
    for (double const tolerance : {0.0, 1.0}) {
        trammel::SvgPathResult const fine = trammel::ReadSvgPath(text, tolerance);
        Require(fine.arcs >= read.arcs || fine.error, "finer arcs are as many");
        for (Pt const& p : fine.path.mPts) {
            Require(std::isfinite(p.h) && std::isfinite(p.v), "coordinates are finite");
        }
    }
    std::string const written = trammel::WriteSvgPath(read.path);
    trammel::SvgPathResult const again = trammel::ReadSvgPath(written);
    Require(!again.error, "what is written can be read");
    Require(again.path.mCtls == read.path.mCtls, "the elements come back");
    identity::Digest before;
    identity::Digest after;
    before.Add(read.path.mPts);
    after.Add(again.path.mPts);
    Require(before == after, "the points come back, bit by bit");
    Require(written == trammel::WriteSvgPath(again.path), "the shortest text is one");
}

} // namespace fuzz

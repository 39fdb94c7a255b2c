// SPDX-License-Identifier: MIT

// A judge of the sources of a result's elements, in long double.

#ifndef TRAMMEL_SOURCEJUDGE_H
#define TRAMMEL_SOURCEJUDGE_H

#include "CPath.h"
#include "ElementSource.h"
#include "PathSegments.h"
#include "TPoint.h"
#include "outlines/OutlineJudge.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace trammel_test {

/// The elements of operands, for questions about results.
class SourceJudge {
public:
    typedef long double Wide;
    typedef TPoint<double> Pt;

    explicit SourceJudge(std::vector<CPath> const& operands) {
        for (CPath const& operand : operands) {
            mSegments.emplace_back();
            for (trammel::PathSegment const& s : trammel::Segments(operand)) {
                mSegments.back().push_back(s);
                for (Pt const& p : {s.start, s.control1, s.control2, s.end}) {
                    mGreatest = std::max({mGreatest, std::abs(Wide(p.h)), std::abs(Wide(p.v))});
                }
            }
            for (trammel::Subpath const& subpath : trammel::Subpaths(operand)) {
                for (trammel::PathSegment const& s : subpath.ClosedSegments()) {
                    CPath one;
                    one.MoveTo(s.start);
                    s.IsCurve() ? one.CurveTo(s.control1, s.control2, s.end) : one.LineTo(s.end);
                    mOutlines.emplace_back(one);
                }
            }
        }
    }

    /// Returns a text about the first wrong element of a result, or an empty text. An element must
    /// be its source bit for bit, or a part of it with ends moved by no more than `kept`. The
    /// control point beside an end moves as the end does. An element without a source must be a
    /// line. An element whose source closes an open subpath must be a line, too.
    std::string Wrong(CPath const& out, std::vector<trammel::ElementSource> const& sources,
                      double kept) const {
        if (sources.size() != out.mCtls.size()) {
            return "there is not a source for each element";
        }
        for (trammel::PathSegment const& s : trammel::Segments(out)) {
            char const* const wrong = WrongElement(s, sources[s.element], kept);
            if (wrong[0] != '\0') {
                return wrong + (", element " + std::to_string(s.element));
            }
        }
        return "";
    }
    /// True when several elements of the operands, or an element and the end of another one, are
    /// within `distance` of a point.
    bool IsInContact(Pt const& p, double distance) const {
        return std::count_if(mOutlines.begin(), mOutlines.end(), [&](OutlineJudge const& outline) {
                   return outline.IsNear(p, distance);
               }) > 1;
    }

private:
    typedef std::array<Wide, 4> Values;

    static Values Part(Values const& x, Wide from, Wide to) {
        auto const blossom = [&](Wide r, Wide s, Wide t) {
            auto const mix = [](Wide a, Wide b, Wide at) { return a * (1 - at) + b * at; };
            Wide const a = mix(mix(x[0], x[1], r), mix(x[1], x[2], r), s);
            Wide const b = mix(mix(x[1], x[2], r), mix(x[2], x[3], r), s);
            return mix(a, b, t);
        };
        return {blossom(from, from, from), blossom(from, from, to), blossom(from, to, to),
                blossom(to, to, to)};
    }
    static Values Thirds(Values const& x) {
        return {x[0], x[0] + (x[3] - x[0]) / 3, x[3] - (x[3] - x[0]) / 3, x[3]};
    }

    char const* WrongElement(trammel::PathSegment const& s, trammel::ElementSource const& source,
                             double kept) const {
        if (source.operand == trammel::ElementSource::kNoSource) {
            return s.IsCurve() ? "a curve has no source" : "";
        }
        if (source.operand < mSegments.size() &&
            source.element == trammel::ElementSource::kNoSource) {
            return s.IsCurve() ? "the line that closes a subpath is a curve" : "";
        }
        if (source.operand >= mSegments.size() ||
            source.element >= mSegments[source.operand].size()) {
            return "a source does not exist";
        }
        trammel::PathSegment const& whole = mSegments[source.operand][source.element];
        if (whole.IsCurve() != s.IsCurve()) {
            return "a source is of another kind";
        }
        if (source.from < 0.0 || source.from > 1.0 || source.to < 0.0 || source.to > 1.0) {
            return "a parameter is outside of the source";
        }
        bool const forward =
            source.from == 0.0 && source.to == 1.0 && s.start == whole.start && s.end == whole.end;
        bool const backward =
            source.from == 1.0 && source.to == 0.0 && s.start == whole.end && s.end == whole.start;
        if (s.IsCurve() && (forward || backward) &&
            !(forward ? s.control1 == whole.control1 && s.control2 == whole.control2
                      : s.control1 == whole.control2 && s.control2 == whole.control1)) {
            return "a whole element is not its source bit for bit";
        }
        Values h = {whole.start.h, whole.control1.h, whole.control2.h, whole.end.h};
        Values v = {whole.start.v, whole.control1.v, whole.control2.v, whole.end.v};
        h = Part(whole.IsCurve() ? h : Thirds(h), source.from, source.to);
        v = Part(whole.IsCurve() ? v : Thirds(v), source.from, source.to);
        Wide const start[2] = {s.start.h - h[0], s.start.v - v[0]};
        Wide const end[2] = {s.end.h - h[3], s.end.v - v[3]};
        if (std::hypot(start[0], start[1]) > kept || std::hypot(end[0], end[1]) > kept) {
            return "an end is moved by more than the distance";
        }
        Wide const rounding = mGreatest * 0x1p-48L;
        if (s.IsCurve() && (std::abs(s.control1.h - h[1] - start[0]) > rounding ||
                            std::abs(s.control1.v - v[1] - start[1]) > rounding ||
                            std::abs(s.control2.h - h[2] - end[0]) > rounding ||
                            std::abs(s.control2.v - v[2] - end[1]) > rounding)) {
            return "a part of a curve is bent";
        }
        return "";
    }

    std::vector<std::vector<trammel::PathSegment>> mSegments;
    std::vector<OutlineJudge> mOutlines; // of each element
    Wide mGreatest = 0;
};

} // namespace trammel_test

#endif

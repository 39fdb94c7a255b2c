// SPDX-License-Identifier: MIT

// The library and others at operations on outlines (../Compare.h). Whether a result is right is not
// asked here: ../outlines does that.

#ifndef TRAMMEL_OUTLINEWORKS_H
#define TRAMMEL_OUTLINEWORKS_H

#include "../Compare.h"
#include "../OutlineInputs.h"
#include "Works.h"

#include <trammel/StrokeStyle.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace peers {

void RegisterAggOutlines();
void RegisterLib2geomOutlines();
void RegisterQtOutlines();

/// The works of a library on an outline in its own form. A work without a function is not measured.
/// Each function returns the number of elements of its result, or nothing of meaning.
template <class Native> struct OutlineWorks {
    std::function<Native(CPath const&)> convert;
    std::function<double(Native const&, Native const&)> unite;
    std::function<double(std::vector<Native> const&)> uniteAll;
    std::function<double(Native const&)> removeOverlap;
    /// Strokes within a tolerance.
    std::function<double(Native const&, trammel::StrokeStyle const&, double)> stroke;
    /// Grows a region by a distance within a tolerance, with round joins.
    std::function<double(Native const&, double, double)> offset;
    /// The greatest number of curves or outlines that the library is asked about. It would take
    /// seconds for more. Strokes may have a hundred times as many lines.
    std::size_t most = std::numeric_limits<std::size_t>::max();
};

/// The job of calling call(native) for each outline.
template <class Native, class Call>
compare::Job JobOfOutlines(std::vector<CPath> const& outlines, OutlineWorks<Native> const& works,
                           Call call) {
    auto const natives = ConvertAll<Native>(outlines, works.convert);
    return JobOf(natives->size(), [natives, call](std::size_t i) { return call((*natives)[i]); });
}

template <class Native>
void RegisterOutlineUnions(std::string const& who, OutlineWorks<Native> const& works) {
    typedef std::vector<std::pair<Native, Native>> Pairs;
    auto const convert = [works](std::vector<inputs::OutlinePair> const& pairs) {
        auto const natives = std::make_shared<Pairs>();
        for (inputs::OutlinePair const& pair : pairs) {
            natives->emplace_back(works.convert(pair.first), works.convert(pair.second));
        }
        return natives;
    };
    for (inputs::Set const set : {inputs::Set::kTrueType, inputs::Set::kCff}) {
        std::string const input = set == inputs::Set::kCff ? "glyphs_cff" : "glyphs_truetype";
        compare::RegisterAlone("glyph_union", input, who, [=] {
            auto const pairs = convert(inputs::GlyphPairs(set));
            return JobOf(pairs->size(), [=](std::size_t i) {
                return works.unite((*pairs)[i].first, (*pairs)[i].second);
            });
        });
    }
    for (std::size_t const count : {100U, 1000U, 10000U, 100000U, 1000000U}) {
        if (count <= works.most) {
            compare::RegisterAlone("ring_union", std::to_string(count), who, [=] {
                auto const pairs = convert({inputs::CrossingRings(count)});
                auto job = JobOf(1, [=](std::size_t) {
                    return works.unite(pairs->front().first, pairs->front().second);
                });
                job.items = count;
                return job;
            });
        }
    }
}

template <class Native>
void RegisterStrokes(std::string const& who, OutlineWorks<Native> const& works) {
    for (std::size_t const count : {100U, 1000U, 13000U, 100000U, 1000000U}) {
        if (count / 100 <= works.most) {
            compare::RegisterAlone("stroke_lines", std::to_string(count), who, [=] {
                trammel::StrokeStyle style;
                auto const native = works.convert(inputs::WindingLine(count));
                auto job = JobOf(1, [=](std::size_t) { return works.stroke(native, style, 0.25); });
                job.items = count;
                return job;
            });
        }
    }
    struct Kind {
        char const* work;
        std::vector<double> dashes;
    };
    for (Kind const& kind : {Kind{"stroke_curves", {}}, Kind{"stroke_dashes", {4.0, 2.0}}}) {
        for (inputs::Set const set : {inputs::Set::kCff, inputs::Set::kIcons}) {
            std::string const input = set == inputs::Set::kCff ? "glyphs_cff" : "icons";
            compare::RegisterAlone(kind.work, input, who, [=] {
                trammel::StrokeStyle style;
                style.join = trammel::StrokeJoin::kRound;
                style.dashes = kind.dashes;
                return JobOfOutlines(inputs::Outlines(set), works, [=](Native const& native) {
                    return works.stroke(native, style, 0.01);
                });
            });
        }
    }
}

template <class Native>
void RegisterOutlines(std::string const& who, OutlineWorks<Native> const& works) {
    if (works.unite) {
        RegisterOutlineUnions(who, works);
    }
    if (works.uniteAll) {
        for (std::size_t const count : {100U, 1000U, 10000U, 100000U}) {
            if (count <= works.most) {
                compare::RegisterAlone("disc_union", std::to_string(count), who, [=] {
                    auto const natives = ConvertAll<Native>(inputs::Discs(count), works.convert);
                    auto job = JobOf(1, [=](std::size_t) { return works.uniteAll(*natives); });
                    job.items = count;
                    return job;
                });
            }
        }
    }
    std::pair<char const*, inputs::Set> const sets[] = {{"glyphs_truetype", inputs::Set::kTrueType},
                                                        {"glyphs_cff", inputs::Set::kCff},
                                                        {"icons", inputs::Set::kIcons}};
    for (auto const& [input, which] : sets) {
        inputs::Set const set = which;
        if (works.removeOverlap) {
            compare::RegisterAlone("remove_overlap", input, who, [=] {
                return JobOfOutlines(inputs::Outlines(set), works, works.removeOverlap);
            });
        }
        if (works.offset) {
            compare::RegisterAlone("offset", input, who, [=] {
                return JobOfOutlines(inputs::Outlines(set), works, [=](Native const& native) {
                    return works.offset(native, 1.0, 0.01);
                });
            });
        }
    }
    if (works.stroke) {
        RegisterStrokes(who, works);
    }
}

} // namespace peers

#endif

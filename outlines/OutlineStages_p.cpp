// SPDX-License-Identifier: MIT

#include "OutlineStages_p.h"

#include "Box_p.h"
#include "MortonOrder_p.h"
#include "OutlineLift_p.h"
#include "PolygonRings_p.h"
#include "Scratch_p.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace trammel_detail {

namespace {

typedef TPoint<double> Pt;

/// So many parts are united at a time.
std::size_t const kFan = 8;
/// Up to so many parts are united at once.
std::size_t const kFewParts = 16;
/// One group of so many tells whether a stage pays.
std::size_t const kSampled = 16;
/// A stage pays where so many edges vanish in it for each one that comes in.
double const kWorthwhile = 0.5;
/// Work coordinates times this are grid coordinates: work coordinates are below 8.
double const kGridScale = 0x1p57;

/// Regions, each with its contours.
struct Parts {
    StretchContours contours;
    std::vector<std::size_t> ends; ///< of the contours of each part

    std::size_t Count() const { return ends.size(); }
    std::size_t Begin(std::size_t part) const { return part == 0 ? 0 : ends[part - 1]; }
};

/// How many edges went into a union, came to be by cutting, and are left.
struct EdgeCounts {
    std::size_t before = 0;
    std::size_t cut = 0;
    std::size_t after = 0;
};

/// Appends contours from `begin` to `end` as a part, unless there are none.
void AppendPart(StretchContours const& from, std::size_t begin, std::size_t end, Parts& parts) {
    if (begin == end) {
        return;
    }
    StretchContours& to = parts.contours;
    auto const offset = [](std::size_t i) { return static_cast<std::ptrdiff_t>(i); };
    std::ptrdiff_t const first = offset(from.Begin(begin));
    std::ptrdiff_t const last = offset(from.ends[end - 1]);
    for (std::size_t i = begin; i < end; ++i) {
        to.ends.push_back(to.elements.size() + from.ends[i] - from.Begin(begin));
    }
    to.elements.insert(to.elements.end(), from.elements.begin() + first,
                       from.elements.begin() + last);
    to.stretches.insert(to.stretches.end(), from.stretches.begin() + first,
                        from.stretches.begin() + last);
    parts.ends.push_back(to.ends.size());
}

/// The stages of one union.
class Stages {
public:
    Stages(OutlineArcs const& whole, double tolerance, bool evenOdd)
        : mWhole(whole), mTolerance(tolerance), mEvenOdd(evenOdd) {}

    /// Takes a stage. False where it does not pay: the parts stay as they are.
    bool Take(Parts& parts);
    /// Unites all parts.
    void Finish(Parts const& parts, CPath& path, std::vector<trammel::ElementSource>* sources);
    double Kept() const { return mKept; }

private:
    template <class Lift>
    void Unite(Parts const& parts, std::size_t begin, std::size_t end, EdgeCounts& counts,
               Lift&& lift);

    OutlineArcs const& mWhole;
    double mTolerance; ///< of each stage
    bool mEvenOdd;
    double mKept = 0.0;  ///< by the stages that are finished
    double mStage = 0.0; ///< by the stage that is under way
};

template <class Lift>
void Stages::Unite(Parts const& parts, std::size_t begin, std::size_t end, EdgeCounts& counts,
                   Lift&& lift) {
    OutlineArcs arcs(&mWhole);
    for (std::size_t part = begin; part < end; ++part) {
        arcs.Add(parts.contours, parts.Begin(part), parts.ends[part],
                 static_cast<std::uint32_t>(part - begin));
    }
    arcs.Build(mTolerance);
    FlatOutlines const flat(arcs);
    Scratch scratch;
    Try([&] {
        BooleanOperand all(&scratch);
        flat.AddAll(all);
        WindingResult const result = UniteByWinding(all, static_cast<std::uint32_t>(end - begin),
                                                    mEvenOdd, &scratch, Origins::kKept);
        counts.before += arcs.HasCurves() ? arcs.uses.size() : arcs.elements.size();
        counts.cut += flat.points.size();
        counts.after += std::min(flat.points.size(), result.resolved.contours.points.size());
        lift(result, flat);
        return 0;
    });
    mStage = std::max(mStage, flat.DistanceKept());
}

bool Stages::Take(Parts& parts) {
    std::size_t const count = (parts.Count() + kFan - 1) / kFan;
    std::vector<StretchContours> groups(count);
    EdgeCounts counts;
    mStage = 0.0;
    auto const unite = [&](std::size_t i) {
        Unite(parts, i * kFan, std::min(i * kFan + kFan, parts.Count()), counts,
              [&](WindingResult const& result, FlatOutlines const& flat) {
                  LiftResult(result, flat, groups[i]);
              });
    };
    for (std::size_t i = 0; i < count; i += kSampled) {
        unite(i);
    }
    if (!(static_cast<double>(counts.cut - counts.after) >
          kWorthwhile * static_cast<double>(counts.before))) {
        return false;
    }
    Parts united;
    for (std::size_t i = 0; i < count; ++i) {
        if (i % kSampled != 0) {
            unite(i);
        }
        AppendPart(groups[i], 0, groups[i].ends.size(), united);
        groups[i] = StretchContours();
    }
    parts = std::move(united);
    mKept += mStage;
    mEvenOdd = false;
    return true;
}

void Stages::Finish(Parts const& parts, CPath& path, std::vector<trammel::ElementSource>* sources) {
    EdgeCounts counts;
    mStage = 0.0;
    Unite(parts, 0, parts.Count(), counts,
          [&](WindingResult const& result, FlatOutlines const& flat) {
              LiftResult(result, flat, path, sources);
          });
    mKept += mStage;
}

/// Returns the operands as parts, in the order of the centres of their boxes along Morton's curve.
Parts PartsOf(OutlineArcs const& arcs) {
    StretchContours const all = arcs.AsStretches();
    struct Place {
        std::uint64_t code;
        std::size_t begin; // of contours
        std::size_t end;
    };
    std::vector<Place> order;
    WorkFrame const frame(arcs.Bounds());
    for (std::size_t begin = 0, end = 0; begin < all.ends.size(); begin = end) {
        std::uint32_t const operand = all.elements[all.Begin(begin)].operand;
        Box<double> box;
        for (; end < all.ends.size() && all.elements[all.Begin(end)].operand == operand; ++end) {
            for (std::size_t i = all.Begin(end); i < all.ends[end]; ++i) {
                Pt const p = frame.ToWork(all.elements[i].c[0]);
                box.Include(p.h, p.v);
            }
        }
        auto const onGrid = [](double low, double high) {
            return static_cast<std::int64_t>((0.5 * low + 0.5 * high) * kGridScale);
        };
        GridPoint const centre{onGrid(box.lowX, box.highX), onGrid(box.lowY, box.highY)};
        order.push_back({MortonCode(centre), begin, end});
    }
    std::sort(order.begin(), order.end(), [](Place const& a, Place const& b) {
        return a.code != b.code ? a.code < b.code : a.begin < b.begin;
    });
    Parts parts;
    for (Place const& place : order) {
        AppendPart(all, place.begin, place.end, parts);
    }
    return parts;
}

} // namespace

bool UniteInStages(OutlineArcs const& arcs, std::uint32_t count, bool evenOdd, double& kept,
                   CPath& path, std::vector<trammel::ElementSource>* sources) {
    if (count <= kFewParts || !arcs.HasExtent() || !arcs.AnyCurve() ||
        arcs.elements.size() >= kNoIndex / 8) {
        return false;
    }
    int most = 1; // stages
    for (std::size_t left = count; left > kFewParts; left = (left + kFan - 1) / kFan) {
        ++most;
    }
    Parts parts = PartsOf(arcs);
    Stages stages(arcs, kept / most, evenOdd);
    bool any = false;
    while (parts.Count() > kFewParts && stages.Take(parts)) {
        any = true;
    }
    if (any) {
        stages.Finish(parts, path, sources);
        kept = std::max(kept, stages.Kept());
    }
    return any;
}

} // namespace trammel_detail

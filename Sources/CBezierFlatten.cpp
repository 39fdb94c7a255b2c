// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "CBezierFlatten_p.h"
#include "Handles.h"
#include "PointBuffer_p.h"
#include "PolygonAppend_p.h"
#include "TPoly.h"

#include <algorithm>

namespace {

using trammel_detail::FlatnessFilter;
using trammel_detail::kFlattenRun;
using trammel_detail::PointBuffer;

/// Makes room in the polygon for all points of the flattened curve, of which there are many.
/// `error` is the tolerance.
///
/// The room suffices for all pieces halved alike, which may be some times as many points as there
/// are. Unused room is set apart and never written. Where the room would be more than 1 MB, the
/// polygon grows as it does otherwise.
void ReservePoints(CBezier const& curve, double error, TPolygon<double>& poly) {
    constexpr int kMostLevels = 16;
    FlatnessFilter const filter(FlatnessFilter::SizeOf(curve), error);
    int levels = std::max(CBezier::mRecursionLimit - 1, 1);
    if (filter.Judges()) {
        levels = std::min(filter.LevelsToFlat(curve), levels);
    }
    if (levels <= kMostLevels) {
        auto const points = (static_cast<Size>(1) << levels) + 1;
        trammel_detail::ReserveBytes(reinterpret_cast<Handle>(poly.mHandle),
                                     points * static_cast<Size>(sizeof(TPoint<double>)));
    }
}

} // namespace

void CBezier::GenerateSegment(PointDataProc proc, void* data, bool force, short depth) const {
    auto deliver = [proc, data](TPoint<double> const& pt) { proc(pt, data); };
    trammel_detail::WatchedRules rules(*this);
    trammel_detail::WalkSubdivision(*this, rules, deliver, force, depth);
}

void CBezier::GenerateSegment(PointProc proc, bool force, short depth) const {
    trammel_detail::WatchedRules rules(*this);
    trammel_detail::WalkSubdivision(*this, rules, proc, force, depth);
}

void CBezier::Flatten(TPolygon<double>& poly, double error) const {
    bool first = true;
    auto append = [&](TPoint<double> const* points, int count) {
        if (first && count > kFlattenRun - trammel_detail::kBlockPoints) {
            ReservePoints(*this, error, poly); // more are to come
        }
        first = false;
        trammel_detail::AppendUniquePoints(points, count, poly);
    };
    PointBuffer<kFlattenRun, decltype(append)> run(append);
    trammel_detail::FlattenTo(*this, error, run);
    run.Pass();
}

void CBezier::AddSegmentToPoly(TPolygon<double>& poly, double error) const { Flatten(poly, error); }

void CBezier::AddPtToPoly(TPoint<double> const& pt, TPolygon<double>& poly) {
    poly.AppendUnique(pt);
}

void CBezier::AddPtToBoundsRect(TPoint<double> const& pt, TRect<double>& rect) { rect |= pt; }

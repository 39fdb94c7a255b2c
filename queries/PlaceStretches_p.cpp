// SPDX-License-Identifier: MIT

#include "PlaceStretches_p.h"

#include "Cubic_p.h"

#include <algorithm>
#include <tuple>

namespace trammel_detail {

namespace {

/// Makes a stretch reach as far as a later one of the same segment.
void Extend(SegmentStretch& stretch, SegmentStretch const& later) {
    stretch.high = std::max(stretch.high, later.high);
    stretch.end = stretch.end || later.end;
    stretch.start = stretch.start || later.start;
    if (later.lowCommon < stretch.lowCommon) {
        stretch.lowCommon = later.lowCommon;
        stretch.againstAtLow = later.againstAtLow;
    }
    if (later.highCommon > stretch.highCommon) {
        stretch.highCommon = later.highCommon;
        stretch.againstAtHigh = later.againstAtHigh;
    }
}

/// The part of a run along which the outlines coincide, from the first such stretch to the last.
class CommonPart {
public:
    /// Goes on with the next stretch of the run.
    void Include(SegmentStretch const& s) {
        if (s.lowCommon > s.highCommon) {
            return;
        }
        mFirst = mFirst != nullptr ? mFirst : &s;
        mLast = &s;
    }
    /// Notes the part in `run`, or the whole run if the outlines coincide nowhere.
    void NoteIn(CommonRun& run) const {
        run.common = run.all;
        if (mFirst != nullptr) {
            run.common.first = mFirst->segment;
            run.common.firstT = mFirst->lowCommon;
            run.firstAgainst = mFirst->againstAtLow;
            run.common.last = mLast->segment;
            run.common.lastT = mLast->highCommon;
            run.lastAgainst = mLast->againstAtHigh;
        }
    }

private:
    SegmentStretch const* mFirst = nullptr;
    SegmentStretch const* mLast = nullptr;
};

} // namespace

CommonRun PlaceStretches::Run(double gap) {
    Join(gap);
    return RunFrom(First());
}

/// Brings the stretches into their order. Those of one segment become one, unless there is a gap
/// between them.
void PlaceStretches::Join(double gap) {
    std::sort(mStretches.begin(), mStretches.end(),
              [](SegmentStretch const& s, SegmentStretch const& t) {
                  return std::tie(s.segment, s.low, s.high) < std::tie(t.segment, t.low, t.high);
              });
    std::size_t count = 0;
    for (SegmentStretch const& s : mStretches) {
        SegmentStretch& last = mStretches[count > 0 ? count - 1 : 0];
        if (count > 0 && last.segment == s.segment &&
            IsShort(mOutline[s.segment].c, last.high, s.low, gap)) {
            Extend(last, s);
        } else {
            mStretches[count++] = s;
        }
    }
    mStretches.Cut(mStretches.begin() + count);
}

SegmentStretch const* PlaceStretches::Find(std::size_t segment,
                                           bool SegmentStretch::*reaches) const {
    if (segment == OutlineSegment::kNone) {
        return nullptr;
    }
    auto const found = std::find_if(
        std::lower_bound(mStretches.begin(), mStretches.end(), segment,
                         [](SegmentStretch const& s, std::size_t k) { return s.segment < k; }),
        mStretches.end(),
        [&](SegmentStretch const& s) { return s.segment != segment || s.*reaches; });
    return found != mStretches.end() && found->segment == segment ? found : nullptr;
}

/// Returns the stretch where the place begins. Of a place that goes around a closed outline it is
/// any.
SegmentStretch const& PlaceStretches::First() const {
    SegmentStretch const* first = mStretches.begin();
    for (std::size_t i = 0; i < mStretches.size() && first->start; ++i) {
        SegmentStretch const* const before =
            Find(mOutline[first->segment].before, &SegmentStretch::end);
        if (before == nullptr) {
            break;
        }
        first = before;
    }
    return *first;
}

CommonRun PlaceStretches::RunFrom(SegmentStretch const& first) const {
    SegmentStretch const* last = &first;
    CommonPart common;
    common.Include(first);
    for (std::size_t i = 1; i < mStretches.size() && last->end; ++i) {
        SegmentStretch const* const next =
            Find(mOutline[last->segment].after, &SegmentStretch::start);
        if (next == nullptr) {
            break;
        }
        last = next;
        common.Include(*last);
    }
    CommonRun run{};
    run.all = {mOutline.data(), first.segment, first.low, last->segment, last->high};
    run.whole = first.start && last->end && mOutline[last->segment].after == first.segment;
    if (run.whole) {
        run.all.firstT = 0.0;
        run.all.lastT = 1.0;
    }
    common.NoteIn(run);
    return run;
}

} // namespace trammel_detail
